#include "monitor/why/Measurement.h"

#include "engine/itms.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

// The hypotheses as the engine takes them: a state of one component that has a transition for each.
class HypothesesState {
public:
    explicit HypothesesState(std::size_t count)
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

    // What is left of the hypotheses when each has this weight: its probability together with the outcome.
    Outcome outcome(const std::vector<double>& weights)
    {
        State state;
        state.comps->insert({component_.name.c_str(), &component_});
        Outcome result;
        for (std::size_t i = 0; i < weights.size(); ++i) {
            (*state.postProbs)[static_cast<int>(i)] = weights[i];
            result.probability += weights[i];
        }
        const double weighted = engine_.entropy(&outcome_, &state, nullptr);
        result.entropy = std::max(0.0, weighted / result.probability);
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

// What a hypothesis predicts of variables.
class Predictor {
public:
    explicit Predictor(const Hypothesis& hypothesis)
        : labels_(hypothesis.labels.prediction()), consistent_(hypothesis.labels.consistent())
    {
    }

    // The probability of each value, in the variable's order. Of values that are left open, those are not counted that lead
    // to a contradiction.
    std::vector<double> values(const PlantVariable& variable)
    {
        std::vector<double> probabilities(variable.values.size(), 0.0);
        if (const auto known = labels_.valueOf(variable)) {
            const auto place = std::find(variable.values.begin(), variable.values.end(), *known);
            probabilities[static_cast<std::size_t>(place - variable.values.begin())] = 1.0;
            return probabilities;
        }
        std::vector<std::size_t> open = openValues(variable, consistent_);
        if (open.empty()) {
            open = openValues(variable, false);
        }
        for (const std::size_t place : open) {
            probabilities[place] = 1.0 / static_cast<double>(open.size());
        }
        return probabilities;
    }

private:
    std::vector<std::size_t> openValues(const PlantVariable& variable, bool tried)
    {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < variable.values.size(); ++i) {
            if (!labels_.isKnown(variable.values[i]) && (!tried || fits(variable.values[i]))) {
                open.push_back(i);
            }
        }
        return open;
    }

    bool fits(AtomIndex value)
    {
        const std::size_t mark = labels_.mark();
        const bool possible = labels_.assume(value) && labels_.propagate();
        labels_.undo(mark);
        return possible;
    }

    Prediction labels_;
    bool consistent_;
};

// Equal but for the last bits.
double rounded(double entropy)
{
    return std::round(entropy * 1e9);
}

class Advisor {
public:
    Advisor(const Plant& plant, const TrackAnswer& answer)
        : plant_(plant), answer_(answer), state_(answer.hypotheses.size())
    {
        for (const HypothesisPointer& hypothesis : answer.hypotheses) {
            predictors_.emplace_back(*hypothesis);
        }
    }

    double entropyNow() { return state_.outcome(answer_.probabilities).entropy; }

    // Nothing where all hypotheses predict the same.
    std::optional<Measurement> rate(VariableIndex index)
    {
        const PlantVariable& variable = plant_.variable(index);
        std::vector<std::vector<double>> predicted;
        for (Predictor& predictor : predictors_) {
            predicted.push_back(predictor.values(variable));
        }
        if (std::adjacent_find(predicted.begin(), predicted.end(), std::not_equal_to<>()) ==
            predicted.end()) {
            return std::nullopt;
        }
        Measurement rated{index, 0.0, {}};
        for (std::size_t value = 0; value < variable.values.size(); ++value) {
            std::vector<double> weights = answer_.probabilities;
            double sum = 0.0;
            for (std::size_t i = 0; i < weights.size(); ++i) {
                weights[i] *= predicted[i][value];
                sum += weights[i];
            }
            if (sum > 0.0) {
                rated.outcomes.push_back(state_.outcome(weights));
                rated.outcomes.back().value = variable.values[value];
                rated.expectedEntropy += sum * rated.outcomes.back().entropy;
            }
        }
        std::stable_sort(rated.outcomes.begin(), rated.outcomes.end(),
                         [](const Outcome& a, const Outcome& b) {
                             return rounded(a.probability) > rounded(b.probability);
                         });
        return rated;
    }

private:
    const Plant& plant_;
    const TrackAnswer& answer_;
    HypothesesState state_;
    std::vector<Predictor> predictors_;
};

} // namespace

Advice advise(const Plant& plant, const TrackAnswer& answer,
              const std::vector<AtomIndex>& observations, const AdviceSettings& settings)
{
    std::vector<bool> observed(plant.variables().size(), false);
    for (const AtomIndex value : observations) {
        observed[static_cast<std::size_t>(plant.variableOf(value))] = true;
    }
    Advisor advisor(plant, answer);
    Advice advice;
    advice.entropy = advisor.entropyNow();
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (observed[i] || variable.isCommand || (variable.isMode && !settings.modes)) {
            continue;
        }
        if (auto rated = advisor.rate(static_cast<VariableIndex>(i))) {
            advice.measurements.push_back(std::move(*rated));
        } else {
            ++advice.useless;
        }
    }
    const auto nameOf = [&](const Measurement& measurement) {
        const StateVar& variable = *plant.variable(measurement.variable).variable;
        return variable.comp->name + "." + variable.name;
    };
    std::sort(advice.measurements.begin(), advice.measurements.end(),
              [&](const Measurement& a, const Measurement& b) {
                  const double left = rounded(a.expectedEntropy);
                  const double right = rounded(b.expectedEntropy);
                  return left != right ? left < right : nameOf(a) < nameOf(b);
              });
    return advice;
}

} // namespace monitor
