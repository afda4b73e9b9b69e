#include "text/JsonText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace text {

// From the closing quote back to the opening one: the first that no odd run of backslashes precedes.
Extent textBefore(std::string_view line, std::size_t end)
{
    std::size_t begin = end - 1;
    for (bool escaped = true; begin > 0 && escaped;) {
        begin = line.rfind('"', begin - 1);
        std::size_t backslashes = 0;
        while (backslashes < begin && line[begin - backslashes - 1] == '\\') {
            ++backslashes;
        }
        escaped = backslashes % 2 == 1;
    }
    return {begin, end - begin};
}

Extent valueAfter(std::string_view line, std::size_t end)
{
    const std::size_t begin = std::min(line.find_first_not_of(" \t\r\n:", end), line.size());
    if (begin == line.size()) return {begin, 1};
    std::size_t last = begin + 1;
    if (line[begin] == '"') {
        while (last < line.size() && line[last] != '"') {
            last += line[last] == '\\' ? 2 : 1;
        }
        last = std::min(last + 1, line.size());
    } else if (line[begin] != '{' && line[begin] != '[') {
        last = std::min(line.find_first_of(" \t\r\n,}]", begin), line.size());
    }
    return {begin, last - begin};
}

// "... at line 1, column 9: syntax error while parsing value - invalid literal; last read: 'x'; expected ...", and for numbers
// "... - invalid number; expected digit after '.'; last read: '1.x'". What was read last can be any bytes of the text.
JsonMistake jsonMistake(std::string_view parserMessage)
{
    constexpr std::string_view expects = "; expected ";
    constexpr std::string_view behindText = "'; expected "; // the text itself may have the words
    const std::size_t dash = parserMessage.find(" - ");
    if (dash == std::string_view::npos) return {};
    const std::string_view whole = parserMessage.substr(dash + 3);
    const std::size_t lastRead = std::min(whole.find("; last read: "), whole.size());
    std::string_view found = whole.substr(0, lastRead);
    std::string_view expected;
    if (const std::size_t at = found.find(expects); at != std::string_view::npos) {
        expected = found.substr(at + expects.size());
        found = found.substr(0, at);
    } else if (const std::size_t quote = whole.rfind(behindText);
               quote != std::string_view::npos && quote > lastRead) {
        expected = whole.substr(quote + behindText.size());
    }
    const bool shows = std::all_of(expected.begin(), expected.end(),
                                   [](char each) { return each >= ' ' && each <= '~'; });
    return {std::string(found), shows ? std::string(expected) : "", lastRead < whole.size()};
}

std::size_t zeroByte(std::string_view text)
{
    return text.find('\0');
}

Message zeroByteMistake()
{
    return {"this is not JSON: it has a byte 0", "text in UTF-8", ""};
}

std::string jsonQuoted(std::string_view text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace text
