#include "app/ModelFile.h"

#include "app/Output.h"
#include "report/Text.h"

#include <fmt/format.h>

namespace app {

namespace {

// Reads the model and makes it the active one.
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
    if (!read.errors.empty()) {
        std::string text;
        for (const language::SourceError& error : read.errors) {
            text += error.format();
        }
        throw FileFailure(text + fmt::format("{}: {}\n", options.path,
                                             report::counted(read.errors.size(), "error")));
    }
    if (!quiet) {
        for (language::SourceError warning : read.warnings) {
            warning.message.insert(0, "warning: ");
            complain(warning.format());
        }
    }
    if (!trace) muteTrace();
    read.model->activate();
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
    : read_(openModel(verb, options, quiet, trace))
{
}

} // namespace app
