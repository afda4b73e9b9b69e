// All single deviations of the past steps are listed with an estimate of the weight of the way that they begin, and tried from the
// best one on. A try replays the steps since by prediction. A step that is not as predicted may be searched, and each of its
// explanations is followed in turn; or the way is taken up again with one deviation more, of those on which the contradiction rests.
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

// The mode variables on which it rests that a step contradicts these hypotheses, directly or through what the transitions of the
// step and of earlier ones depended on.
std::vector<bool> relevantVariables(const Successors& successors, const Plant& plant,
                                    const std::vector<const Hypothesis*>& contradicted,
                                    const std::vector<const Hypothesis*>& earlier,
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
    for (const Hypothesis* hypothesis : contradicted) {
        const StepFrame frame = successors.frame(*hypothesis, present, {});
        const Scenario scenario(frame, {});
        std::vector<Conflict> conflicts = scenario.conflicts();
        if (conflicts.empty()) {
            conflicts.push_back(conflictByCases(scenario).value_or(Conflict()));
        }
        for (const Conflict& conflict : conflicts) {
            std::for_each(conflict.begin(), conflict.end(), reach);
        }
    }
    while (!open.empty()) {
        const std::vector<AtomIndex> atoms = guardAtoms(plant, open.back());
        open.pop_back();
        if (atoms.empty()) {
            continue;
        }
        const auto reachThrough = [&](const Hypothesis* hypothesis) {
            const StepLabels labels = hypothesis->labels.afresh();
            const auto modes = labels.prediction().environment(atoms);
            std::for_each(modes.begin(), modes.end(), reach);
        };
        std::for_each(contradicted.begin(), contradicted.end(), reachThrough);
        std::for_each(earlier.begin(), earlier.end(), reachThrough);
    }
    return relevant;
}

/// A way, and the step at which it deviated last: others that deviate there or later may join it.
struct Trail {
    Replay replay;
    std::size_t step;       ///< index in the past
    VariableIndex variable; ///< that deviated last there
    Deviations deviations;
    std::vector<LossyCommand> lost;
};

class LookBack {
public:
    LookBack(Successors& successors, const Plant& plant, const std::deque<PastStep>& past,
             const TrackInput& present, const LookBackSettings& settings)
        : successors_(successors), plant_(plant), past_(past), present_(present),
          settings_(settings), budget_(settings.limits)
    {
    }

    LookBackResult run(const std::vector<bool>& relevant)
    {
        for (const Alternative& alternative : alternatives(relevant)) {
            if (exhausted()) {
                result_.logUntried =
                    logOfSum(result_.logUntried, alternative.estimate - scaledSince(alternative));
            } else {
                take(alternative);
            }
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

    // What its weight was scaled by at its step and since. The estimate takes what came since to be as probable as can be.
    double scaledSince(const Alternative& alternative) const
    {
        double sum = 0.0;
        for (std::size_t step = alternative.step; step < past_.size(); ++step) {
            sum += past_[step].logScale;
        }
        return sum;
    }

    void take(const Alternative& alternative)
    {
        budget_.spendRecord();
        const PastStep& step = past_[alternative.step];
        auto made = successors_.deviating(*step.before[alternative.parent], step.input,
                                          alternative.deviations, alternative.lost);
        if (made) {
            made->logWeight -= step.logScale;
            const VariableIndex variable = alternative.deviations.empty()
                                               ? VariableIndex{-1}
                                               : plant_.variableOf(alternative.deviations.front());
            follow({{alternative.step, alternative.parent, {std::move(*made)}},
                    alternative.step,
                    variable,
                    alternative.deviations,
                    alternative.lost});
        }
    }

    // Replays what came after the last step of the way.
    void follow(Trail trail)
    {
        std::vector<Hypothesis>& way = trail.replay.way;
        while (trail.replay.begin + way.size() <= past_.size()) {
            const std::size_t next = trail.replay.begin + way.size();
            const TrackInput& input = next < past_.size() ? past_[next].input : present_;
            const double scale = next < past_.size() ? past_[next].logScale : 0.0;
            budget_.spendRecord();
            Hypothesis made = successors_.predicted(way.back(), input);
            if (!successors_.explains(made)) {
                switch (settings_.otherwise) {
                case Otherwise::givenUp: break;
                case Otherwise::searched: fork(trail, input, scale); break;
                case Otherwise::combined: combine(trail, input); break;
                }
                return;
            }
            made.logWeight -= scale;
            way.push_back(std::move(made));
        }
        budget_.spendCandidate();
        result_.found.push_back(std::move(trail.replay));
    }

    void fork(const Trail& trail, const TrackInput& input, double scale)
    {
        const Hypothesis& last = trail.replay.way.back();
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
            Trail longer = trail;
            longer.replay.way.push_back(std::move(found));
            follow(std::move(longer));
        }
    }

    // The step contradicts the way. In the order of steps and variables, so that no two are tried twice.
    void combine(const Trail& trail, const TrackInput& contradicting)
    {
        const std::vector<Hypothesis>& way = trail.replay.way;
        std::vector<const Hypothesis*> earlier;
        for (const Hypothesis& hypothesis : way) {
            earlier.push_back(&hypothesis);
        }
        const std::vector<bool> relevant =
            relevantVariables(successors_, plant_, {&way.back()}, earlier, contradicting);
        for (std::size_t step = trail.step; step < trail.replay.begin + way.size(); ++step) {
            combineAt(trail, step, relevant);
        }
    }

    void combineAt(const Trail& trail, std::size_t step, const std::vector<bool>& relevant)
    {
        const Replay& replay = trail.replay;
        const std::vector<Hypothesis>& way = replay.way;
        const auto place = static_cast<std::ptrdiff_t>(step - replay.begin);
        const Hypothesis& parent = place == 0 ? *past_[step].before[replay.parent]
                                              : way[static_cast<std::size_t>(place) - 1];
        const TrackInput& input = past_[step].input;
        const bool again = step == trail.step; // it deviates there already
        const std::vector<LossyCommand> lost = again ? trail.lost : std::vector<LossyCommand>();
        const auto begun = again ? way[static_cast<std::size_t>(place)].faultCount() : 0;
        const int left = again ? settings_.maxFaults - begun
                               : successors_.faultsLeft(parent, input, settings_.maxFaults);
        const StepFrame frame = successors_.frame(parent, input, lost);
        for (const ModeStep& mode : frame.modes) {
            if (!relevant[static_cast<std::size_t>(mode.variable)] ||
                (again && mode.variable <= trail.variable)) {
                continue;
            }
            for (const ModeOption& option : mode.options) {
                if (exhausted()) {
                    return;
                }
                if (option.value == mode.predicted || left < (option.fault ? 1 : 0)) {
                    continue;
                }
                Trail longer{{replay.begin, replay.parent, {way.begin(), way.begin() + place}},
                             step,
                             mode.variable,
                             again ? trail.deviations : Deviations(),
                             lost};
                longer.deviations.push_back(option.value);
                std::sort(longer.deviations.begin(), longer.deviations.end());
                budget_.spendRecord();
                auto made = successors_.deviating(parent, input, longer.deviations, lost);
                if (made) {
                    made->logWeight -= past_[step].logScale;
                    longer.replay.way.push_back(std::move(*made));
                    follow(std::move(longer));
                }
            }
        }
    }

    bool exhausted()
    {
        const bool met = budget_.exhausted();
        result_.complete = result_.complete && !met;
        return met;
    }

    Successors& successors_;
    const Plant& plant_;
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
    std::vector<bool> relevant(plant.variables().size(), true);
    if (settings.otherwise != Otherwise::searched) {
        std::vector<const Hypothesis*> contradicted;
        std::vector<const Hypothesis*> earlier;
        for (const HypothesisPointer& hypothesis : now) {
            contradicted.push_back(hypothesis.get());
        }
        for (const PastStep& step : past) {
            for (const HypothesisPointer& hypothesis : step.before) {
                earlier.push_back(hypothesis.get());
            }
        }
        relevant = relevantVariables(successors, plant, contradicted, earlier, present);
    }
    return LookBack(successors, plant, past, present, settings).run(relevant);
}

} // namespace monitor
