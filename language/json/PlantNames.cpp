#include "language/json/PlantNames.h"

#include "language/meaning/Types.h"

namespace language {

namespace {

std::string hintOf(const JsonNode& node, std::string_view name,
                   const std::vector<std::string_view>& known)
{
    return node.worthAHint() ? didYouMean(name, known) : "";
}

Atom* valueNamed(const JsonNode& node, const StateVar& variable, std::string_view name)
{
    for (Atom* atom : *variable.atomLinks) {
        if (atom->value == name) return atom;
    }
    std::vector<std::string_view> values;
    for (const Atom* atom : *variable.atomLinks) {
        values.push_back(atom->value);
    }
    node.error(text::quoted(name) + " is not a value of " +
                   text::quoted(variable.comp->name + "." + variable.name),
               listed(values), hintOf(node, name, values));
    return nullptr;
}

} // namespace

void PlantNames::add(Comp* component, std::size_t index)
{
    components_.insert({component->name, {component, index, false, {}}});
    names_.push_back(component->name);
}

std::optional<std::size_t> PlantNames::indexOf(std::string_view component) const
{
    const auto found = components_.find(component);
    if (found == components_.end()) return std::nullopt;
    return found->second.index;
}

void PlantNames::add(StateVar* variable)
{
    components_.at(variable->comp->name).variables.insert({variable->name, variable});
}

void PlantNames::noteUnread(const Comp* component)
{
    if (component) {
        components_.at(component->name).unread = true;
    } else {
        unread_ = true;
    }
}

Comp* PlantNames::component(const JsonNode& node) const
{
    const auto name = node.text();
    const Entry* found = name ? entryNamed(node, *name) : nullptr;
    return found ? found->component : nullptr;
}

StateVar* PlantNames::variable(const JsonNode& node) const
{
    const auto name = node.text();
    return name ? variableNamed(node, *name) : nullptr;
}

Atom* PlantNames::atom(const JsonNode& node) const
{
    const auto name = node.text();
    return name ? atomNamed(node, *name) : nullptr;
}

Atom* PlantNames::literal(const JsonNode& node, bool& negated) const
{
    const auto text = node.text();
    if (!text) return nullptr;
    std::string_view name = *text;
    negated = name.starts_with('!');
    if (negated) name.remove_prefix(1);
    return atomNamed(node, name);
}

Atom* PlantNames::value(const JsonNode& node, const StateVar& variable)
{
    const auto name = node.text();
    return name ? valueNamed(node, variable, *name) : nullptr;
}

Atom* PlantNames::atomNamed(const JsonNode& node, std::string_view name) const
{
    const std::size_t equals = name.find('=');
    if (equals == std::string_view::npos) {
        node.error("found " + text::quoted(name), "COMPONENT.VARIABLE=VALUE");
        return nullptr;
    }
    const StateVar* variable = variableNamed(node, name.substr(0, equals));
    return variable ? valueNamed(node, *variable, name.substr(equals + 1)) : nullptr;
}

StateVar* PlantNames::variableNamed(const JsonNode& node, std::string_view name) const
{
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) {
        node.error("found " + text::quoted(name), "COMPONENT.VARIABLE");
        return nullptr;
    }
    const Entry* owner = entryNamed(node, name.substr(0, dot));
    if (!owner) return nullptr;
    const std::string_view wanted = name.substr(dot + 1);
    const auto found = owner->variables.find(wanted);
    if (found != owner->variables.end()) return found->second;
    if (owner->unread) return nullptr;
    std::vector<std::string_view> known;
    for (const StateVar* variable : *owner->component->stateVars) {
        known.push_back(variable->name);
    }
    node.error(text::quoted(wanted) + " is not a variable of " + text::quoted(owner->component->name),
               known.empty() ? "" : listed(known), hintOf(node, wanted, known));
    return nullptr;
}

const PlantNames::Entry* PlantNames::entryNamed(const JsonNode& node, std::string_view name) const
{
    const auto found = components_.find(name);
    if (found != components_.end()) return &found->second;
    if (!unread_) {
        node.error("no component is called " + text::quoted(name),
                   names_.empty() ? "" : "a component: " + listed(names_),
                   hintOf(node, name, names_));
    }
    return nullptr;
}

} // namespace language
