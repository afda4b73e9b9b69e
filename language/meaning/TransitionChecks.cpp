// Transitions: which mode they are of, from where to where, and none twice.
#include "language/meaning/TypeChecks.h"

#include "language/meaning/TransitionBuilder.h"
#include "plant/TransitionRules.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

using namespace syntax;

namespace {

const char* kindName(const Transition& transition)
{
    return plant::word(kindOf(transition));
}

} // namespace

const VariableType* TypeChecks::modeOf(const Transition& transition)
{
    std::vector<std::string_view> modes;
    for (const std::size_t mode : type_->modes) {
        modes.push_back(type_->variables[mode].syntax->name.text);
    }
    if (transition.variable) {
        const std::string& name = transition.variable->text;
        for (const std::size_t mode : type_->modes) {
            const VariableType& variable = type_->variables[mode];
            if (variable.syntax->name.text == name) return &variable;
        }
        const std::string hint = text::didYouMean(name, modes);
        if (files_.unreadWords.contains(name) || (files_.unread && hint.empty())) return nullptr;
        report_.error(transition.variable->range,
                      text::quoted(name) + " is not a mode of " + text::quoted(type_->name),
                      modes.empty() ? "a mode; there is none" : "a mode: " + text::enumerated(modes),
                      hint);
        return nullptr;
    }
    if (modes.size() == 1) return &type_->variables[type_->modes.front()];
    if (modes.empty()) {
        if (files_.unread) return nullptr;
        report_.error(transition.range, text::quoted(type_->name) + " has no mode that could change",
                      "a mode: mode NAME { ... }");
        return nullptr;
    }
    report_.error(transition.sourcesRange,
                  text::quoted(type_->name) + " has several modes: " + text::enumerated(modes),
                  "the one that changes: " + std::string(kindName(transition)) + " " +
                      std::string(modes.front()) + " = ...");
    return nullptr;
}

bool TypeChecks::checkTransition(const Transition& transition)
{
    const VariableType* mode = modeOf(transition);
    bool sound = mode && mode->values.size() >= 2;
    if (sound) sound = checkSources(transition, *mode);
    if (mode && transition.target) sound = checkTarget(transition, *mode) && sound;
    if (transition.guard) sound = checkFormula(*transition.guard) && sound;
    if (transition.probability) sound = checkNumbers(transition.probability->amount) && sound;
    if (plant::isUnbidden(kindOf(transition)) && !transition.probability) {
        report_.error(transition.range,
                      "a " + std::string(kindName(transition)) + " without a probability",
                      "': ' and a probability per step, or a rate such as 1e-4 per hour");
        sound = false;
    }
    if (sound) sound = checkRepetition(transition, *mode);
    return sound;
}

bool TypeChecks::checkSources(const Transition& transition, const VariableType& mode)
{
    bool sound = true;
    if (transition.any && transition.kind == TransitionKind::repair && !mode.hasFaults()) {
        report_.error(transition.sourcesRange,
                      "no value of " + text::quoted(mode.syntax->name.text) + " is a fault",
                      "the values that are left",
                      "'any' stands here for all values that are faults");
        sound = false;
    }
    for (std::size_t i = 0; i < transition.sources.size(); ++i) {
        const Name& source = transition.sources[i];
        sound = checkValue(mode, source) && sound;
        for (std::size_t j = 0; j < i; ++j) {
            if (transition.sources[j].text != source.text) continue;
            report_.error(source.range, text::quoted(source.text) + " is in the list twice");
            sound = false;
        }
        if (transition.target) {
            sound = plant::checkLeaves(kindOf(transition), source.text, transition.target->text,
                                       "another value of " + text::quoted(mode.syntax->name.text),
                                       report_.at(transition.target->range)) &&
                    sound;
        }
    }
    return sound;
}

bool TypeChecks::checkTarget(const Transition& transition, const VariableType& mode)
{
    const Name& target = *transition.target;
    if (!checkValue(mode, target)) return false;
    const auto index = mode.indexOf(target.text);
    return plant::checkMends(kindOf(transition), target.text, index && mode.isFault(*index),
                             report_.at(target.range));
}

// The same change under the same guard, written once more.
bool TypeChecks::checkRepetition(const Transition& transition, const VariableType& mode)
{
    std::vector<std::string_view> sources;
    for (const Name& source : transition.sources) {
        sources.push_back(source.text);
    }
    if (transition.any) {
        for (std::size_t i = 0; i < mode.values.size(); ++i) {
            const bool target = transition.target && mode.values[i] == transition.target->text;
            if (isAmongAny(transition, mode.isFault(i)) && !target)
                sources.push_back(mode.values[i]);
        }
    }
    std::string rest = std::string(" ") + kindName(transition) + " " + mode.syntax->name.text +
                       " " + (transition.target ? transition.target->text : "") + " ";
    if (transition.guard) {
        const text::Range& range = transition.guard->range;
        rest += files_.texts[range.file]->at(range);
    }
    bool sound = true;
    for (const std::string_view source : sources) {
        if (transitions_.insert(std::string(source) + rest).second || !sound) continue;
        report_.error(transition.range,
                      "this transition from " + text::quoted(source) + " is written twice",
                      "one transition for each change", "remove one, or tell them apart by 'when'");
        sound = false;
    }
    return sound;
}

} // namespace language
