// Help is laid out from what the verbs declare: names to the left, texts from column 28 on, up to 80 columns.
#include "app/CommandLine.h"
#include "report/Text.h"

#include <fmt/format.h>

namespace app {

namespace {

constexpr std::size_t textColumn = 28;
constexpr std::size_t verbColumn = 17;

// The lines of the text as they are, the later ones below the first.
std::string below(std::string_view first, std::string text)
{
    const std::string indent = "\n" + std::string(first.size(), ' ');
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += indent.size()) {
        text.replace(at, 1, indent);
    }
    return fmt::format("{}{}\n", first, text);
}

// The text in lines; the first begins with `first`, the others with as many spaces. A text with line breaks of its own is laid
// out by its author.
std::string laidOut(std::string_view first, const std::string& text)
{
    if (text.find('\n') != std::string::npos) return below(first, text);
    std::string lines = report::wrapped(first, text);
    // A last word that is all but in place does not get a line of its own.
    const std::size_t last = lines.rfind('\n', lines.size() - 2);
    if (last == std::string::npos) return lines;
    const std::size_t word = last + 1 + first.size();
    const std::size_t before = last - (lines.rfind('\n', last - 1) + 1);
    const bool alone = lines.size() - 1 - word == text.size() - (text.rfind(' ') + 1);
    if (alone && before + lines.size() - word <= report::lineWidth + 2)
        lines.replace(last, word - last, " ");
    return lines;
}

std::string row(std::string head, std::size_t column, const std::string& text)
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
