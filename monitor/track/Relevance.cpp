// A contradiction rests on modes, and these on what the guards of their transitions read at steps before.
#include "monitor/track/Relevance.h"

#include "monitor/step/LocalStep.h"
#include "monitor/track/ConflictGroups.h"

#include <algorithm>

namespace monitor {

namespace {

// At least one mode of each is not as predicted.
std::vector<Conflict> conflictsOf(const Successors& successors, const StepFrame& frame)
{
    if (const auto local = LocalStep::of(frame)) {
        const ConnectedVariables connected(local->frame().plant);
        return local->inWhole(conflictGroupsOf(local->frame(), connected).conflicts);
    }
    if (isExpected(frame)) {
        return {};
    }
    return conflictGroupsOf(frame, successors.connected()).conflicts;
}

// The modes and readings on which the labels of these atoms rest, for reasons that do not depend on the steps before.
std::vector<VariableIndex> assumptionsBehind(const Plant& plant, const Hypothesis& hypothesis,
                                             const std::vector<AtomIndex>& atoms)
{
    const StepLabels& labels = hypothesis.labels;
    std::vector<VariableIndex> variables;
    for (const AtomIndex atom : atoms) {
        variables.push_back(plant.variableOf(atom));
    }
    const auto part =
        labels.consistent() && labels.assumptions().modes.size() == plant.modes().size()
            ? plant.parts().around(variables)
            : nullptr;
    if (!part) {
        return labels.afresh().prediction().assumptionsBehind(atoms);
    }
    const CommandValues given = hypothesis.steps
                                    ? hypothesis.steps->given()
                                    : CommandValues(plant, labels.assumptions().commands);
    std::vector<AtomIndex> here;
    for (const AtomIndex atom : atoms) {
        here.push_back(*part->here(atom));
    }
    std::vector<VariableIndex> behind =
        labels.afreshWithin(*part, given).prediction().assumptionsBehind(here);
    for (VariableIndex& variable : behind) {
        variable = part->variableInWhole(variable);
    }
    return behind;
}

} // namespace

std::vector<bool> variablesAgainst(const Successors& successors, const Plant& plant,
                                   const std::vector<const Hypothesis*>& contradicted,
                                   const std::vector<const Hypothesis*>& earlier,
                                   const TrackInput& present)
{
    std::vector<bool> relevant(plant.variables().size(), false);
    std::vector<VariableIndex> open;
    const auto reach = [&](VariableIndex variable) {
        if (!relevant[static_cast<std::size_t>(variable)]) {
            relevant[static_cast<std::size_t>(variable)] = true;
            open.push_back(variable);
        }
    };
    for (const Hypothesis* hypothesis : contradicted) {
        const StepFrame frame = successors.frame(*hypothesis, present, {});
        for (const Conflict& conflict : conflictsOf(successors, frame)) {
            std::for_each(conflict.begin(), conflict.end(), reach);
        }
    }
    while (!open.empty()) {
        const std::vector<AtomIndex> atoms = guardAtoms(plant, open.back());
        open.pop_back();
        if (atoms.empty()) {
            continue;
        }
        const auto reachThrough = [&](const Hypothesis* hypothesis) {
            const auto grounds = assumptionsBehind(plant, *hypothesis, atoms);
            std::for_each(grounds.begin(), grounds.end(), reach);
        };
        std::for_each(contradicted.begin(), contradicted.end(), reachThrough);
        std::for_each(earlier.begin(), earlier.end(), reachThrough);
    }
    return relevant;
}

} // namespace monitor
