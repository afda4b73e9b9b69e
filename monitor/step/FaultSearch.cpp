// Branching over a conflict: every explanation deviates in at least one of its modes. The first of them that deviates is chosen;
// the ones before it are fixed, so the branches have no explanation in common and together miss none. The
// engine takes over where one fault is left, or where nothing was chosen yet.
#include "monitor/step/FaultSearch.h"

#include "monitor/labels/Completion.h"

#include <algorithm>

namespace monitor {

FaultSearch::FaultSearch(itms& engine, const StepFrame& frame, const SearchLimits& limits,
                         std::uint64_t recordsBeforeSplit)
    : FaultSearch([&engine]() -> itms& { return engine; }, frame, limits, recordsBeforeSplit)
{
}

FaultSearch::FaultSearch(std::function<itms&()> engine, const StepFrame& frame,
                         const SearchLimits& limits, std::uint64_t recordsBeforeSplit)
    : engine_(std::move(engine)), frame_(frame), budget_(limits),
      recordsBeforeSplit_(recordsBeforeSplit)
{
}

void FaultSearch::run(int faultBudget)
{
    explain({}, std::vector<bool>(frame_.plant.variables().size(), false), faultBudget);
}

// Looks for the explanations that deviate as given, keep the fixed variables as they are then, and have at most so
// many faults more. Where a fault was split off and another may follow, the next one is split off at once.
void FaultSearch::explain(const Deviations& deviations, const std::vector<bool>& fixed,
                          int faultBudget)
{
    if (exhausted()) {
        return;
    }
    const Scenario scenario(frame_, deviations);
    if (scenario.consistent() && scenario.discrepancies().empty()) {
        settle(scenario, fixed, faultBudget);
        return;
    }
    // Its search starts from observations that contradict their labels; modes that contradict one another are taken apart here.
    const bool forEngine =
        scenario.consistent() && scenario.complete() && (deviations.empty() || faultBudget <= 1);
    if (!forEngine || !searchDirectly(scenario, fixed, faultBudget)) {
        split(scenario, scenario.conflicts(), fixed, faultBudget);
    }
}

// Every further explanation on this way contains the scenario's deviations: they are all that is wanted of it, if
// they are one themselves. Where trying values shows that they are not, that rests on modes, too.
void FaultSearch::settle(const Scenario& scenario, const std::vector<bool>& fixed, int faultBudget)
{
    if (completionOf(frame_.plant, scenario.prediction()) == Completion::possible) {
        addFound(scenario, {});
    } else if (const std::optional<Conflict> conflict = conflictByCases(scenario)) {
        split(scenario, {*conflict}, fixed, faultBudget);
    } else {
        complete_ = false;
    }
}

// At least one mode of the smallest conflict is not as the scenario has it: each of them in turn, the earlier ones
// fixed.
void FaultSearch::split(const Scenario& scenario, const std::vector<Conflict>& conflicts,
                        std::vector<bool> fixed, int faultBudget)
{
    budget_.spendRecord();
    const std::vector<bool> suspect = suspectsOf(scenario, conflicts, fixed, faultBudget);
    const auto smallest =
        std::min_element(conflicts.begin(), conflicts.end(),
                         [](const Conflict& a, const Conflict& b) { return a.size() < b.size(); });
    for (const VariableIndex variable : *smallest) {
        const auto index = static_cast<std::size_t>(variable);
        if (!suspect[index]) {
            continue;
        }
        fixed[index] = true;
        for (const ModeOption& option : frame_.stepOf(variable).options) {
            const int left = faultBudget - (option.fault ? 1 : 0);
            if (left >= 0 && !scenario.prediction().isTrue(option.value)) {
                Deviations deviations = scenario.deviations();
                deviations.push_back(option.value);
                explain(deviations, fixed, left);
            }
        }
    }
}

// False when there may be explanations that the search did not find; what it found stands.
bool FaultSearch::searchDirectly(const Scenario& scenario, const std::vector<bool>& fixed,
                                 int faultBudget)
{
    SearchLimits limits = budget_.remaining();
    limits.maxRecords = std::min(limits.maxRecords, recordsBeforeSplit_);
    limits.maxSeconds /=
        4; // where the engine takes long, there is time left for taking the search apart
    const SearchOutcome outcome = searchWithEngine(engine_(), scenario, fixed, faultBudget, limits);
    SearchWork work = outcome.work;
    work.candidates = 0; // counted when they are new
    budget_.spend(work);
    for (const Deviations& candidate : outcome.candidates) {
        addFound(scenario, candidate);
    }
    return outcome.exhaustive;
}

void FaultSearch::addFound(const Scenario& scenario, const Deviations& further)
{
    Deviations all = further;
    all.insert(all.end(), scenario.deviations().begin(), scenario.deviations().end());
    std::sort(all.begin(), all.end());
    if (found_.insert(std::move(all)).second) {
        budget_.spendCandidate();
    }
}

// Asked before each piece of the search: whatever a limit keeps from being searched makes the answer incomplete.
bool FaultSearch::exhausted()
{
    if (!budget_.exhausted()) {
        return false;
    }
    complete_ = false;
    return true;
}

} // namespace monitor
