#include "text/Wording.h"

#include "text/Diagnostic.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace text {

namespace {

std::string joined(const std::vector<std::string>& items, std::string_view last)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) text += i + 1 == items.size() ? last : ", ";
        text += items[i];
    }
    return text;
}

std::string twoDigits(unsigned char byte)
{
    static constexpr char digits[] = "0123456789abcdef";
    return {digits[byte >> 4U], digits[byte & 0xfU]};
}

std::string shownTo(int digits, double number)
{
    char text[32];
    const auto end =
        std::to_chars(text, text + sizeof text, number, std::chars_format::general, digits);
    return {text, end.ptr};
}

} // namespace

std::string shown(double number)
{
    // 1,000,001 is not to read like its bound, 1e+06.
    constexpr double mostWhole = 1e9;
    if (number == std::trunc(number) && std::abs(number) < mostWhole)
        return std::to_string(static_cast<long>(number));
    return shownTo(6, number);
}

std::string shownAbove(double number, double limit)
{
    for (int digits = 6;; ++digits) {
        const std::string text = shownTo(digits, number);
        double read = 0;
        std::from_chars(text.data(), text.data() + text.size(), read);
        if (read > limit || digits == std::numeric_limits<double>::max_digits10) return text;
    }
}

std::string grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, ",");
    }
    return digits;
}

std::string counted(std::uint64_t number, std::string_view noun)
{
    return grouped(number) + " " + std::string(noun) + (number == 1 ? "" : "s");
}

std::string enumerated(const std::vector<std::string_view>& items, std::size_t most, Rest rest)
{
    std::string text;
    for (std::size_t i = 0; i < items.size() && i < most; ++i) {
        if (i > 0) text += ", ";
        text += items[i];
    }
    if (items.size() <= most) return text;
    switch (rest) {
    case Rest::ellipsis: return text + ", ...";
    case Rest::more: return text + " and " + std::to_string(items.size() - most) + " more";
    case Rest::total: break;
    }
    return text + ", ... (" + std::to_string(items.size()) + " in all)";
}

std::string listed(const std::vector<std::string>& items)
{
    return joined(items, " and ");
}

std::string alternatives(const std::vector<std::string>& items)
{
    return joined(items, " or ");
}

std::string printable(std::string_view text)
{
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const std::size_t length = std::max<std::size_t>(utf8Length(text.substr(i)), 1);
        const bool isC0 = (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F;
        const bool isC1Byte = length == 1 && byte >= 0x80 && byte < 0xA0;
        if (isC0 || isC1Byte) {
            shown += "\\x" + twoDigits(byte);
        } else if (length == 2 && byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0) {
            shown += "\\u00" + twoDigits(static_cast<unsigned char>(text[i + 1]));
        } else {
            shown += text.substr(i, length);
        }
        i += length;
    }
    return shown;
}

} // namespace text
