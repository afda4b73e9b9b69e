// Which variable to measure next: the one after which least is expected to stay in doubt.
//
// Let the kept hypotheses h have the probabilities P(h), and let each predict the value a of a variable with P(a | h): 1 for
// the value that it has there, 0 for any other, and where it leaves k values open 1/k for each. Then
//
//     Z(a) = sum over h of P(h) P(a | h)        P(h | a) = P(h) P(a | h) / Z(a)
//     expected entropy = sum over a of Z(a) * (- sum over h of P(h | a) ln P(h | a))
//
// J. de Kleer and B. C. Williams, "Diagnosing multiple faults", Artificial Intelligence 32 (1987), where a hypothesis is a
// candidate. It is never more than the entropy of the hypotheses now; the difference is what the measurement is expected to tell.
//
// itms::entropy computes this sum for the transitions of a state, with rough probabilities of the values that tell, by
// the clauses around it, which transition could have to do with a value at all. That serves an order of search; it says nothing
// of explanations that take several transitions each. So the state that it is given here has the hypotheses in place of
// transitions: a component with one transition for each, of the probability P(h) P(a | h), and a variable whose
// only value is the outcome, which is as probable as can be whatever the transition. What the engine leaves in the
// state's conditional distribution is P(h | a).
#pragma once

#include "monitor/track/Tracker.h"

namespace monitor {

/// A value that a measurement may give.
struct Outcome {
    AtomIndex value = 0;
    double probability = 0.0; ///< above 0, at most 1
    double entropy = 0.0;     ///< of the hypotheses after it, in nats, >= 0
    std::vector<double>
        hypotheses; ///< their probabilities after it, in the order of the answer's; they add up to 1
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
    std::size_t useless =
        0; ///< variables that are not observed either, of which all hypotheses predict the same
};

struct AdviceSettings {
    bool modes = false; ///< mode variables may be measured, too, and not conditions only
};

/// Rates every variable that the step did not observe. Commands are not measured. Linear in the variables and the hypotheses,
/// where a value is left open also in what follows from it.
Advice advise(const Plant& plant, const TrackAnswer& answer,
              const std::vector<AtomIndex>& observations, const AdviceSettings& settings = {});

} // namespace monitor
