// Bindings: what is observed or commanded, and what readings stand for.
#include "language/meaning/TypeChecks.h"

#include "language/meaning/Numbers.h"

#include <algorithm>
#include <set>

namespace language {

using namespace syntax;

bool TypeChecks::checkBinding(const Binding& binding)
{
    bool sound = !binding.hold || checkNumbers(binding.hold->amount);
    const Resolved found = resolve(*type_, binding.variable);
    if (!found) return false;
    const bool isCommand = found.variable->syntax->kind == syntax::VariableKind::command;
    if (isCommand != (binding.kind == Binding::Kind::command)) {
        const std::string name = text::quoted(found.variable->syntax->name.text);
        report_.error(binding.variable.range,
                      isCommand ? name + " is a command: it is given, not observed"
                                : name + " is not a command",
                      isCommand ? "a cond or a mode" : "a command",
                      isCommand ? "write 'command' in place of 'observe'"
                                : "write 'observe' in place of 'command'");
        return false;
    }
    if (const auto* thresholds = std::get_if<Thresholds>(&binding.translation)) {
        sound = checkThresholds(*thresholds, *found.variable) && sound;
    } else if (const auto* readings = std::get_if<Readings>(&binding.translation)) {
        sound = checkReadings(*readings, *found.variable) && sound;
    }
    return sound;
}

bool TypeChecks::checkThresholds(const Thresholds& thresholds, const VariableType& variable)
{
    bool sound = !thresholds.hysteresis || checkNumbers(*thresholds.hysteresis);
    std::vector<std::string_view> seen;
    for (const Name& value : thresholds.values) {
        sound = checkValue(variable, value) && sound;
        if (std::find(seen.begin(), seen.end(), value.text) != seen.end()) {
            report_.error(value.range, text::quoted(value.text) + " is in the row twice",
                          "each value once");
            sound = false;
        }
        seen.push_back(value.text);
    }
    for (const Thresholds::Limit& limit : thresholds.limits) {
        sound = checkNumbers(limit.number) && sound;
        if (limit.below == limit.above) {
            report_.error(limit.range,
                          limit.below == Order::less ? "the limit itself is in neither value"
                                                     : "the limit itself is in both values",
                          "'<' on one side and '<=' on the other");
            sound = false;
        }
    }
    if (!sound || seen.size() == variable.values.size()) return sound;
    std::vector<std::string_view> missing;
    for (const std::string_view value : variable.values) {
        if (std::find(seen.begin(), seen.end(), value) == seen.end()) missing.push_back(value);
    }
    report_.error(thresholds.range,
                  std::to_string(seen.size()) + " of the " + std::to_string(variable.values.size()) +
                      " values of " + text::quoted(variable.syntax->name.text) + " are in the row",
                  "all of them, from the lowest to the highest", "missing: " + listed(missing));
    return false;
}

bool TypeChecks::checkReadings(const Readings& readings, const VariableType& variable)
{
    bool sound = true;
    bool otherwise = false;
    std::set<std::string> texts;
    for (const Reading& reading : readings.readings) {
        sound = checkValue(variable, reading.value) && sound;
        if (const auto* number = std::get_if<Expression>(&reading.reading)) {
            sound = checkNumbers(*number) && sound;
        } else if (const auto* text = std::get_if<Text>(&reading.reading)) {
            if (!texts.insert(text->text).second) {
                report_.error(text->range,
                              "the reading \"" + text->text + "\" stands for two values");
                sound = false;
            }
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
