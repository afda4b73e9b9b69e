// One search for each set of losses, the smaller sets first, all within one budget. An explanation is dropped when a smaller one, with
// a part of its losses and of its deviations, was found before.
#include "monitor/track/Successors.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "monitor/step/Budget.h"
#include "monitor/step/EngineExplanations.h"
#include "monitor/step/Judge.h"
#include "monitor/step/ProbableDeviations.h"
#include "monitor/track/Twin.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace monitor {

namespace {

// The natural logarithm of their likelihood; what is remembered of them goes into the hypothesis.
double takeReadings(Hypothesis& made, const Hypothesis& parent, const StepFrame& frame,
                    const std::vector<double>& changing, LastOpenAnswers& asked)
{
    // Nothing that is remembered is forgotten where nothing is read.
    if (changing.empty() && parent.readings.last.empty()) {
        const Likelihood likelihood = made.labels.likelihood();
        made.exact = likelihood.exact;
        return likelihood.log;
    }
    std::set<VariableIndex> changed;
    forEachDifference(made.modes, parent.modes,
                      [&](std::size_t place) { changed.insert(frame.plant.modes()[place]); });
    ReadingsInTime readings = made.labels.inTime(changing, parent.readings, changed, asked);
    made.exact = readings.exact;
    made.readings = std::move(readings.memory);
    return readings.log;
}

// It began to differ when it did, whatever values it had since. Where neither it nor the twin has another value than before, nothing
// is different.
void updateSince(Hypothesis& made, const Hypothesis& parent, const Plant& plant,
                 const TrackInput& input)
{
    const SharedArray<AtomIndex>& twin = made.twinModes();
    const auto update = [&](std::size_t place) {
        const AtomIndex value = made.modes[place];
        const VariableIndex variable = plant.modes()[place];
        if (value == twin[place] && !plant.atom(value)->fail) {
            made.since.erase(variable);
            return;
        }
        made.since.try_emplace(variable, Since{value, input.step, input.t}).first->second.value =
            value;
    };
    forEachDifference(made.modes, parent.modes, update);
    forEachDifference(twin, parent.twinModes(), update);
}

// Whether a fault counts at the step: it began within so many steps, or is the last one of a mode that is still wrong.
bool stillCounts(const FaultBegun& fault, const Hypothesis& made, std::size_t step,
                 std::size_t window)
{
    return step - fault.step <= window ||
           (made.since.contains(fault.variable) &&
            std::none_of(made.faults.begin(), made.faults.end(), [&](const FaultBegun& other) {
                return other.variable == fault.variable && other.step > fault.step;
            }));
}

// Requires: `since` is that of the step.
void updateFaults(Hypothesis& made, const StepFrame& frame, const Deviations& deviations,
                  const Losses& lost, const TrackInput& input, std::size_t window)
{
    for (const AtomIndex value : deviations) {
        const VariableIndex variable = frame.plant.variableOf(value);
        const ModeOption* option = frame.stepOf(variable).option(value);
        if (option && option->fault) {
            made.faults.push_back({variable, input.step});
        }
    }
    for (const Loss& one : lost) {
        if (!one.isReading()) {
            made.faults.push_back({frame.plant.variableOf(one.given), input.step});
        }
    }
    std::vector<FaultBegun> kept;
    std::copy_if(
        made.faults.begin(), made.faults.end(), std::back_inserter(kept),
        [&](const FaultBegun& fault) { return stillCounts(fault, made, input.step, window); });
    made.faults = std::move(kept);
}

struct Explained {
    Losses lost;
    Deviations deviations; ///< sorted
};

// Whether the one explains with less than the other: a part of its losses, and no further deviation.
bool isSmaller(const Explained& one, const Explained& other)
{
    return one.lost.size() < other.lost.size() &&
           std::all_of(one.lost.begin(), one.lost.end(),
                       [&](const Loss& lost) { return contains(other.lost, lost); }) &&
           std::includes(other.deviations.begin(), other.deviations.end(), one.deviations.begin(),
                         one.deviations.end());
}

} // namespace

StepFrame frameAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                     const Losses& lost)
{
    StepFrame frame = makeFrame(plant, parent.labels.prediction(),
                                arriving(input, lost, parent.lost), parent.steps);
    frame.carried = &parent.labels;
    frame.carriedFills = parent.fillsInTurn;
    return frame;
}

Successors::Successors(itms& engine, const Plant& plant, std::size_t window)
    : Successors(std::make_shared<EngineExplanations>(engine, recordsBeforeSplit), plant, window)
{
}

// Labels and readings are kept from step to step, and so cost what is remembered of them.
std::optional<Hypothesis> Successors::make(const Hypothesis& parent, const TrackInput& input,
                                           const StepFrame& frame, const Deviations& deviations,
                                           const Losses& lost, Contradictions despite,
                                           const StepLabels& labels) const
{
    std::optional<Hypothesis> made;
    {
        const Meter::Uncounted uncounted;
        made = drawn(parent, input, frame, deviations, lost, despite, labels);
    }
    Meter::spend(made ? made->labels.workFrom(parent.labels) : 1);
    return made;
}

// Nothing when a mode cannot be had at this step.
std::optional<Hypothesis> Successors::drawn(const Hypothesis& parent, const TrackInput& input,
                                            const StepFrame& frame, const Deviations& deviations,
                                            const Losses& lost, Contradictions despite,
                                            const StepLabels& labels) const
{
    Hypothesis made{labels, {}, 0.0, 0.0, parent.faults, nullptr, parent.since, {}, {}, {}};
    const StepAssumptions assumptions = assumptionsOf(frame, deviations);
    made.labels.take(assumptions, frame.observations, frame.inputs);
    made.labels.share();
    made.modes = assumptions.modes;
    made.steps = frame.known;
    made.filledBefore = parent.fillsInTurn;
    made.unexplained = made.labels.contradicted();
    const bool counts = made.explains() || despite == Contradictions::areWeighed;
    const auto weighed =
        weigh(frame, deviations,
              counts ? takeReadings(made, parent, frame, frame.changing, openAnswers_) : 0.0);
    if (!weighed) {
        return std::nullopt;
    }
    made.logStep = weighed->logProbability + logArrivals(input, lost);
    made.logWeight = parent.logWeight + made.logStep;
    made.lost = lostValues(input, lost, parent.lost);
    made.twin =
        lostCommands(lost) == 0
            ? twinAfter(plant_, parent, input, frame, frame, made, twins_)
            : twinAfter(plant_, parent, input, frame, this->frame(parent, input, {}), made, twins_);
    made.exact = made.exact && frame.modes.exact();
    made.logCalm = logCalm(frame, deviations);
    updateSince(made, parent, plant_, input);
    updateFaults(made, frame, deviations, lost, input, window_);
    return made;
}

Hypothesis Successors::predicted(const Prospect& prospect, Contradictions despite) const
{
    return *make(prospect.parent, prospect.input, prospect.frame, {}, {}, despite);
}

double Successors::logOthers(const Prospect& prospect) const
{
    const double log = logPredicted(prospect.frame) + logArrivals(prospect.input, {});
    return std::log(-std::expm1(std::min(0.0, log)));
}

bool Successors::explains(Hypothesis& predicted) const
{
    const Meter::Uncounted uncounted;
    if (!predicted.explains() || !std::isfinite(predicted.logStep)) {
        return false;
    }
    const Prediction& labels = predicted.labels.prediction();
    predicted.fillsInTurn = labels.complete() ||
                            (predicted.filledBefore && predicted.steps &&
                             stillFillsInTurn(plant_, labels, predicted.steps->before())) ||
                            completionOf(plant_, labels, 0) == Completion::possible;
    return predicted.fillsInTurn || completionOf(plant_, labels) == Completion::possible;
}

// The next step need not look at all of what is open, then.
void Successors::noteFilling(Hypothesis& explained) const
{
    const Meter::Uncounted uncounted;
    explained.fillsInTurn =
        explained.filledBefore &&
        stillFillsInTurn(plant_, explained.labels.prediction(), explained.steps->before());
}

std::optional<Hypothesis> Successors::deviating(const Hypothesis& parent, const TrackInput& input,
                                                const Deviations& deviations,
                                                const Losses& lost) const
{
    auto made =
        make(parent, input, frame(parent, input, lost), deviations, lost, Contradictions::areNot);
    return made && explains(*made) ? made : std::nullopt;
}

SuccessorSearch Successors::probable(const Prospect& prospect, double leastRatio, int faultBudget,
                                     std::size_t most, const SearchLimits& limits) const
{
    const Hypothesis& parent = prospect.parent;
    const TrackInput& input = prospect.input;
    Budget budget(limits);
    SuccessorSearch result;
    Meter::spend(input.lossy.size() * input.lossy.size());
    const std::vector<ProbableLoss> losses =
        probableLosses(input.lossy, leastRatio, faultBudget, most);
    result.complete = losses.size() <= most;
    for (const ProbableLoss& loss : losses) {
        const StepFrame tried = frame(prospect, loss.lost);
        const int left = faultBudget - lostCommands(loss.lost);
        ProbableDeviations others =
            probableDeviations(tried.modes, leastRatio / loss.ratio, left, most);
        if (!loss.lost.empty()) {
            others.found.insert(others.found.begin(), {{}, 0.0, 0});
        }
        result.complete = result.complete && others.complete;
        for (const ProbableDeviation& other : others.found) {
            if (budget.exhausted()) {
                result.complete = false;
                break;
            }
            budget.spendRecord();
            auto made =
                make(parent, input, tried, other.deviations, loss.lost, Contradictions::areNot);
            if (made && explains(*made)) {
                budget.spendCandidate();
                result.found.push_back(std::move(*made));
            }
        }
    }
    result.limit = budget.limit();
    result.work = budget.work();
    return result;
}

std::vector<Hypothesis> Successors::recovered(const Prospect& prospect) const
{
    std::vector<Hypothesis> found;
    for (const Deviations& deviations : recoveries(plant_, prospect.frame.modes)) {
        auto made = make(prospect.parent, prospect.input, prospect.frame, deviations, {},
                         Contradictions::areNot);
        if (made && explains(*made)) {
            found.push_back(std::move(*made));
        }
    }
    return found;
}

int Successors::faultsLeft(const Hypothesis& parent, const TrackInput& input, int mostFaults) const
{
    const auto counting =
        std::count_if(parent.faults.begin(), parent.faults.end(), [&](const FaultBegun& fault) {
            return stillCounts(fault, parent, input.step, window_);
        });
    return mostFaults - static_cast<int>(counting);
}

// In a run that was resumed it is made at another step: it does not count.
const ConnectedVariables& Successors::connected() const
{
    if (!connected_) {
        const Meter::Uncounted uncounted;
        connected_ = std::make_shared<const ConnectedVariables>(plant_);
    }
    return *connected_;
}

SuccessorSearch Successors::search(const Prospect& prospect, int faultBudget,
                                   const SearchLimits& limits)
{
    const Hypothesis& parent = prospect.parent;
    const TrackInput& input = prospect.input;
    Budget work(limits);
    SuccessorSearch result;
    std::vector<Explained> smallest;
    const int budget = std::max(0, faultBudget);
    const auto searchWithout = [&](const Losses& lost) {
        const StepFrame tried = frame(prospect, lost);
        const Explanations explanations =
            search_->search(tried, budget - lostCommands(lost), work.remaining());
        const Judgement judgement =
            judge(tried, explanations.found, explanations.logLikelihoods, explanations.labels);
        work.spend(explanations.work);
        work.meet(explanations.limit);
        work.meet(judgement.limit);
        result.complete = result.complete && explanations.complete && judgement.sure;
        const Meter::Finishing finishing;
        for (const Candidate& candidate : judgement.candidates) {
            Explained explained{lost, candidate.modes};
            std::sort(explained.deviations.begin(), explained.deviations.end());
            if (std::none_of(smallest.begin(), smallest.end(),
                             [&](const Explained& other) { return isSmaller(other, explained); })) {
                const auto drawn = explanations.labels.find(explained.deviations);
                result.found.push_back(
                    *make(parent, input, tried, candidate.modes, lost, Contradictions::areNot,
                          drawn == explanations.labels.end() ? parent.labels : drawn->second));
                noteFilling(result.found.back());
                smallest.push_back(std::move(explained));
            }
        }
    };
    try {
        Meter::spend(10 * input.lossy.size());
        if (std::isfinite(logArrivals(input, {}))) {
            searchWithout({});
        }
        const Losses lossy = haveReadings(input.lossy)
                                 ? lossesThatMatter(prospect.frame, input.lossy, connected())
                                 : input.lossy;
        for (std::size_t count = 1; count <= mostLostAtOnce; ++count) {
            LostSets sets(lossy, count);
            while (const Losses* lost = sets.next()) {
                if (work.exhausted()) {
                    result.complete = false;
                    break;
                }
                Meter::spend(10 * input.lossy.size());
                if (lostCommands(*lost) <= budget && std::isfinite(logArrivals(input, *lost))) {
                    searchWithout(*lost);
                }
            }
        }
    } catch (const Meter::Cut& cut) {
        work.meet(cut.limit);
        result.complete = false;
    }
    if (result.found.empty() && mostLosses(input.lossy, budget) > mostLostAtOnce) {
        result.complete = false;
    }
    result.limit = work.limit();
    result.work = work.work();
    return result;
}

Hypothesis initialHypothesis(const Plant& plant)
{
    const Prediction labels = initialLabels(plant);
    Hypothesis made{StepLabels(plant, labels), {}, 0.0, 0.0, {}, nullptr, {}, {}, {}, {}};
    made.labels.share();
    std::vector<AtomIndex> modes;
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (!variable.isMode || variable.values.empty()) {
            continue;
        }
        const AtomIndex value = *labels.valueOf(variable);
        modes.push_back(value);
        if (plant.atom(value)->fail) {
            made.since[static_cast<VariableIndex>(i)] = {value, 0, 0.0};
        }
    }
    made.modes = modes;
    return made;
}

} // namespace monitor
