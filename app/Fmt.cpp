// The verb `fmt`: lays model files out in the one way.
#include "app/Output.h"
#include "app/Verbs.h"
#include "language/syntax/Formatter.h"
#include "text/File.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

namespace app {

namespace {

struct FmtOptions {
    std::vector<std::string> models; ///< `-`: standard input, laid out on standard output
    bool check = false;
};

std::string readStandardInput(const std::string& name)
{
    std::string text;
    std::array<char, 65536> block{};
    while (const std::size_t got = std::fread(block.data(), 1, block.size(), stdin)) {
        text.append(block.data(), got);
    }
    if (std::ferror(stdin) != 0) {
        throw FileFailure(name + ": cannot be read: " + std::generic_category().message(errno) +
                          "\n");
    }
    return text;
}

std::string readFile(const std::string& name)
{
    text::FileText file = text::readFile(name);
    if (file.text) return std::move(*file.text);
    throw FileFailure(text::shownName(name) + ": cannot be opened: " + file.failure + "\n");
}

void replaceFile(const std::string& name, const std::string& text)
{
    try {
        text::writeWhole(name, text, text::OtherNames::getNew);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(std::string(failure.what()) + "\n");
    }
}

// Returns whether all is well with the file.
bool layOut(const std::string& name, bool check)
{
    const bool standard = name == "-";
    const std::string shown = standard ? "standard input" : name;
    const std::string before = standard ? readStandardInput(shown) : readFile(name);
    const language::Formatted formatted = language::format(text::SourceText(shown, before));
    for (const text::Diagnostic& error : formatted.errors) {
        complain(error.format());
    }
    if (!formatted.errors.empty()) return false;
    if (check) {
        if (formatted.text == before) return true;
        complain(shown + ": is laid out otherwise\n  hint: itms fmt " + name + "\n");
        return false;
    }
    if (standard) {
        print(formatted.text);
    } else if (formatted.text != before) {
        replaceFile(name, formatted.text);
    }
    return true;
}

ExitStatus layOutAll(const FmtOptions& options)
{
    if (options.models.empty()) {
        throw Failure("which MODEL?\n  expected: a model file, .itms, or - for standard input\n");
    }
    bool good = true;
    for (const std::string& name : options.models) {
        try {
            good = layOut(name, options.check) && good;
        } catch (const FileFailure& failure) {
            complain(failure.what());
            good = false;
        }
    }
    return good ? ExitStatus::done : ExitStatus::error;
}

} // namespace

Verb fmtVerb()
{
    const auto options = std::make_shared<FmtOptions>();
    return {"fmt",
            "lays model files out in the one way",
            "itms fmt MODEL... [--check]",
            "Lays model files out in the one way: blanks, columns, line ends. Comments stay. A "
            "file is replaced at once, as a whole, and only when it changes; one with errors stays "
            "as it is, and they are reported.",
            {{"",
              {{"MODEL",
                "",
                "a model file, .itms; - reads standard input and writes to standard output",
                &options->models,
                {},
                1},
               {"--check",
                "",
                "change nothing: name the files that are laid out otherwise, and end with status "
                "2 if there is one",
                &options->check,
                {}}}}},
            "",
            "0 done; 2 an error in the command line or in a file, or with --check a file that is "
            "laid out otherwise.",
            "fmt --check examples/models/valve.itms",
            [options] { return layOutAll(*options); }};
}

} // namespace app
