// Which ways count already in the probability of a hypothesis, so that each counts once.
//
// Hypotheses that have the same future after a step are one, whose weight is the sum over the ways that lead to them. Going
// back may come to the same modes by a way that was not followed before, which has to be added, or by one that was, which must
// not count twice. So each past step keeps the passages from the hypotheses before it to those after it: a way all of whose
// passages are kept counts.
#pragma once

#include "monitor/track/Hypothesis.h"

#include <compare>
#include <deque>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace monitor {

/// What a step made of a hypothesis.
struct Passage {
    std::size_t from;            ///< its place among those before the step
    std::size_t to;              ///< that of what it became, among those after the step
    std::vector<AtomIndex> lost; ///< commands of the step that did not arrive

    friend auto operator<=>(const Passage&, const Passage&) = default;
};

/// A step that is over.
struct PastStep {
    TrackInput input;
    std::vector<HypothesisPointer> before; ///< what was believed before it
    double logScale =
        0.0; ///< what the weights of the hypotheses after it were scaled by: subtracted
    std::set<Passage> passages; ///< the ways that count
    /// Natural logarithm of the probability, by the model's rates, that no fault began at it but those that are believed.
    double logCalm = 0.0;
    bool unexplained = false; ///< nothing explained it
};

/// A way through the last steps, up to the present one.
struct Way {
    std::size_t begin =
        0; ///< index of the past step at which it leaves what was believed; their number: the present step
    std::size_t parent = 0;       ///< place of the hypothesis before that step
    std::vector<Hypothesis> path; ///< after that step and after each since, without the present one
    SharedArray<AtomIndex> modes; ///< after the present step
    std::vector<AtomIndex> lost;  ///< commands of the present step that did not arrive

    /// Modes and lost commands after each of its steps.
    std::vector<std::pair<SharedArray<AtomIndex>, std::vector<AtomIndex>>> steps() const;
};

/// log(exp(a) + exp(b)), without overflow; also of minus infinity, which stands for nothing.
double logOfSum(double a, double b);

/// The place of the hypothesis with the same future; their number when there is none.
std::size_t placeOf(const Plant& plant, const std::vector<HypothesisPointer>& hypotheses,
                    const Hypothesis& wanted);

/// The way without the passages at its beginning that count already: it begins where it leaves them. `now` is what is believed
/// before the present step, the last to which passages lead. Linear in the way times the hypotheses.
Way withoutKnownBeginning(const Plant& plant, Way way, const std::deque<PastStep>& past,
                          const std::vector<HypothesisPointer>& now);

/// Enters the path of a way into what was believed after each of its steps, where its weight is added, and its passages as far as
/// they lead. No step is to believe more than `most`. Returns the place before the present step to which the way leads, if it does.
std::optional<std::size_t> enter(const Plant& plant, const Way& way, std::deque<PastStep>& past,
                                 std::vector<HypothesisPointer>& now, std::size_t most);

} // namespace monitor
