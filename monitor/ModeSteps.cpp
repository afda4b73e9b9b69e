#include "monitor/ModeSteps.h"

#include "model/StateFormula.h"
#include "model/Transition.h"

#include <algorithm>

namespace monitor {

namespace {

bool holds(const StateFormula* guard, const Plant& plant, const Prediction& before)
{
    if (!guard || !guard->atoms) {
        return true;
    }
    const bool conjunction = guard->op != "or";
    for (const auto& [polarity, atom] : *guard->atoms) {
        const Label label = before.label(plant.indexOf(atom));
        const bool literalHolds = label == (polarity ? Label::isTrue : Label::isFalse);
        if (literalHolds != conjunction) {
            return literalHolds;
        }
    }
    return conjunction;
}

// Whether the transition leaves the value: its guard asks for it, or for no value of the variable.
bool leaves(const Transition& transition, const Atom* from)
{
    bool namesVariable = false;
    if (transition.guard && transition.guard->atoms) {
        for (const auto& [polarity, atom] : *transition.guard->atoms) {
            if (atom->stateVar == from->stateVar && polarity) {
                if (atom == from) {
                    return true;
                }
                namesVariable = true;
            }
        }
    }
    return !namesVariable;
}

void addOption(ModeStep& step, AtomIndex value, double probability, bool fault)
{
    for (ModeOption& option : step.options) {
        if (option.value == value) {
            option.probability += probability;
            return;
        }
    }
    step.options.push_back({value, probability, fault});
}

ModeStep modeStep(const Plant& plant, VariableIndex index, AtomIndex from, const Prediction& before)
{
    ModeStep step{index, from, from, {}};
    const Atom* fromAtom = plant.atom(from);
    double leaving = 0.0;
    bool nominalTaken = false;
    for (const Transition* transition : *fromAtom->stateVar->comp->transitions) {
        if (transition->stateVar != fromAtom->stateVar || transition->atom == fromAtom ||
            !leaves(*transition, fromAtom) || !holds(transition->guard, plant, before)) {
            continue;
        }
        const AtomIndex to = plant.indexOf(transition->atom);
        addOption(step, to, transition->proba, transition->atom->fail);
        leaving += transition->proba;
        if (transition->name == "Nominal" && !transition->idle && !nominalTaken) {
            step.predicted = to;
            nominalTaken = true;
        }
    }
    if (!nominalTaken || leaving < 1.0) {
        addOption(step, from, std::max(0.0, 1.0 - leaving), false);
    }
    return step;
}

} // namespace

const ModeOption* ModeStep::option(AtomIndex value) const
{
    const auto found =
        std::find_if(options.begin(), options.end(),
                     [value](const ModeOption& option) { return option.value == value; });
    return found == options.end() ? nullptr : &*found;
}

bool ModeStep::deviatesFreely() const
{
    return std::any_of(options.begin(), options.end(), [this](const ModeOption& option) {
        return option.value != predicted && !option.fault;
    });
}

std::vector<ModeStep> modeSteps(const Plant& plant, const Prediction& before)
{
    std::vector<ModeStep> steps;
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (variable.isMode && !variable.values.empty()) {
            const AtomIndex from = before.valueOf(variable).value_or(variable.values.front());
            steps.push_back(modeStep(plant, static_cast<VariableIndex>(i), from, before));
        }
    }
    return steps;
}

} // namespace monitor
