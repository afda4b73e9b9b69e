// Labels that cannot be completed, and what that rests on.
//
// Laws (a | b), (a | !b), (!a | b) and (!a | !b) give nothing by themselves, and leave nothing possible: each value of a
// ends in a violated law. A refutation tries the values of the open variables, one variable after the other, and collects the
// laws and assumptions on which the violations rest. A violation that does not rest on the value tried last settles the
// other values of that variable as well (conflict-directed backjumping: "Hybrid algorithms for the constraint
// satisfaction problem", Computational Intelligence 9, 1993).
#pragma once

#include "monitor/labels/Prediction.h"

#include <set>

namespace monitor {

struct CaseRefutation {
    std::set<AtomIndex> assumed;   ///< of the labels that were given, those that count
    std::set<ClauseIndex> clauses; ///< with these, they cannot be completed
};

/// Values tried, at most, which bounds the depth of the recursion, too.
constexpr std::size_t mostCasesTried = 2000;

/// Requires: the labels are propagated without contradiction. Returns nothing when values for all open variables are possible, and
/// when `mostCases` values were tried without an end.
std::optional<CaseRefutation> refuteByCases(const Plant& plant, Prediction labels,
                                            std::size_t mostCases = mostCasesTried);

} // namespace monitor
