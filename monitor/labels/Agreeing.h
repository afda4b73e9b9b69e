// Which observations to go by where some contradict the modes, or one another.
//
// Taken one by one, the first of two that contradict each other would be believed and the second would not. So neither is, nor is
// anything that hangs together with them: which ones are left does not depend on their order.
#pragma once

#include "monitor/labels/StepLabels.h"

namespace monitor {

struct AgreeingLabels {
    StepLabels labels; ///< with the observations that agree
    /// The others, in the order of the observations: those that the assumptions rule out, and of what the assumptions leave open all
    /// that the laws connect with a contradiction. Inputs are only where they contradict one another. All of them where the assumptions alone are contradictory.
    std::vector<AtomIndex> leftOut;
};

/// Requires: the labels took assumptions and observations. Ensures that something is left out if there is no way for all of these
/// to be true, but for what cannot be settled within a bound.
AgreeingLabels agreeing(const Plant& plant, const StepLabels& labels);

} // namespace monitor
