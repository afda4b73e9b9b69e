// All single deviations of the past steps are listed with an estimate of the weight of the way that they begin, and tried from the
// best one on. A try replays the steps since by prediction; with `searchOn` a step that is not as predicted is searched, and each
// of its explanations is followed in turn.
#include "monitor/track/LookBack.h"

#include "monitor/step/Budget.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

/// One deviation at a past step.
struct Alternative {
    std::size_t step;   ///< index in the past
    std::size_t parent; ///< place among what was believed before it
    Deviations deviations;
    std::vector<LossyCommand> lost;
    /// What the parent's weight would be with the deviation in place of what is predicted; the rest of the steps is taken
    /// to be as probable.
    double estimate;
};

// The atoms, other than commands and values of the variable itself, on which transitions of a mode variable depend.
std::vector<AtomIndex> guardAtoms(const Plant& plant, VariableIndex index)
{
    std::vector<AtomIndex> atoms;
    for (const AtomIndex from : plant.variable(index).values) {
        for (const PlantChange& change : plant.changesFrom(from)) {
            for (const PlantChange::Alternative& alternative : change.alternatives) {
                for (const PlantLiteral& literal : alternative.literals) {
                    if (!plant.variable(plant.variableOf(literal.atom)).isCommand) {
                        atoms.push_back(literal.atom);
                    }
                }
            }
        }
    }
    return atoms;
}

// The mode variables on which the present contradictions rest, directly or through what the transitions of this step and
// of earlier ones depended on.
std::vector<bool> relevantVariables(const Successors& successors, const Plant& plant,
                                    const std::deque<PastStep>& past,
                                    const std::vector<HypothesisPointer>& now,
                                    const TrackInput& present)
{
    std::vector<bool> relevant(plant.variables().size(), false);
    std::vector<VariableIndex> open;
    const auto reach = [&](VariableIndex variable) {
        if (!relevant[static_cast<std::size_t>(variable)]) {
            relevant[static_cast<std::size_t>(variable)] = true;
            open.push_back(variable);
        }
    };
    for (const HypothesisPointer& hypothesis : now) {
        const StepFrame frame = successors.frame(*hypothesis, present, {});
        for (const Conflict& conflict : Scenario(frame, {}).conflicts()) {
            std::for_each(conflict.begin(), conflict.end(), reach);
        }
    }
    while (!open.empty()) {
        const std::vector<AtomIndex> atoms = guardAtoms(plant, open.back());
        open.pop_back();
        if (atoms.empty()) {
            continue;
        }
        const auto reachThrough = [&](const HypothesisPointer& hypothesis) {
            const StepLabels labels = hypothesis->labels.afresh();
            const auto modes = labels.prediction().environment(atoms);
            std::for_each(modes.begin(), modes.end(), reach);
        };
        std::for_each(now.begin(), now.end(), reachThrough);
        for (const PastStep& step : past) {
            std::for_each(step.before.begin(), step.before.end(), reachThrough);
        }
    }
    return relevant;
}

class LookBack {
public:
    LookBack(Successors& successors, const std::deque<PastStep>& past, const TrackInput& present,
             const LookBackSettings& settings)
        : successors_(successors), past_(past), present_(present), settings_(settings),
          budget_(settings.limits)
    {
    }

    LookBackResult run(const std::vector<bool>& relevant)
    {
        for (const Alternative& alternative : alternatives(relevant)) {
            if (exhausted()) {
                break;
            }
            take(alternative);
        }
        result_.limit = budget_.limit();
        result_.work = budget_.work();
        return std::move(result_);
    }

private:
    std::vector<Alternative> alternatives(const std::vector<bool>& relevant) const
    {
        std::vector<Alternative> all;
        for (std::size_t step = past_.size(); step-- > 0;) {
            for (std::size_t parent = 0; parent < past_[step].before.size(); ++parent) {
                addAlternatives(step, parent, relevant, all);
            }
        }
        // Nearly equal ones stay in the order in which they are: the latest first.
        const auto rough = [](const Alternative& one) { return std::round(one.estimate * 100.0); };
        std::stable_sort(all.begin(), all.end(), [&](const Alternative& a, const Alternative& b) {
            return rough(a) > rough(b);
        });
        return all;
    }

    void addAlternatives(std::size_t step, std::size_t place, const std::vector<bool>& relevant,
                         std::vector<Alternative>& all) const
    {
        const Hypothesis& parent = *past_[step].before[place];
        const TrackInput& input = past_[step].input;
        const int budget = successors_.faultsLeft(parent, input, settings_.maxFaults);
        const StepFrame frame = successors_.frame(parent, input, {});
        for (const ModeStep& mode : frame.modes) {
            if (!relevant[static_cast<std::size_t>(mode.variable)]) {
                continue;
            }
            const double predicted = std::log(mode.option(mode.predicted)->probability);
            for (const ModeOption& option : mode.options) {
                if (option.value != mode.predicted && budget >= (option.fault ? 1 : 0)) {
                    const double change = std::log(option.probability) - predicted;
                    all.push_back({step, place, {option.value}, {}, parent.logWeight + change});
                }
            }
        }
        for (const LossyCommand& command : input.lossy) {
            if (budget >= 1) {
                const double change =
                    std::log(command.probability) - std::log(1.0 - command.probability);
                all.push_back({step, place, {}, {command}, parent.logWeight + change});
            }
        }
    }

    void take(const Alternative& alternative)
    {
        budget_.spendRecord();
        const PastStep& step = past_[alternative.step];
        auto made = successors_.deviating(*step.before[alternative.parent], step.input,
                                          alternative.deviations, alternative.lost);
        if (made) {
            made->logWeight -= step.logScale;
            follow({alternative.step, alternative.parent, {std::move(*made)}});
        }
    }

    // Replays what came after the last step of the way.
    void follow(Replay replay)
    {
        std::vector<Hypothesis>& way = replay.way;
        while (replay.begin + way.size() <= past_.size()) {
            const std::size_t next = replay.begin + way.size();
            const TrackInput& input = next < past_.size() ? past_[next].input : present_;
            const double scale = next < past_.size() ? past_[next].logScale : 0.0;
            budget_.spendRecord();
            Hypothesis made = successors_.predicted(way.back(), input);
            if (!successors_.explains(made)) {
                if (settings_.searchOn) {
                    fork(replay, input, scale);
                }
                return;
            }
            made.logWeight -= scale;
            way.push_back(std::move(made));
        }
        budget_.spendCandidate();
        result_.found.push_back(std::move(replay));
    }

    void fork(const Replay& replay, const TrackInput& input, double scale)
    {
        const Hypothesis& last = replay.way.back();
        SuccessorSearch search =
            successors_.search(last, input, successors_.faultsLeft(last, input, settings_.maxFaults),
                               budget_.remaining());
        search.work.candidates = 0; // those that can be followed to the present count
        budget_.spend(search.work);
        budget_.meet(search.limit);
        result_.complete = result_.complete && search.complete;
        for (Hypothesis& found : search.found) {
            if (exhausted()) {
                return;
            }
            found.logWeight -= scale;
            Replay longer = replay;
            longer.way.push_back(std::move(found));
            follow(std::move(longer));
        }
    }

    bool exhausted()
    {
        const bool met = budget_.exhausted();
        result_.complete = result_.complete && !met;
        return met;
    }

    Successors& successors_;
    const std::deque<PastStep>& past_;
    const TrackInput& present_;
    const LookBackSettings& settings_;
    Budget budget_;
    LookBackResult result_;
};

} // namespace

LookBackResult lookBack(Successors& successors, const Plant& plant,
                        const std::deque<PastStep>& past, const std::vector<HypothesisPointer>& now,
                        const TrackInput& present, const LookBackSettings& settings)
{
    const std::vector<bool> relevant =
        settings.searchOn ? std::vector<bool>(plant.variables().size(), true)
                          : relevantVariables(successors, plant, past, now, present);
    return LookBack(successors, past, present, settings).run(relevant);
}

} // namespace monitor
