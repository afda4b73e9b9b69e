// All that contradicts a step as it is expected, however the laws are written.
#pragma once

#include "monitor/step/Scenario.h"
#include "monitor/track/ConnectedVariables.h"

#include <vector>

namespace monitor {

/// The contradictions of a step, and the groups of connected variables in which they are.
struct ConflictGroups {
    /// The modes on which the contradictions rest.
    std::vector<Conflict> conflicts;
    std::vector<bool> groups; ///< by group: whether there is one in it
    /// False: there may be others. So it is where modes and commands contradict the laws whatever is read, and where no
    /// contradiction is found at all.
    bool allSeen = false;

    bool isIn(VariableIndex group) const { return groups[static_cast<std::size_t>(group)]; }
};

/// The contradictions of the step, with all modes as predicted. Costs a prediction of the step, and as many more as there are
/// groups with a contradiction that only trying values shows.
ConflictGroups conflictGroupsOf(const StepFrame& frame, const ConnectedVariables& connected);

} // namespace monitor
