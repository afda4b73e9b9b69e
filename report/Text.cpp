#include "report/Text.h"

#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>

namespace report {

std::string percent(double probability)
{
    const double value = 100.0 * probability;
    if (value <= 0.0) return "0 %";
    if (value < 0.005) return "<0.01 %";
    if (value < 9.995) return fmt::format("{:.2f} %", value);
    if (value < 99.95) return fmt::format("{:.1f} %", value);
    return probability < 1.0 - 1e-9 ? ">99.9 %" : "100 %";
}

std::size_t width(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

std::string right(std::string_view text, std::size_t columns)
{
    return std::string(columns - std::min(columns, width(text)), ' ') + std::string(text);
}

std::string left(std::string_view text, std::size_t columns)
{
    return std::string(text) + std::string(columns - std::min(columns, width(text)), ' ');
}

std::string wrapped(std::string_view first, std::string_view text)
{
    std::string lines(first);
    const std::size_t indent = width(first);
    std::size_t column = indent;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string_view word = text.substr(at, end - at);
        if (column > indent && column + 1 + width(word) > lineWidth) {
            lines += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (column > indent) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += width(word);
        at = end + 1;
    }
    std::replace(lines.begin(), lines.end(), unbreakable, ' ');
    return lines + "\n";
}

// Between the marks of a colour there is nothing but text. Whoever hides such a mark in a name gets its colour, and no more.
std::string Colours::printable(std::string_view text) const
{
    std::string shown;
    while (on_ && !text.empty()) {
        const std::size_t mark = std::min(text.find("\x1b["), text.size());
        const std::size_t end =
            text.find_first_not_of("0123456789;", std::min(mark + 2, text.size()));
        const bool isMark = end != std::string_view::npos && text[end] == 'm';
        const std::size_t plain = isMark ? mark : std::min(mark + 1, text.size());
        shown += text::printable(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!isMark) continue;
        shown += text.substr(0, end + 1 - mark);
        text.remove_prefix(end + 1 - mark);
    }
    return shown + text::printable(text);
}

std::string Colours::marked(std::string_view code, std::string_view text) const
{
    if (!on_ || text.empty()) return std::string(text);
    return fmt::format("\x1b[{}m{}\x1b[0m", code, text);
}

} // namespace report
