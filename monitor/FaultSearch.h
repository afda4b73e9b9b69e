// The search of a step, over as many engine searches as it takes.
//
// One engine search is enough where the suspects are few. Where they are many it flips labels all over the plant
// before it finds that nothing justifies them; then, after some records, the search is taken apart: for each mode
// of the smallest conflict, and each value that it may have, the step is predicted with that value, the conditions
// that it leaves open are given each of their values in turn, and what is still contradicted is searched in the
// same way with one fault less. Modes that were taken before are fixed in what follows, so no set of faults is
// looked for twice, and none is missed: every explanation has a first member in the conflict.
#pragma once

#include "monitor/EngineSearch.h"

#include <chrono>
#include <set>

namespace monitor {

/// The explanations of one step within a number of faults.
class FaultSearch {
public:
    FaultSearch(itms& engine, const StepFrame& frame, const SearchLimits& limits);

    /// Searches explanations of the frame's observations with at most `faultBudget` faults.
    void run(int faultBudget);

    /// Mode values other than predicted, each sorted; a superset of another one may be among them.
    const std::set<Deviations>& found() const { return found_; }
    /// Every explanation within the bound contains one of those found.
    bool complete() const { return complete_; }
    SearchLimit limit() const { return limit_; }
    const SearchWork& work() const { return work_; }

private:
    /// Records after which a search is taken apart. A search of the usual size stays below; of one that does not,
    /// this much is lost.
    static constexpr std::uint64_t recordsBeforeSplit = 5000;

    void explain(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget);
    void split(const Scenario& scenario, std::vector<bool> fixed, int faultBudget,
               const Conflict& conflict);
    void splitOpenCondition(const Scenario& scenario, const std::vector<bool>& fixed,
                            int faultBudget, VariableIndex condition);
    bool searchDirectly(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget);
    void addFound(const Scenario& scenario, const Deviations& further);
    bool exhausted();
    SearchLimits remaining() const;
    std::optional<VariableIndex> openConditionOfAssumed(const Scenario& scenario) const;
    const ModeStep& stepOf(VariableIndex variable) const;

    itms& engine_;
    const StepFrame& frame_;
    SearchLimits limits_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::set<Deviations> found_;
    bool complete_ = true;
    SearchLimit limit_ = SearchLimit::none;
    SearchWork work_;
};

} // namespace monitor
