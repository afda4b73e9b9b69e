// The steps at which what was believed turned out wrong, as far as they are remembered.
//
//     ConflictHistory history;
//     while (more) { tracker.advance(input); history.add(input, tracker.answer()); }
//     for (const Contradiction& one : history.ofBest()) conflictsOf(plant, one);
//
// A hypothesis that a step contradicts is gone afterwards, and with it the reason why others took its place. Conflicts are
// derived when they are asked for: what is kept of a step is the hypothesis and the step's input.
#pragma once

#include "monitor/track/Tracker.h"
#include "monitor/why/ConflictCheck.h"
#include "monitor/why/DerivedConflict.h"

#include <deque>

namespace monitor {

/// A hypothesis, and the step that contradicts it.
struct Contradiction {
    HypothesisPointer believed; ///< before the step
    std::size_t rank = 1;       ///< among those that were believed; 1: the most probable one
    TrackInput input;
};

/// A conflict, and what the check says of it.
struct CheckedConflict {
    DerivedConflict conflict;
    ConflictCheck check;
    std::optional<bool> everyValueCounts; ///< none: not settled
};

class ConflictHistory {
public:
    /// Remembers the last `mostSteps` steps, 0 for all. Each holds its hypotheses in memory.
    explicit ConflictHistory(std::size_t mostSteps = 10) : mostSteps_(mostSteps) {}

    /// Takes note of a step.
    void add(const TrackInput& input, const TrackAnswer& answer);

    /// Of the most probable hypothesis before each step, oldest first.
    const std::deque<Contradiction>& ofBest() const { return ofBest_; }
    /// Of the other hypotheses, oldest step first and within it the most probable first.
    const std::deque<Contradiction>& ofOthers() const { return ofOthers_; }
    /// Earlier steps that contradicted the most probable hypothesis, and are not remembered.
    std::size_t leftOut() const { return leftOut_; }

private:
    std::size_t mostSteps_;
    std::deque<Contradiction> ofBest_;
    std::deque<Contradiction> ofOthers_;
    std::size_t stepsOfOthers_ = 0;
    std::size_t leftOut_ = 0;
};

/// The conflicts of a contradiction, each checked.
std::vector<CheckedConflict> conflictsOf(const Plant& plant, const Contradiction& contradiction);

/// What a conflict claims, by the model's objects.
ConflictClaim claimOf(const Plant& plant, const DerivedConflict& conflict);

} // namespace monitor
