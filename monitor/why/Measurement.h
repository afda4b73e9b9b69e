// Which variable to measure next: the one after which least is expected to stay in doubt.
//
// Let the kept hypotheses h have the probabilities P(h), and let each predict the value a of a variable with P(a | h): 1 for
// the value that it has there, 0 for any that it rules out, and where it leaves several open N/M for each of these. N is the number of
// combinations of the values of what was read, M that of what was read and the variable together: the hypothesis is as probable then as
// it would be had the value been read with the others (monitor/labels/StepLabels.h). With nothing read that is 1/k for k values. Then
//
//     Z(a) = sum over h of P(h) P(a | h)        P(h | a) = P(h) P(a | h) / Z(a)
//
// the Z(a) scaled to add up to 1, and
//
//     expected entropy = sum over a of Z(a) * (- sum over h of P(h | a) ln P(h | a))
//
// "Diagnosing multiple faults", Artificial Intelligence 32, 1987, where a hypothesis is a candidate. The difference
// to the entropy of the hypotheses now is what the measurement is expected to tell.
#pragma once

#include "monitor/track/Tracker.h"

namespace monitor {

/// A value that a measurement may give.
struct Outcome {
    AtomIndex value = 0;
    double probability = 0.0; ///< above 0, at most 1
    double entropy = 0.0;     ///< of the hypotheses after it, in nats, >= 0
    /// The probabilities of the hypotheses after it, in the order of the answer's; they add up to 1.
    std::vector<double> hypotheses;
};

/// What a variable would tell.
struct Measurement {
    VariableIndex variable = 0;
    double expectedEntropy = 0.0;  ///< of the hypotheses after it, in nats, >= 0
    std::vector<Outcome> outcomes; ///< most probable first, ties in the variable's order
};

struct Advice {
    double entropy = 0.0;                  ///< of the hypotheses now, in nats, >= 0
    std::vector<Measurement> measurements; ///< that tell something, best first, ties by the variable's name
    /// Other variables that are not observed: all hypotheses predict the same of them.
    std::size_t useless = 0;
    /// Conditions that are not observed, and cannot be.
    std::size_t unmeasurable = 0;
    /// What kept further variables from being rated, if a limit did (labels/Meter.h).
    SearchLimit limit = SearchLimit::none;
};

struct AdviceSettings {
    bool modes = false; ///< mode variables may be measured, too, and not conditions only
    /// For each variable, whether it can be measured at all: a mode that can is rated in any case. Empty: every condition can.
    std::vector<bool> measurable = {};
};

/// Rates every variable that the step did not observe. Commands are not measured. Linear in the variables and the hypotheses,
/// where a value is left open also in what follows from it.
Advice advise(const Plant& plant, const TrackAnswer& answer,
              const std::vector<AtomIndex>& observations, const AdviceSettings& settings = {});

} // namespace monitor
