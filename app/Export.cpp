// The verb `export`: a model as data for other programs.
#include "app/OpenModel.h"
#include "app/Output.h"
#include "app/Verbs.h"
#include "language/Reader.h"
#include "language/json/ModelJson.h"
#include "text/File.h"

namespace app {

namespace {

struct ExportOptions {
    ModelOptions model;
    std::optional<std::string> output; ///< a file; none or `-`: standard output
    bool json = true;
};

void write(const std::string& path, const std::string& text)
{
    try {
        text::writeFile(path, text);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(std::string(failure.what()) + "\n");
    }
}

ExitStatus exportModel(const ExportOptions& options)
{
    if (options.model.path.empty()) {
        throw Failure("which MODEL?\n  expected: a model file, .itms or .json\n"
                      "  hint: itms export --help shows an example\n");
    }
    FileRoles files;
    const bool toFile = options.output && *options.output != "-";
    if (toFile) {
        files.writes(options.output, "what is exported", "-o");
    } else {
        files.writesStandardOutput();
    }
    files.reads(options.model.path, "the model");
    language::ReadOptions reading;
    reading.searchPath = options.model.importFolders;
    reading.importsAnywhere = options.model.importsAnywhere;
    const language::ReadResult read = language::readModel(options.model.path, reading);
    addModelFiles(files, options.model.path, read);
    for (const text::Diagnostic& error : read.errors) {
        complain(error.format());
    }
    warn(read.warnings);
    if (!read.model) return ExitStatus::error;
    const std::string text = language::modelJson(read);
    if (toFile) {
        write(*options.output, text);
    } else {
        print(text);
    }
    return ExitStatus::done;
}

} // namespace

Verb exportVerb()
{
    const auto options = std::make_shared<ExportOptions>();
    return {"export",
            "writes a model as data for other programs",
            "itms export MODEL [--json] [-o FILE]",
            "Writes a model with everything in it: components, variables, laws as clauses, "
            "transitions, channels. The same model gives the same bytes, and what is written can "
            "be given to itms as a model. docs/model.schema.json describes it.",
            {{"",
              {modelRow(options->model.path, "a model file, .itms, or a model in JSON, .json"),
               importRow(options->model.importFolders,
                         "look for imported files there, too, after the folder of the file that "
                         "imports them; may be repeated"),
               importsAnywhereRow(options->model.importsAnywhere),
               {"--json", "", "as JSON (default)", &options->json, {}},
               {"-o,--output", "FILE", "write to the file, not to standard output",
                &options->output, fileName(true)}}}},
            "",
            "0 done; 2 there is an error in the command line or in the model.",
            "export examples/models/valve.itms",
            [options] { return exportModel(*options); }};
}

} // namespace app
