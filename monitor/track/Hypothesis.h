// One way in which everything seen so far may have come about.
#pragma once

#include "monitor/labels/StepLabels.h"
#include "monitor/step/Scenario.h"

#include <map>
#include <memory>

namespace monitor {

/// When a mode variable took a value that differs from what is expected of a plant without faults.
struct Since {
    AtomIndex value;
    std::size_t step; ///< 0: it began with it
    double t;         ///< of that step, in seconds
};

/// The plant after a step, as one explanation has it. Never changed once it is made.
struct Hypothesis {
    StepLabels labels;            ///< what holds after the step
    std::vector<AtomIndex> modes; ///< the value of every mode variable, in the plant's order
    /// Natural logarithm of the joint probability of this way and of all that was observed. After a step those of all
    /// kept hypotheses are scaled together, so that the probabilities add up to 1.
    double logWeight = 0.0;
    /// What the step alone contributed, before scaling, in the most probable way here.
    double logStep = 0.0;
    int faults = 0; ///< faults and lost commands so far, in the most probable way here
    std::map<VariableIndex, Since> since;
    std::vector<AtomIndex> lost;        ///< commands of this step that did not arrive
    std::vector<AtomIndex> unexplained; ///< observations of this step that contradict it
    bool exact = true; ///< the likelihood of this step's observations was counted, not estimated

    /// Whether something is not as in a plant without faults.
    bool differs() const { return !since.empty() || !lost.empty(); }
    /// Whether the observations of the step, and the laws, agree with it.
    bool explains() const { return labels.consistent() && unexplained.empty(); }
};

using HypothesisPointer = std::shared_ptr<const Hypothesis>;

/// A given command that may not arrive. Its variable has the fallback then.
struct LossyCommand {
    AtomIndex given;
    AtomIndex fallback;
    double probability; ///< that it is lost, 0..1
};

/// What is given for a step along time.
struct TrackInput {
    std::size_t step = 0;            ///< from 1
    double t = 0.0;                  ///< seconds
    StepInput values;                ///< commands: one value of every command variable that has one
    std::vector<LossyCommand> lossy; ///< among these commands, those that were given and may be lost
};

} // namespace monitor
