#include "language/meaning/Types.h"

#include "language/meaning/Numbers.h"
#include "plant/CheckedBuilder.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

namespace {

constexpr std::size_t deepestNesting = 100;

std::string tooDeep()
{
    return "components are nested deeper than " + std::to_string(deepestNesting) + " levels";
}

} // namespace

std::optional<std::size_t> VariableType::indexOf(std::string_view value) const
{
    const auto found = std::find(values.begin(), values.end(), value);
    if (found == values.end()) return std::nullopt;
    return static_cast<std::size_t>(found - values.begin());
}

bool VariableType::hasFaults() const
{
    return std::any_of(syntax->values.begin(), syntax->values.end(),
                       [](const syntax::Value& value) { return value.fault; });
}

bool VariableType::isFault(std::size_t value) const
{
    return syntax->values[declared[value]].fault;
}

std::optional<std::size_t> VariableType::marked() const
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (syntax->values[declared[i]].initial) return i;
    }
    return std::nullopt;
}

void Declarations::enter()
{
    for (const std::uint32_t file : files_.order) {
        for (const syntax::Declaration& declaration : files_.trees[file].declarations) {
            if (const auto* constant = std::get_if<syntax::Constant>(&declaration)) {
                enterConstant(*constant);
            } else if (const auto* component = std::get_if<syntax::Component>(&declaration)) {
                enterComponent(*component);
            } else if (const auto* system = std::get_if<syntax::System>(&declaration)) {
                enterSystem(*system);
            }
        }
    }
    for (ComponentType& type : types_.components) {
        enterMembers(type);
    }
    if (types_.system) checkNameOfSystem();
    findCircles();
}

void Declarations::enterConstant(const syntax::Constant& constant)
{
    const auto known = types_.constants.find(constant.name.text);
    if (known != types_.constants.end()) {
        plant::reportTwice(report_.at(constant.name.range), report_.at(known->second.range),
                           "constant " + text::quoted(constant.name.text) + " is declared twice",
                           "a new name");
        return;
    }
    ConstantValue made;
    made.range = constant.name.range;
    std::optional<double> value;
    if (checkNames(constant.value, {}, files_, types_, report_)) {
        value = evaluate(constant.value, {types_, {}}, report_);
    }
    made.known = value.has_value();
    made.value = value.value_or(0);
    types_.constants.insert({constant.name.text, made});
}

void Declarations::enterComponent(const syntax::Component& component)
{
    ComponentType type;
    type.name = component.name.text;
    type.range = component.name.range;
    type.parameters = &component.parameters;
    type.members = &component.members;
    const auto known = types_.byName.find(component.name.text);
    if (known != types_.byName.end()) {
        plant::reportTwice(report_.at(type.range), report_.at(known->second->range),
                           "component " + text::quoted(component.name.text) + " is declared twice",
                           "a new name");
        return;
    }
    types_.components.push_back(std::move(type));
    types_.byName.insert({component.name.text, &types_.components.back()});
    enterParameters(component);
}

void Declarations::enterParameters(const syntax::Component& component)
{
    std::unordered_map<std::string_view, const syntax::Parameter*> known;
    for (const syntax::Parameter& parameter : component.parameters) {
        const auto [first, isNew] = known.insert({parameter.name.text, &parameter});
        if (isNew) continue;
        report_.error(parameter.name.range,
                      "parameter " + text::quoted(parameter.name.text) + " is declared twice",
                      "a new name");
    }
}

void Declarations::enterSystem(const syntax::System& system)
{
    if (system.range.file != 0) {
        report_.error(system.name.range,
                      "system " + text::quoted(system.name.text) + " is in an imported file",
                      "only constants and components there",
                      "make it a component, or do not import this file");
        return;
    }
    if (types_.system) {
        plant::reportTwice(report_.at(system.name.range), report_.at(types_.system->range),
                           "a second system", "one system");
        return;
    }
    ComponentType type;
    type.name = system.name.text;
    type.range = system.name.range;
    type.system = true;
    type.used = true;
    type.members = &system.members;
    types_.components.push_back(std::move(type));
    types_.system = &types_.components.back();
}

void Declarations::enterMembers(ComponentType& type)
{
    for (const syntax::Member& member : *type.members) {
        if (const auto* variable = std::get_if<syntax::Variable>(&member)) {
            enterVariable(type, *variable);
        } else if (const auto* part = std::get_if<syntax::Part>(&member)) {
            enterPart(type, *part);
        }
    }
}

bool Declarations::enterName(ComponentType& type, const syntax::Name& name,
                             ComponentType::Entry entry)
{
    const auto [known, isNew] = type.names.insert({name.text, entry});
    if (isNew) return true;
    const syntax::Name& first = known->second.part
                                    ? type.parts[known->second.index].syntax->name
                                    : type.variables[known->second.index].syntax->name;
    plant::reportTwice(report_.at(name.range), report_.at(first.range),
                       text::quoted(name.text) + " is declared twice in " + text::quoted(type.name),
                       "a name that no other variable or part of it has");
    return false;
}

void Declarations::enterVariable(ComponentType& type, const syntax::Variable& variable)
{
    if (!enterName(type, variable.name, {false, type.variables.size()})) return;
    VariableType& made = type.variables.emplace_back();
    made.syntax = &variable;
    enterValues(made);
    if (made.isMode()) type.modes.push_back(type.variables.size() - 1);
}

void Declarations::enterValues(VariableType& made)
{
    const syntax::Variable& variable = *made.syntax;
    const syntax::Value* initial = nullptr;
    for (std::size_t i = 0; i < variable.values.size(); ++i) {
        const syntax::Value& value = variable.values[i];
        if (made.indexOf(value.name.text)) {
            report_.error(value.name.range, text::quoted(variable.name.text) + " has the value " +
                                                text::quoted(value.name.text) + " twice");
            continue;
        }
        if (made.values.size() >= plant::mostValues) {
            report_.error(variable.name.range,
                          text::quoted(variable.name.text) + " has " +
                              std::to_string(variable.values.size()) + " values",
                          "at most " + std::to_string(plant::mostValues));
            break;
        }
        made.values.push_back(value.name.text);
        made.declared.push_back(i);
        if (!value.initial) continue;
        if (initial) {
            report_.error(value.name.range,
                          text::quoted(variable.name.text) + " has two initial values, " +
                              text::quoted(initial->name.text) + " and " +
                              text::quoted(value.name.text),
                          "one initial value");
        } else {
            initial = &value;
        }
    }
    if (made.values.size() < plant::leastValues && !(files_.unread && variable.values.empty())) {
        report_.error(variable.name.range, text::quoted(variable.name.text) + " has only one value",
                      "two values or more",
                      made.isMode() ? "a mode that cannot change says nothing: add the faults" : "");
    }
    made.beginning.assign(made.values.size(), false);
}

void Declarations::enterPart(ComponentType& type, const syntax::Part& part)
{
    if (!enterName(type, part.name, {true, type.parts.size()})) return;
    PartType& made = type.parts.emplace_back();
    made.syntax = &part;
    const auto known = types_.byName.find(part.type.text);
    if (known != types_.byName.end()) {
        made.type = known->second;
        made.type->used = true;
        return;
    }
    types_.broken.insert(&part);
    std::vector<std::string_view> names;
    for (const ComponentType& component : types_.components) {
        if (!component.system) names.push_back(component.name);
    }
    const std::string hint = text::didYouMean(part.type.text, names);
    if (files_.unreadWords.contains(part.type.text) || (files_.unread && hint.empty())) return;
    report_.error(part.type.range, "no component is called " + text::quoted(part.type.text),
                  names.empty() ? "a component that is declared here or imported"
                                : "a component: " + text::enumerated(names),
                  hint.empty() ? "declare it, or import the file that does" : hint);
}

// Variables of the system make a component of its name.
void Declarations::checkNameOfSystem()
{
    ComponentType& system = *types_.system;
    const auto entry = system.names.find(system.name);
    if (system.variables.empty() || entry == system.names.end() || !entry->second.part) return;
    const syntax::Part& part = *system.parts[entry->second.index].syntax;
    types_.broken.insert(&part);
    report_.error(part.name.range, "the system and its part have the same name",
                  "another name for one of them, since the system has variables of its own");
}

void Declarations::findCircles()
{
    std::unordered_map<const ComponentType*, std::size_t> depths;
    for (ComponentType& type : types_.components) {
        std::vector<const PartType*> way;
        if (findCircle(type, way, depths)) {
            types_.endless = true;
            return;
        }
    }
}

// Depth first. The depth of a type is 0 while it is on the way from the one that was begun with.
bool Declarations::findCircle(const ComponentType& type, std::vector<const PartType*>& way,
                              std::unordered_map<const ComponentType*, std::size_t>& depths)
{
    const auto [known, isNew] = depths.insert({&type, 0});
    if (!isNew && known->second > 0) return false;
    if (!isNew || way.size() >= deepestNesting) {
        std::string names;
        for (const PartType* part : way) {
            if (names.size() > 200) break;
            names += (names.empty() ? "" : " -> ") + std::string(part->type->name);
        }
        report_.error(way.back()->syntax->type.range,
                      isNew ? tooDeep() : "a " + text::quoted(type.name) + " would contain itself",
                      {}, "the parts on the way: " + names);
        return true;
    }
    std::size_t deepest = 0;
    for (const PartType& part : type.parts) {
        if (!part.type) continue;
        way.push_back(&part);
        if (findCircle(*part.type, way, depths)) return true;
        way.pop_back();
        deepest = std::max(deepest, depths[part.type]);
    }
    depths[&type] = deepest + 1;
    if (deepest < deepestNesting) return false;
    report_.error(type.range, tooDeep());
    return true;
}

} // namespace language
