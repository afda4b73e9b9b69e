// A contradiction rests on modes, and these on what the guards of their transitions read at steps before.
#include "monitor/track/Relevance.h"

#include "monitor/track/ConflictGroups.h"

#include <algorithm>

namespace monitor {

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
        for (const Conflict& conflict : conflictGroupsOf(frame, successors.connected()).conflicts) {
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

} // namespace monitor
