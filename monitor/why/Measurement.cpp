// Each hypothesis predicts a distribution over the values of a variable; multiplied by its probability and summed they give the
// outcomes, and Bayes' rule gives what is left of the hypotheses after each.
#include "monitor/why/Measurement.h"

#include "plant/Names.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace monitor {

namespace {

// What is left of the hypotheses when each has this weight: its probability together with the outcome. One of them is
// above 0.
Outcome outcomeOf(const std::vector<double>& weights)
{
    Outcome result;
    result.hypotheses = weights;
    result.probability = std::accumulate(weights.begin(), weights.end(), 0.0);
    double sumOfLogs = 0.0;
    for (double& probability : result.hypotheses) {
        probability /= result.probability;
        if (probability > 0.0) {
            sumOfLogs += std::log(probability) * probability;
        }
    }
    result.entropy = std::max(0.0, -sumOfLogs);
    return result;
}

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
double withoutLastBits(double entropy)
{
    return std::round(entropy * 1e9);
}

class Advisor {
public:
    Advisor(const Plant& plant, const TrackAnswer& answer) : plant_(plant), answer_(answer)
    {
        for (const HypothesisPointer& hypothesis : answer.hypotheses) {
            predictors_.emplace_back(*hypothesis);
        }
    }

    double entropyNow() const { return outcomeOf(answer_.probabilities).entropy; }

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
            for (std::size_t i = 0; i < weights.size(); ++i) {
                weights[i] *= predicted[i][value];
            }
            if (std::none_of(weights.begin(), weights.end(), [](double w) { return w > 0.0; })) {
                continue;
            }
            Outcome& outcome = rated.outcomes.emplace_back(outcomeOf(weights));
            outcome.value = variable.values[value];
            rated.expectedEntropy += outcome.probability * outcome.entropy;
        }
        std::stable_sort(rated.outcomes.begin(), rated.outcomes.end(),
                         [](const Outcome& a, const Outcome& b) {
                             return withoutLastBits(a.probability) > withoutLastBits(b.probability);
                         });
        return rated;
    }

private:
    const Plant& plant_;
    const TrackAnswer& answer_;
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
        return plant::nameOf(variable);
    };
    std::sort(advice.measurements.begin(), advice.measurements.end(),
              [&](const Measurement& a, const Measurement& b) {
                  const double left = withoutLastBits(a.expectedEntropy);
                  const double right = withoutLastBits(b.expectedEntropy);
                  return left != right ? left < right : nameOf(a) < nameOf(b);
              });
    return advice;
}

} // namespace monitor
