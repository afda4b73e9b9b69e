// Each candidate is predicted from its modes alone, whatever the search made of the other labels. Sums of logarithms are
// compared after rounding, so that products of the same factors in another order are ties.
#include "monitor/step/Judge.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "monitor/labels/StepLabels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <unordered_map>

namespace monitor {

namespace {

bool containsOther(const Candidate& larger, const Candidate& smaller)
{
    return smaller.modes.size() < larger.modes.size() &&
           std::includes(larger.modes.begin(), larger.modes.end(), smaller.modes.begin(),
                         smaller.modes.end());
}

// Drops the candidates that contain another one. One that is contained begins with a mode of the larger one, or has none.
void keepMinimal(std::vector<Candidate>& candidates)
{
    std::size_t least = std::numeric_limits<std::size_t>::max();
    std::size_t most = 0;
    std::unordered_map<AtomIndex, std::vector<const Candidate*>> byFirstMode;
    for (const Candidate& candidate : candidates) {
        least = std::min(least, candidate.modes.size());
        most = std::max(most, candidate.modes.size());
    }
    if (least >= most) {
        return;
    }
    for (const Candidate& candidate : candidates) {
        if (!candidate.modes.empty()) {
            byFirstMode[candidate.modes.front()].push_back(&candidate);
        }
    }
    const auto containsAny = [&](const Candidate& candidate) {
        return std::any_of(candidate.modes.begin(), candidate.modes.end(), [&](AtomIndex mode) {
            const auto others = byFirstMode.find(mode);
            return others != byFirstMode.end() &&
                   std::any_of(
                       others->second.begin(), others->second.end(),
                       [&](const Candidate* other) { return containsOther(candidate, *other); });
        });
    };
    std::vector<Candidate> minimal;
    for (const Candidate& candidate : candidates) {
        if (candidate.modes.empty() || (least > 0 && !containsAny(candidate))) {
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

using IdOf = std::function<std::string(AtomIndex)>;

// For each mode that deviates in a candidate, its place among them by identifier.
std::unordered_map<AtomIndex, std::size_t> placesById(const std::vector<Candidate>& candidates,
                                                      const IdOf& idOf)
{
    std::unordered_map<AtomIndex, std::size_t> places;
    std::vector<std::pair<std::string, AtomIndex>> modes;
    for (const Candidate& candidate : candidates) {
        for (const AtomIndex mode : candidate.modes) {
            if (places.emplace(mode, 0).second) {
                modes.emplace_back(idOf(mode), mode);
            }
        }
    }
    std::sort(modes.begin(), modes.end());
    for (std::size_t i = 0; i < modes.size(); ++i) {
        places[modes[i].second] = i;
    }
    return places;
}

// Most probable first. Equal products of the same factors in another order differ in their last bits: they are
// ties, which the identifiers of the modes decide.
void rank(std::vector<Candidate>& candidates, const IdOf& idOf)
{
    const std::unordered_map<AtomIndex, std::size_t> places = placesById(candidates, idOf);
    const auto byId = [&](AtomIndex a, AtomIndex b) { return places.at(a) < places.at(b); };
    struct Ranked {
        double rounded;
        std::vector<std::size_t> places;
        std::size_t candidate;
    };
    std::vector<Ranked> order;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        std::sort(candidates[i].modes.begin(), candidates[i].modes.end(), byId);
        Ranked ranked{std::round(candidates[i].logProbability * 1e9), {}, i};
        for (const AtomIndex mode : candidates[i].modes) {
            ranked.places.push_back(places.at(mode));
        }
        order.push_back(std::move(ranked));
    }
    std::sort(order.begin(), order.end(), [](const Ranked& a, const Ranked& b) {
        return a.rounded != b.rounded ? a.rounded > b.rounded : a.places < b.places;
    });
    std::vector<Candidate> ranked;
    for (const Ranked& one : order) {
        ranked.push_back(std::move(candidates[one.candidate]));
    }
    candidates = std::move(ranked);
}

} // namespace

void normaliseAndRank(std::vector<Candidate>& candidates, const IdOf& idOf)
{
    normalise(candidates);
    rank(candidates, idOf);
}

namespace {

// Few terms are added one by one. That costs nothing, and where two sums are equal but for their last bits, which a threshold or the last
// digit that is printed may bring out, it stays as it always was.
constexpr std::size_t fewModes = 200;

bool isFew(const ModeSteps& steps)
{
    return steps.size() <= fewModes;
}

} // namespace

std::optional<Candidate> weigh(const StepFrame& frame, const Deviations& modes, double logLikelihood)
{
    Candidate candidate;
    candidate.modes = modes;
    std::map<VariableIndex, const ModeOption*> changed;
    LogSum sum = frame.modes.logPredicted();
    for (const AtomIndex mode : modes) {
        const VariableIndex variable = frame.plant.variableOf(mode);
        const ModeStep& step = frame.stepOf(variable);
        const ModeOption* option = step.option(mode);
        if (!changed.emplace(variable, option).second) {
            continue;
        }
        if (!option) {
            return std::nullopt;
        }
        sum.remove(std::log(step.option(step.predicted)->probability));
        sum.add(std::log(option->probability));
        candidate.faults += option->fault ? 1 : 0;
    }
    candidate.logProbability = logLikelihood;
    if (!isFew(frame.modes)) {
        candidate.logProbability += sum.value();
        return candidate;
    }
    for (const ModeStep& step : frame.modes) {
        const auto deviation = changed.find(step.variable);
        const ModeOption* option =
            deviation == changed.end() ? step.option(step.predicted) : deviation->second;
        candidate.logProbability += std::log(option->probability);
    }
    return candidate;
}

double logCalm(const StepFrame& frame, const Deviations& deviations)
{
    if (isFew(frame.modes)) {
        double sum = 0.0;
        for (const ModeStep& step : frame.modes) {
            sum += logCalmOf(step, deviations);
        }
        return sum;
    }
    LogSum sum = frame.modes.logCalm();
    std::set<VariableIndex> deviating;
    for (const AtomIndex value : deviations) {
        const VariableIndex variable = frame.plant.variableOf(value);
        if (deviating.insert(variable).second) {
            const ModeStep& step = frame.stepOf(variable);
            sum.remove(logCalmOf(step, {}));
            sum.add(logCalmOf(step, deviations));
        }
    }
    return sum.value();
}

double logPredicted(const StepFrame& frame)
{
    if (!isFew(frame.modes)) {
        return frame.modes.logPredicted().value();
    }
    double sum = 0.0;
    for (const ModeStep& step : frame.modes) {
        sum += std::log(step.option(step.predicted)->probability);
    }
    return sum;
}

StepAssumptions assumptionsOf(const StepFrame& frame, const Deviations& deviations)
{
    SharedArray<AtomIndex> modes = frame.modes.predicted();
    for (auto value = deviations.rbegin(); value != deviations.rend(); ++value) {
        modes.set(frame.plant.modePlace(frame.plant.variableOf(*value)), *value);
    }
    return {frame.commands, std::move(modes)};
}

namespace {

// From labels that were kept what is open is looked at around what changed.
Completion completionOf(const StepFrame& frame, const Prediction& labels)
{
    const bool fills =
        frame.carriedFills && stillFillsInTurn(frame.plant, labels, frame.carried->prediction());
    return fills ? Completion::possible : completionOf(frame.plant, labels);
}

void judgeLabels(const StepFrame& frame, const Deviations& modes, StepLabels& labels,
                 Judgement& judgement)
{
    labels.take(assumptionsOf(frame, modes), frame.observations, frame.inputs);
    if (!labels.consistent() || !labels.contradicted().empty()) {
        return;
    }
    const Completion completion = completionOf(frame, labels.prediction());
    judgement.sure = judgement.sure && completion != Completion::unsettled;
    auto candidate = weigh(frame, modes, labels.likelihood().log);
    if (candidate && completion == Completion::possible) {
        judgement.candidates.push_back(std::move(*candidate));
    }
}

// What labels that were kept cost depends on the steps before.
void judgeOne(const StepFrame& frame, const Deviations& modes,
              const std::map<Deviations, StepLabels>& known, Judgement& judgement)
{
    if (!frame.carried) {
        StepLabels fresh(frame.plant);
        judgeLabels(frame, modes, fresh, judgement);
        return;
    }
    const auto drawn = known.find(modes);
    StepLabels labels = drawn == known.end() ? *frame.carried : drawn->second;
    {
        const Meter::Uncounted uncounted;
        judgeLabels(frame, modes, labels, judgement);
    }
    Meter::spend(labels.workFrom(*frame.carried));
}

// Weighs many candidates: what they have in common is added up once.
class Weights {
public:
    explicit Weights(const StepFrame& frame) : frame_(frame), logPredicted_(logPredicted(frame)) {}

    Candidate of(const Deviations& modes, double logLikelihood) const
    {
        Candidate candidate;
        candidate.modes = modes;
        double change = 0.0;
        for (const AtomIndex mode : modes) {
            const ModeStep& step = frame_.stepOf(frame_.plant.variableOf(mode));
            const ModeOption& option = *step.option(mode);
            change +=
                std::log(option.probability) - std::log(step.option(step.predicted)->probability);
            candidate.faults += option.fault ? 1 : 0;
        }
        candidate.logProbability = logPredicted_ + change + logLikelihood;
        return candidate;
    }

private:
    const StepFrame& frame_;
    double logPredicted_;
};

} // namespace

// Where the search was cut, what it found may spend what was kept back for that.
Judgement judge(const StepFrame& frame, const std::set<Deviations>& found,
                const std::map<Deviations, double>& logLikelihoods,
                const std::map<Deviations, StepLabels>& labels)
{
    Judgement judgement;
    const Meter::Finishing finishing;
    const Weights weights(frame);
    try {
        for (const Deviations& modes : found) {
            const auto known = logLikelihoods.find(modes);
            if (known == logLikelihoods.end()) {
                judgeOne(frame, modes, labels, judgement);
            } else {
                Meter::spend(1 + modes.size());
                judgement.candidates.push_back(weights.of(modes, known->second));
            }
        }
    } catch (const Meter::Cut& cut) {
        judgement.sure = false;
        judgement.limit = cut.limit;
    }
    keepMinimal(judgement.candidates);
    normaliseAndRank(judgement.candidates,
                     [&](AtomIndex mode) { return frame.plant.atom(mode)->id; });
    return judgement;
}

} // namespace monitor
