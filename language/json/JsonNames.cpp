#include "language/json/JsonNames.h"

#include "text/NearestName.h"
#include "text/Wording.h"

namespace language {

namespace {

Atom* valueNamed(const JsonNode& node, const StateVar& variable, std::string_view name)
{
    if (Atom* atom = plant::value(&variable, name)) return atom;
    const std::vector<std::string_view> values =
        node.worthAHint() ? plant::valuesOf(variable) : std::vector<std::string_view>{};
    node.error(plant::unknownValue(name, plant::nameOf(variable), values));
    return nullptr;
}

} // namespace

void JsonNames::noteUnread(const Comp* component)
{
    if (component) {
        unread_.insert(component);
    } else {
        anyUnread_ = true;
    }
}

Comp* JsonNames::component(const JsonNode& node) const
{
    const auto name = node.text();
    return name ? componentNamed(node, *name) : nullptr;
}

StateVar* JsonNames::variable(const JsonNode& node) const
{
    const auto name = node.text();
    return name ? variableNamed(node, *name) : nullptr;
}

Atom* JsonNames::atom(const JsonNode& node) const
{
    const auto name = node.text();
    return name ? atomNamed(node, *name) : nullptr;
}

Atom* JsonNames::literal(const JsonNode& node, bool& negated) const
{
    const auto text = node.text();
    if (!text) return nullptr;
    std::string_view name = *text;
    negated = name.starts_with('!');
    if (negated) name.remove_prefix(1);
    return atomNamed(node, name);
}

Atom* JsonNames::value(const JsonNode& node, const StateVar& variable)
{
    const auto name = node.text();
    return name ? valueNamed(node, variable, *name) : nullptr;
}

Atom* JsonNames::atomNamed(const JsonNode& node, std::string_view name) const
{
    const std::size_t equals = name.find('=');
    if (equals == std::string_view::npos) {
        node.error("found " + text::quoted(name), "COMPONENT.VARIABLE=VALUE");
        return nullptr;
    }
    const StateVar* variable = variableNamed(node, name.substr(0, equals));
    return variable ? valueNamed(node, *variable, name.substr(equals + 1)) : nullptr;
}

StateVar* JsonNames::variableNamed(const JsonNode& node, std::string_view name) const
{
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) {
        node.error("found " + text::quoted(name), "COMPONENT.VARIABLE");
        return nullptr;
    }
    const Comp* owner = componentNamed(node, name.substr(0, dot));
    if (!owner) return nullptr;
    const std::string_view wanted = name.substr(dot + 1);
    StateVar* found = names_.variable(owner, wanted);
    if (found || unread_.contains(owner)) return found;
    const std::vector<std::string_view> known = plant::variablesOf(*owner);
    node.error(text::quoted(wanted) + " is not a variable of " + text::quoted(owner->name),
               text::enumerated(known), node.worthAHint() ? text::didYouMean(wanted, known) : "");
    return nullptr;
}

Comp* JsonNames::componentNamed(const JsonNode& node, std::string_view name) const
{
    Comp* found = names_.component(name);
    if (found || anyUnread_) return found;
    const std::vector<std::string_view>& known = names_.components();
    node.error("no component is called " + text::quoted(name),
               known.empty() ? "" : "a component: " + text::enumerated(known),
               node.worthAHint() ? text::didYouMean(name, known) : "");
    return nullptr;
}

} // namespace language
