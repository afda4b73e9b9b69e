// Numbers and lists, as they stand in sentences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// A number as a message shows it: six digits, without an exponent where it reads well.
std::string shown(double number);
/// The same for a number that is above a limit, with as many digits as it takes to see that.
/// Requires: it is above the limit.
std::string shownAbove(double number, double limit);
/// The digits in groups of three: 1234567 is "1,234,567".
std::string grouped(std::uint64_t number);
/// The text with its control characters, C0 and C1, as `\x1b` and `\u009b`: what a terminal would obey is shown. Line ends and
/// tabs stay.
std::string printable(std::string_view text);
/// "1 gate", "2 gates", "1,000 gates". The plural of the noun takes an s.
std::string counted(std::uint64_t number, std::string_view noun);
/// What stands for the items that are left out of a long list of N.
enum class Rest {
    ellipsis, ///< "a, b, ..."
    more,     ///< "a, b and 7 more"
    total     ///< "a, b, ... (9 in all)"
};
/// "a, b, c", with the first `most` items of a longer list.
std::string enumerated(const std::vector<std::string_view>& items, std::size_t most = 12,
                       Rest rest = Rest::ellipsis);
/// "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& items);
/// "a", "a or b", "a, b or c".
std::string alternatives(const std::vector<std::string>& items);

} // namespace text
