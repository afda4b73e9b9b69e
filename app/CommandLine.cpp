// The parser of the command line is made from the verbs' rows, and what it has to say is put into our words.
#include "app/CommandLine.h"

#include "app/Output.h"
#include "text/Diagnostic.h"
#include "text/Wording.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

namespace app {

namespace {

// Enters one row.
class Adder {
public:
    Adder(CLI::App& verb, const Row& row) : verb_(verb), row_(row) {}

    CLI::Option* operator()(bool* target) const { return verb_.add_flag(row_.names, *target); }
    CLI::Option* operator()(std::vector<std::string>* target) const
    {
        CLI::Option* option = verb_.add_option(row_.names, *target);
        if (row_.position > 0) return option;
        return option->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    CLI::Option* operator()(std::string* target) const
    {
        return verb_.add_option(row_.names, *target);
    }
    CLI::Option* operator()(std::optional<std::string>* target) const
    {
        return verb_.add_option(row_.names, *target);
    }
    CLI::Option* operator()(int* target) const { return number<int>(target); }
    CLI::Option* operator()(std::uint64_t* target) const { return number<std::uint64_t>(target); }
    CLI::Option* operator()(double* target) const { return number<double>(target); }
    CLI::Option* operator()(std::optional<int>* target) const { return number<int>(target); }
    CLI::Option* operator()(std::optional<std::uint64_t>* target) const
    {
        return number<std::uint64_t>(target);
    }

private:
    // The parser itself would take 010 for eight.
    template <typename Number, typename Target> CLI::Option* number(Target* target) const
    {
        return verb_.add_option_function<std::string>(
            row_.names, [target, name = row_.names](const std::string& text) {
                const auto value = parsedNumber<Number>(text);
                if (!value) throw CLI::ConversionError(text, name);
                *target = *value;
            });
    }

    CLI::App& verb_;
    const Row& row_;
};

void add(CLI::App& verb, const Row& row)
{
    CLI::Option* option = std::visit(Adder(verb, row), row.target);
    if (!row.check) return;
    option->check(
        CLI::Validator([check = row.check](std::string& value) { return check(value); }, "", ""));
}

// The parser takes arguments in the order in which they are entered.
CLI::App* addVerb(CLI::App& program, const Verb& verb)
{
    CLI::App* parser = program.add_subcommand(verb.name);
    parser->allow_extras();
    parser->formatter_fn(
        [&verb](const CLI::App*, const std::string&, CLI::AppFormatMode) { return helpOf(verb); });
    std::vector<const Row*> rows;
    for (const Section& section : verb.sections) {
        for (const Row& row : section.rows) {
            rows.push_back(&row);
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row* a, const Row* b) { return a->position < b->position; });
    for (const Row* row : rows) {
        add(*parser, *row);
    }
    return parser;
}

// Throws Failure when there were arguments that the verb, or the program, does not know.
void refuseUnknown(const CLI::App& verb)
{
    const std::vector<std::string> unknown = verb.remaining();
    if (unknown.empty()) return;
    const std::string& word = unknown.front();
    if (word.size() < 2 || word.front() != '-') {
        throw Failure(fmt::format("unexpected argument {}\n", text::quoted(word)));
    }
    std::vector<std::string> known;
    for (const CLI::Option* option : verb.get_options()) {
        for (const std::string& longName : option->get_lnames()) {
            known.push_back("--" + longName);
        }
    }
    const std::string name = word.substr(0, word.find('='));
    throw Failure(fmt::format("unknown option {}{}\n", text::quoted(name),
                              name.size() > 2 ? orDidYouMean(name, known) : ""));
}

[[noreturn]] void refuseVerb(const CLI::App& program, const std::vector<Verb>& verbs)
{
    const std::string word = program.remaining().front();
    if (word.size() > 1 && word.front() == '-') refuseUnknown(program);
    std::vector<std::string> names;
    for (const Verb& verb : verbs) {
        names.push_back(verb.name);
    }
    throw Failure(
        fmt::format("unknown verb {}{}\n  expected: {}\n  hint: itms --help tells what they do\n",
                    text::quoted(word), orDidYouMean(word, names), fmt::join(names, ", ")));
}

// What the parser has to say, in our words: the option, and what is wrong with it.
std::string explained(const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find(':'));
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        const bool twice = text.find("but received") != std::string::npos;
        return option + (twice ? ": is given more than once\n" : ": its value is missing\n");
    }
    return text + "\n";
}

} // namespace

ExitStatus runCommandLine(const std::vector<Verb>& verbs, int argc, const char* const* argv,
                          std::string& name)
{
    CLI::App program;
    program.name("itms");
    program.allow_extras();
    program.formatter_fn([&verbs](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return helpOf(verbs);
    });
    program.set_version_flag("--version", "itms " ITMS_VERSION);
    std::vector<const CLI::App*> parsers;
    for (const Verb& verb : verbs) {
        parsers.push_back(addVerb(program, verb));
    }
    // The verb that was given; `verbs.size()` when none was.
    const auto chosen = [&parsers] {
        const auto parsed = std::find_if(parsers.begin(), parsers.end(),
                                         [](const CLI::App* verb) { return verb->parsed(); });
        return static_cast<std::size_t>(parsed - parsers.begin());
    };

    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const std::size_t verb = chosen();
        print(verb < verbs.size() ? helpOf(verbs[verb]) : helpOf(verbs));
        return ExitStatus::done;
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + "\n");
        return ExitStatus::done;
    } catch (const CLI::ParseError& error) {
        if (const std::size_t verb = chosen(); verb < verbs.size()) name += " " + verbs[verb].name;
        throw Failure(explained(error));
    }
    if (!program.remaining().empty()) refuseVerb(program, verbs);
    const std::size_t verb = chosen();
    if (verb == verbs.size()) {
        complain(helpOf(verbs));
        return ExitStatus::error;
    }
    name += " " + verbs[verb].name;
    refuseUnknown(*parsers[verb]);
    return verbs[verb].run();
}

} // namespace app
