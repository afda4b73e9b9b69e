// Instances first, from the system down: each gets its parameters and its parts, and the initial values that the parts around it
// give. Then, in a second walk, their components and variables, so that names stand in the order of the plant. Laws, transitions
// and bindings are made by others, who come through forEachMember().
#include "language/meaning/Elaboration.h"

#include "language/meaning/PlantMemory.h"
#include "language/syntax/Words.h"
#include "plant/BindingRules.h"
#include "plant/TransitionRules.h"
#include "text/Wording.h"

#include <algorithm>
#include <cmath>

namespace language {

namespace {

plant::VariableKind builderKind(syntax::VariableKind kind)
{
    switch (kind) {
    case syntax::VariableKind::mode: return plant::VariableKind::mode;
    case syntax::VariableKind::condition: return plant::VariableKind::condition;
    case syntax::VariableKind::command: return plant::VariableKind::command;
    }
    return plant::VariableKind::condition;
}

bool hasLaws(const ComponentType& type)
{
    return std::any_of(type.members->begin(), type.members->end(), [](const auto& member) {
        return std::holds_alternative<syntax::Law>(member) ||
               std::holds_alternative<syntax::Loop>(member);
    });
}

// Whether the member is of these kinds, or a loop over such.
bool has(const syntax::Member& member, Elaboration::Wanted wanted)
{
    using Wanted = Elaboration::Wanted;
    if (const auto* loop = std::get_if<syntax::Loop>(&member)) {
        return std::any_of(loop->members.begin(), loop->members.end(),
                           [&](const syntax::Member& inner) { return has(inner, wanted); });
    }
    if (std::holds_alternative<syntax::InitialValue>(member)) return wanted == Wanted::initials;
    if (std::holds_alternative<syntax::Transition>(member)) return wanted == Wanted::transitions;
    return wanted == Wanted::lawsAndBindings && (std::holds_alternative<syntax::Law>(member) ||
                                                 std::holds_alternative<syntax::Binding>(member));
}

} // namespace

std::optional<double> probability(const syntax::Expression& expression,
                                  const Environment& environment, Report& report)
{
    const std::optional<double> value = evaluate(expression, environment, report);
    if (!value || plant::isProbability(*value)) return value;
    report.error(expression.range, "the probability is " + text::shown(*value),
                 "a number from 0 to 1",
                 *value >= 2 && *value <= 100
                     ? "percent are written as a fraction: " + text::shown(*value / 100)
                     : "");
    return std::nullopt;
}

std::optional<double> probabilityPerStep(const syntax::Probability& written,
                                         const Environment& environment, double stepSeconds,
                                         Report& report)
{
    const std::optional<double> seconds =
        written.per ? secondsOf(written.per->text) : std::optional<double>();
    if (!seconds) return probability(written.amount, environment, report);
    const std::optional<double> amount = evaluate(written.amount, environment, report);
    if (!amount) return std::nullopt;
    if (*amount < 0) {
        report.error(written.amount.range, "the rate is " + text::shown(*amount), "0 or more");
        return std::nullopt;
    }
    const double probability = -std::expm1(-*amount / *seconds * stepSeconds);
    if (*amount == 0 || probability > 0) return probability;
    report.error(written.amount.range,
                 "the rate is " + text::shown(*amount) + ", which is no probability in a step of " +
                     text::shown(stepSeconds) + " s",
                 "0, or a rate of which something is left in a step");
    return std::nullopt;
}

std::string variableName(const Instance& instance, const VariableType& variable)
{
    return text::quoted((instance.path.empty() ? "" : instance.path + ".") +
                        variable.syntax->name.text);
}

bool Elaboration::run()
{
    if (types_.endless || !types_.system) return false;
    root_ = std::make_unique<Instance>();
    root_->type = types_.system;
    if (!makeParts(*root_)) return false;
    bool fits = true;
    forEach(*root_, [&](Instance& instance) {
        if (fits) makeVariables(instance);
        fits = builder_.variablesFit();
    });
    return fits;
}

bool Elaboration::makeParts(Instance& instance)
{
    instance.initials.resize(instance.type->variables.size());
    instance.parts.resize(instance.type->parts.size());
    for (std::size_t i = 0; i < instance.parts.size(); ++i) {
        if (!makePart(instance, instance.type->parts[i], i)) return false;
    }
    applyInitials(instance);
    return true;
}

// Small plants are not worth a look at the system.
bool Elaboration::fitsMemory(const PartType& part, std::uint64_t count)
{
    constexpr std::uint64_t small = std::uint64_t{64} << 20U;
    bytes_ += count * bytesOf(*part.type);
    if (bytes_ <= std::min(small, limits_.bytes.value_or(small))) return true;
    if (!limits_.bytes) limits_.bytes = freeBytes();
    if (bytes_ <= *limits_.bytes) return true;
    report_.error(part.syntax->range,
                  "not enough memory: " + text::counted(components_ + count, "part") +
                      " need about " + inBytes(bytes_) + ", and " + inBytes(*limits_.bytes) +
                      " are free");
    return false;
}

bool Elaboration::makePart(Instance& parent, const PartType& part, std::size_t number)
{
    if (!part.type || !types_.sound(part.syntax)) return true;
    const Environment environment = environmentOf(parent);
    long count = 1;
    if (part.syntax->count) {
        const auto wanted =
            evaluateWhole(*part.syntax->count, environment, report_, 0,
                          static_cast<long>(limits_.components), "the number of parts");
        if (!wanted) return true;
        count = *wanted;
    }
    if (!fitsMemory(part, static_cast<std::uint64_t>(count))) return false;
    const auto parameters = parametersOf(*part.syntax, *part.type, environment);
    if (!parameters) return true;
    for (long i = 0; i < count; ++i) {
        if (++components_ > limits_.components) {
            report_.error(part.syntax->range, "the plant would have more than " +
                                                  std::to_string(limits_.components) +
                                                  " components");
            return false;
        }
        auto made = std::make_unique<Instance>();
        made->type = part.type;
        made->path = (parent.path.empty() ? "" : parent.path + "/") + part.syntax->name.text;
        if (part.syntax->count) made->path += "[" + std::to_string(i) + "]";
        made->parameters = *parameters;
        const bool fits = makeParts(*made);
        parent.parts[number].push_back(std::move(made));
        if (!fits) return false;
    }
    return true;
}

// Arguments are computed in the environment of the part, defaults in that of the type.
std::optional<std::vector<double>> Elaboration::parametersOf(const syntax::Part& part,
                                                             const ComponentType& type,
                                                             const Environment& environment)
{
    std::vector<double> values;
    Environment own{types_, {}};
    for (const syntax::Parameter& parameter : *type.parameters) {
        const auto given = std::find_if(part.arguments.begin(), part.arguments.end(),
                                        [&](const syntax::Argument& argument) {
                                            return argument.name.text == parameter.name.text;
                                        });
        const auto value = given != part.arguments.end()
                               ? evaluate(given->value, environment, report_)
                               : evaluate(*parameter.value, own, report_);
        if (!value) return std::nullopt;
        values.push_back(*value);
        own.local.emplace_back(parameter.name.text, *value);
    }
    return values;
}

void Elaboration::applyInitials(Instance& instance)
{
    const Environment environment = environmentOf(instance);
    for (std::size_t i = 0; i < instance.parts.size(); ++i) {
        // The braces of an array speak of all of its parts; what stands outside may set one of them apart.
        const syntax::Part* written = instance.type->parts[i].syntax;
        for (const syntax::InitialValue& initial : written->initials) {
            if (!types_.sound(&initial)) continue;
            for (const auto& part : instance.parts[i]) {
                applyInitial(part.get(), *part, initial, environment);
            }
        }
    }
    forEachMember(instance, Wanted::initials, [&](const syntax::Member& member, Environment& here) {
        const auto* initial = std::get_if<syntax::InitialValue>(&member);
        if (initial) applyInitial(&instance.initials, instance, *initial, here);
    });
}

void Elaboration::applyInitial(const void* by, Instance& within,
                               const syntax::InitialValue& initial, const Environment& environment)
{
    const Place place = locate(within, initial.variable, environment);
    if (!place.instance) return;
    const VariableType& variable = place.instance->type->variables[place.variable];
    Instance::Initial& slot = place.instance->initials[place.variable];
    if (slot.by == by) {
        report_.error(initial.range,
                      variableName(*place.instance, variable) + " gets two initial values here",
                      "one 'initially' for it");
        return;
    }
    slot = {static_cast<int>(*variable.indexOf(initial.value.text)), by};
}

std::optional<std::size_t> Elaboration::initialOf(const Instance& instance, std::size_t number)
{
    VariableType& variable = instance.type->variables[number];
    const Instance::Initial& slot = instance.initials[number];
    std::optional<std::size_t> value;
    if (slot.value >= 0) {
        value = static_cast<std::size_t>(slot.value);
    } else if (variable.syntax->kind == syntax::VariableKind::command) {
        value = 0;
    } else {
        value = variable.marked();
    }
    if (value) variable.beginning[*value] = true;
    if (!value && variable.isMode() && !variable.lacksInitial) {
        variable.lacksInitial = true;
        if (variable.values.size() < 2) return value;
        report_.error(variable.syntax->name.range,
                      "mode " + variableName(instance, variable) + " has no initial value",
                      "'initial' after one of its values: " + text::enumerated(variable.values),
                      "or, where the part is declared: initially " + variable.syntax->name.text +
                          " = " + std::string(variable.values.front()));
    }
    return value;
}

void Elaboration::makeVariables(Instance& instance)
{
    const ComponentType& type = *instance.type;
    if (!type.variables.empty() || (hasLaws(type) && !type.system)) {
        const plant::PlaceHandle at = report_.at(type.range);
        instance.component =
            builder_.component(type.system ? std::string(type.name) : instance.path, at, at);
    }
    const Environment environment = environmentOf(instance);
    instance.variables.reserve(type.variables.size());
    for (std::size_t i = 0; i < type.variables.size(); ++i) {
        const VariableType& variable = type.variables[i];
        const std::size_t count = variable.values.size();
        instance.variables.push_back(nullptr);
        if (count == 0) continue;
        std::vector<plant::ValueDeclaration>& values = declared_[&variable];
        for (std::size_t v = values.size(); v < count; ++v) {
            values.push_back({std::string(variable.values[v]), variable.isFault(v)});
        }
        StateVar* made = builder_.variable(
            instance.component, variable.syntax->name.text, builderKind(variable.syntax->kind),
            values, initialOf(instance, i), report_.at(variable.syntax->range));
        if (!made) return;
        instance.variables.back() = made;
        if (!variable.syntax->lost || !types_.sound(variable.syntax)) continue;
        if (const auto lost = probability(*variable.syntax->lost, environment, report_)) {
            builder_.lose(made, *lost);
        }
    }
}

void Elaboration::forEach(Instance& instance, const std::function<void(Instance&)>& visit)
{
    visit(instance);
    for (const auto& array : instance.parts) {
        for (const auto& part : array) {
            forEach(*part, visit);
        }
    }
}

void Elaboration::forEachMember(Instance& instance, Wanted wanted, const MemberVisit& visit)
{
    Environment environment = environmentOf(instance);
    forMembers(*instance.type->members, wanted, environment, visit);
}

bool Elaboration::forMembers(const std::vector<syntax::Member>& members, Wanted wanted,
                             Environment& environment, const MemberVisit& visit)
{
    for (const syntax::Member& member : members) {
        if (!has(member, wanted)) continue;
        if (const auto* loop = std::get_if<syntax::Loop>(&member)) {
            if (types_.sound(loop) && !repeat(*loop, wanted, environment, visit)) return false;
        } else if (types_.sound(
                       std::visit([](const auto& node) -> const void* { return &node; }, member))) {
            visit(member, environment);
        }
    }
    return true;
}

bool Elaboration::repeat(const syntax::Loop& loop, Wanted wanted, Environment& environment,
                         const MemberVisit& visit)
{
    constexpr long most = 1'000'000'000;
    const auto first = evaluateWhole(loop.first, environment, report_, -most, most, "the index");
    const auto last = evaluateWhole(loop.last, environment, report_, -most, most, "the index");
    if (!first || !last) return true;
    environment.local.emplace_back(loop.index.text, 0.0);
    bool fits = true;
    for (long i = *first; i <= *last && fits; ++i) {
        if (++repetitions_ > limits_.repetitions) {
            // Reported for the loop that went too far, not of those after it.
            if (repetitions_ == limits_.repetitions + 1)
                report_.error(loop.range, "the loops are repeated more than " +
                                              std::to_string(limits_.repetitions) + " times");
            fits = false;
            break;
        }
        environment.local.back().second = static_cast<double>(i);
        fits = forMembers(loop.members, wanted, environment, visit);
    }
    environment.local.pop_back();
    return fits;
}

Elaboration::Place Elaboration::locate(Instance& within, const syntax::Path& path,
                                       const Environment& environment)
{
    Instance* here = &within;
    for (const syntax::Segment& segment : path.segments) {
        const ComponentType::Entry entry = here->type->names.at(segment.name.text);
        if (!entry.part) return {here, entry.index};
        const auto& array = here->parts[entry.index];
        std::size_t index = 0;
        // Parts that could not be made have been reported.
        if (array.empty() && !here->type->parts[entry.index].syntax->count) return {};
        if (segment.index) {
            if (array.empty()) {
                const auto value = evaluate(*segment.index, environment, report_);
                if (value && !report_.failed()) {
                    report_.error(segment.index->range, text::quoted(segment.name.text) +
                                                            " has no parts: its number is 0");
                }
                return {};
            }
            const auto value = evaluateWhole(*segment.index, environment, report_, 0,
                                             static_cast<long>(array.size()) - 1,
                                             "the index of " + text::quoted(segment.name.text));
            if (!value) return {};
            index = static_cast<std::size_t>(*value);
        }
        here = array[index].get();
    }
    return {};
}

StateVar* Elaboration::find(Instance& within, const syntax::Path& path,
                            const Environment& environment)
{
    const Place place = locate(within, path, environment);
    return place.instance ? place.instance->variables[place.variable] : nullptr;
}

double Elaboration::stepSeconds()
{
    for (const syntax::Member& member : *types_.system->members) {
        const auto* step = std::get_if<syntax::StepLength>(&member);
        if (!step || !types_.sound(step)) continue;
        const auto amount = evaluate(step->duration.amount, {types_, {}}, report_);
        if (!amount) return 1;
        const double seconds = *amount * secondsOf(step->duration.unit.text).value_or(1);
        if (plant::checkStepLength(seconds, report_.at(step->duration.amount.range)))
            return seconds;
    }
    return 1;
}

Environment Elaboration::environmentOf(const Instance& instance) const
{
    Environment environment{types_, {}};
    for (std::size_t i = 0; i < instance.parameters.size(); ++i) {
        environment.local.emplace_back((*instance.type->parameters)[i].name.text,
                                       instance.parameters[i]);
    }
    return environment;
}

} // namespace language
