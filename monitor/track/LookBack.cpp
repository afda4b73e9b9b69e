// All single deviations of the past steps, beside what deviated there already, are listed with an estimate of the weight of the way
// that they begin, and tried from the best one on. A try replays the steps since by prediction. A step that is not as predicted may be
// searched, and each of its explanations is followed in turn; or the way is taken up again with one deviation more, of those on which
// the contradiction rests.
#include "monitor/track/LookBack.h"

#include "monitor/labels/Meter.h"
#include "monitor/step/Budget.h"
#include "monitor/track/Admissible.h"
#include "monitor/track/Deviated.h"
#include "monitor/track/Relevance.h"
#include "monitor/track/RuledOut.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

/// One deviation at a past step, beside what deviated there already.
struct Alternative {
    std::size_t step;       ///< index in the past
    std::size_t parent;     ///< place among what was believed before it
    VariableIndex variable; ///< that deviates; -1: something was lost
    Deviations deviations;  ///< all of them, sorted
    Losses lost;
    /// What the parent's weight would be with the deviation in place of what is predicted; the rest of the steps is taken
    /// to be as probable.
    double estimate;
};

/// A way, and the step at which it deviated last: others that deviate there or later may join it.
struct Trail {
    Replay replay;
    std::vector<Deviated> deviated; ///< at each step of the way
    std::size_t step;               ///< index in the past
    VariableIndex variable;         ///< that deviated last there
};

class LookBack {
public:
    LookBack(Successors& successors, const Plant& plant, const std::deque<PastStep>& past,
             const std::vector<HypothesisPointer>& now, const TrackInput& present,
             const LookBackSettings& settings)
        : successors_(successors), plant_(plant), past_(past), now_(now), present_(present),
          settings_(settings), budget_(settings.limits)
    {
    }

    LookBackResult run(const std::vector<bool>& relevant)
    {
        std::vector<std::size_t> places = modesAmong(relevant);
        const bool many = places.size() > fewToSearch;
        admissible_.emplace(std::move(places));
        if (many && settings_.otherwise == Otherwise::givenUp) {
            ruledOut_.emplace(plant_, present_);
        }
        for (const Alternative& alternative : alternatives(relevant)) {
            if (exhausted() || !tried(alternative)) {
                result_.logUntried =
                    logOfSum(result_.logUntried, alternative.estimate - scaledSince(alternative));
            }
        }
        result_.limit = budget_.limit();
        result_.work = budget_.work();
        return std::move(result_);
    }

private:
    // False where a limit was met in the midst of it.
    bool tried(const Alternative& alternative)
    {
        try {
            take(alternative);
            return true;
        } catch (const Meter::Cut& cut) {
            budget_.meet(cut.limit);
            result_.complete = false;
            return false;
        }
    }

    std::vector<Alternative> alternatives(const std::vector<bool>& relevant)
    {
        std::vector<Alternative> all;
        for (std::size_t step = past_.size(); step-- > settings_.first;) {
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
                         std::vector<Alternative>& all)
    {
        const Hypothesis& parent = *past_[step].before[place];
        const TrackInput& input = past_[step].input;
        for (const Deviated& base : deviatedAt(step)) {
            const Losses lost = lossesOf(base, input);
            const StepFrame frame = successors_.frame(parent, input, lost);
            Alternative start{step, place, -1, base.deviations, lost, parent.logWeight};
            int budget =
                successors_.faultsLeft(parent, input, settings_.maxFaults) - lostCommands(lost);
            for (const Loss& one : lost) {
                start.estimate += logLoss(one);
            }
            const Admissible::Modes& modes = admissible_->at(frame);
            bool possible = true;
            for (const AtomIndex value : base.deviations) {
                const ModeStep& mode = frame.stepOf(plant_.variableOf(value));
                const ModeOption* option = mode.option(value);
                possible = possible && option && value != mode.predicted && modes.allow(value) &&
                           !isDoomed(step, value);
                if (possible) {
                    start.estimate += logChange(mode, *option);
                    budget -= option->fault ? 1 : 0;
                }
            }
            if (possible) {
                addAlternatives(start, frame, modes, doomedModes(start, frame), budget, relevant,
                                all);
            }
        }
    }

    void addAlternatives(const Alternative& start, const StepFrame& frame,
                         const Admissible::Modes& modes, const std::vector<VariableIndex>& doomed,
                         int budget, const std::vector<bool>& relevant,
                         std::vector<Alternative>& all)
    {
        const auto saves = [&](VariableIndex variable) {
            return std::all_of(doomed.begin(), doomed.end(),
                               [&](VariableIndex mode) { return mode == variable; });
        };
        for (const std::size_t place : modes.places) {
            const ModeStep& mode = frame.modes[place];
            if (deviates(start.deviations, mode.variable) || !saves(mode.variable)) {
                continue;
            }
            for (const ModeOption& option : mode.options) {
                if (option.value != mode.predicted && budget >= (option.fault ? 1 : 0) &&
                    modes.allow(option.value) && !isDoomed(start.step, option.value)) {
                    Alternative& made = all.emplace_back(start);
                    made.variable = mode.variable;
                    made.deviations.push_back(option.value);
                    std::sort(made.deviations.begin(), made.deviations.end());
                    made.estimate += logChange(mode, option);
                }
            }
        }
        for (const Loss& one : past_[start.step].input.lossy) {
            if (!doomed.empty()) {
                break;
            }
            // What deviates is told from what is expected when the command arrives.
            const bool fits = one.isReading()
                                  ? relevant[static_cast<std::size_t>(plant_.variableOf(one.given))]
                                  : budget >= 1 && start.deviations.empty();
            if (fits && !contains(start.lost, one)) {
                Alternative& made = all.emplace_back(start);
                made.lost.push_back(one);
                made.estimate += logLoss(one);
            }
        }
    }

    bool deviates(const Deviations& deviations, VariableIndex variable) const
    {
        return std::any_of(deviations.begin(), deviations.end(),
                           [&](AtomIndex value) { return plant_.variableOf(value) == variable; });
    }

    // Whether a way with that value after the step cannot lead to the present: it stays, and no way that is known has another one since.
    bool isDoomed(std::size_t step, AtomIndex value)
    {
        if (!ruledOut_ || !ruledOut_->forGood(value)) {
            return false;
        }
        const VariableIndex variable = plant_.variableOf(value);
        for (std::size_t since = step + 1; since < past_.size(); ++since) {
            const std::set<Deviated>& came = deviatedAt(since);
            if (std::any_of(came.begin(), came.end(), [&](const Deviated& one) {
                    return deviates(one.deviations, variable);
                })) {
                return false;
            }
        }
        return true;
    }

    // The faulty modes that are predicted to stay so at the step, and may not at the present.
    std::vector<VariableIndex> doomedModes(const Alternative& start, const StepFrame& frame)
    {
        std::vector<VariableIndex> doomed;
        for (const std::size_t place : frame.modes.failing()) {
            const ModeStep& mode = frame.modes[place];
            if (mode.predicted == mode.before && !deviates(start.deviations, mode.variable) &&
                isDoomed(start.step, mode.predicted)) {
                doomed.push_back(mode.variable);
            }
        }
        return doomed;
    }

    static double logChange(const ModeStep& mode, const ModeOption& option)
    {
        return std::log(option.probability) - std::log(mode.option(mode.predicted)->probability);
    }

    // In what ways the hypotheses that are believed came through a past step; as expected among them.
    const std::set<Deviated>& deviatedAt(std::size_t step)
    {
        const auto [known, isNew] = deviated_.try_emplace(step);
        if (isNew) {
            known->second.insert(Deviated());
            const std::vector<HypothesisPointer>& after =
                step + 1 < past_.size() ? past_[step + 1].before : now_;
            for (const Passage& passage : past_[step].passages) {
                known->second.insert(whatDeviated(successors_, *past_[step].before[passage.from],
                                                  past_[step].input, after[passage.to]->modes,
                                                  passage.lost));
            }
        }
        return known->second;
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
            follow({{alternative.step, alternative.parent, {std::move(*made)}},
                    {{alternative.deviations, givenValues(alternative.lost)}},
                    alternative.step,
                    alternative.variable});
        }
    }

    // Replays what came after the last step of the way.
    void follow(Trail trail)
    {
        std::vector<Hypothesis>& way = trail.replay.way;
        while (trail.replay.begin + way.size() <= past_.size()) {
            const std::size_t next = trail.replay.begin + way.size();
            const TrackInput& input = inputAt(next);
            const double scale = next < past_.size() ? past_[next].logScale : 0.0;
            budget_.spendRecord();
            Hypothesis made = successors_.predicted(way.back(), input);
            if (!successors_.explains(made)) {
                if (next < past_.size()) {
                    followOthers(trail, next);
                }
                switch (settings_.otherwise) {
                case Otherwise::givenUp: break;
                case Otherwise::searched: fork(trail, input, scale); break;
                case Otherwise::combined: combine(trail, input); break;
                }
                return;
            }
            made.logWeight -= scale;
            way.push_back(std::move(made));
            trail.deviated.emplace_back();
        }
        if (isSmallest(trail)) {
            budget_.spendCandidate();
            result_.found.push_back(std::move(trail.replay));
        }
    }

    // Whether nothing that deviates on the way can be left out. What does not matter to the present is not told by it either.
    bool isSmallest(const Trail& trail)
    {
        for (std::size_t place = 0; place < trail.deviated.size(); ++place) {
            const Deviated& all = trail.deviated[place];
            for (std::size_t i = 0; i < all.deviations.size() + all.lost.size(); ++i) {
                Deviated fewer = all;
                if (i < all.deviations.size()) {
                    fewer.deviations.erase(fewer.deviations.begin() + static_cast<std::ptrdiff_t>(i));
                } else {
                    fewer.lost.erase(fewer.lost.begin() +
                                     static_cast<std::ptrdiff_t>(i - all.deviations.size()));
                }
                if (leadsHere(trail, place, fewer)) {
                    return false;
                }
            }
        }
        return true;
    }

    // Whether the way explains all steps to the present when it deviates in another way at a step.
    bool leadsHere(const Trail& trail, std::size_t place, const Deviated& there)
    {
        const Replay& replay = trail.replay;
        std::optional<Hypothesis> last;
        for (std::size_t next = place; next < replay.way.size(); ++next) {
            const Hypothesis& parent = last ? *last : parentAt(replay, place);
            const Deviated& deviated = next == place ? there : trail.deviated[next];
            const TrackInput& input = inputAt(replay.begin + next);
            budget_.spendRecord();
            last = successors_.deviating(parent, input, deviated.deviations,
                                         lossesOf(deviated, input));
            if (!last) {
                return false;
            }
        }
        return true;
    }

    // What was believed, or is taken to have been, before a step of the way.
    const Hypothesis& parentAt(const Replay& replay, std::size_t place) const
    {
        return place == 0 ? *past_[replay.begin].before[replay.parent] : replay.way[place - 1];
    }
    const TrackInput& inputAt(std::size_t step) const
    {
        return step < past_.size() ? past_[step].input : present_;
    }

    // Takes a past step in the other ways in which hypotheses came through it.
    void followOthers(const Trail& trail, std::size_t step)
    {
        const PastStep& past = past_[step];
        for (const Deviated& came : deviatedAt(step)) {
            if (came == Deviated() || exhausted()) {
                continue;
            }
            const Losses lost = lossesOf(came, past.input);
            budget_.spendRecord();
            auto made =
                successors_.deviating(trail.replay.way.back(), past.input, came.deviations, lost);
            if (made && made->faultCount() <= settings_.maxFaults) {
                made->logWeight -= past.logScale;
                Trail longer = trail;
                longer.replay.way.push_back(std::move(*made));
                longer.deviated.push_back(came);
                longer.step = step;
                longer.variable = static_cast<VariableIndex>(plant_.variables().size());
                follow(std::move(longer));
            }
        }
    }

    void fork(const Trail& trail, const TrackInput& input, double scale)
    {
        const Hypothesis& last = trail.replay.way.back();
        SuccessorSearch search = successors_.search(
            successors_.prospect(last, input),
            successors_.faultsLeft(last, input, settings_.maxFaults), budget_.remaining());
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
            longer.deviated.push_back(
                whatDeviated(successors_, last, input, found.modes, found.lost));
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
        const std::vector<std::size_t> relevant =
            modesAmong(variablesAgainst(successors_, plant_, {&way.back()}, earlier, contradicting));
        for (std::size_t step = trail.step; step < trail.replay.begin + way.size(); ++step) {
            combineAt(trail, step, relevant);
        }
    }

    void combineAt(const Trail& trail, std::size_t step, const std::vector<std::size_t>& relevant)
    {
        const Replay& replay = trail.replay;
        const std::vector<Hypothesis>& way = replay.way;
        const std::size_t place = step - replay.begin;
        const auto end = static_cast<std::ptrdiff_t>(place);
        const Hypothesis& parent = parentAt(replay, place);
        const TrackInput& input = past_[step].input;
        const bool again = step == trail.step; // it deviates there already
        const Deviated there = again ? trail.deviated[place] : Deviated();
        const Losses lost = lossesOf(there, input);
        const auto begun = again ? way[place].faultCount() : 0;
        const int left = again ? settings_.maxFaults - begun
                               : successors_.faultsLeft(parent, input, settings_.maxFaults);
        const StepFrame frame = successors_.frame(parent, input, lost);
        const std::shared_ptr<const Requirements> required = admissible_->at(frame).required;
        for (const std::size_t modePlace : relevant) {
            const ModeStep& mode = frame.modes[modePlace];
            if (again && mode.variable <= trail.variable) {
                continue;
            }
            for (const ModeOption& option : mode.options) {
                if (exhausted()) {
                    return;
                }
                if (option.value == mode.predicted || left < (option.fault ? 1 : 0) ||
                    (required && !required->allow(option.value))) {
                    continue;
                }
                Trail longer{{replay.begin, replay.parent, {way.begin(), way.begin() + end}},
                             {trail.deviated.begin(), trail.deviated.begin() + end},
                             step,
                             mode.variable};
                Deviated more = there;
                more.deviations.push_back(option.value);
                std::sort(more.deviations.begin(), more.deviations.end());
                budget_.spendRecord();
                auto made = successors_.deviating(parent, input, more.deviations, lost);
                longer.deviated.push_back(std::move(more));
                if (made) {
                    made->logWeight -= past_[step].logScale;
                    longer.replay.way.push_back(std::move(*made));
                    follow(std::move(longer));
                }
            }
        }
    }

    // Their places among the modes of the plant.
    std::vector<std::size_t> modesAmong(const std::vector<bool>& variables) const
    {
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < plant_.modes().size(); ++place) {
            if (variables[static_cast<std::size_t>(plant_.modes()[place])]) {
                places.push_back(place);
            }
        }
        return places;
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
    const std::vector<HypothesisPointer>& now_;
    const TrackInput& present_;
    const LookBackSettings& settings_;
    Budget budget_;
    LookBackResult result_;
    std::map<std::size_t, std::set<Deviated>> deviated_; ///< by index of the past step
    std::optional<RuledOut> ruledOut_;     ///< null: few are tried, or the steps since are searched
    std::optional<Admissible> admissible_; ///< of the modes that are tried
};

LookBackResult lookBackWithin(Successors& successors, const Plant& plant,
                              const std::deque<PastStep>& past,
                              const std::vector<HypothesisPointer>& now, const TrackInput& present,
                              const LookBackSettings& settings)
{
    std::vector<bool> relevant;
    if (settings.otherwise == Otherwise::searched) {
        relevant = successors.connected().matterLater();
    } else {
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
        relevant = variablesAgainst(successors, plant, contradicted, earlier, present);
    }
    return LookBack(successors, plant, past, now, present, settings).run(relevant);
}

} // namespace

// Where a limit is met before the alternatives are known, nothing tells how probable they are.
LookBackResult lookBack(Successors& successors, const Plant& plant,
                        const std::deque<PastStep>& past, const std::vector<HypothesisPointer>& now,
                        const TrackInput& present, const LookBackSettings& settings)
{
    try {
        return lookBackWithin(successors, plant, past, now, present, settings);
    } catch (const Meter::Cut& cut) {
        LookBackResult none;
        none.complete = false;
        none.limit = cut.limit;
        none.logUntried = 0.0;
        return none;
    }
}

} // namespace monitor
