#include "assess/Evaluator.h"

#include "plant/Names.h"

#include <algorithm>
#include <fmt/format.h>

namespace assess {

namespace {

// What is equal but for rounding is not more probable.
constexpr double rounding = 1e-9;

Summary summaryOf(std::vector<double> values)
{
    Summary summary;
    summary.count = values.size();
    if (values.empty()) return summary;
    std::sort(values.begin(), values.end());
    for (const double value : values) {
        summary.mean += value / static_cast<double>(values.size());
    }
    const std::size_t half = values.size() / 2;
    summary.median = values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
    summary.most = values.back();
    return summary;
}

} // namespace

Evaluator::Evaluator(const plant::Plant& plant, std::vector<Label> labels,
                     EvaluationSettings settings)
    : plant_(plant), settings_(settings)
{
    total_.threshold = settings.threshold;
    total_.grace = settings.grace;
    for (Label& label : labels) {
        total_.events.emplace_back().label = std::move(label);
    }
}

Evaluator::Belief Evaluator::belief(const monitor::TrackAnswer& answer) const
{
    Belief belief;
    double mass = 0.0;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        const double p = answer.probabilities[i];
        const auto& since = answer.hypotheses[i]->since;
        if (!since.empty()) belief.fault += p;
        const bool shown = (settings_.shown == 0 || i < settings_.shown) &&
                           (i == 0 || mass < settings_.mass - rounding);
        for (const auto& [variable, deviation] : since) {
            belief.values[deviation.value] += p;
            if (shown) belief.shown.push_back(deviation.value);
        }
        mass += p;
    }
    return belief;
}

bool Evaluator::names(const Label& label, plant::AtomIndex value) const
{
    if (!label.values.empty()) return label.values.front() == value;
    return std::binary_search(label.modes.begin(), label.modes.end(), plant_.variableOf(value));
}

// More probable than anything else that is believed in its place, and that no other label of the time names.
bool Evaluator::isIsolated(const Label& label, const std::vector<const Label*>& now,
                           const monitor::TrackAnswer& answer) const
{
    double own = 0.0;
    std::map<plant::AtomIndex, double> inItsPlace;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        const auto& since = answer.hypotheses[i]->since;
        const double p = answer.probabilities[i];
        if (std::any_of(since.begin(), since.end(),
                        [&](const auto& entry) { return names(label, entry.second.value); })) {
            own += p;
            continue;
        }
        for (const auto& [variable, deviation] : since) {
            const bool isLabelled = std::any_of(
                now.begin(), now.end(),
                [&, value = deviation.value](const Label* other) { return names(*other, value); });
            if (!isLabelled) inItsPlace[deviation.value] += p;
        }
    }
    return own > rounding &&
           std::all_of(inItsPlace.begin(), inItsPlace.end(),
                       [&](const auto& entry) { return entry.second < own - rounding; });
}

bool Evaluator::isNamed(const Label& label, const Belief& belief) const
{
    return std::any_of(belief.shown.begin(), belief.shown.end(),
                       [&](plant::AtomIndex value) { return names(label, value); });
}

std::string Evaluator::mostProbable(const Belief& belief) const
{
    std::optional<plant::AtomIndex> best;
    double greatest = 0.0;
    for (const auto& [value, p] : belief.values) {
        if (p <= greatest + rounding) continue;
        best = value;
        greatest = p;
    }
    if (!best) return {};
    const Atom& atom = *plant_.atom(*best);
    return fmt::format("{} = {}", plant::nameOf(*atom.stateVar), atom.value);
}

void Evaluator::score(EventScore& event, double t, const Belief& belief, bool isIsolated) const
{
    const double after = t - event.label.start;
    ++event.alarmSteps;
    if (!event.detectedAfter) event.detectedAfter = after;
    event.mostProbable = mostProbable(belief);
    if (event.label.isFaultOnly()) return;
    if (isNamed(event.label, belief) && !event.namedAfter) event.namedAfter = after;
    if (!isIsolated) return;
    ++event.isolatedSteps;
    if (!event.isolatedAfter) event.isolatedAfter = after;
}

// A step lasts until the next one, or for its length where that is missing.
void Evaluator::passTime(const telemetry::Step& step)
{
    if (!freeBefore_) return;
    total_.freeSeconds += step.gap ? settings_.stepSeconds : step.t - lastTime_;
}

void Evaluator::takeFree(bool alarm)
{
    ++total_.freeSteps;
    if (!alarm) return;
    ++total_.freeAlarms;
    if (freeBefore_ && alarmBefore_) return;
    ++total_.falseAlarms;
    if (alarmBefore_) ++total_.lingering;
}

void Evaluator::take(const telemetry::Step& step, const monitor::TrackAnswer& answer)
{
    const Belief now = belief(answer);
    const bool alarm = now.fault >= settings_.threshold - rounding;
    passTime(step);
    ++total_.steps;
    if (answer.status == monitor::TrackStatus::inconsistent) ++total_.inconsistent;
    if (!answer.complete) ++total_.incomplete;
    std::vector<const Label*> labels;
    bool inGrace = false;
    for (const EventScore& event : total_.events) {
        if (event.label.contains(step.t)) labels.push_back(&event.label);
        inGrace =
            inGrace || (step.t >= event.label.start && step.t < event.label.end + settings_.grace);
    }
    for (EventScore& event : total_.events) {
        if (!event.label.contains(step.t)) continue;
        if (event.steps++ == 0) event.wasOnBefore = alarmBefore_;
        if (alarm) score(event, step.t, now, isIsolated(event.label, labels, answer));
    }
    if (!labels.empty()) {
        ++total_.faultySteps;
        total_.faultyAlarms += alarm ? 1 : 0;
    }
    const bool isFree = labels.empty() && !inGrace;
    if (isFree) takeFree(alarm);
    alarmBefore_ = alarm;
    freeBefore_ = isFree;
    lastTime_ = step.t;
}

Evaluation Evaluator::evaluation() const
{
    Evaluation result = total_;
    if (freeBefore_) result.freeSeconds += settings_.stepSeconds;
    std::vector<double> detection;
    std::vector<double> isolation;
    for (const EventScore& event : result.events) {
        if (event.steps == 0) continue;
        ++result.labelled;
        if (event.detectedAfter) detection.push_back(*event.detectedAfter);
        if (event.label.isFaultOnly()) continue;
        ++result.isolable;
        result.named += event.namedAfter ? 1 : 0;
        if (event.isolatedAfter) isolation.push_back(*event.isolatedAfter);
    }
    result.detected = detection.size();
    result.isolated = isolation.size();
    result.detectionDelay = summaryOf(std::move(detection));
    result.isolationDelay = summaryOf(std::move(isolation));
    return result;
}

} // namespace assess
