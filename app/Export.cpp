#include "app/Export.h"

#include "app/Output.h"
#include "language/Reader.h"
#include "language/json/ModelJson.h"
#include "text/File.h"

#include <filesystem>

namespace app {

namespace {

constexpr const char* helpText =
    R"(Usage: itms export MODEL [--json] [-o FILE]

Writes a model with everything in it: components, variables, laws as clauses,
transitions, channels. The same model gives the same bytes, and what is written
can be given to itms as a model. docs/model.schema.json describes it.

  MODEL                     a model file, .itms, or a model in JSON, .json
  -I, --import FOLDER       look for imported files there, too, after the folder
                            of the file that imports them; may be repeated
  --json                    as JSON (default)
  -o, --output FILE         write to the file, not to standard output
  -h, --help                print this

Exit status: 0 done; 2 there is an error in the command line or in the model.

Example:
  itms export examples/models/valve.itms
)";

void write(const std::string& path, const std::string& model, const std::string& text)
{
    std::error_code error;
    if (std::filesystem::equivalent(path, model, error)) {
        throw FileFailure(path + ": is the model itself\n  expected: another file\n");
    }
    try {
        text::writeFile(path, text);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(std::string(failure.what()) + "\n");
    }
}

} // namespace

CLI::App* addExport(CLI::App& program, ExportOptions& options)
{
    CLI::App* verb = program.add_subcommand("export");
    verb->allow_extras();
    verb->formatter_fn(
        [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return helpText; });
    verb->add_option("model", options.model);
    verb->add_option("-I,--import", options.importFolders)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb->add_flag("--json", options.json);
    verb->add_option("-o,--output", options.output);
    return verb;
}

ExitStatus exportModel(const ExportOptions& options)
{
    if (options.model.empty()) {
        throw Failure("which MODEL?\n  expected: a model file, .itms or .json\n"
                      "  hint: itms export --help shows an example\n");
    }
    language::ReadOptions reading;
    reading.searchPath = options.importFolders;
    const language::ReadResult read = language::readModel(options.model, reading);
    for (const text::Diagnostic& error : read.errors) {
        complain(error.format());
    }
    for (text::Diagnostic warning : read.warnings) {
        warning.message.insert(0, "warning: ");
        complain(warning.format());
    }
    if (!read.model) return ExitStatus::error;
    const std::string text = language::modelJson(read);
    if (options.output.empty()) {
        print(text);
    } else {
        write(options.output, options.model, text);
    }
    return ExitStatus::done;
}

} // namespace app
