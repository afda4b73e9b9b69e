#include "language/json/ModelJson.h"

#include "language/json/JsonChannels.h"
#include "language/json/JsonText.h"
#include "language/json/JsonTransitions.h"
#include "language/json/JsonVariables.h"
#include "plant/BindingRules.h"
#include "plant/Contradictions.h"
#include "text/Folders.h"
#include "text/Wording.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace language {

namespace {

constexpr std::uint32_t mostLines = 0xFFFFFFFF;

// One reading of a document whose syntax is right.
class JsonReading {
public:
    JsonReading(const std::string& baseName, const ReadOptions& options, ReadResult& result)
        : options_(options), result_(result), builder_(baseName, options.expansion.domainClauses)
    {
    }

    void read(const JsonNode& root, const Report& report)
    {
        readHead(root);
        if (!eachOf(root["components"], [&](const JsonNode& node) { addComponent(node); })) return;
        const JsonNode components = root["components"];
        JsonVariables variables(builder_, names_);
        for (std::size_t i = 0; i < made_.size(); ++i) {
            const JsonNode node = components[i];
            if (made_[i] && node.has("variables")) variables.add(node["variables"], made_[i]);
        }
        for (std::size_t i = 0; i < made_.size(); ++i) {
            const JsonNode node = components[i];
            if (made_[i] && node.has("imports")) addImports(node["imports"], made_[i]);
        }
        const auto list = [&](const char* key, const auto& visit) {
            if (root.has(key)) eachOf(root[key], visit);
        };
        list("laws", [&](const JsonNode& node) { addLaw(node); });
        JsonTransitions transitions(builder_, names_);
        list("transitions", [&](const JsonNode& node) { transitions.add(node); });
        transitions.finish();
        JsonChannels channels(builder_, names_, stepSeconds_);
        list("channels", [&](const JsonNode& node) { channels.add(node); });
        list("measurable", [&](const JsonNode& node) { channels.addMeasurable(node); });
        result_.bindings = builder_.takeBindings();
        result_.model = builder_.build();
        if (!report.failed() && result_.model->atoms().empty()) {
            root["components"].error("the model has no variables", "components with variables");
        }
        if (!report.failed() && result_.model->lawCount() > 0) findContradictions(root["laws"]);
        measure();
    }

private:
    template <typename Visit> static bool eachOf(const JsonNode& list, const Visit& visit)
    {
        if (!list.isArray()) return false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            visit(list[i]);
        }
        return true;
    }

    void readHead(const JsonNode& root)
    {
        if (root.has("stepSeconds")) {
            const JsonNode step = root["stepSeconds"];
            const double seconds = step.number().value_or(1);
            if (plant::checkStepLength(seconds, step.at())) {
                builder_.step(seconds);
                stepSeconds_ = seconds;
            }
        }
        if (!root.has("files")) return;
        result_.files.clear();
        eachOf(root["files"],
               [&](const JsonNode& node) { result_.files.push_back(node.text().value_or("")); });
    }

    // Null in `made_` where there is none, so that the nodes of the others can be found again.
    void addComponent(const JsonNode& node)
    {
        const std::size_t index = made_.size();
        made_.push_back(nullptr);
        const bool complete = node.isObject({"name", "variables"}, {"imports"});
        const auto name = node.has("name") ? node["name"].name() : std::nullopt;
        if (!name || index >= options_.expansion.components) {
            if (name && index == options_.expansion.components) {
                node.error("more than " + std::to_string(index) + " components");
            }
            names_.noteUnread(nullptr);
            return;
        }
        made_.back() = builder_.component(*name, node.at(), node["name"].at());
        if (!made_.back()) {
            names_.noteUnread(nullptr);
            return;
        }
        names_.add(made_.back());
        if (!complete) names_.noteUnread(made_.back());
    }

    void addImports(const JsonNode& node, Comp* importer)
    {
        eachOf(node, [&](const JsonNode& each) {
            if (Comp* imported = names_.component(each)) builder_.import(importer, imported);
        });
    }

    void addLaw(const JsonNode& node)
    {
        if (!node.isObject({"literals"}, {"owner", "place"})) return;
        Comp* owner = nullptr;
        if (node.has("owner")) {
            const JsonNode named = node["owner"];
            owner = named.isNull() ? nullptr : names_.component(named);
        }
        std::optional<LawPlace> place = LawPlace{};
        if (node.has("place")) place = placeOf(node["place"]);
        const JsonNode list = node["literals"];
        plant::ClauseLiterals literals;
        bool sound = place.has_value();
        const bool isList = eachOf(list, [&](const JsonNode& each) {
            bool negated = false;
            Atom* atom = names_.literal(each, negated);
            sound = sound && atom;
            if (atom) literals.push_back({negated, atom});
        });
        if (!isList || !sound) return;
        if (builder_.law(owner, {literals}, list.at()) > 0) {
            result_.lawPlaces.push_back(*place);
            laws_.push_back(lawIndex_);
        }
        ++lawIndex_;
    }

    std::optional<LawPlace> placeOf(const JsonNode& node)
    {
        if (!node.isObject({"file", "line", "column"})) return std::nullopt;
        if (result_.files.empty()) {
            node.error("a place in a file, and 'files' names none");
            return std::nullopt;
        }
        const auto last = static_cast<std::uint32_t>(result_.files.size() - 1);
        const auto file = node["file"].whole(0, last);
        const auto line = node["line"].whole(1, mostLines);
        const auto column = node["column"].whole(1, mostLines);
        if (!file || !line || !column) return std::nullopt;
        return LawPlace{*file, *line, *column};
    }

    void findContradictions(const JsonNode& laws)
    {
        plant::reportContradictions(*result_.model, [&](std::size_t law) {
            return plant::WrittenLaw{laws[laws_[law]].at(), {}};
        });
    }

    void measure()
    {
        result_.size.components = result_.model->components().size();
        result_.size.variables = builder_.variableCount();
        result_.size.atoms = result_.model->atoms().size();
        result_.size.laws = result_.model->lawCount();
        result_.size.clauses = result_.model->clauseCount();
        result_.size.transitions = builder_.transitionCount();
    }

    const ReadOptions& options_;
    ReadResult& result_;
    plant::CheckedBuilder builder_;
    JsonNames names_;
    double stepSeconds_ = 1;
    std::vector<Comp*> made_;
    std::vector<std::size_t> laws_; ///< for each law of the model, its number in the list
    std::size_t lawIndex_ = 0;
};

// The head of the document, without which nothing in it means anything.
bool isModel(const JsonNode& root)
{
    const bool complete =
        root.isObject({"format", "v", "components"}, {"name", "stepSeconds", "files", "laws",
                                                      "transitions", "channels", "measurable"});
    if (!complete) return false;
    const auto format = root["format"].text();
    if (format && *format != "itms-model") {
        root["format"].error("found " + text::quoted(*format), "'itms-model'");
        return false;
    }
    return format && root["v"].whole(1, 1);
}

// The implicates of the model are in the file that its name leads to, which may lie anywhere.
bool mayBeNamed(const JsonNode& node, const std::string& name, const std::string& path,
                const ReadOptions& options)
{
    const bool control =
        std::any_of(name.begin(), name.end(), [](char c) { return c >= 0 && c < ' '; });
    if (control) {
        node.error("a control character in the name " + text::quoted(name), "a name of a file");
        return false;
    }
    const std::string implicates = name + ".pi";
    std::error_code error;
    if (options.importsAnywhere || !std::filesystem::exists(implicates, error) ||
        text::isBelow(implicates, std::filesystem::path(path).parent_path().string()) ||
        text::isBelowAny(implicates, options.searchPath)) {
        return true;
    }
    node.error("the name leads to the implicates " + text::quoted(implicates),
               "implicates below the folder of the model, or one that is named with -I",
               "--allow-imports-anywhere reads them, if you trust the model");
    return false;
}

std::string baseNameOf(const std::string& path, const JsonNode& root, const ReadOptions& options)
{
    std::optional<std::string> name;
    if (root.has("name")) name = root["name"].text();
    if (name && !mayBeNamed(root["name"], *name, path, options)) name.reset();
    return name.value_or(std::filesystem::path(path).replace_extension().string());
}

} // namespace

bool isJsonPath(const std::string& path)
{
    return std::filesystem::path(path).extension() == ".json";
}

ReadResult readModelJson(const std::string& path, std::string text, const ReadOptions& options)
{
    ReadResult result;
    result.files = {path};
    SourceTexts texts;
    texts.push_back(std::make_unique<text::SourceText>(path, std::move(text)));
    const text::SourceText& source = *texts.front();
    Report report(texts, options.mostErrors);
    if (const auto document = parseJson(source, report)) {
        JsonPlaces places(source, report);
        const JsonNode root(*document, places);
        if (isModel(root)) {
            JsonReading(baseNameOf(path, root, options), options, result).read(root, report);
        }
    }
    result.errors = report.errors();
    if (!result.errors.empty()) {
        ReadResult failed;
        failed.errors = std::move(result.errors);
        failed.files = {path};
        return failed;
    }
    return result;
}

} // namespace language
