#include "language/json/JsonVariables.h"

#include "text/NearestName.h"
#include "text/Wording.h"

#include <array>
#include <unordered_map>

namespace language {

void JsonVariables::add(const JsonNode& list, Comp* component)
{
    if (!list.isArray()) {
        names_.noteUnread(component);
        return;
    }
    std::unordered_map<std::string, std::size_t> first;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const JsonNode node = list[i];
        bool sound = node.isObject({"name", "kind", "values"}, {"initial", "lost"});
        const auto name = sound ? node["name"].name() : std::nullopt;
        sound = name.has_value();
        if (name) {
            const auto [known, isNew] = first.insert({*name, i});
            if (!isNew) {
                plant::reportTwice(node["name"].at(), list[known->second].at(),
                                   "the variable " + text::quoted(*name) +
                                       " is declared twice in " + text::quoted(component->name),
                                   "a name that no other variable of it has");
                names_.noteUnread(component);
                continue;
            }
            sound = addOne(node, component);
        }
        if (!sound) names_.noteUnread(component);
    }
}

bool JsonVariables::addOne(const JsonNode& node, Comp* component)
{
    const auto kind = kindOf(node["kind"]);
    const auto values = valuesOf(node["values"]);
    if (!kind || !values) return false;
    std::optional<std::size_t> initial;
    std::optional<double> lost;
    if (!readInitial(node, *kind, *values, initial)) return false;
    if (node.has("lost")) {
        const JsonNode written = node["lost"];
        if (*kind != plant::VariableKind::command) {
            written.error("what is not a command cannot be lost", "no 'lost'");
            return false;
        }
        lost = written.probability();
        if (!lost) return false;
    }
    StateVar* made = builder_.variable(component, *node["name"].name(), *kind, *values, initial,
                                       node["values"].at());
    if (!made) return false;
    names_.add(made);
    if (lost) builder_.lose(made, *lost);
    return true;
}

std::optional<plant::VariableKind> JsonVariables::kindOf(const JsonNode& node)
{
    constexpr std::array variableKinds{plant::VariableKind::mode, plant::VariableKind::condition,
                                       plant::VariableKind::command};
    const auto word = node.oneOf({"mode", "cond", "command"});
    return word ? std::optional(variableKinds[*word]) : std::nullopt;
}

std::optional<std::vector<plant::ValueDeclaration>> JsonVariables::valuesOf(const JsonNode& node)
{
    if (!node.isArray()) return std::nullopt;
    if (node.size() < plant::leastValues || node.size() > plant::mostValues) {
        node.error("found " + std::to_string(node.size()) + (node.size() == 1 ? " value" : " values"),
                   std::to_string(plant::leastValues) + " to " + std::to_string(plant::mostValues) +
                       " values");
        return std::nullopt;
    }
    std::vector<plant::ValueDeclaration> values;
    std::unordered_map<std::string, std::size_t> first;
    for (std::size_t i = 0; i < node.size(); ++i) {
        const JsonNode value = node[i];
        if (!value.isObject({"name"}, {"fault"})) return std::nullopt;
        const auto name = value["name"].name();
        std::optional<bool> fault = false;
        if (value.has("fault")) fault = value["fault"].flag();
        if (!name || !fault) return std::nullopt;
        const auto [known, isNew] = first.insert({*name, i});
        if (!isNew) {
            plant::reportTwice(value["name"].at(), node[known->second].at(),
                               "the value " + text::quoted(*name) + " is declared twice",
                               "a name that no other value of it has");
            return std::nullopt;
        }
        values.push_back({*name, *fault});
    }
    return values;
}

bool JsonVariables::readInitial(const JsonNode& variable, plant::VariableKind kind,
                                const std::vector<plant::ValueDeclaration>& values,
                                std::optional<std::size_t>& initial)
{
    if (!variable.has("initial")) {
        // As in model files: the first value of a command holds where nothing is given.
        if (kind == plant::VariableKind::command) initial = 0;
        if (kind != plant::VariableKind::mode) return true;
        variable.error("a mode without an initial value", "\"initial\": a value");
        return false;
    }
    const JsonNode node = variable["initial"];
    const auto written = node.text();
    if (!written) return false;
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < values.size(); ++i) {
        names.push_back(values[i].name);
        if (values[i].name == *written) initial = i;
    }
    if (initial) return true;
    node.error(text::quoted(*written) + " is not a value of the variable", text::enumerated(names),
               node.worthAHint() ? text::didYouMean(*written, names) : "");
    return false;
}

} // namespace language
