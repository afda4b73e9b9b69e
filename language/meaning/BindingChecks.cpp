// Bindings: what is observed or commanded, and what readings stand for.
#include "language/meaning/TypeChecks.h"

#include "language/meaning/BindingBuilder.h"
#include "plant/BindingRules.h"
#include "text/Wording.h"

namespace language {

using namespace syntax;

bool TypeChecks::checkBinding(const Binding& binding)
{
    const bool isInput = binding.kind == Binding::Kind::input;
    bool sound = !binding.hold || checkNumbers(binding.hold->amount);
    if (binding.varies) {
        sound = checkNumbers(binding.varies->amount) && sound;
        sound =
            plant::checkVaryingKind(kindOf(binding), isInput, report_.at(binding.varies->range)) &&
            sound;
    }
    if (binding.channel && !isComputed(*binding.channel)) {
        report_.error(binding.channel->range, "nothing is read here",
                      "a channel in double quotes, or a computation with one",
                      binding.channel->kind == Expression::Kind::name
                          ? "the name of a channel is written \"" + binding.channel->name + "\""
                          : "");
        return false;
    }
    if (binding.channel) sound = checkNumbers(*binding.channel) && sound;
    sound = checkTimes(binding) && sound;
    sound = checkSpread(binding) && sound;
    const Resolved found = resolve(*type_, binding.variable);
    if (!found) return false;
    const bool isCommand = found.variable->syntax->kind == syntax::VariableKind::command;
    if (binding.kind == Binding::Kind::measurable) {
        return plant::checkMeasurable(isCommand, found.variable->syntax->name.text,
                                      report_.at(binding.variable.range));
    }
    if (!plant::checkDirection(isCommand, kindOf(binding), found.variable->syntax->name.text,
                               report_.at(binding.variable.range), isInput)) {
        return false;
    }
    if (const auto* thresholds = std::get_if<Thresholds>(&binding.translation)) {
        sound = checkThresholds(*thresholds, *found.variable) && sound;
    } else if (const auto* readings = std::get_if<Readings>(&binding.translation)) {
        sound = checkReadings(*readings, *found.variable) && sound;
    }
    if (binding.noise) {
        for (const Noise::Value& one : binding.noise->values) {
            sound = checkValue(*found.variable, one.value) && sound;
        }
    }
    return sound;
}

// What readings can be, and how they scatter or mislead.
bool TypeChecks::checkSpread(const Binding& binding)
{
    bool sound = true;
    const auto checkRange = [&](const NumberRange& range) {
        sound = checkNumbers(range.from) && sound;
        sound = checkNumbers(range.to) && sound;
    };
    if (binding.physical) checkRange(*binding.physical);
    if (binding.noise && binding.noise->deviation) {
        sound = checkNumbers(*binding.noise->deviation) && sound;
    } else if (binding.noise) {
        plant::ThresholdRow seen;
        for (const Noise::Value& one : binding.noise->values) {
            checkRange(one.readings);
            sound = seen.add(one.value.text, report_.at(one.value.range)) && sound;
        }
    }
    if (binding.misread) {
        sound = checkNumbers(*binding.misread) && sound;
        sound = plant::checkObserved(kindOf(binding), "'misread'",
                                     report_.at(binding.misread->range)) &&
                sound;
    }
    return sound;
}

// What a value needs of time, and what only an observation can have.
bool TypeChecks::checkTimes(const Binding& binding)
{
    const auto kind = kindOf(binding);
    bool sound = true;
    if (binding.channel && isComputed(*binding.channel) &&
        binding.channel->kind != Expression::Kind::channel) {
        sound = plant::checkObserved(kind, "a computed channel", report_.at(binding.channel->range));
    }
    if (binding.persistence) {
        sound = checkNumbers(binding.persistence->amount) && sound;
        sound = plant::checkObserved(kind, "'for'", report_.at(binding.persistence->range)) && sound;
    }
    if (binding.settling) {
        sound = checkNumbers(binding.settling->duration.amount) && sound;
        sound =
            plant::checkObserved(kind, "'settled'", report_.at(binding.settling->range)) && sound;
    }
    return sound;
}

bool TypeChecks::checkThresholds(const Thresholds& thresholds, const VariableType& variable)
{
    bool sound = !thresholds.hysteresis || checkNumbers(*thresholds.hysteresis);
    plant::ThresholdRow row;
    for (const Name& value : thresholds.values) {
        sound = checkValue(variable, value) && sound;
        sound = row.add(value.text, report_.at(value.range)) && sound;
    }
    for (const Thresholds::Limit& limit : thresholds.limits) {
        sound = checkNumbers(limit.number) && sound;
    }
    return sound && row.checkComplete(variable.values.size(), variable.syntax->name.text,
                                      report_.at(thresholds.range),
                                      "missing: " + text::enumerated(row.missing(variable.values)));
}

bool TypeChecks::checkReadings(const Readings& readings, const VariableType& variable)
{
    bool sound = true;
    bool otherwise = false;
    plant::ReadingSet texts;
    for (const Reading& reading : readings.readings) {
        sound = checkValue(variable, reading.value) && sound;
        if (const auto* number = std::get_if<Expression>(&reading.reading)) {
            sound = checkNumbers(*number) && sound;
        } else if (const auto* text = std::get_if<Text>(&reading.reading)) {
            sound = texts.add(text->text, "the reading \"" + text->text + "\"",
                              report_.at(text->range)) &&
                    sound;
        } else {
            if (otherwise) {
                report_.error(reading.range, "a second 'otherwise'", "one 'otherwise'");
                sound = false;
            }
            otherwise = true;
        }
    }
    return sound;
}

} // namespace language
