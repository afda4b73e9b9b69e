#include "monitor/why/ConflictHistory.h"

#include "monitor/labels/Meter.h"

namespace monitor {

void ConflictHistory::add(const TrackInput& input, const TrackAnswer& answer)
{
    bool others = false;
    for (const std::size_t index : answer.contradicted) {
        const Contradiction contradiction{answer.before[index], index + 1, input};
        (index == 0 ? ofBest_ : ofOthers_).push_back(contradiction);
        others = others || index > 0;
    }
    stepsOfOthers_ += others ? 1 : 0;
    if (mostSteps_ == 0) {
        return;
    }
    if (ofBest_.size() > mostSteps_) {
        ofBest_.pop_front();
        ++leftOut_;
    }
    if (stepsOfOthers_ > mostSteps_) {
        const std::size_t oldest = ofOthers_.front().input.step;
        while (ofOthers_.front().input.step == oldest) {
            ofOthers_.pop_front();
        }
        --stepsOfOthers_;
    }
}

std::vector<CheckedConflict> conflictsOf(const Plant& plant, const Contradiction& contradiction)
{
    std::vector<CheckedConflict> checked;
    try {
        const StepFrame frame = frameAfter(plant, *contradiction.believed, contradiction.input, {});
        for (DerivedConflict& conflict : deriveConflicts(Scenario(frame, {}))) {
            const ConflictClaim claim = claimOf(plant, conflict);
            const ConflictCheck outcome = checkConflict(claim);
            std::optional<bool> counts;
            if (outcome == ConflictCheck::confirmed) {
                counts = everyValueCounts(claim);
            }
            checked.push_back({std::move(conflict), outcome, counts});
        }
    } catch (const Meter::Cut&) { // those that there are already stand
    }
    return checked;
}

ConflictClaim claimOf(const Plant& plant, const DerivedConflict& conflict)
{
    ConflictClaim claim;
    for (const AssumedMode& mode : conflict.modes) {
        claim.values.push_back(plant.atom(mode.value));
    }
    for (const AtomIndex command : conflict.commands) {
        claim.values.push_back(plant.atom(command));
    }
    for (const AtomIndex reading : conflict.readings) {
        claim.values.push_back(plant.atom(reading));
    }
    if (conflict.observed) {
        claim.values.push_back(plant.atom(*conflict.observed));
    }
    for (const Inference& inference : conflict.inferences) {
        claim.clauses.push_back(plant.modelClause(inference.clause));
    }
    return claim;
}

} // namespace monitor
