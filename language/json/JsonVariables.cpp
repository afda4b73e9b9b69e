#include "language/json/JsonVariables.h"

#include <unordered_map>

namespace language {

namespace {

constexpr std::size_t mostValues = 200;

} // namespace

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
                node["name"].error("the variable " + text::quoted(*name) +
                                       " is declared twice in " + text::quoted(component->name),
                                   "a name that no other variable of it has",
                                   "the first is " + list.pointer() + "/" +
                                       std::to_string(known->second));
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
    if (!fits(node["values"], values->size())) return false;
    StateVar* made = builder_.variable(component, *node["name"].name(), *kind, *values, initial);
    names_.add(made);
    if (lost) bindings_.lost[made] = *lost;
    ++count_;
    return true;
}

std::optional<plant::VariableKind> JsonVariables::kindOf(const JsonNode& node)
{
    const auto written = node.text();
    if (!written) return std::nullopt;
    if (*written == "mode") return plant::VariableKind::mode;
    if (*written == "cond") return plant::VariableKind::condition;
    if (*written == "command") return plant::VariableKind::command;
    node.error("found " + text::quoted(*written), "mode, cond, command",
               didYouMean(*written, {"mode", "cond", "command"}));
    return std::nullopt;
}

std::optional<std::vector<plant::ValueDeclaration>> JsonVariables::valuesOf(const JsonNode& node)
{
    if (!node.isArray()) return std::nullopt;
    if (node.size() < 2 || node.size() > mostValues) {
        node.error("found " + std::to_string(node.size()) + (node.size() == 1 ? " value" : " values"),
                   "2 to " + std::to_string(mostValues) + " values");
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
            value["name"].error("the value " + text::quoted(*name) + " is declared twice",
                                "a name that no other value of it has",
                                "the first is " + node.pointer() + "/" +
                                    std::to_string(known->second));
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
    node.error(text::quoted(*written) + " is not a value of the variable", listed(names),
               node.worthAHint() ? didYouMean(*written, names) : "");
    return false;
}

bool JsonVariables::fits(const JsonNode& node, std::size_t values)
{
    const std::size_t before = domainClauses_;
    domainClauses_ += 1 + values * (values - 1) / 2;
    if (domainClauses_ <= limits_.domainClauses) return true;
    if (before <= limits_.domainClauses) {
        node.error("the values of all variables would need more than " +
                   std::to_string(limits_.domainClauses) + " clauses");
    }
    return false;
}

} // namespace language
