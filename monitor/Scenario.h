// A scenario: the prediction of a step under some assumed deviations, and what the observations say to it.
#pragma once

#include "monitor/Suspects.h"

namespace monitor {

/// What is given for a step. Values are atoms of the plant, at most one of each variable.
struct StepInput {
    std::vector<AtomIndex> commands;
    /// Where nothing predicts a variable yet, its observation is adopted and propagated before the next one is
    /// looked at: give inputs and ambient values first.
    std::vector<AtomIndex> observations;
};

/// Deviations that are assumed: mode values other than predicted, and values of conditions that these leave open.
struct Assumptions {
    std::vector<AtomIndex> modes;
    std::vector<AtomIndex> conditions;
};

/// A step as far as it is known before anything is searched: what every scenario of it has in common.
struct StepFrame {
    const Plant& plant;
    std::vector<AtomIndex> commands;
    std::vector<ModeStep> modes;
    std::vector<AtomIndex> adopted;  ///< observations of variables that nothing predicts
    std::vector<AtomIndex> compared; ///< the other observations
};

/// The labels under the assumptions, and the observations that contradict them.
class Scenario {
public:
    Scenario(const StepFrame& frame, Assumptions assumptions);

    /// False when the assumptions contradict the laws or one another.
    bool consistent() const { return consistent_; }
    /// True when every atom of the plant has a label.
    bool complete() const { return prediction_.complete(); }
    const Prediction& prediction() const { return prediction_; }
    const Assumptions& assumptions() const { return assumptions_; }
    const StepFrame& frame() const { return frame_; }
    /// Observed values whose atom is labelled "false".
    const std::vector<AtomIndex>& discrepancies() const { return discrepancies_; }
    /// For each discrepancy, the modes on which the contradicted label rests.
    std::vector<Conflict> conflicts() const;
    /// For an inconsistent scenario, the modes on which the contradiction rests.
    Conflict contradiction() const;

private:
    const StepFrame& frame_;
    Assumptions assumptions_;
    Prediction prediction_;
    bool consistent_;
    std::vector<AtomIndex> discrepancies_;
};

/// Predicts the step from the labels before it, and sorts its observations into adopted and compared ones.
StepFrame makeFrame(const Plant& plant, const Prediction& before, const StepInput& input);

} // namespace monitor
