// The search of a step, over as many engine searches as it takes.
//
// One engine search is enough where every atom has a label and the suspects are few. Where the suspects are many it
// flips labels all over the plant before it finds that nothing justifies them, and where atoms are unknown it may
// miss explanations. Then the search is taken apart: for each mode of the smallest conflict, and each value that it may
// have, the step is predicted with that value, and what is still contradicted is searched in the same way with one
// fault less. Modes that were taken before are fixed in what follows, so no set of faults is looked for twice, and
// none is missed: every explanation has a first member in the conflict. Where nothing is contradicted any more the
// modes taken are an explanation, once values for what they leave open are found.
#pragma once

#include "monitor/step/Budget.h"
#include "monitor/step/EngineSearch.h"

#include <functional>
#include <set>

namespace monitor {

/// The explanations of one step within a number of faults.
class FaultSearch {
public:
    /// Records after which an engine search is taken apart. A search of the usual size stays below; of one that
    /// does not, this much is lost.
    static constexpr std::uint64_t usualRecordsBeforeSplit = 100;

    /// Engine and frame outlive the search. The limits are for all that run() does: what the engine expands, and
    /// every conflict that is taken apart here, is a record.
    FaultSearch(itms& engine, const StepFrame& frame, const SearchLimits& limits,
                std::uint64_t recordsBeforeSplit = usualRecordsBeforeSplit);
    /// The same, with an engine that is asked for when it has something to do.
    FaultSearch(std::function<itms&()> engine, const StepFrame& frame, const SearchLimits& limits,
                std::uint64_t recordsBeforeSplit = usualRecordsBeforeSplit);

    /// Searches explanations of the frame's observations with at most `faultBudget` faults.
    void run(int faultBudget);

    /// Mode values other than predicted, each sorted. To be judged: a superset of another one may be among them, and
    /// one that the observations contradict.
    const std::set<Deviations>& found() const { return found_; }
    /// Every explanation within the bound contains one of those found. False under a limit that cut the search,
    /// and where it could not be settled within a bound whether there are values for what modes leave open.
    bool complete() const { return complete_; }
    /// The limit that cut the search, if one did.
    SearchLimit limit() const { return budget_.limit(); }
    const SearchWork& work() const { return budget_.work(); }

private:
    void explain(const Deviations& deviations, const std::vector<bool>& fixed, int faultBudget);
    void settle(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget);
    void split(const Scenario& scenario, const std::vector<Conflict>& conflicts,
               std::vector<bool> fixed, int faultBudget);
    bool searchDirectly(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget);
    void addFound(const Scenario& scenario, const Deviations& further);
    bool exhausted();

    std::function<itms&()> engine_;
    const StepFrame& frame_;
    Budget budget_;
    std::uint64_t recordsBeforeSplit_;
    std::set<Deviations> found_;
    bool complete_ = true;
};

} // namespace monitor
