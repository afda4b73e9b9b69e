// Help is laid out from what the verbs declare: names to the left, texts from column 28 on, up to 80 columns.
#include "app/CommandLine.h"
#include "report/Text.h"

#include <algorithm>
#include <fmt/format.h>

namespace app {

namespace {

constexpr std::size_t lineColumns = 82;
constexpr std::size_t textColumn = 28;
constexpr std::size_t verbColumn = 17;

// The text in lines of up to `lineColumns`; the first begins with `first`, the others with as many spaces. A line break in
// the text stays.
std::string laidOut(const std::string& first, std::string_view text)
{
    const std::string indent(first.size(), ' ');
    std::string lines = first;
    std::size_t column = first.size();
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
        const bool fits = column + end <= lineColumns;
        if (!fits) {
            lines.back() = '\n'; // the space before this word
            lines += indent;
            column = indent.size();
        }
        lines += text.substr(0, end);
        column += end + 1;
        if (end < text.size()) lines += text[end];
        if (end < text.size() && text[end] == '\n') {
            lines += indent;
            column = indent.size();
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines + "\n";
}

// Texts of several lines that stand as they are, the later ones below the first.
std::string below(std::string_view first, std::string text)
{
    const std::string indent = "\n" + std::string(first.size(), ' ');
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += indent.size()) {
        text.replace(at, 1, indent);
    }
    return fmt::format("{}{}\n", first, text);
}

std::string row(std::string head, std::size_t column, std::string_view text)
{
    head.insert(0, "  ");
    if (report::width(head) < column) return laidOut(report::left(head, column), text);
    return head + "\n" + laidOut(std::string(column, ' '), text);
}

template <typename Value> std::string defaultText(const Value& value)
{
    return fmt::format("{}", value);
}
template <typename Value> std::string defaultText(const std::optional<Value>& value)
{
    return value ? defaultText(*value) : "none";
}
std::string defaultText(const std::vector<std::string>& values)
{
    return fmt::format("{}", fmt::join(values, ","));
}

std::string helpOf(const Row& option)
{
    std::string head = option.names;
    if (const std::size_t comma = head.find(','); comma != std::string::npos)
        head.insert(comma + 1, " ");
    if (!option.placeholder.empty()) head += " " + option.placeholder;
    std::string text = option.help;
    constexpr std::string_view placeholder = "{default}";
    if (const std::size_t at = text.find(placeholder); at != std::string::npos) {
        text.replace(
            at, placeholder.size(),
            std::visit([](const auto* target) { return defaultText(*target); }, option.target));
    }
    return row(std::move(head), textColumn, text);
}

} // namespace

std::string helpOf(const Verb& verb)
{
    std::string text = below("Usage: ", verb.usage) + "\n" + laidOut("", verb.description);
    for (const Section& section : verb.sections) {
        text += "\n";
        if (!section.heading.empty()) text += section.heading + ":\n";
        for (const Row& option : section.rows) {
            text += helpOf(option);
        }
    }
    text += row("-h, --help", textColumn, "print this");
    if (!verb.notes.empty()) text += "\n" + laidOut("", verb.notes);
    return text + "\n" + laidOut("", "Exit status: " + verb.exitStatus) + "\nExample:\n" +
           below("  ", "itms " + verb.example);
}

std::string helpOf(const std::vector<Verb>& verbs)
{
    std::string text = "Usage: itms VERB [options] FILES\n\n"
                       "Tracks what a system is doing and explains what went wrong.\n\nVerbs:\n";
    for (const Verb& verb : verbs) {
        text += row(verb.name, verbColumn, verb.purpose);
    }
    return text + "\nOptions:\n" +
           row("-h, --help", verbColumn, "print this; after a verb, all about the verb") +
           row("--version", verbColumn, "print the version") + R"(
Example:
  itms diagnose examples/circuits/c17.bench \
      --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 \
      --outputs G22gat=1,G23gat=1
)";
}

} // namespace app
