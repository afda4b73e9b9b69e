// Why an observation cannot be, given what is assumed: conflicts with all that they rest on.
//
// Observed is b.out=0. Command a.request=open opens a, so a.out=1 (the law of a), b.in=1 (the law between them), and,
// b being open, b.out=1 (the law of b). The conflict is what this rests on, in the order in which it was applied: the
// modes a=open and b=open and three laws. At least one of the modes is not as assumed. See "Diagnosing multiple
// faults", Artificial Intelligence 32, 1987.
//
// monitor/why/ConflictCheck.h confirms a conflict in another way.
#pragma once

#include "monitor/labels/CaseRefutation.h"
#include "monitor/step/Scenario.h"

#include <optional>

namespace monitor {

/// A clause that was applied: a law, or that a variable has exactly one value.
struct Inference {
    ClauseIndex clause;
    /// What it gave, all its other literals being false; none where it ends the conflict: then all of them are false.
    std::optional<PlantLiteral> gives;
};

/// A mode that a conflict rests on.
struct AssumedMode {
    AtomIndex value;
    AtomIndex before; ///< the value before the step
    /// The nominal transition from the one to the other; null: none.
    const PlantChange::Alternative* followed = nullptr;
};

struct DerivedConflict {
    /// The observation that is contradicted. None: modes, commands and readings leave no values for the other variables.
    std::optional<AtomIndex> observed;
    /// The value that follows instead of the observed one. None: no more than that it is not the observed one.
    std::optional<AtomIndex> expected;
    std::vector<AssumedMode> modes;  ///< by rising index of the variable
    std::vector<AtomIndex> commands; ///< that are given; by rising index, too
    std::vector<AtomIndex> readings; ///< other observations, of variables that nothing predicts; the same
    std::vector<Inference> inferences; ///< each after those that it needs
    /// Found by trying every value of variables that stay open: the inferences are those of all cases together.
    bool byCases = false;
};

/// The conflicts of a scenario: one for each of its discrepancies, in their order; or the one of modes and commands that
/// contradict the laws; or, where nothing is contradicted and still no values for the open variables are possible, one
/// that is found by cases, if that takes no more than `mostCases` of them. Costs a prediction for each discrepancy.
std::vector<DerivedConflict> deriveConflicts(const Scenario& scenario,
                                             std::size_t mostCases = mostCasesTried);

} // namespace monitor
