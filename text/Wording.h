// Numbers and lists in sentences.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// A number as a message shows it: six digits, without an exponent where it reads well.
std::string shown(double number);
/// "a, b, c", cut after twelve: "a, b, c, ...".
std::string enumerated(const std::vector<std::string_view>& items);
/// Digits in groups of three: 1234567 is "1,234,567".
std::string grouped(std::uint64_t number);
/// "1 gate", "2 gates".
std::string counted(std::uint64_t number, std::string_view noun);
/// "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& items);
/// "a", "a or b", "a, b or c".
std::string alternatives(const std::vector<std::string>& items);

} // namespace text
