// Explanations along time: keeps the most plausible hypotheses of everything seen so far, step by step.
//
//     Tracker tracker(engine, plant, {.maxFaults = 2});
//     while (more) { const TrackAnswer& answer = tracker.advance(input); ... }
//
// Every kept hypothesis is predicted, together with what else is quite probable at the step; one that contradicts the observations
// is replaced by its smallest explanations (monitor/track/Successors.h). When those that predict the step had less than half of the
// probability before it, earlier steps are gone back to as well (monitor/track/LookBack.h): that some unlikely hypothesis predicts
// anything does not keep better explanations from being looked for. Ways that lead to the same modes are one hypothesis, whose
// probabilities add up. The most probable ones go on.
#pragma once

#include "monitor/labels/Meter.h"
#include "monitor/track/LookBack.h"

namespace monitor {

struct TrackSettings {
    /// Faults of a hypothesis that are there, and faults and lost commands that began within the look-back, >= 0. A larger bound
    /// finds more, and costs more.
    int maxFaults = 3;
    std::size_t keep = 8; ///< hypotheses kept after a step, at least 1
    /// Steps that may be gone back to, 0 for none. Each keeps its hypotheses in memory.
    std::size_t lookBack = 10;
    SearchLimits limits = {}; ///< of each step; replayed steps count as records
    WorkLimits work = {};     ///< of each step
    /// What else than expected is at least so probable, 0..1, compared with the most probable of all, is followed though nothing
    /// contradicts what is expected; and so is the end of a fault, however improbable. With 0 everything that is possible is
    /// followed, and nothing is searched: for small plants. Above 1 nothing is.
    double follow = 0.05;
};

enum class TrackStatus {
    nominal, ///< the best hypothesis has more than half of the probability, and nothing is wrong in it
    faulty,       ///< the same, and something is
    ambiguous,    ///< no hypothesis has more than half of it
    inconsistent, ///< nothing explains the observations within the bound on faults; predictions go on
    stale         ///< nothing was observed at this step: predictions only
};

/// The name of a status: "nominal", "faulty", "ambiguous", "inconsistent", "stale".
const char* name(TrackStatus status);

struct TrackAnswer {
    std::size_t step = 0;
    double t = 0.0; ///< seconds
    TrackStatus status = TrackStatus::nominal;
    bool complete = true; ///< no search was cut and none left something open
    SearchLimit limit = SearchLimit::none;
    bool approximate =
        false; ///< the likelihood of a kept hypothesis had to be estimated (StepLabels.h)
    std::vector<HypothesisPointer> before; ///< that were kept before the step
    /// Indices in `before`: what these predict does not explain the step.
    std::vector<std::size_t> contradicted;
    std::vector<HypothesisPointer> hypotheses; ///< that are kept, most probable first
    std::vector<double> probabilities;         ///< of these; they add up to 1
    std::size_t dropped = 0;                   ///< hypotheses beyond those that are kept
    /// An upper bound of the probability of what was given up, here or at a step before: hypotheses beyond those that are kept, and
    /// what a limit or another bound kept from being searched, as if it had predicted all that was observed since.
    double missing = 0.0;
    /// The probability, by the model's rates, that a fault began at one of the last steps, as many as may be gone back to, that is in
    /// no hypothesis: an upper bound, since it might have shown. 0 where everything is followed.
    double silent = 0.0;
    bool wentBack = false; ///< earlier steps were gone back to
    SearchWork work;
    /// Literals of laws that were looked at, or what costs as much, whether that counts towards a limit or not: a measure of the work. It
    /// is not the same in a run that was resumed.
    std::uint64_t lookedAt = 0;
};

/// What a tracker remembers between steps; enough to go on elsewhere with the same model.
struct TrackMemory {
    std::vector<HypothesisPointer> hypotheses;
    std::deque<PastStep> past; ///< oldest first
    /// Natural logarithm of a bound of the weight of what was given up; minus infinity: none. The hypotheses have 0 together.
    double logMissing = -std::numeric_limits<double>::infinity();
};

class Tracker {
public:
    /// Searches with an engine that is set up over the plant. Both outlive the tracker.
    Tracker(itms& engine, const Plant& plant, const TrackSettings& settings);
    /// Searches in a way of the caller's. The plant outlives the tracker.
    Tracker(std::shared_ptr<ExplanationSearch> search, const Plant& plant,
            const TrackSettings& settings);

    /// Takes a step. What contradicts the model is not an error but an answer, so nothing is thrown for it. Memory and
    /// time of a step do not grow with the number of steps taken.
    const TrackAnswer& advance(const TrackInput& input);

    /// The latest answer.
    const TrackAnswer& answer() const { return answer_; }

    const TrackMemory& memory() const { return memory_; }
    /// Goes on from a memory. Requires: that of a tracker of the same plant, with at least one hypothesis.
    void restore(TrackMemory memory) { memory_ = std::move(memory); }

private:
    class Step;

    Tracker(Successors successors, const Plant& plant, const TrackSettings& settings);

    const Plant& plant_;
    TrackSettings settings_;
    Successors successors_;
    TrackMemory memory_;
    TrackAnswer answer_;
};

} // namespace monitor
