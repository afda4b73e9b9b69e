// The fault-free twin of a hypothesis: the plant as it would be had no deviation happened on its way.
//
// It takes the same steps: every command arrives, and every mode does what is predicted of it, from the twin's own values. What is
// wrong with a plant is then what differs from its twin, however it came about: a relay that was toggled twice and obeyed once is
// as it should not be, though it never failed. A mode that was repaired is as it is meant to be, so the twin has its value from
// then on.
#pragma once

#include "monitor/labels/LastAnswers.h"
#include "monitor/track/Hypothesis.h"

namespace monitor {

/// What the labels of a twin are drawn from.
struct TwinQuestion {
    std::vector<AtomIndex> readings; ///< inputs first, each part in a fixed order
    std::size_t inputs;
    StepAssumptions assumptions;

    friend bool operator==(const TwinQuestion&, const TwinQuestion&) = default;
};
/// Most hypotheses of a step have one of a few twins, which stay as they are as long as nothing is done.
using LastTwins = LastAnswers<TwinQuestion, StepLabels>;

/// What the twin of a hypothesis is after a step. `made` has the modes after the step, the twin is what is asked for. `happened` is what
/// the step can do after the parent, with what was lost, `expected` the same when all commands arrive. Null
/// where it is no other than the hypothesis itself. Ensures: the answer does not depend on the order of the observations.
/// Constant time where the parent is its own twin and nothing deviates; else a prediction, and, where it is none of the last ones, the
/// propagation of every reading beside each one that contradicts the twin together with others.
TwinPointer twinAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                      const StepFrame& happened, const StepFrame& expected, const Hypothesis& made,
                      LastTwins& last);

} // namespace monitor
