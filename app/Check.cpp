// The verb `check`: whether model files are in order, and all that is wrong with them if not.
#include "app/Options.h"
#include "app/Output.h"
#include "app/Verbs.h"
#include "language/Reader.h"
#include "plant/Implicates.h"
#include "text/Wording.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace app {

namespace {

using nlohmann::ordered_json;

struct CheckOptions {
    std::vector<std::string> models;
    std::vector<std::string> importFolders;
    bool importsAnywhere = false;
    std::string format = "text";
};

std::string sizeText(const std::string& path, const language::ReadResult& read)
{
    const language::ModelSize& size = read.size;
    const std::string types = text::counted(size.componentTypes, "component type");
    if (!read.model) return fmt::format("{}: {}, no system\n", text::shownName(path), types);
    return fmt::format("{}: {}, {}, {}, {}, {}, {}\n", text::shownName(path),
                       text::counted(size.components, "component"),
                       text::counted(size.variables, "variable"), text::counted(size.atoms, "atom"),
                       text::counted(size.laws, "law"), text::counted(size.clauses, "clause"),
                       text::counted(size.transitions, "transition"));
}

// What was read of a model, and of its file of implicates when there is one.
struct Checked {
    std::string path;
    language::ReadResult read;
    plant::ImplicateFile implicates; ///< its errors and warnings stand among those of the model

    bool good() const { return read.errors.empty(); }
};

Checked checked(const std::string& path, const language::ReadOptions& options)
{
    Checked made{path, language::readModel(path, options), {}};
    if (!made.read.model) return made;
    made.implicates = plant::checkImplicates(*made.read.model);
    const auto add = [](auto& list, const auto& more) {
        list.insert(list.end(), more.begin(), more.end());
    };
    add(made.read.errors, made.implicates.errors);
    add(made.read.warnings, made.implicates.warnings);
    return made;
}

std::string text(const Checked& model)
{
    const language::ReadResult& read = model.read;
    std::string told;
    for (const text::Diagnostic& error : read.errors) {
        told += error.format();
    }
    for (text::Diagnostic warning : read.warnings) {
        warning.message.insert(0, "warning: ");
        told += warning.format();
    }
    if (!model.good()) {
        return told + fmt::format("{}: {}\n", text::shownName(model.path),
                                  text::counted(read.errors.size(), "error"));
    }
    told += sizeText(model.path, read);
    if (!model.implicates.found) return told;
    return told + fmt::format("{}: implicates of {}\n", text::shownName(model.implicates.path),
                              text::counted(model.implicates.heads, "atom"));
}

ordered_json json(const std::vector<text::Diagnostic>& errors)
{
    ordered_json list = ordered_json::array();
    for (const text::Diagnostic& error : errors) {
        list.push_back({{"file", error.file},
                        {"line", error.place.line},
                        {"column", error.place.column},
                        {"message", error.message},
                        {"expected", error.expected},
                        {"hint", error.hint}});
    }
    return list;
}

ordered_json json(const Checked& model)
{
    const language::ReadResult& read = model.read;
    ordered_json made{{"file", model.path},
                      {"ok", model.good()},
                      {"errors", json(read.errors)},
                      {"warnings", json(read.warnings)}};
    if (!model.good()) return made;
    const language::ModelSize& size = read.size;
    made["size"] = {{"componentTypes", size.componentTypes},
                    {"components", size.components},
                    {"variables", size.variables},
                    {"atoms", size.atoms},
                    {"laws", size.laws},
                    {"clauses", size.clauses},
                    {"transitions", size.transitions}};
    if (model.implicates.found) {
        made["implicates"] = {{"file", model.implicates.path}, {"atoms", model.implicates.heads}};
    }
    return made;
}

ExitStatus check(const CheckOptions& options)
{
    if (options.models.empty()) {
        throw Failure("no model is given\n  expected: the name of an .itms file\n"
                      "  hint: itms check --help shows an example\n");
    }
    language::ReadOptions reading;
    reading.searchPath = options.importFolders;
    reading.importsAnywhere = options.importsAnywhere;
    reading.systemNeeded = false;
    bool failed = false;
    ordered_json models = ordered_json::array();
    for (const std::string& path : options.models) {
        const Checked model = checked(path, reading);
        failed = failed || !model.good();
        if (options.format == "json") {
            models.push_back(json(model));
        } else {
            print(text::printable(text(model)));
        }
    }
    if (options.format == "json") {
        // Names of files and texts in messages may be any bytes.
        const ordered_json answer{{"v", 1}, {"models", std::move(models)}};
        print(answer.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n");
    }
    return failed ? ExitStatus::error : ExitStatus::done;
}

} // namespace

Verb checkVerb()
{
    const auto options = std::make_shared<CheckOptions>();
    return {
        "check",
        "reports all that is wrong with model files, or their size",
        "itms check MODEL... [options]",
        "Reads model files and reports everything that is wrong with them, or how large the models "
        "are. The implicates of plant.itms, in plant.pi where there is such a file, are checked, "
        "too. A file of components alone, to be imported by others, is fine.",
        {{"",
          {{"MODEL", "", "a model file, .itms, or a model in JSON, .json", &options->models, {}, 1},
           importRow(options->importFolders, "look for imported files there, too, after the folder "
                                             "of the file that imports them; may be repeated"),
           importsAnywhereRow(options->importsAnywhere),
           {"--format", "text|json", "text: for people (default); json: the same as data",
            &options->format, oneOf({"text", "json"})}}}},
        "",
        "0 all files are in order, perhaps with warnings; 2 there is an error in the command line "
        "or in a file.",
        "check tests/language/errors/semantic/ten-mistakes.itms",
        [options] { return check(*options); }};
}

} // namespace app
