// Numbers and lists in sentences.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// Digits in groups of three: 1234567 is "1,234,567".
std::string grouped(std::uint64_t number);
/// "1 gate", "2 gates".
std::string counted(std::uint64_t number, std::string_view noun);
/// "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& items);
/// "a", "a or b", "a, b or c".
std::string alternatives(const std::vector<std::string>& items);

} // namespace text
