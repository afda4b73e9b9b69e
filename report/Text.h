// Text as a terminal shows it: columns, lines that fit, percentages, colours.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace report {

/// Characters of a line; what is printed is wrapped to it, whatever the terminal, so that it is the same everywhere.
inline constexpr std::size_t lineWidth = 80;
/// Characters of the columns that several tables have.
inline constexpr std::size_t stepColumns = 8;
inline constexpr std::size_t timeColumns = 12;
inline constexpr std::size_t probabilityColumns = 9;

/// A probability in percent, with three significant digits where they matter: "100 %", "16.7 %", "0.42 %". What is not
/// quite none or all does not look like it: "<0.01 %", ">99.9 %".
std::string percent(double probability);
/// Characters of a UTF-8 text.
std::size_t width(std::string_view text);
/// The text with spaces before it (after it) up to `columns` characters.
std::string right(std::string_view text, std::size_t columns);
std::string left(std::string_view text, std::size_t columns);
/// Stands for a space at which a line is not broken.
inline constexpr char unbreakable = '\x1f';
/// The words of the text in lines of `lineWidth` characters, ended by newlines; the first begins with `first`, the others
/// with as many spaces. A word that is longer has a line of its own.
std::string wrapped(std::string_view first, std::string_view text);

/// Marks text for a terminal, or leaves it as it is.
class Colours {
public:
    explicit Colours(bool on) : on_(on) {}

    std::string bold(std::string_view text) const { return marked("1", text); }
    std::string faint(std::string_view text) const { return marked("2", text); }
    std::string red(std::string_view text) const { return marked("1;31", text); }
    std::string green(std::string_view text) const { return marked("32", text); }
    std::string yellow(std::string_view text) const { return marked("1;33", text); }

    /// The text without control characters (text::printable), but with these colours.
    std::string printable(std::string_view text) const;

private:
    std::string marked(std::string_view code, std::string_view text) const;

    bool on_;
};

} // namespace report
