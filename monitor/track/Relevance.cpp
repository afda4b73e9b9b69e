// A contradiction rests on modes, and these on what the guards of their transitions read at steps before.
#include "monitor/track/Relevance.h"

#include "monitor/track/ConnectedVariables.h"

#include <algorithm>

namespace monitor {

namespace {

// The atoms, other than commands and values of the variable itself, on which transitions of a mode variable depend.
std::vector<AtomIndex> guardAtoms(const Plant& plant, VariableIndex index)
{
    std::vector<AtomIndex> atoms;
    for (const AtomIndex from : plant.variable(index).values) {
        for (const PlantChange& change : plant.changesFrom(from)) {
            for (const PlantChange::Alternative& alternative : change.alternatives) {
                for (const PlantLiteral& literal : alternative.literals) {
                    if (!plant.variable(plant.variableOf(literal.atom)).isCommand) {
                        atoms.push_back(literal.atom);
                    }
                }
            }
        }
    }
    return atoms;
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
        const Scenario scenario(frame, {});
        std::vector<Conflict> conflicts = scenario.conflicts();
        if (conflicts.empty()) {
            conflicts.push_back(conflictByCases(scenario).value_or(Conflict()));
        }
        for (const Conflict& conflict : conflicts) {
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
            const StepLabels labels = hypothesis->labels.afresh();
            const auto grounds = labels.prediction().assumptionsBehind(atoms);
            std::for_each(grounds.begin(), grounds.end(), reach);
        };
        std::for_each(contradicted.begin(), contradicted.end(), reachThrough);
        std::for_each(earlier.begin(), earlier.end(), reachThrough);
    }
    return relevant;
}

std::vector<bool> thatMatterLater(const Plant& plant)
{
    ConnectedVariables connected(plant);
    std::vector<bool> read(plant.variables().size(), false); // by group
    const auto count = static_cast<VariableIndex>(plant.variables().size());
    for (VariableIndex i = 0; i < count; ++i) {
        if (plant.variable(i).isMode) {
            for (const AtomIndex atom : guardAtoms(plant, i)) {
                read[static_cast<std::size_t>(connected.groupOf(plant.variableOf(atom)))] = true;
            }
        }
    }
    std::vector<bool> matter;
    for (VariableIndex i = 0; i < count; ++i) {
        matter.push_back(plant.variable(i).isMode ||
                         read[static_cast<std::size_t>(connected.groupOf(i))]);
    }
    return matter;
}

} // namespace monitor
