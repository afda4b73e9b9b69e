#include "telemetry/JsonText.h"

#include <algorithm>

namespace telemetry {

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

// "... at line 1, column 9: syntax error while parsing value - invalid literal; last read: 'x'; expected ..."
SyntaxMistake syntaxMistake(std::string_view parserMessage)
{
    SyntaxMistake mistake;
    const std::size_t dash = parserMessage.find(" - ");
    std::string_view found =
        dash == std::string_view::npos ? parserMessage : parserMessage.substr(dash + 3);
    const std::size_t semicolon = found.find("; expected ");
    if (semicolon != std::string_view::npos) {
        mistake.expected = found.substr(semicolon + 11);
        found = found.substr(0, semicolon);
    }
    mistake.found = found.substr(0, found.find("; last read: "));
    return mistake;
}

} // namespace telemetry
