#include "text/Diagnostic.h"

#include <algorithm>
#include <compare>
#include <utility>

namespace text {

namespace {

constexpr std::string_view ellipsis = "...";

bool continues(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Moves back to the first byte of a character. An encoded character has no more than three further bytes.
std::size_t characterStart(std::string_view text, std::size_t position)
{
    for (int back = 0; back < 3 && position > 0 && continues(text[position]); ++back) {
        --position;
    }
    return position;
}

// A control character, or a blank other than the space, most of which do not show.
bool isInvisible(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character.front());
    if (character.size() == 1) return first < 0x20 || first == 0x7F;
    const auto isWithin = [&](std::string_view low, std::string_view high) {
        return low <= character && character <= high;
    };
    return isWithin("\u0080", "\u00A0") || isWithin("\u2000", "\u200F") ||
           isWithin("\u2028", "\u202F") || isWithin("\u205F", "\u206F") || character == "\u3000" ||
           character == "\uFEFF";
}

// Appends the first character of `text`, made visible, and returns its length in bytes.
std::size_t appendPrintable(std::string& out, std::string_view text)
{
    const std::size_t length = utf8Length(text);
    const std::string_view character = text.substr(0, length);
    if (text.front() == '\t') {
        out += ' ';
    } else if (length == 0 || isInvisible(character)) {
        out += '?';
    } else {
        out += character;
    }
    return std::max<std::size_t>(length, 1);
}

} // namespace

std::size_t utf8Length(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) < 0x80) return 1;
    const std::size_t length = byte(0) < 0xC2   ? 0
                               : byte(0) < 0xE0 ? 2
                               : byte(0) < 0xF0 ? 3
                               : byte(0) < 0xF5 ? 4
                                                : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (!continues(text[i])) return 0;
    }
    const bool overlong = (byte(0) == 0xE0 && byte(1) < 0xA0) || (byte(0) == 0xF0 && byte(1) < 0x90);
    const bool surrogate = byte(0) == 0xED && byte(1) >= 0xA0;
    const bool beyond = byte(0) == 0xF4 && byte(1) >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

void Diagnostic::quote(std::string_view line, std::size_t length)
{
    const std::size_t target = std::min(place.column > 0 ? place.column - 1 : 0, line.size());
    // A place that is too far out to be shown from the line's start stands in the middle of what is shown.
    const bool cut = target > shownCharacters - 20;
    std::size_t at = cut ? characterStart(line, target - shownCharacters / 2) : 0;
    source = cut ? ellipsis : "";
    std::size_t characters = source.size();
    caret = characters;
    marked = 0;
    while (at < line.size() && characters < shownCharacters) {
        if (at <= target) caret = characters;
        if (at >= target && at < target + length) ++marked;
        at += appendPrintable(source, line.substr(at));
        ++characters;
    }
    if (target >= line.size()) caret = characters;
    if (at < line.size()) source += ellipsis;
    marked = place.column > 0 ? std::max<std::size_t>(marked, 1) : 0;
}

namespace {

std::string adviceLines(const Message& message)
{
    std::string text;
    if (!message.expected.empty()) text += "  expected: " + message.expected + "\n";
    if (!message.hint.empty()) text += "  hint: " + message.hint + "\n";
    return text;
}

} // namespace

std::string Message::format() const
{
    return message + "\n" + adviceLines(*this);
}

std::string shownName(std::string_view file)
{
    std::string shown;
    for (const char c : file) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            constexpr std::string_view digits = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(c);
            shown += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
        } else {
            shown += c;
        }
    }
    return shown;
}

std::string Diagnostic::format() const
{
    std::string text = shownName(file);
    if (place.line > 0) text += ":" + std::to_string(place.line);
    if (place.column > 0) text += ":" + std::to_string(place.column);
    text += ": " + message + "\n";
    if (place.line > 0 && !source.empty()) text += "  " + source + "\n";
    if (marked > 0)
        text += "  " + std::string(caret, ' ') + "^" + std::string(marked - 1, '~') + "\n";
    return text + adviceLines(*this);
}

Diagnostic errorAt(Message message, std::string file, Place place, std::string_view line,
                   std::size_t length)
{
    Diagnostic error;
    static_cast<Message&>(error) = std::move(message);
    error.file = std::move(file);
    error.place = place;
    if (place != Place{}) error.quote(line, length);
    return error;
}

std::string quoted(std::string_view text)
{
    constexpr std::size_t longest = 60;
    std::string out = "'";
    std::size_t at = 0;
    for (std::size_t characters = 0; at < text.size() && characters < longest; ++characters) {
        at += appendPrintable(out, text.substr(at));
    }
    return out + (at < text.size() ? "...'" : "'");
}

} // namespace text
