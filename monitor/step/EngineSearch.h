// One search by the engine: a scenario's discrepancies in, candidates out.
//
// The state starts with the components of the discrepant observations; the search asks for every further
// component when it first meets one of its atoms, and gets it labelled as the scenario predicts. What is observed
// or commanded is locked, and so are mode values that no transition reaches, modes that no explanation within
// the fault budget needs, and conditions that rest on such modes only.
#pragma once

#include "engine/itms.h"
#include "monitor/step/Scenario.h"

namespace monitor {

/// What a search found.
struct SearchOutcome {
    /// Mode values other than the scenario's: each satisfies every law around what it changes; none twice.
    std::vector<Deviations> candidates;
    bool exhaustive = false; ///< every explanation contains one of them
    SearchWork work;         ///< `partial` when a limit cut it
};

/// Searches the explanations of the scenario's discrepancies with at most `faultBudget` further faults, none of
/// them among the `fixed` variables (by variable index). Without discrepancies the engine has one record to
/// accept. Requires: `engine` is set up over the scenario's plant, and its registry is in use. Ensures: the registry's
/// limits are as before, and the benchmark entries are empty.
///
/// The search is exhaustive when it ran to its end from a scenario that labels every atom. It is not when the engine
/// refused an observation (of a blocked command), when a command follows from modes in doubt (the engine gives no
/// command that was not given), or when the engine has prime implicates, which narrow what it tries.
SearchOutcome searchWithEngine(itms& engine, const Scenario& scenario,
                               const std::vector<bool>& fixed, int faultBudget,
                               const SearchLimits& limits);

} // namespace monitor
