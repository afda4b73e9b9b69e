// One way in which everything seen so far may have come about.
#pragma once

#include "monitor/labels/StepLabels.h"
#include "monitor/step/Scenario.h"

#include <map>
#include <memory>

namespace monitor {

/// Since when a mode variable is not as in the fault-free twin, or has a value that is a fault.
struct Since {
    AtomIndex value;  ///< what it has now
    std::size_t step; ///< 0: from the beginning
    double t;         ///< of that step, in seconds
};

/// A fault, or the loss of a command.
struct FaultBegun {
    VariableIndex variable; ///< a mode variable, or a command
    std::size_t step;
};

/// The plant as it would be had no deviation happened (Twin.h).
struct Twin {
    std::vector<AtomIndex> modes; ///< in the plant's order
    StepLabels labels;
};
using TwinPointer = std::shared_ptr<const Twin>;

/// The plant after a step, as one explanation has it. Never changed once it is made.
struct Hypothesis {
    StepLabels labels;            ///< what holds after the step
    std::vector<AtomIndex> modes; ///< the value of every mode variable, in the plant's order
    /// Natural logarithm of the joint probability of this way and of all that was observed. After a step those of all
    /// kept hypotheses are scaled together, so that the probabilities add up to 1.
    double logWeight = 0.0;
    /// What the step alone contributed, before scaling, in the most probable way here.
    double logStep = 0.0;
    /// Faults that are still there, and faults and lost commands that began within the look-back, in the most probable way here.
    std::vector<FaultBegun> faults;
    TwinPointer twin; ///< null: itself
    std::map<VariableIndex, Since> since;
    std::vector<AtomIndex> lost;        ///< commands of this step that did not arrive
    std::vector<AtomIndex> unexplained; ///< observations of this step that contradict it
    ReadingMemory readings = {};        ///< of what the plant leaves open, the last ones
    bool exact = true; ///< the likelihood of this step's observations was counted, not estimated
    /// Natural logarithm of the probability, by the model's rates, that no fault began at this step but those that it has.
    double logCalm = 0.0;

    /// How many faults it has, as a bound on faults counts them.
    int faultCount() const { return static_cast<int>(faults.size()); }
    const std::vector<AtomIndex>& twinModes() const { return twin ? twin->modes : modes; }
    /// Whether a mode is not as in the fault-free twin, or a fault.
    bool isFaulty() const { return !since.empty(); }
    /// The same, or a command of this step was lost.
    bool differs() const { return isFaulty() || !lost.empty(); }
    /// Whether the observations of the step, and the laws, agree with it.
    bool explains() const { return labels.consistent() && unexplained.empty(); }
};

using HypothesisPointer = std::shared_ptr<const Hypothesis>;

/// Whether the same will become of both, but for their weights: they have the same modes, the same twin, the same readings are
/// expected again, and of the commands of the step that laws mention the same ones did not arrive. Linear in these.
bool haveSameFuture(const Plant& plant, const Hypothesis& a, const Hypothesis& b);

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
