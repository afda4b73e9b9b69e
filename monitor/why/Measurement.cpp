// Each hypothesis predicts a distribution over the values of a variable; multiplied by its probability and summed they give the
// outcomes, and Bayes' rule gives what is left of the hypotheses after each.
#include "monitor/why/Measurement.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Counting.h"
#include "monitor/labels/Meter.h"
#include "monitor/labels/OpenGroups.h"
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
    Predictor(const Plant& plant, const Hypothesis& hypothesis)
        : plant_(plant), labels_(hypothesis.labels.prediction()),
          consistent_(hypothesis.labels.consistent()), open_(plant, labels_),
          unread_(unread(hypothesis.labels)), openUnread_(plant, unread_)
    {
        const std::vector<AtomIndex> observations = hypothesis.labels.observations();
        for (std::size_t i = hypothesis.labels.inputs(); i < observations.size(); ++i) {
            read_.insert(plant.variableOf(observations[i]));
        }
    }

    // How probable each value is together with what was read, compared with that alone; in the variable's order.
    std::vector<double> values(VariableIndex index)
    {
        const PlantVariable& variable = plant_.variable(index);
        std::vector<double> probabilities(variable.values.size(), 0.0);
        std::vector<std::size_t> possible;
        for (std::size_t i = 0; i < variable.values.size(); ++i) {
            if (fits(index, variable.values[i])) {
                possible.push_back(i);
            }
        }
        if (possible.empty()) { // of a hypothesis that contradicts the laws
            for (std::size_t i = 0; i < variable.values.size(); ++i) {
                possible.push_back(i);
            }
        }
        const double each = possible.size() > 1 ? ofEach(index, possible.size()) : 1.0;
        for (const std::size_t place : possible) {
            probabilities[place] = each;
        }
        return probabilities;
    }

private:
    static Prediction unread(StepLabels labels)
    {
        const StepAssumptions assumptions = labels.assumptions();
        std::vector<AtomIndex> inputs = labels.observations();
        inputs.resize(labels.inputs());
        if (labels.consistent() && !(assumptions.commands.empty() && assumptions.modes.empty())) {
            labels.take(assumptions, inputs, inputs.size());
        }
        return labels.prediction();
    }

    bool fits(VariableIndex index, AtomIndex value)
    {
        if (labels_.isKnown(value) || !consistent_) {
            return labels_.label(value) != Label::isFalse;
        }
        const std::size_t mark = labels_.mark();
        const bool possible =
            labels_.assume(value) && labels_.propagate() &&
            complete(plant_, labels_, open_.connected(index), [this](VariableIndex variable) {
                return plant_.variable(variable).values.toVector();
            }) != Completion::impossible;
        labels_.undo(mark);
        return possible;
    }

    // With the variable, the readings of what hangs together with it have more combinations than without.
    double ofEach(VariableIndex index, std::size_t possible)
    {
        std::vector<VariableIndex> together;
        for (const VariableIndex other : openUnread_.connected(index)) {
            if (read_.contains(other)) {
                together.push_back(other);
            }
        }
        const std::optional<double> without = countCombinations(plant_, unread_, together);
        together.push_back(index);
        const std::optional<double> with = countCombinations(plant_, unread_, together);
        return without && with && *with > 0.0 ? *without / *with
                                              : 1.0 / static_cast<double>(possible);
    }

    const Plant& plant_;
    Prediction labels_;
    bool consistent_;
    OpenVariables open_;
    Prediction unread_; ///< the labels without readings, but for inputs
    OpenVariables openUnread_;
    std::set<VariableIndex> read_;
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
            predictors_.emplace_back(plant, *hypothesis);
        }
    }

    // Nothing where all hypotheses predict the same.
    std::optional<Measurement> rate(VariableIndex index)
    {
        const PlantVariable& variable = plant_.variable(index);
        std::vector<std::vector<double>> predicted;
        for (Predictor& predictor : predictors_) {
            predicted.push_back(predictor.values(index));
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
        }
        double sum = 0.0;
        for (const Outcome& outcome : rated.outcomes) {
            sum += outcome.probability;
        }
        for (Outcome& outcome : rated.outcomes) {
            outcome.probability /= sum;
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
    Advice advice;
    advice.entropy = outcomeOf(answer.probabilities).entropy;
    try {
        Advisor advisor(plant, answer);
        for (std::size_t i = 0; i < plant.variables().size(); ++i) {
            const PlantVariable& variable = plant.variables()[i];
            const bool isDeclared = !settings.measurable.empty() && settings.measurable[i];
            if (observed[i] || variable.isCommand ||
                (variable.isMode && !settings.modes && !isDeclared)) {
                continue;
            }
            if (!variable.isMode && !settings.measurable.empty() && !isDeclared) {
                ++advice.unmeasurable;
                continue;
            }
            if (auto rated = advisor.rate(static_cast<VariableIndex>(i))) {
                advice.measurements.push_back(std::move(*rated));
            } else {
                ++advice.useless;
            }
        }
    } catch (const Meter::Cut& cut) {
        advice.limit = cut.limit;
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
