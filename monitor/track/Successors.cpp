// One search for each set of lost commands, the smaller sets first, all within one budget. An explanation is dropped when a
// smaller one, with a part of its lost commands and of its deviations, was found before.
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

constexpr std::size_t mostLostAtOnce = 2;

bool contains(const std::vector<LossyCommand>& commands, const LossyCommand& command)
{
    return std::any_of(commands.begin(), commands.end(),
                       [&](const LossyCommand& other) { return other.given == command.given; });
}

double logArrivals(const TrackInput& input, const std::vector<LossyCommand>& lost)
{
    double sum = 0.0;
    for (const LossyCommand& command : input.lossy) {
        sum += std::log(contains(lost, command) ? command.probability : 1.0 - command.probability);
    }
    return sum;
}

// The natural logarithm of their likelihood; what is remembered of them goes into the hypothesis.
double takeReadings(Hypothesis& made, const Hypothesis& parent, const StepFrame& frame,
                    const TrackInput& input)
{
    if (input.values.changing.empty()) {
        const Likelihood likelihood = made.labels.likelihood();
        made.exact = likelihood.exact;
        return likelihood.log;
    }
    std::set<VariableIndex> changed;
    for (std::size_t i = 0; i < made.modes.size(); ++i) {
        if (made.modes[i] != parent.modes[i]) {
            changed.insert(frame.modes[i].variable);
        }
    }
    ReadingsInTime readings = made.labels.inTime(input.values.changing, parent.readings, changed);
    made.exact = readings.exact;
    made.readings = std::move(readings.memory);
    return readings.log;
}

// It began to differ when it did, whatever values it had since.
void updateSince(Hypothesis& made, const Plant& plant, const std::vector<ModeStep>& steps,
                 const TrackInput& input)
{
    const std::vector<AtomIndex>& twin = made.twinModes();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const AtomIndex value = made.modes[i];
        if (value == twin[i] && !plant.atom(value)->fail) {
            made.since.erase(steps[i].variable);
            continue;
        }
        made.since.try_emplace(steps[i].variable, Since{value, input.step, input.t})
            .first->second.value = value;
    }
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
                  const std::vector<LossyCommand>& lost, const TrackInput& input, std::size_t window)
{
    for (const AtomIndex value : deviations) {
        const VariableIndex variable = frame.plant.variableOf(value);
        const ModeOption* option = frame.stepOf(variable).option(value);
        if (option && option->fault) {
            made.faults.push_back({variable, input.step});
        }
    }
    for (const LossyCommand& command : lost) {
        made.faults.push_back({frame.plant.variableOf(command.given), input.step});
    }
    std::vector<FaultBegun> kept;
    std::copy_if(
        made.faults.begin(), made.faults.end(), std::back_inserter(kept),
        [&](const FaultBegun& fault) { return stillCounts(fault, made, input.step, window); });
    made.faults = std::move(kept);
}

// All sets of lossy commands of a size, each in the order of the commands; those with an earlier last command first. One at a time:
// there may be very many.
class LostSets {
public:
    LostSets(const std::vector<LossyCommand>& lossy, std::size_t size) : lossy_(lossy)
    {
        for (std::size_t i = 0; i < size; ++i) {
            places_.push_back(i);
        }
        atEnd_ = size > lossy.size();
    }

    // Null: no more.
    const std::vector<LossyCommand>* next()
    {
        if (atEnd_) {
            return nullptr;
        }
        set_.clear();
        for (const std::size_t place : places_) {
            set_.push_back(lossy_[place]);
        }
        advance();
        return &set_;
    }

private:
    // The first command that has room before the next one moves on, and those before it begin again.
    void advance()
    {
        for (std::size_t i = 0; i < places_.size(); ++i) {
            const std::size_t limit = i + 1 < places_.size() ? places_[i + 1] : lossy_.size();
            if (places_[i] + 1 < limit) {
                ++places_[i];
                for (std::size_t before = 0; before < i; ++before) {
                    places_[before] = before;
                }
                return;
            }
        }
        atEnd_ = true;
    }

    const std::vector<LossyCommand>& lossy_;
    std::vector<std::size_t> places_;
    std::vector<LossyCommand> set_;
    bool atEnd_ = false;
};

struct Explained {
    std::vector<LossyCommand> lost;
    Deviations deviations; ///< sorted
};

// Whether the one explains with less than the other: a part of its lost commands, and no further deviation.
bool isSmaller(const Explained& one, const Explained& other)
{
    return one.lost.size() < other.lost.size() &&
           std::all_of(one.lost.begin(), one.lost.end(),
                       [&](const LossyCommand& lost) { return contains(other.lost, lost); }) &&
           std::includes(other.deviations.begin(), other.deviations.end(), one.deviations.begin(),
                         one.deviations.end());
}

// Commands of a step that do not arrive together.
struct ProbableLoss {
    std::vector<LossyCommand> lost;
    double ratio; ///< how probable that is, compared with what is most probable
};

// Those that are probable enough, with at most so many commands; the first `most` of them, the smaller ones first.
std::vector<ProbableLoss> probableLosses(const std::vector<LossyCommand>& lossy, double leastRatio,
                                         int mostLost, std::size_t most)
{
    std::vector<ProbableLoss> all{{{}, 1.0}};
    for (const LossyCommand& command : lossy) {
        const double arrives = 1.0 - command.probability;
        const double larger = std::max(arrives, command.probability);
        const std::size_t known = all.size();
        for (std::size_t i = 0; i < known; ++i) {
            ProbableLoss longer = all[i];
            longer.ratio *= command.probability / larger;
            longer.lost.push_back(command);
            all[i].ratio *= arrives / larger;
            if (longer.ratio > 0.0 && longer.ratio >= leastRatio &&
                longer.lost.size() <= static_cast<std::size_t>(std::max(0, mostLost)) &&
                all.size() <= most) {
                all.push_back(std::move(longer));
            }
        }
    }
    std::erase_if(all, [&](const ProbableLoss& loss) {
        return loss.ratio <= 0.0 || loss.ratio < leastRatio;
    });
    return all;
}

} // namespace

StepFrame frameAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                     const std::vector<LossyCommand>& lost)
{
    StepInput values = input.values;
    for (const LossyCommand& command : lost) {
        std::replace(values.commands.begin(), values.commands.end(), command.given,
                     command.fallback);
    }
    return makeFrame(plant, parent.labels.prediction(), values);
}

Successors::Successors(itms& engine, const Plant& plant, std::size_t window)
    : Successors(std::make_shared<EngineExplanations>(engine, recordsBeforeSplit), plant, window)
{
}

// Nothing when a mode cannot be had at this step.
std::optional<Hypothesis> Successors::make(const Hypothesis& parent, const TrackInput& input,
                                           const StepFrame& frame, const Deviations& deviations,
                                           const std::vector<LossyCommand>& lost,
                                           Contradictions despite) const
{
    // Labels and readings are kept from step to step, and so cost what is remembered of them.
    Meter::spend(4 * plant_.atomCount());
    const Meter::Uncounted uncounted;
    Hypothesis made{parent.labels, {}, 0.0, 0.0, parent.faults, nullptr, parent.since, {}, {}, {}};
    const std::vector<AtomIndex> assumptions = assumptionsOf(frame, deviations);
    made.labels.take(assumptions, frame.observations, frame.inputs);
    made.modes.assign(assumptions.begin() + static_cast<std::ptrdiff_t>(frame.commands.size()),
                      assumptions.end());
    made.unexplained = made.labels.contradicted();
    const bool counts = made.explains() || despite == Contradictions::areWeighed;
    const auto weighed =
        weigh(frame, deviations, counts ? takeReadings(made, parent, frame, input) : 0.0);
    if (!weighed) {
        return std::nullopt;
    }
    made.logStep = weighed->logProbability + logArrivals(input, lost);
    made.logWeight = parent.logWeight + made.logStep;
    for (const LossyCommand& command : lost) {
        made.lost.push_back(command.given);
    }
    made.twin = lost.empty()
                    ? twinAfter(plant_, parent, input, frame, frame, made)
                    : twinAfter(plant_, parent, input, frame, this->frame(parent, input, {}), made);
    made.exact = made.exact && std::all_of(frame.modes.begin(), frame.modes.end(),
                                           [](const ModeStep& step) { return step.exact; });
    made.logCalm = logCalm(frame, deviations);
    updateSince(made, plant_, frame.modes, input);
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

bool Successors::explains(const Hypothesis& predicted) const
{
    Meter::spend(plant_.atomCount());
    const Meter::Uncounted uncounted;
    const Prediction& labels = predicted.labels.prediction();
    return predicted.explains() && std::isfinite(predicted.logStep) &&
           (labels.complete() || completionOf(plant_, labels) == Completion::possible);
}

std::optional<Hypothesis> Successors::deviating(const Hypothesis& parent, const TrackInput& input,
                                                const Deviations& deviations,
                                                const std::vector<LossyCommand>& lost) const
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
        const int left = faultBudget - static_cast<int>(loss.lost.size());
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

SuccessorSearch Successors::search(const Prospect& prospect, int faultBudget,
                                   const SearchLimits& limits)
{
    const Hypothesis& parent = prospect.parent;
    const TrackInput& input = prospect.input;
    Budget work(limits);
    SuccessorSearch result;
    std::vector<Explained> smallest;
    const auto budget = static_cast<std::size_t>(std::max(0, faultBudget));
    const auto searchWithout = [&](const std::vector<LossyCommand>& lost) {
        const StepFrame tried = frame(prospect, lost);
        const Explanations explanations =
            search_->search(tried, static_cast<int>(budget - lost.size()), work.remaining());
        const Judgement judgement = judge(tried, explanations.found, explanations.logLikelihoods);
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
                result.found.push_back(
                    *make(parent, input, tried, candidate.modes, lost, Contradictions::areNot));
                smallest.push_back(std::move(explained));
            }
        }
    };
    try {
        for (std::size_t count = 0; count <= std::min(budget, mostLostAtOnce); ++count) {
            LostSets sets(input.lossy, count);
            while (const std::vector<LossyCommand>* lost = sets.next()) {
                if (work.exhausted() && count > 0) {
                    result.complete = false;
                    break;
                }
                Meter::spend(10 * input.lossy.size());
                if (std::isfinite(logArrivals(input, *lost))) {
                    searchWithout(*lost);
                }
            }
        }
    } catch (const Meter::Cut& cut) {
        work.meet(cut.limit);
        result.complete = false;
    }
    if (result.found.empty() && std::min(budget, input.lossy.size()) > mostLostAtOnce) {
        result.complete = false;
    }
    result.limit = work.limit();
    result.work = work.work();
    return result;
}

std::vector<LossyCommand> lossyCommands(const Plant& plant, const plant::Bindings& bindings,
                                        const std::vector<AtomIndex>& given)
{
    std::vector<LossyCommand> lossy;
    for (const AtomIndex command : given) {
        const PlantVariable& variable = plant.variable(plant.variableOf(command));
        const auto lost = bindings.lost.find(variable.variable);
        const AtomIndex fallback = variable.values.front();
        if (lost != bindings.lost.end() && lost->second > 0.0 && command != fallback) {
            lossy.push_back({command, fallback, lost->second});
        }
    }
    return lossy;
}

Hypothesis initialHypothesis(const Plant& plant)
{
    const Prediction labels = initialLabels(plant);
    Hypothesis made{StepLabels(plant, labels), {}, 0.0, 0.0, {}, nullptr, {}, {}, {}, {}};
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (!variable.isMode || variable.values.empty()) {
            continue;
        }
        const AtomIndex value = *labels.valueOf(variable);
        made.modes.push_back(value);
        if (plant.atom(value)->fail) {
            made.since[static_cast<VariableIndex>(i)] = {value, 0, 0.0};
        }
    }
    return made;
}

} // namespace monitor
