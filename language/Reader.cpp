#include "language/Reader.h"

#include "language/json/ModelJson.h"
#include "language/meaning/BindingBuilder.h"
#include "language/meaning/LawBuilder.h"
#include "language/meaning/TransitionBuilder.h"
#include "language/meaning/TypeChecks.h"
#include "language/meaning/Usage.h"
#include "plant/Contradictions.h"
#include "text/File.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>

namespace language {

namespace {

// The text without comments, each run of blanks and line ends as one blank. Laws have no quoted texts.
std::string inOneLine(std::string_view text)
{
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = text.substr(i);
        if (rest.starts_with("//")) {
            i += std::min(rest.find_first_of("\r\n"), rest.size() - 1);
        } else if (rest.starts_with("/*")) {
            i += rest.find("*/", 2) + 1;
        } else if (std::string_view(" \t\r\n").find(text[i]) == std::string_view::npos) {
            line += text[i];
            continue;
        }
        if (!line.empty() && line.back() != ' ') line += ' ';
    }
    return line;
}

// One reading, from the imports to the model.
class Reading {
public:
    Reading(const std::string& path, const ReadOptions& options)
        : options_(options), report_(files_.texts, options.mostErrors),
          imports_(files_, report_, options.searchPath, options.importsAnywhere, options.syntax),
          builder_(std::filesystem::path(path).replace_extension().string(),
                   options.expansion.domainClauses)
    {
    }

    ImportReader& imports() { return imports_; }

    ReadResult finish()
    {
        if (files_.parsed) {
            declare();
            if (types_.system) elaborate();
        }
        result_.errors = report_.errors();
        if (!result_.errors.empty()) {
            result_.model.reset();
            result_.bindings = {};
            result_.lawPlaces.clear();
            result_.lawTexts.clear();
            result_.size = {};
        }
        for (const auto& text : files_.texts) {
            result_.files.push_back(text->name());
        }
        return std::move(result_);
    }

private:
    void declare()
    {
        Declarations(files_, types_, report_).enter();
        TypeChecks(files_, types_, report_).check();
        result_.size.componentTypes = types_.components.size() - (types_.system ? 1 : 0);
        if (!types_.system && options_.systemNeeded && !files_.unread) {
            report_.error({}, "no system in this file", "system NAME { ... }",
                          "the system says what the plant consists of");
        }
        if (!types_.system && !report_.failed()) result_.warnings = warnings();
    }

    void elaborate()
    {
        Elaboration plant(types_, report_, builder_, options_.expansion);
        if (!plant.run()) return;
        const double step = plant.stepSeconds();
        builder_.step(step);
        result_.system = types_.system->name;
        LawBuilder laws(plant, builder_, report_, options_.expansion.lawClauses);
        TransitionBuilder transitions(plant, builder_, report_, step, options_.expansion.lawClauses);
        BindingBuilder channels(plant, builder_, files_, report_, step);
        plant.forEach([&](Instance& instance) {
            plant.forEachMember(instance, Elaboration::Wanted::lawsAndBindings,
                                [&](const syntax::Member& member, Environment& here) {
                                    if (const auto* law = std::get_if<syntax::Law>(&member)) {
                                        laws.build(*law, instance, here);
                                    } else if (const auto* binding =
                                                   std::get_if<syntax::Binding>(&member)) {
                                        channels.build(*binding, instance, here);
                                    }
                                });
            transitions.build(instance);
        });
        result_.bindings = builder_.takeBindings();
        result_.model = builder_.build();
        if (result_.model->components().empty() && !report_.failed()) {
            report_.error(types_.system->range, "the system has no variables",
                          "parts, or variables of its own");
        }
        if (report_.failed()) return;
        plant::reportContradictions(*result_.model, [&](std::size_t law) {
            const LawOrigin& origin = laws.origins()[law];
            return plant::WrittenLaw{report_.at(origin.range), origin.instance->path};
        });
        if (report_.failed()) return;
        result_.warnings = warnings();
        measure(laws);
    }

    std::vector<text::Diagnostic> warnings()
    {
        Usage(types_, report_).warn();
        return report_.warnings();
    }

    void measure(const LawBuilder& laws)
    {
        ModelSize& size = result_.size;
        size.components = result_.model->components().size();
        size.variables = builder_.variableCount();
        size.atoms = result_.model->atoms().size();
        size.laws = laws.count();
        size.clauses = result_.model->clauseCount();
        size.transitions = builder_.transitionCount();
        std::map<std::array<std::uint32_t, 3>, std::uint32_t> known;
        for (const LawOrigin& origin : laws.origins()) {
            const text::Range& range = origin.range;
            const auto next = static_cast<std::uint32_t>(result_.lawTexts.size());
            const auto [entry, isNew] =
                known.try_emplace({range.file, range.line, range.column}, next);
            if (isNew) result_.lawTexts.push_back(inOneLine(files_.texts[range.file]->at(range)));
            result_.lawPlaces.push_back({range.file, range.line, range.column, entry->second});
        }
    }

    ReadOptions options_;
    SourceFiles files_;
    Report report_;
    Types types_;
    ImportReader imports_;
    plant::CheckedBuilder builder_;
    ReadResult result_;
};

ReadResult readJsonFile(const std::string& path, const ReadOptions& options)
{
    text::FileText file = text::readFile(path, options.syntax.fileBytes);
    text::Diagnostic error;
    error.file = path;
    if (!file.text) {
        error.message = "cannot be read: " + file.failure;
    } else if (file.text->size() > options.syntax.fileBytes) {
        error.message = "the file is too large";
        error.expected = "at most " + std::to_string(options.syntax.fileBytes) + " bytes";
    } else {
        return readModelJson(path, std::move(*file.text), options);
    }
    ReadResult failed;
    failed.files = {path};
    failed.errors.push_back(std::move(error));
    return failed;
}

} // namespace

ReadResult readModel(const std::string& path, const ReadOptions& options)
{
    if (isJsonPath(path)) return readJsonFile(path, options);
    Reading reading(path, options);
    reading.imports().read(path);
    return reading.finish();
}

ReadResult readModelText(const std::string& path, std::string text, const ReadOptions& options)
{
    if (isJsonPath(path)) return readModelJson(path, std::move(text), options);
    Reading reading(path, options);
    reading.imports().read(path, std::move(text));
    return reading.finish();
}

} // namespace language
