#include "monitor/step/Scenario.h"

#include "monitor/labels/CaseRefutation.h"

#include <algorithm>

namespace monitor {

StepFrame makeFrame(const Plant& plant, const Prediction& before, StepInput input,
                    const KnownModeStepsPointer& last)
{
    auto known = last ? std::make_shared<const KnownModeSteps>(plant, before, input.commands, *last)
                      : std::make_shared<const KnownModeSteps>(plant, before, input.commands);
    const ModeSteps& steps = known->steps();
    return {plant, std::move(input.commands), std::move(input.observations), input.inputs,
            steps, std::move(known),          std::move(input.changing)};
}

bool assumeStep(Prediction& labels, const StepFrame& frame, const Deviations& deviations)
{
    const auto assume = [&](AtomIndex value) { return labels.assume(value); };
    const auto assumePredicted = [&](const ModeStep& step) {
        return labels.valueOf(frame.plant.variable(step.variable)) || labels.assume(step.predicted);
    };
    return std::all_of(frame.commands.begin(), frame.commands.end(), assume) &&
           std::all_of(deviations.begin(), deviations.end(), assume) &&
           std::all_of(frame.modes.begin(), frame.modes.end(), assumePredicted) &&
           labels.propagate();
}

Scenario::Scenario(const StepFrame& frame, Deviations deviations)
    : frame_(frame), deviations_(std::move(deviations)), prediction_(frame.plant),
      consistent_(assumeStep(prediction_, frame, deviations_))
{
    if (consistent_) {
        takeObservations();
    }
    if (!discrepancies_.empty()) {
        prediction_.preferSmallEnvironments();
    }
}

void Scenario::takeObservations()
{
    for (const AtomIndex observed : frame_.observations) {
        if (!prediction_.isTrue(observed) && !adopt(observed)) {
            discrepancies_.push_back(observed);
        }
    }
}

// False, with nothing changed, when the labels or the laws rule the value out.
bool Scenario::adopt(AtomIndex observed)
{
    const std::size_t mark = prediction_.mark();
    if (!prediction_.assume(observed)) {
        return false;
    }
    if (!prediction_.propagate()) {
        ruledOut_[observed] = modesOfViolated();
        prediction_.undo(mark);
        return false;
    }
    return true;
}

std::vector<Conflict> Scenario::conflicts() const
{
    if (!consistent_) {
        return {modesOfViolated()};
    }
    std::vector<Conflict> conflicts;
    conflicts.reserve(discrepancies_.size());
    for (const AtomIndex observed : discrepancies_) {
        const auto ruledOut = ruledOut_.find(observed);
        conflicts.push_back(ruledOut == ruledOut_.end()
                                ? prediction_.environment({ruledOutBy(observed)})
                                : ruledOut->second);
    }
    return conflicts;
}

// Empty when it is commands that contradict one another.
Conflict Scenario::modesOfViolated() const
{
    std::vector<AtomIndex> atoms;
    if (prediction_.violated() >= 0) {
        for (const PlantLiteral& literal : frame_.plant.clause(prediction_.violated())) {
            atoms.push_back(literal.atom);
        }
    }
    return prediction_.environment(atoms);
}

std::optional<Conflict> Scenario::modesInConflict() const
{
    if (!consistent_) {
        return modesOfViolated();
    }
    if (discrepancies_.empty()) {
        return std::nullopt;
    }
    std::vector<AtomIndex> atoms;
    Conflict modes;
    for (const AtomIndex observed : discrepancies_) {
        const auto ruledOut = ruledOut_.find(observed);
        if (ruledOut == ruledOut_.end()) {
            atoms.push_back(ruledOutBy(observed));
        } else {
            modes.insert(modes.end(), ruledOut->second.begin(), ruledOut->second.end());
        }
    }
    const Conflict behind = prediction_.environment(atoms);
    modes.insert(modes.end(), behind.begin(), behind.end());
    std::sort(modes.begin(), modes.end());
    modes.erase(std::unique(modes.begin(), modes.end()), modes.end());
    return modes;
}

// The value's atom is false, or, before its variable's clauses are propagated, another value is true.
AtomIndex Scenario::ruledOutBy(AtomIndex value) const
{
    if (prediction_.isKnown(value)) {
        return value;
    }
    const auto other = prediction_.valueOf(frame_.plant.variable(frame_.plant.variableOf(value)));
    return other.value_or(value);
}

std::optional<Conflict> conflictByCases(const Scenario& scenario)
{
    const Plant& plant = scenario.frame().plant;
    const auto refutation = refuteByCases(plant, scenario.prediction());
    if (!refutation) {
        return std::nullopt;
    }
    Conflict conflict;
    for (const AtomIndex atom : refutation->assumed) {
        if (plant.variable(plant.variableOf(atom)).isMode) {
            conflict.push_back(plant.variableOf(atom));
        }
    }
    std::sort(conflict.begin(), conflict.end());
    conflict.erase(std::unique(conflict.begin(), conflict.end()), conflict.end());
    return conflict;
}

std::vector<bool> suspectsOf(const Scenario& scenario, const std::vector<Conflict>& conflicts,
                             const std::vector<bool>& fixed, int faultBudget)
{
    const Plant& plant = scenario.frame().plant;
    ModeFreedom freedom{fixed, std::vector<bool>(plant.variables().size(), false)};
    for (const ModeStep& step : scenario.frame().modes) {
        const auto index = static_cast<std::size_t>(step.variable);
        freedom.free[index] = !fixed[index] && step.deviatesFreely();
    }
    return suspects(plant, conflicts, freedom, faultBudget);
}

} // namespace monitor
