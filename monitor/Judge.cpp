#include "monitor/Judge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace monitor {

namespace {

// The logarithm of the observations' likelihood given the modes; nothing when the modes contradict them.
// Observations are taken in their order: each that is left open counts 1/n and is propagated before the next.
std::optional<double> logLikelihood(const StepFrame& frame, const Deviations& modes)
{
    Scenario scenario(frame, {modes, {}});
    if (!scenario.consistent() || !scenario.discrepancies().empty()) {
        return std::nullopt;
    }
    Prediction labels = scenario.prediction();
    double logSum = 0.0;
    for (const AtomIndex observed : frame.compared) {
        if (labels.isTrue(observed)) {
            continue;
        }
        const PlantVariable& variable = frame.plant.variable(frame.plant.variableOf(observed));
        const auto open = std::count_if(variable.values.begin(), variable.values.end(),
                                        [&](AtomIndex value) { return !labels.isKnown(value); });
        if (!labels.assume(observed) || !labels.propagate()) {
            return std::nullopt;
        }
        logSum -= std::log(static_cast<double>(open));
    }
    return logSum;
}

// The logarithm of the probability of the modes. The changed ones are corrections of the predicted ones.
double logPrior(const StepFrame& frame, const Deviations& modes)
{
    double logSum = 0.0;
    for (const ModeStep& step : frame.modes) {
        AtomIndex value = step.predicted;
        for (const AtomIndex atom : frame.plant.variable(step.variable).values) {
            if (std::binary_search(modes.begin(), modes.end(), atom)) {
                value = atom;
            }
        }
        const ModeOption* option = step.option(value);
        logSum += option ? std::log(option->probability) : -std::numeric_limits<double>::infinity();
    }
    return logSum;
}

bool containsAnother(const Deviations& modes, const std::set<Deviations>& found)
{
    return std::any_of(found.begin(), found.end(), [&](const Deviations& other) {
        return other.size() < modes.size() &&
               std::includes(modes.begin(), modes.end(), other.begin(), other.end());
    });
}

void normalise(std::vector<Candidate>& candidates)
{
    double largest = -std::numeric_limits<double>::infinity();
    for (const Candidate& candidate : candidates) {
        largest = std::max(largest, candidate.logProbability);
    }
    double total = 0.0;
    for (Candidate& candidate : candidates) {
        candidate.probability = std::exp(candidate.logProbability - largest);
        total += candidate.probability;
    }
    for (Candidate& candidate : candidates) {
        candidate.probability /= total;
    }
}

} // namespace

std::vector<Candidate> judge(const StepFrame& frame, const std::set<Deviations>& found)
{
    const Plant& plant = frame.plant;
    const auto byId = [&](AtomIndex a, AtomIndex b) {
        return plant.atom(a)->id < plant.atom(b)->id;
    };
    std::vector<Candidate> candidates;
    for (const Deviations& modes : found) {
        if (containsAnother(modes, found)) {
            continue;
        }
        const auto likelihood = logLikelihood(frame, modes);
        const double prior = logPrior(frame, modes);
        if (!likelihood || prior == -std::numeric_limits<double>::infinity()) {
            continue;
        }
        Candidate& candidate = candidates.emplace_back();
        candidate.modes = modes;
        std::sort(candidate.modes.begin(), candidate.modes.end(), byId);
        candidate.faults = static_cast<int>(std::count_if(
            modes.begin(), modes.end(), [&](AtomIndex mode) { return plant.atom(mode)->fail; }));
        candidate.logProbability = prior + *likelihood;
    }
    normalise(candidates);
    // Equal products of the same factors in another order differ in their last bits: they are ties.
    const auto rounded = [](const Candidate& candidate) {
        return std::round(candidate.logProbability * 1e9);
    };
    std::sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        if (rounded(a) != rounded(b)) {
            return rounded(a) > rounded(b);
        }
        return std::lexicographical_compare(a.modes.begin(), a.modes.end(), b.modes.begin(),
                                            b.modes.end(), byId);
    });
    return candidates;
}

} // namespace monitor
