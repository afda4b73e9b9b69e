// The labels of a step under given modes, carried from step to step.
//
// Modes and commands are assumed, and what follows is drawn from them. Then the observations are taken in their order:
// one whose value follows already says nothing new; one that is left open becomes its variable's label and is
// propagated before the next; one that is ruled out contradicts the modes. From one step to the next only what rests
// on something that changed is drawn again.
#pragma once

#include "monitor/labels/Prediction.h"

namespace monitor {

class StepLabels {
public:
    /// Nothing is taken yet. The plant outlives the labels.
    explicit StepLabels(const Plant& plant) : plant_(&plant), prediction_(plant) {}
    /// Labels that come from elsewhere; what is taken next is drawn afresh.
    StepLabels(const Plant& plant, Prediction labels)
        : plant_(&plant), prediction_(std::move(labels))
    {
    }

    /// Goes over to other assumptions and observations. Requires: at most one value of each variable. Costs what changes where
    /// the assumptions are of the same variables in the same order as before, else what the whole plant costs.
    void take(const std::vector<AtomIndex>& assumptions, const std::vector<AtomIndex>& observations);

    /// False when the assumptions contradict the laws. Then the observations are not looked at.
    bool consistent() const { return consistent_; }
    const Prediction& prediction() const { return prediction_; }
    /// The observations that the assumptions and the observations before them rule out, in their order.
    const std::vector<AtomIndex>& contradicted() const { return contradicted_; }
    /// Natural logarithm of the likelihood of the other observations: each that is left open between n values counts 1/n.
    double logLikelihood() const;

    /// What was taken last; empty for labels that came from elsewhere.
    const std::vector<AtomIndex>& assumptions() const { return assumptions_; }
    /// The observations that were taken last, in their order.
    std::vector<AtomIndex> observations() const;
    /// The same, drawn afresh: with equal labels, and reasons that do not depend on the steps before.
    StepLabels afresh() const;

private:
    // An observation that was taken, and the labels before it.
    struct Taken {
        AtomIndex value;
        std::size_t mark;
        double logFactor;
        bool ruledOut;
    };

    bool assume(const std::vector<AtomIndex>& assumptions);
    bool sameVariables(const std::vector<AtomIndex>& assumptions) const;
    void undoFrom(std::size_t observation);
    Taken takeOne(AtomIndex observed);

    const Plant* plant_;
    Prediction prediction_;
    bool consistent_ = false;
    std::vector<AtomIndex> assumptions_;
    std::vector<Taken> taken_;
    std::vector<AtomIndex> contradicted_;
};

} // namespace monitor
