#include "monitor/FaultSearch.h"

#include <algorithm>

namespace monitor {

FaultSearch::FaultSearch(itms& engine, const StepFrame& frame, const SearchLimits& limits)
    : engine_(engine), frame_(frame), limits_(limits)
{
}

void FaultSearch::run(int faultBudget)
{
    explain(Scenario(frame_, {}), std::vector<bool>(frame_.plant.variables().size(), false),
            faultBudget);
}

// Explains what a scenario leaves contradicted. Where a fault was split off and another may follow, the next one
// is split off at once.
void FaultSearch::explain(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget)
{
    if (exhausted()) {
        return;
    }
    if (!scenario.consistent()) {
        split(scenario, fixed, faultBudget, scenario.contradiction());
        return;
    }
    if (const auto condition = openConditionOfAssumed(scenario)) {
        splitOpenCondition(scenario, fixed, faultBudget, *condition);
        return;
    }
    complete_ = complete_ && scenario.complete();
    const bool first = scenario.assumptions().modes.empty();
    if (scenario.discrepancies().empty() && !first) {
        addFound(scenario, {});
        return;
    }
    if ((first || faultBudget <= 1) && searchDirectly(scenario, fixed, faultBudget)) {
        return;
    }
    const std::vector<Conflict> conflicts = scenario.conflicts();
    const auto smallest =
        std::min_element(conflicts.begin(), conflicts.end(),
                         [](const Conflict& a, const Conflict& b) { return a.size() < b.size(); });
    if (smallest != conflicts.end()) {
        split(scenario, fixed, faultBudget, *smallest);
    }
}

// At least one mode of the conflict is not as the scenario has it: each of them in turn, the earlier ones fixed.
void FaultSearch::split(const Scenario& scenario, std::vector<bool> fixed, int faultBudget,
                        const Conflict& conflict)
{
    for (const VariableIndex variable : conflict) {
        const auto index = static_cast<std::size_t>(variable);
        if (fixed[index]) {
            continue;
        }
        fixed[index] = true;
        for (const ModeOption& option : stepOf(variable).options) {
            const int left = faultBudget - (option.fault ? 1 : 0);
            if (left < 0 || scenario.prediction().isTrue(option.value)) {
                continue;
            }
            Assumptions assumptions = scenario.assumptions();
            assumptions.modes.push_back(option.value);
            explain(Scenario(frame_, std::move(assumptions)), fixed, left);
        }
    }
}

void FaultSearch::splitOpenCondition(const Scenario& scenario, const std::vector<bool>& fixed,
                                     int faultBudget, VariableIndex condition)
{
    for (const AtomIndex value : frame_.plant.variable(condition).values) {
        if (scenario.prediction().label(value) == Label::isFalse) {
            continue;
        }
        Assumptions assumptions = scenario.assumptions();
        assumptions.conditions.push_back(value);
        explain(Scenario(frame_, std::move(assumptions)), fixed, faultBudget);
    }
}

// False when the search was cut after recordsBeforeSplit records; what it found until then stands.
bool FaultSearch::searchDirectly(const Scenario& scenario, const std::vector<bool>& fixed,
                                 int faultBudget)
{
    SearchLimits limits = remaining();
    limits.maxRecords = std::min(limits.maxRecords, recordsBeforeSplit);
    const SearchOutcome outcome = searchWithEngine(engine_, scenario, fixed, faultBudget, limits);
    work_.records += outcome.work.records;
    work_.flips += outcome.work.flips;
    work_.components += outcome.work.components;
    for (const Deviations& candidate : outcome.candidates) {
        addFound(scenario, candidate);
    }
    return !outcome.work.partial;
}

void FaultSearch::addFound(const Scenario& scenario, const Deviations& further)
{
    Deviations all = further;
    all.insert(all.end(), scenario.assumptions().modes.begin(), scenario.assumptions().modes.end());
    std::sort(all.begin(), all.end());
    if (found_.insert(std::move(all)).second) {
        ++work_.candidates;
    }
}

// Asked before each piece of the search: whatever a limit keeps from being searched makes the answer incomplete.
bool FaultSearch::exhausted()
{
    const SearchLimits left = remaining();
    SearchLimit limit = SearchLimit::none;
    if (left.maxRecords == 0) {
        limit = SearchLimit::records;
    } else if (left.maxCandidates == 0) {
        limit = SearchLimit::candidates;
    } else if (left.stop && *left.stop) {
        limit = SearchLimit::stopped;
    } else if (left.maxSeconds <= 0.0) {
        limit = SearchLimit::seconds;
    }
    if (limit == SearchLimit::none) {
        return false;
    }
    limit_ = limit;
    complete_ = false;
    return true;
}

SearchLimits FaultSearch::remaining() const
{
    SearchLimits left = limits_;
    const auto take = [](std::uint64_t& from, std::uint64_t used) {
        if (from != SearchLimits::unlimited) {
            from -= std::min(from, used);
        }
    };
    take(left.maxRecords, work_.records);
    take(left.maxCandidates, found_.size());
    if (left.maxSeconds != std::numeric_limits<double>::infinity()) {
        left.maxSeconds -=
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    return left;
}

// A condition that the assumed modes leave open, in the component of one of them.
std::optional<VariableIndex> FaultSearch::openConditionOfAssumed(const Scenario& scenario) const
{
    for (const AtomIndex mode : scenario.assumptions().modes) {
        for (const StateVar* variable : *frame_.plant.atom(mode)->getVarComp()->stateVars) {
            for (const Atom* atom : *variable->atomLinks) {
                const AtomIndex index = frame_.plant.indexOf(atom);
                if (!scenario.prediction().isKnown(index)) {
                    return frame_.plant.variableOf(index);
                }
            }
        }
    }
    return std::nullopt;
}

const ModeStep& FaultSearch::stepOf(VariableIndex variable) const
{
    const auto found = std::lower_bound(
        frame_.modes.begin(), frame_.modes.end(), variable,
        [](const ModeStep& step, VariableIndex wanted) { return step.variable < wanted; });
    return *found;
}

} // namespace monitor
