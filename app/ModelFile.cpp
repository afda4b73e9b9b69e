#include "app/ModelFile.h"

#include "app/Output.h"
#include "report/Text.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

namespace {

[[noreturn]] void fail(const std::string& path, const std::vector<text::Diagnostic>& errors)
{
    std::string text;
    for (const text::Diagnostic& error : errors) {
        text += error.format();
    }
    throw FileFailure(text + fmt::format("{}: {}\n", path, text::counted(errors.size(), "error")));
}

void warn(std::vector<text::Diagnostic> warnings)
{
    for (text::Diagnostic& warning : warnings) {
        warning.message.insert(0, "warning: ");
        complain(warning.format());
    }
}

language::ReadResult openModel(const std::string& verb, const ModelOptions& options, bool quiet,
                               bool trace)
{
    if (options.path.empty()) {
        throw Failure(fmt::format("no model is given\n  expected: the name of an .itms file\n"
                                  "  hint: itms {} --help shows an example\n",
                                  verb));
    }
    language::ReadOptions reading;
    reading.searchPath = options.importFolders;
    language::ReadResult read = language::readModel(options.path, reading);
    if (!read.errors.empty()) fail(options.path, read.errors);
    if (!quiet) warn(read.warnings);
    if (!trace) muteTrace();
    return read;
}

} // namespace

void addModelOptions(CLI::App& verb, ModelOptions& options)
{
    verb.add_option("model", options.path);
    verb.add_option("-I,--import", options.importFolders)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

ModelFile::ModelFile(const std::string& verb, const ModelOptions& options, bool quiet, bool trace)
    : path_(options.path), read_(openModel(verb, options, quiet, trace)), active_(*read_.model)
{
    const plant::ImplicateFile& implicates = active_.implicates();
    if (!implicates.errors.empty()) fail(implicates.path, implicates.errors);
    if (!quiet) warn(implicates.warnings);
}

} // namespace app
