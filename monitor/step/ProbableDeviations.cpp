// Variable by variable, each combination so far goes on with every option of the next one. Compared with the most probable option of
// each variable no step makes a combination more probable: so what is not probable enough is dropped at once, and of those that are,
// all but the first `most`.
#include "monitor/step/ProbableDeviations.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace monitor {

namespace {

struct Choice {
    AtomIndex value;
    double logRatio; ///< compared with the most probable option
    bool deviates;
    bool fault;
};

double largestProbability(const ModeStep& step)
{
    double largest = 0.0;
    for (const ModeOption& option : step.options) {
        largest = std::max(largest, option.probability);
    }
    return largest;
}

// The options of a variable that may be part of a combination.
std::vector<Choice> choicesOf(const ModeStep& step, double largest, double logLeast)
{
    std::vector<Choice> choices;
    for (const ModeOption& option : step.options) {
        const double logRatio = std::log(option.probability / largest);
        const bool deviates = option.value != step.predicted;
        if (logRatio >= logLeast) {
            choices.push_back({option.value, logRatio, deviates, deviates && option.fault});
        }
    }
    return choices;
}

// Where only what is quite probable is wanted, those that may well do something else. Any others do what is predicted, which is the
// most probable of theirs.
std::vector<std::size_t> placesOf(const ModeSteps& steps, double leastRatio)
{
    if (leastRatio >= 2.0 * ModeSteps::notableRatio && leastRatio <= 1.0) {
        return steps.notable();
    }
    std::vector<std::size_t> all(steps.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

// Two sums that differ by their last bits are equal.
double rounded(double logRatio)
{
    return std::round(logRatio * 1e9);
}

} // namespace

ProbableDeviations probableDeviations(const ModeSteps& steps, double leastRatio, int mostFaults,
                                      std::size_t most)
{
    // A sum of logarithms may miss the product by its last bits.
    const double logLeast = std::log(leastRatio) - 1e-9;
    ProbableDeviations result;
    std::vector<ProbableDeviation> all{{{}, 0.0, 0}};
    double logPredicted = 0.0; // compared with the most probable options
    for (const std::size_t place : placesOf(steps, leastRatio)) {
        const ModeStep& step = steps[place];
        const double largest = largestProbability(step);
        logPredicted += std::log(step.option(step.predicted)->probability / largest);
        const std::vector<Choice> choices = choicesOf(step, largest, logLeast);
        if (choices.size() == 1 && !choices.front().deviates) {
            continue;
        }
        std::vector<ProbableDeviation> longer;
        for (const Choice& choice : choices) {
            for (const ProbableDeviation& before : all) {
                const int faults = before.faults + (choice.fault ? 1 : 0);
                if (before.logRatio + choice.logRatio < logLeast || faults > mostFaults) {
                    continue;
                }
                longer.push_back({before.deviations, before.logRatio + choice.logRatio, faults});
                if (choice.deviates) {
                    longer.back().deviations.push_back(choice.value);
                }
            }
        }
        std::stable_sort(longer.begin(), longer.end(),
                         [](const ProbableDeviation& a, const ProbableDeviation& b) {
                             return rounded(a.logRatio) > rounded(b.logRatio);
                         });
        if (longer.size() > most + 1) {
            longer.resize(most + 1);
            result.complete = false;
        }
        all = std::move(longer);
    }
    for (ProbableDeviation& one : all) {
        if (!one.deviations.empty()) {
            std::sort(one.deviations.begin(), one.deviations.end());
            one.logRatio -= logPredicted;
            result.found.push_back(std::move(one));
        }
    }
    return result;
}

std::vector<Deviations> recoveries(const Plant& plant, const ModeSteps& steps)
{
    std::vector<Deviations> result;
    for (const std::size_t place : steps.faulty()) {
        const ModeStep& step = steps[place];
        for (const ModeOption& option : step.options) {
            if (option.value != step.predicted && !plant.atom(option.value)->fail) {
                result.push_back({option.value});
            }
        }
    }
    return result;
}

} // namespace monitor
