// Which modes may be at fault at all, within a bound on the number of faults.
//
// Every discrepancy gives a conflict: the modes on which the contradicted label rests, of which at least one is
// not as predicted. An explanation hits every conflict ("A theory of diagnosis from first principles", Artificial
// Intelligence 32, 1987). Within one fault that leaves the modes common to all conflicts; within two,
// each mode for which the conflicts that it does not hit have one in common. What cannot be part of an
// explanation is locked, and with it every condition that rests on locked modes only: the search then stays
// where the fault can be.
#pragma once

#include "monitor/labels/ModeSteps.h"

namespace monitor {

using Conflict = std::vector<VariableIndex>; ///< mode variables, sorted

/// What is known of the mode variables when suspects are looked for; by variable index.
struct ModeFreedom {
    std::vector<bool> fixed; ///< keeps its predicted value
    std::vector<bool> free;  ///< may deviate without a fault
};

/// For each variable, whether it may deviate in an explanation of all conflicts with at most `faultBudget`
/// faults. Conflicts that a free variable can hit restrict nothing, and above two faults nothing is restricted.
/// All false when no explanation exists. Linear in the conflicts (quadratic within two faults).
std::vector<bool> suspects(const Plant& plant, const std::vector<Conflict>& conflicts,
                           const ModeFreedom& freedom, int faultBudget);

} // namespace monitor
