// Going back: faults that happened at earlier steps and show only now.
//
// A valve that got stuck while nothing was asked of it agrees with every reading until it is asked to move. The monitor keeps
// the last steps, and what was believed before each of them. When a step is not predicted, each deviation that would have
// gone unnoticed at one of these steps is an alternative: it is taken up there, and the steps since are replayed with it.
// The most probable alternatives come first. An alternative is one deviation or one lost command; where one alone does not explain the
// present step, others are tried beside it. What is found has no deviation that could be left out.
#pragma once

#include "monitor/track/Passages.h"
#include "monitor/track/Successors.h"

#include <deque>
#include <limits>

namespace monitor {

/// A way that deviates at an earlier step, and would not lead to the present with one deviation less.
struct Replay {
    std::size_t begin = 0;  ///< index of the past step at which it deviates
    std::size_t parent = 0; ///< place of the hypothesis before that step
    std::vector<Hypothesis>
        way; ///< after that step, and after each since; the last one is after the present step
};

struct LookBackResult {
    std::vector<Replay> found;
    bool complete =
        true; ///< all alternatives were tried, and what was searched on the way was searched to its end
    SearchLimit limit = SearchLimit::none;
    SearchWork work; ///< every replayed step is a record, every way that is found a candidate
    /// Natural logarithm of a bound of the weight of the alternatives that were not tried; minus infinity: none.
    double logUntried = -std::numeric_limits<double>::infinity();
};

/// What is done where an alternative does not predict a step since.
enum class Otherwise {
    givenUp,  ///< nothing
    searched, ///< the step is searched in turn
    combined  ///< another alternative is tried beside it, at the same step or at one since
};

struct LookBackSettings {
    int maxFaults = 0; ///< along the whole trajectory
    SearchLimits limits;
    Otherwise otherwise = Otherwise::givenUp;
    std::size_t first = 0; ///< index of the first of the past steps that may be gone back to
};

/// Takes up the alternatives of the past steps (oldest first in `past`) that explain these and the present step. `now` is
/// what is believed before the present step, and contradicted by it. The weights of what it finds compare with those
/// of successors of `now`. Where steps are not searched in turn, only those variables are tried on which a contradiction rests.
LookBackResult lookBack(Successors& successors, const Plant& plant,
                        const std::deque<PastStep>& past, const std::vector<HypothesisPointer>& now,
                        const TrackInput& present, const LookBackSettings& settings);

} // namespace monitor
