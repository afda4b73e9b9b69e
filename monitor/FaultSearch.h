// The search of a step, over as many engine searches as it takes.
//
// One engine search is enough where the suspects are few. With two or more faults among many suspects it flips
// labels all over the plant before it finds that nothing justifies them. The first fault is split off then: for
// each mode of the smallest conflict, and each value that it may have, the step is predicted with that value, the
// conditions that it leaves open are given each of their values in turn, and what is still contradicted is
// searched with one fault less. Modes that were taken before are fixed in what follows, so no set of faults
// is looked for twice, and none is missed: every explanation has a first member in the conflict.
#pragma once

#include "monitor/EngineSearch.h"

#include <chrono>

namespace monitor {

/// The explanations of one step within a number of faults.
class FaultSearch {
public:
    FaultSearch(itms& engine, const StepFrame& frame, const SearchLimits& limits);

    /// Searches explanations of the frame's observations with at most `faultBudget` faults.
    void run(int faultBudget);

    /// Mode values other than predicted, sorted, none twice; a superset of another one may be among them.
    const std::vector<Deviations>& found() const { return found_; }
    bool complete() const { return complete_; }
    SearchLimit limit() const { return limit_; }
    const SearchWork& work() const { return work_; }

private:
    /// Records after which a search with several faults is taken apart.
    static constexpr std::uint64_t recordsBeforeSplit = 20000;

    void explain(const Scenario& scenario, std::vector<bool> fixed, int faultBudget);
    void split(const Scenario& scenario, std::vector<bool> fixed, int faultBudget,
               const Conflict& conflict);
    void splitOpenCondition(const Scenario& scenario, const std::vector<bool>& fixed,
                            int faultBudget, VariableIndex condition);
    bool searchDirectly(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget,
                        std::uint64_t maxRecords);
    void addFound(const Scenario& scenario, const Deviations& further);
    bool exhausted();
    SearchLimits remaining() const;
    std::optional<VariableIndex> openConditionOfAssumed(const Scenario& scenario) const;
    const ModeStep* stepOf(VariableIndex variable) const;

    itms& engine_;
    const StepFrame& frame_;
    SearchLimits limits_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::vector<Deviations> found_;
    bool complete_ = true;
    SearchLimit limit_ = SearchLimit::none;
    SearchWork work_;
};

} // namespace monitor
