#include "app/StepValue.h"

#include "app/CommandLine.h"
#include "app/Output.h"
#include "plant/ModelBuilder.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace app {

namespace {

using telemetry::Names;
using telemetry::Variable;

std::optional<std::size_t> stepNumber(std::string_view text)
{
    const auto step = parsedNumber<std::size_t>(text);
    return step && *step > 0 ? step : std::nullopt;
}

// Why no mode variable has that name.
text::Message noMode(const std::string& name, const Names& names)
{
    std::vector<std::string> modes;
    for (const Variable& variable : names.variables()) {
        if (variable.name() == name) {
            return text::Message{text::quoted(name) + (variable.variable->type == "Command"
                                                           ? " is a command, no mode"
                                                           : " is a condition, no mode"),
                                 "a mode variable: what breaks is the mode of a component", ""};
        }
        if (variable.variable->type == "Mode") modes.push_back(variable.name());
    }
    return text::Message{"no mode variable is called " + text::quoted(name), "COMPONENT.VARIABLE",
                         text::didYouMean(name, {modes.begin(), modes.end()})};
}

const Variable& findVariable(const std::string& option, Expected expected, const std::string& name,
                             const Names& names)
{
    const std::uint32_t index = names.find(name);
    const bool isMode = expected == Expected::mode;
    if (index == Names::none || names[index].observed.empty()) {
        refuseValue(option, isMode ? noMode(name, names)
                                   : names.unknown(name, telemetry::Side::observation));
    }
    const Variable& variable = names.variables()[names[index].observed.front()];
    if (isMode && variable.variable->type != "Mode") refuseValue(option, noMode(name, names));
    if (!isMode && variable.variable->type == "Mode") {
        refuseValue(option, text::Message{text::quoted(name) + " is a mode, no input",
                                          "a variable that nothing in the plant determines",
                                          "--fault sets modes"});
    }
    return variable;
}

} // namespace

void refuseValue(const std::string& option, const text::Message& what)
{
    throw Failure(option + ": " + what.format());
}

StepValue readStepValue(const std::string& option, Expected expected, const std::string& text,
                        const Names& names)
{
    const bool isMode = expected == Expected::mode;
    const std::size_t equals = text.find('=');
    const std::size_t at = text.rfind('@');
    const bool hasStep = at != std::string::npos && equals != std::string::npos && at > equals;
    if (equals == std::string::npos || (isMode && !hasStep)) {
        refuseValue(option, text::Message{"found " + text::quoted(text),
                                          isMode ? "VARIABLE=VALUE@STEP"
                                                 : "VARIABLE=VALUE, or VARIABLE=VALUE@STEP",
                                          ""});
    }
    StepValue result{text, nullptr, 1};
    if (hasStep) {
        const auto step = stepNumber(std::string_view(text).substr(at + 1));
        if (!step) {
            refuseValue(option, text::Message{fmt::format("the step is {}",
                                                          text::quoted(text.substr(at + 1))),
                                              "a whole number, 1 for the first step", ""});
        }
        result.step = *step;
    }
    const Variable& variable = findVariable(option, expected, text.substr(0, equals), names);
    const std::string value = text.substr(equals + 1, hasStep ? at - equals - 1 : std::string::npos);
    result.value = plant::value(variable.variable, value);
    if (!result.value) {
        std::vector<std::string_view> known;
        for (const Atom* atom : *variable.variable->atomLinks) {
            known.push_back(atom->value);
        }
        refuseValue(option, text::Message{fmt::format("{} is not a value of '{}'",
                                                      text::quoted(value), variable.name()),
                                          text::enumerated(known, known.size()),
                                          text::didYouMean(value, known)});
    }
    return result;
}

std::vector<StepValue> readStepValues(const std::string& option, Expected expected,
                                      const std::vector<std::string>& texts, const Names& names)
{
    std::vector<StepValue> values;
    for (const std::string& text : texts) {
        values.push_back(readStepValue(option, expected, text, names));
        const StepValue& added = values.back();
        const auto first = std::find_if(values.begin(), values.end(), [&](const StepValue& other) {
            return other.step == added.step && other.value->stateVar == added.value->stateVar;
        });
        if (first != values.end() - 1) {
            refuseValue(option,
                        text::Message{fmt::format("{} and {} are for the same step",
                                                  text::quoted(first->text), text::quoted(text)),
                                      "one value of a variable at a step", ""});
        }
    }
    std::stable_sort(values.begin(), values.end(),
                     [](const StepValue& a, const StepValue& b) { return a.step < b.step; });
    return values;
}

} // namespace app
