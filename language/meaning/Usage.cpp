#include "language/meaning/Usage.h"

#include "language/meaning/TransitionBuilder.h"

#include <algorithm>

namespace language {

namespace {

// Whether the transition leaves a value that has been reached.
bool leaves(const syntax::Transition& transition, const VariableType& mode,
            const std::vector<bool>& reached)
{
    if (transition.any) {
        for (std::size_t i = 0; i < reached.size(); ++i) {
            if (reached[i] && isAmongAny(transition, mode.isFault(i))) return true;
        }
        return false;
    }
    return std::any_of(transition.sources.begin(), transition.sources.end(),
                       [&](const syntax::Name& source) {
                           const auto index = mode.indexOf(source.text);
                           return index && reached[*index];
                       });
}

} // namespace

void Usage::warn()
{
    for (const ComponentType& type : types_.components) {
        warnOfType(type);
    }
    for (const auto& [name, constant] : types_.constants) {
        if (constant.used || constant.range.file != 0) continue;
        report_.warning(constant.range, "constant " + text::quoted(name) + " is not used");
    }
}

void Usage::warnOfType(const ComponentType& type)
{
    const bool own = type.range.file == 0;
    if (own && !type.used && types_.system) {
        report_.warning(type.range, "component " + text::quoted(type.name) + " is not used",
                        "the system has no part of it");
    }
    if (own && type.parameters) {
        for (const syntax::Parameter& parameter : *type.parameters) {
            if (type.usedParameters.contains(parameter.name.text)) continue;
            report_.warning(parameter.name.range,
                            "parameter " + text::quoted(parameter.name.text) + " is not used");
        }
    }
    // A part alone has nothing to be connected with.
    if (own && type.parts.size() > 1) {
        for (const PartType& part : type.parts) {
            if (part.mentioned) continue;
            report_.warning(
                part.syntax->name.range,
                "part " + text::quoted(part.syntax->name.text) + " is not connected with anything",
                "no law, guard or channel of " + text::quoted(type.name) + " mentions it");
        }
    }
    for (const std::size_t mode : type.modes) {
        warnOfModes(type, type.variables[mode]);
    }
}

void Usage::warnOfModes(const ComponentType& type, const VariableType& mode)
{
    std::vector<bool> reached = mode.beginning;
    if (std::find(reached.begin(), reached.end(), true) == reached.end()) return;
    for (bool more = true; more;) {
        more = false;
        for (const syntax::Member& member : *type.members) {
            const auto* transition = std::get_if<syntax::Transition>(&member);
            if (!transition || !transition->target) continue;
            if (transition->variable && transition->variable->text != mode.syntax->name.text) {
                continue;
            }
            const auto target = mode.indexOf(transition->target->text);
            if (!target || reached[*target] || !leaves(*transition, mode, reached)) continue;
            reached[*target] = true;
            more = true;
        }
    }
    for (std::size_t i = 0; i < reached.size(); ++i) {
        if (reached[i]) continue;
        const syntax::Value& value = mode.syntax->values[mode.declared[i]];
        report_.warning(
            value.name.range,
            "nothing leads to " + text::quoted(mode.syntax->name.text + " = " + value.name.text),
            value.fault
                ? "a fault that can happen: fault ... -> " + value.name.text + " : PROBABILITY"
                : "a transition: nominal ... -> " + value.name.text);
    }
}

} // namespace language
