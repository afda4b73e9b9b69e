// The labels of a step under given modes, carried from step to step.
//
// Modes and commands are assumed, and what follows is drawn from them. Then the observations are taken in their order:
// one whose value follows already says nothing new; one that is left open becomes its variable's label and is
// propagated before the next; one that is ruled out contradicts the modes. From one step to the next only what rests
// on something that changed is drawn again.
//
// How likely the observations are does not depend on their order: modes, commands and inputs allow a number N of combinations of
// values of the observed variables, and each of them has the probability 1/N.
#pragma once

#include "monitor/labels/CommandValues.h"
#include "monitor/labels/ReadingsInTime.h"

namespace monitor {

/// The likelihood of what is observed at a step.
struct Likelihood {
    double log = 0.0; ///< natural logarithm; minus infinity where the laws allow no combination
    /// False where there are too many combinations to be counted. Then each observation that those before it leave open between n
    /// values has counted 1/n, in their order.
    bool exact = true;
};

class StepLabels {
public:
    /// Nothing is taken yet. The plant outlives the labels.
    explicit StepLabels(const Plant& plant) : plant_(&plant), prediction_(plant) {}
    /// Labels that come from elsewhere; what is taken next is drawn afresh.
    StepLabels(const Plant& plant, Prediction labels)
        : plant_(&plant), prediction_(std::move(labels))
    {
    }

    /// Goes over to other assumptions and observations, of which so many at the beginning are inputs: taken for what they are,
    /// and not scored. Requires: at most one value of each variable. Costs what changes where the assumptions are of the same
    /// variables in the same order as before, else what the whole plant costs.
    void take(const StepAssumptions& assumptions, const std::vector<AtomIndex>& observations,
              std::size_t inputs = 0);
    /// From now on copies share what does not change from one to the other (Prediction::share).
    void share() { prediction_.share(taken_.empty() ? prediction_.mark() : taken_.front().mark); }

    /// False when the assumptions contradict the laws. Then the observations are not looked at.
    bool consistent() const { return consistent_; }
    const Prediction& prediction() const { return prediction_; }
    /// The observations that the assumptions and the observations before them rule out, in their order.
    const std::vector<AtomIndex>& contradicted() const { return contradicted_; }
    /// That of the observations that are neither inputs nor contradicted. Constant time where each follows, else
    /// countCombinations().
    Likelihood likelihood() const;
    /// The same, given the readings before the step. `changing` says of each observation how probable it is that it is not what
    /// it was. Constant time where each follows and nothing is remembered, else readingsInTime().
    ReadingsInTime inTime(const std::vector<double>& changing, const ReadingMemory& before,
                          const std::set<VariableIndex>& changedModes, LastOpenAnswers& asked) const;

    /// What was taken last; empty for labels that came from elsewhere.
    const StepAssumptions& assumptions() const { return assumptions_; }
    /// The observations that were taken last, in their order; so many at the beginning are inputs.
    std::vector<AtomIndex> observations() const;
    std::size_t inputs() const { return inputs_; }
    /// The same, drawn afresh: with equal labels, and reasons that do not depend on the steps before.
    StepLabels afresh() const;
    /// The same of a part of the plant, by its numbers. Requires: consistent(), and that `given` has the commands that were taken, and
    /// that a value of every mode was. Costs the part, and what is observed.
    StepLabels afreshWithin(const PlantPart& part, const CommandValues& given) const;

    /// Of going over to these labels from others: what is observed, and what differs. A measure for Meter, the same whatever
    /// is remembered of either. Costs what they do not share.
    std::uint64_t workFrom(const StepLabels& before) const;

private:
    // An observation that was taken, and the labels before it.
    struct Taken {
        AtomIndex value;
        std::size_t mark;
        double logFactor;
        bool ruledOut;
    };

    bool assume(const StepAssumptions& assumptions);
    std::optional<std::vector<AtomIndex>> changed(const StepAssumptions& assumptions) const;
    void undoFrom(std::size_t observation);
    Taken takeOne(AtomIndex observed);

    const Plant* plant_;
    Prediction prediction_;
    bool consistent_ = false;
    StepAssumptions assumptions_{{}, {}};
    std::vector<Taken> taken_;
    std::size_t inputs_ = 0; ///< so many at the beginning of these are inputs
    std::vector<AtomIndex> contradicted_;
};

} // namespace monitor
