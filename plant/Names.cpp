#include "plant/Names.h"

#include "plant/Model.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace plant {

std::string nameOf(const StateVar& variable)
{
    return variable.comp->name + "." + variable.name;
}

std::vector<std::string_view> variablesOf(const Comp& component)
{
    std::vector<std::string_view> names;
    for (const StateVar* variable : *component.stateVars) {
        names.emplace_back(variable->name);
    }
    return names;
}

std::vector<std::string_view> valuesOf(const StateVar& variable)
{
    std::vector<std::string_view> values;
    for (const Atom* atom : *variable.atomLinks) {
        values.emplace_back(atom->value);
    }
    return values;
}

Atom* value(const StateVar* variable, std::string_view text)
{
    for (Atom* atom : *variable->atomLinks) {
        if (atom->value == text) return atom;
    }
    return nullptr;
}

StateVar* variableNamed(const Comp* component, std::string_view name)
{
    if (!component) return nullptr;
    for (StateVar* variable : *component->stateVars) {
        if (variable->name == name) return variable;
    }
    return nullptr;
}

Names::Names(const Model& model)
{
    for (Comp* component : model.components()) {
        add(component);
        for (StateVar* variable : *component->stateVars) {
            add(variable);
        }
    }
}

void Names::add(Comp* component)
{
    entries_.insert({component->name, {component, {}}});
    components_.emplace_back(component->name);
}

void Names::add(StateVar* variable)
{
    entries_.at(variable->comp->name).variables.insert({variable->name, variable});
}

Comp* Names::component(std::string_view name) const
{
    const auto found = entries_.find(name);
    return found == entries_.end() ? nullptr : found->second.component;
}

StateVar* Names::variable(const Comp* component, std::string_view name) const
{
    const auto owner = entries_.find(component->name);
    if (owner == entries_.end()) return nullptr;
    const auto found = owner->second.variables.find(name);
    return found == owner->second.variables.end() ? nullptr : found->second;
}

StateVar* Names::variable(std::string_view name) const
{
    const std::size_t dot = name.find('.');
    if (dot == std::string_view::npos) return nullptr;
    const Comp* owner = component(name.substr(0, dot));
    return owner ? variable(owner, name.substr(dot + 1)) : nullptr;
}

Atom* Names::atom(std::string_view name) const
{
    const std::size_t equals = name.find('=');
    if (equals == std::string_view::npos) return nullptr;
    const StateVar* owner = variable(name.substr(0, equals));
    return owner ? value(owner, name.substr(equals + 1)) : nullptr;
}

text::Message unknownValue(std::string_view name, const std::string& variable,
                           const std::vector<std::string_view>& values)
{
    return {text::quoted(name) + " is not a value of " + text::quoted(variable),
            text::enumerated(values), text::didYouMean(name, values)};
}

text::Message unknownOperand(std::string_view name, const std::string& variable,
                             const std::vector<std::string_view>& values,
                             const std::vector<std::string_view>& variables)
{
    text::Message what = unknownValue(name, variable, values);
    std::vector<std::string_view> known = values;
    known.insert(known.end(), variables.begin(), variables.end());
    what.expected += ", or a variable with the same values";
    what.hint = text::didYouMean(name, known);
    return what;
}

} // namespace plant
