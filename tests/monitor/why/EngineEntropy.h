// What a measurement leaves of hypotheses, as itms::entropy computes it: a second opinion on monitor::advise.
//
// itms::entropy rates a variable by the transitions of a state, with rough probabilities of the values. So the state has a
// component with one transition for each hypothesis, of the probability P(h) P(a | h), and a variable whose only value is the
// outcome, which is as probable as can be whatever the transition. What the engine leaves in the state's conditional
// distribution is P(h | a).
#pragma once

#include "engine/itms.h"

#include <memory>
#include <vector>

class EngineEntropy {
public:
    struct Outcome {
        double probability = 0.0;
        double weighted = 0.0; ///< the entropy after it, times its probability
        std::vector<double> hypotheses;
    };

    explicit EngineEntropy(std::size_t count)
    {
        component_.name = "hypotheses";
        outcome_.comp = &component_;
        value_.stateVar = &outcome_;
        value_.id = "hypotheses.outcome=given";
        outcome_.atomLinks->push_back(&value_);
        for (std::size_t i = 0; i < count; ++i) {
            transitions_.push_back(std::make_unique<Transition>());
            transitions_.back()->id = static_cast<int>(i);
            component_.transitions->push_back(transitions_.back().get());
        }
    }

    /// Requires: a weight for each hypothesis, one of them above 0.
    Outcome outcome(const std::vector<double>& weights)
    {
        State state;
        state.comps->insert({component_.name.c_str(), &component_});
        Outcome result;
        for (std::size_t i = 0; i < weights.size(); ++i) {
            (*state.postProbs)[static_cast<int>(i)] = weights[i];
            result.probability += weights[i];
        }
        result.weighted = engine_.entropy(&outcome_, &state, nullptr);
        ProbMap& left = *(*state.condProbs)[value_.getId()];
        for (std::size_t i = 0; i < weights.size(); ++i) {
            result.hypotheses.push_back(left[static_cast<int>(i)]);
        }
        return result;
    }

private:
    itms engine_;
    Comp component_;
    StateVar outcome_;
    Atom value_;
    std::vector<std::unique_ptr<Transition>> transitions_;
};
