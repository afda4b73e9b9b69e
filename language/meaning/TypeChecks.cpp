#include "language/meaning/TypeChecks.h"

#include "language/meaning/NameMistakes.h"
#include "language/meaning/Numbers.h"
#include "plant/Names.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

using namespace syntax;

namespace {

std::vector<std::string_view> namesIn(const ComponentType& type)
{
    std::vector<std::string_view> names;
    for (const VariableType& variable : type.variables) {
        names.push_back(variable.syntax->name.text);
    }
    for (const PartType& part : type.parts) {
        names.push_back(part.syntax->name.text);
    }
    return names;
}

} // namespace

void TypeChecks::check()
{
    for (ComponentType& type : types_.components) {
        checkType(type);
    }
}

void TypeChecks::checkType(ComponentType& type)
{
    type_ = &type;
    local_.clear();
    transitions_.clear();
    if (type.parameters) {
        for (const Parameter& parameter : *type.parameters) {
            if (parameter.value) checkNumbers(*parameter.value);
            local_.push_back(parameter.name.text);
        }
    }
    checkMembers(*type.members);
}

void TypeChecks::checkMembers(const std::vector<Member>& members)
{
    for (const Member& member : members) {
        bool sound = true;
        const void* node = nullptr;
        if (const auto* law = std::get_if<Law>(&member)) {
            sound = checkFormula(law->formula);
            node = law;
        } else if (const auto* transition = std::get_if<Transition>(&member)) {
            sound = checkTransition(*transition);
            node = transition;
        } else if (const auto* initial = std::get_if<InitialValue>(&member)) {
            sound = checkInitial(*initial, *type_);
            node = initial;
        } else if (const auto* binding = std::get_if<Binding>(&member)) {
            sound = checkBinding(*binding);
            node = binding;
        } else if (const auto* variable = std::get_if<Variable>(&member)) {
            checkVariable(*variable);
        } else if (const auto* part = std::get_if<Part>(&member)) {
            checkPart(*part);
        } else if (const auto* step = std::get_if<StepLength>(&member)) {
            checkStep(*step);
        } else if (const auto* loop = std::get_if<Loop>(&member)) {
            checkLoop(*loop);
        }
        if (!sound) types_.broken.insert(node);
    }
}

void TypeChecks::checkLoop(const Loop& loop)
{
    bool sound = checkNumbers(loop.first);
    sound = checkNumbers(loop.last) && sound;
    if (std::find(local_.begin(), local_.end(), loop.index.text) != local_.end()) {
        report_.error(loop.index.range,
                      "index " + text::quoted(loop.index.text) +
                          " has the name of a parameter or of an index around it",
                      "a new name");
    }
    if (!sound) types_.broken.insert(&loop);
    local_.push_back(loop.index.text);
    checkMembers(loop.members);
    local_.pop_back();
}

void TypeChecks::checkVariable(const Variable& variable)
{
    if (variable.lost && !checkNumbers(*variable.lost)) types_.broken.insert(&variable);
}

void TypeChecks::checkStep(const StepLength& step)
{
    if (step_) {
        plant::reportTwice(report_.at(step.range), report_.at(step_->range),
                           "a second length of a step", "one 'step'");
        types_.broken.insert(&step);
        return;
    }
    step_ = &step;
    if (!checkNumbers(step.duration.amount)) types_.broken.insert(&step);
}

void TypeChecks::checkPart(const Part& part)
{
    bool sound = !part.count || checkNumbers(*part.count);
    for (const Argument& argument : part.arguments) {
        sound = checkNumbers(argument.value) && sound;
    }
    const auto known = types_.byName.find(part.type.text);
    if (known != types_.byName.end()) {
        checkArguments(part, *known->second);
        for (const InitialValue& initial : part.initials) {
            if (!checkInitial(initial, *known->second)) types_.broken.insert(&initial);
        }
    }
    if (!sound) types_.broken.insert(&part);
}

void TypeChecks::checkArguments(const Part& part, const ComponentType& type)
{
    std::vector<std::string_view> known;
    for (const Parameter& parameter : *type.parameters) {
        known.push_back(parameter.name.text);
    }
    std::vector<std::string_view> given;
    for (const Argument& argument : part.arguments) {
        const std::string& name = argument.name.text;
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            report_.error(argument.name.range,
                          text::quoted(type.name) + " has no parameter " + text::quoted(name),
                          known.empty() ? "no arguments" : "a parameter: " + text::enumerated(known),
                          text::didYouMean(name, known));
            types_.broken.insert(&part);
        } else if (std::find(given.begin(), given.end(), name) != given.end()) {
            report_.error(argument.name.range,
                          "parameter " + text::quoted(name) + " is given twice");
        }
        given.push_back(name);
    }
    for (const Parameter& parameter : *type.parameters) {
        if (parameter.value ||
            std::find(given.begin(), given.end(), parameter.name.text) != given.end()) {
            continue;
        }
        // Perhaps it was given, under the wrong name.
        if (types_.sound(&part)) {
            report_.error(part.type.range,
                          text::quoted(type.name) + " needs its parameter " +
                              text::quoted(parameter.name.text),
                          std::string(type.name) + "(" + parameter.name.text + " = ...)");
        }
        types_.broken.insert(&part);
    }
}

bool TypeChecks::checkInitial(const InitialValue& initial, ComponentType& within)
{
    const Resolved found = resolve(within, initial.variable);
    if (!found) return false;
    if (found.variable->syntax->kind == syntax::VariableKind::command) {
        report_.error(initial.variable.range,
                      text::quoted(found.variable->syntax->name.text) +
                          " is a command: it has no initial value",
                      "a mode or a cond", "where a step gives no command, the first value holds");
        return false;
    }
    return checkValue(*found.variable, initial.value);
}

bool TypeChecks::checkNumbers(const Expression& expression)
{
    markParameters(expression);
    return language::checkNames(expression, local_, files_, types_, report_);
}

void TypeChecks::markParameters(const Expression& expression)
{
    if (expression.kind == Expression::Kind::name) type_->usedParameters.insert(expression.name);
    for (const Expression& operand : expression.operands) {
        markParameters(operand);
    }
}

TypeChecks::Resolved TypeChecks::resolve(ComponentType& within, const Path& path)
{
    ComponentType* here = &within;
    for (std::size_t i = 0; i < path.segments.size(); ++i) {
        const Segment& segment = path.segments[i];
        const bool last = i + 1 == path.segments.size();
        const auto entry = here->names.find(segment.name.text);
        if (segment.index && !checkNumbers(*segment.index)) return {};
        if (entry == here->names.end()) {
            reportUnknown(*here, segment, i == 0);
            return {};
        }
        if (!entry->second.part) {
            const VariableType& variable = here->variables[entry->second.index];
            if (last && !segment.index) {
                return variable.values.size() < 2 ? Resolved{} : Resolved{&variable};
            }
            report_.error(segment.name.range, text::quoted(segment.name.text) +
                                                  " is a variable of " + text::quoted(here->name) +
                                                  (last ? ", not an array" : ", and has no parts"));
            return {};
        }
        PartType& part = here->parts[entry->second.index];
        part.mentioned = true;
        if (!part.type || !checkIndex(part, segment)) return {};
        if (last) {
            report_.at(path.range).report(partForVariable(segment.name.text, namesIn(*part.type)));
            return {};
        }
        here = part.type;
    }
    return {};
}

bool TypeChecks::checkIndex(const PartType& part, const Segment& segment)
{
    if (part.syntax->count.has_value() == segment.index.has_value()) return true;
    const std::string& name = segment.name.text;
    report_.at(segment.name.range)
        .report(segment.index ? indexWithoutArray(name) : arrayWithoutIndex(name));
    return false;
}

bool TypeChecks::reportUnknown(const ComponentType& within, const Segment& segment, bool first)
{
    const std::string& name = segment.name.text;
    text::Message what = unknownVariable(
        name,
        first ? text::quoted(name) + " is not known in " + text::quoted(within.name)
              : text::quoted(within.name) + " has no variable or part " + text::quoted(name),
        namesIn(within));
    if (files_.unreadWords.contains(name) || (files_.unread && what.hint.empty())) return false;
    for (const VariableType& variable : within.variables) {
        if (what.hint.empty() && variable.indexOf(name)) {
            what.hint = valueInPlaceOf(variable.syntax->name.text, name);
        }
    }
    report_.at(segment.name.range).report(std::move(what));
    return false;
}

bool TypeChecks::checkValue(const VariableType& variable, const Name& value, bool orVariable)
{
    if (variable.values.size() < 2 || variable.indexOf(value.text)) {
        return variable.values.size() >= 2;
    }
    text::Message what =
        orVariable ? plant::unknownOperand(value.text, variable.syntax->name.text, variable.values,
                                           namesIn(*type_))
                   : plant::unknownValue(value.text, variable.syntax->name.text, variable.values);
    if (files_.unreadWords.contains(value.text) || (files_.unread && what.hint.empty()))
        return false;
    for (const VariableType& other : type_->variables) {
        if (what.hint.empty() && &other != &variable && other.indexOf(value.text)) {
            what.hint = "it is a value of " + text::quoted(other.syntax->name.text);
        }
    }
    report_.at(value.range).report(std::move(what));
    return false;
}

} // namespace language
