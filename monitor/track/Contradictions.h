// All that contradicts a step as it is expected, however the laws are written.
#pragma once

#include "monitor/step/Scenario.h"
#include "monitor/track/ConnectedVariables.h"

#include <vector>

namespace monitor {

struct Contradictions {
    /// The modes on which they rest; at least one for each group in which there is one.
    std::vector<Conflict> conflicts;
    std::vector<bool> groups; ///< by group of connected variables: whether there is one
    /// False: there may be others. So it is where modes and commands contradict the laws whatever is read, and where no
    /// contradiction is found at all.
    bool allSeen = false;

    bool isIn(VariableIndex group) const { return groups[static_cast<std::size_t>(group)]; }
};

/// The contradictions of the step, with all modes as predicted. Costs a prediction of the step, and as many more as there are
/// groups with a contradiction that only trying values shows.
Contradictions contradictionsOf(const StepFrame& frame, const ConnectedVariables& connected);

} // namespace monitor
