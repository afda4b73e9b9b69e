// Each candidate is predicted afresh from its modes alone, whatever the search made of the other labels. Sums of logarithms are
// compared after rounding, so that products of the same factors in another order are ties.
#include "monitor/step/Judge.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "monitor/labels/StepLabels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace monitor {

namespace {

// Drops the candidates that contain another one.
void keepMinimal(std::vector<Candidate>& candidates)
{
    const auto contains = [](const Candidate& larger, const Candidate& smaller) {
        return smaller.modes.size() < larger.modes.size() &&
               std::includes(larger.modes.begin(), larger.modes.end(), smaller.modes.begin(),
                             smaller.modes.end());
    };
    std::vector<Candidate> minimal;
    for (const Candidate& candidate : candidates) {
        if (std::none_of(candidates.begin(), candidates.end(),
                         [&](const Candidate& other) { return contains(candidate, other); })) {
            minimal.push_back(candidate);
        }
    }
    candidates = std::move(minimal);
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

// Most probable first. Equal products of the same factors in another order differ in their last bits: they are
// ties, which the identifiers of the modes decide.
void rank(const Plant& plant, std::vector<Candidate>& candidates)
{
    const auto byId = [&](AtomIndex a, AtomIndex b) {
        return plant.atom(a)->id < plant.atom(b)->id;
    };
    const auto rounded = [](const Candidate& candidate) {
        return std::round(candidate.logProbability * 1e9);
    };
    for (Candidate& candidate : candidates) {
        std::sort(candidate.modes.begin(), candidate.modes.end(), byId);
    }
    std::sort(candidates.begin(), candidates.end(), [&](const Candidate& a, const Candidate& b) {
        if (rounded(a) != rounded(b)) {
            return rounded(a) > rounded(b);
        }
        return std::lexicographical_compare(a.modes.begin(), a.modes.end(), b.modes.begin(),
                                            b.modes.end(), byId);
    });
}

} // namespace

std::optional<Candidate> weigh(const StepFrame& frame, const Deviations& modes, double logLikelihood)
{
    Candidate candidate;
    candidate.modes = modes;
    candidate.logProbability = logLikelihood;
    std::map<VariableIndex, AtomIndex> changed;
    for (const AtomIndex mode : modes) {
        changed.emplace(frame.plant.variableOf(mode), mode);
    }
    for (const ModeStep& step : frame.modes) {
        const auto deviation = changed.find(step.variable);
        const ModeOption* option =
            step.option(deviation == changed.end() ? step.predicted : deviation->second);
        if (!option) {
            return std::nullopt;
        }
        candidate.logProbability += std::log(option->probability);
        if (deviation != changed.end() && option->fault) {
            ++candidate.faults;
        }
    }
    return candidate;
}

double logCalm(const StepFrame& frame, const Deviations& deviations)
{
    double sum = 0.0;
    for (const ModeStep& step : frame.modes) {
        double fault = 0.0;
        for (const ModeOption& option : step.options) {
            const bool is = option.value == step.predicted ||
                            std::binary_search(deviations.begin(), deviations.end(), option.value);
            fault += option.fault && !is ? option.probability : 0.0;
        }
        sum += std::log1p(-std::min(fault, 1.0));
    }
    return sum;
}

double logPredicted(const StepFrame& frame)
{
    double sum = 0.0;
    for (const ModeStep& step : frame.modes) {
        sum += std::log(step.option(step.predicted)->probability);
    }
    return sum;
}

std::vector<AtomIndex> assumptionsOf(const StepFrame& frame, const Deviations& deviations)
{
    std::vector<AtomIndex> assumptions = frame.commands;
    for (const ModeStep& step : frame.modes) {
        const auto deviation =
            std::find_if(deviations.begin(), deviations.end(), [&](AtomIndex value) {
                return frame.plant.variableOf(value) == step.variable;
            });
        assumptions.push_back(deviation == deviations.end() ? step.predicted : *deviation);
    }
    return assumptions;
}

namespace {

void judgeOne(const StepFrame& frame, const Deviations& modes, Judgement& judgement)
{
    StepLabels labels(frame.plant);
    labels.take(assumptionsOf(frame, modes), frame.observations, frame.inputs);
    if (!labels.consistent() || !labels.contradicted().empty()) {
        return;
    }
    const Completion completion = completionOf(frame.plant, labels.prediction());
    judgement.sure = judgement.sure && completion != Completion::unsettled;
    auto candidate = weigh(frame, modes, labels.likelihood().log);
    if (candidate && completion == Completion::possible) {
        judgement.candidates.push_back(std::move(*candidate));
    }
}

} // namespace

// Where the search was cut, what it found may spend what was kept back for that.
Judgement judge(const StepFrame& frame, const std::set<Deviations>& found)
{
    Judgement judgement;
    const Meter::Finishing finishing;
    try {
        for (const Deviations& modes : found) {
            judgeOne(frame, modes, judgement);
        }
    } catch (const Meter::Cut& cut) {
        judgement.sure = false;
        judgement.limit = cut.limit;
    }
    keepMinimal(judgement.candidates);
    normalise(judgement.candidates);
    rank(frame.plant, judgement.candidates);
    return judgement;
}

} // namespace monitor
