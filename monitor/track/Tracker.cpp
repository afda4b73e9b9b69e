// A step: what becomes of each hypothesis (succeed), of earlier steps where these did not expect it (goBack), and of the
// predictions where nothing explains it (goOn). Then one hypothesis for those that have the same future (merge), ordered (rank), cut to
// those that are kept and scaled to probabilities that add up to 1 (keep).
#include "monitor/track/Tracker.h"

#include "monitor/labels/CaseRefutation.h"
#include "monitor/labels/Meter.h"
#include "monitor/step/Budget.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace monitor {

namespace {

// What is found in a step: a hypothesis, and the ways that lead to it.
struct Found {
    Hypothesis hypothesis;
    std::vector<Way> ways;
};

// Two that are equally probable but for the last bits.
double rounded(double logWeight)
{
    return std::round(logWeight * 1e9);
}

std::vector<std::string> names(const Plant& plant, const std::vector<AtomIndex>& atoms)
{
    std::vector<std::string> names;
    for (const AtomIndex atom : atoms) {
        names.push_back(plant.atom(atom)->id);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// By the names of what differs, where that is the same by those of the modes.
bool isBeforeByName(const Plant& plant, const Hypothesis& a, const Hypothesis& b)
{
    const auto differing = [&](const Hypothesis& hypothesis) {
        std::vector<AtomIndex> atoms = hypothesis.lost;
        for (const auto& [variable, since] : hypothesis.since) {
            atoms.push_back(since.value);
        }
        return names(plant, atoms);
    };
    const auto namesOfA = differing(a);
    const auto namesOfB = differing(b);
    if (namesOfA != namesOfB) {
        return namesOfA < namesOfB;
    }
    // What both have does not tell which of two sorted lists of the same length comes first.
    std::vector<AtomIndex> ofA;
    std::vector<AtomIndex> ofB;
    forEachDifference(a.modes, b.modes, [&](std::size_t place) {
        ofA.push_back(a.modes[place]);
        ofB.push_back(b.modes[place]);
    });
    return names(plant, ofA) < names(plant, ofB);
}

} // namespace

const char* name(TrackStatus status)
{
    switch (status) {
    case TrackStatus::nominal: return "nominal";
    case TrackStatus::faulty: return "faulty";
    case TrackStatus::ambiguous: return "ambiguous";
    case TrackStatus::stale: return "stale";
    case TrackStatus::inconsistent: break;
    }
    return "inconsistent";
}

/// One step of a tracker.
class Tracker::Step {
public:
    Step(Tracker& tracker, const TrackInput& input)
        : tracker_(tracker), input_(input), answer_(tracker.answer_),
          budget_(tracker.settings_.limits)
    {
    }

    void run()
    {
        answer_ = {};
        answer_.step = input_.step;
        answer_.t = input_.t;
        answer_.before = tracker_.memory_.hypotheses;
        Meter meter(tracker_.settings_.limits, tracker_.settings_.work);
        succeed();
        if (predicted_ < 0.5 - 1e-9 && !triesEverything()) {
            goBack();
        }
        const Meter::Free needed; // an answer, whatever was cut
        const bool explained = !found_.empty();
        if (!explained) {
            goOn();
        }
        merge();
        rank();
        const double logScale = keep();
        answer_.status = status(explained);
        answer_.limit = budget_.limit();
        answer_.work = budget_.work();
        answer_.lookedAt = meter.all();
        finish(logScale, explained);
    }

private:
    // What becomes of each kept hypothesis.
    void succeed()
    {
        for (std::size_t i = 0; i < answer_.before.size(); ++i) {
            try {
                succeed(i);
            } catch (const Meter::Cut& cut) {
                note(false, cut.limit, {});
                giveUp(answer_.before[i]->logWeight);
            }
        }
    }

    void succeed(std::size_t i)
    {
        const HypothesisPointer& parent = answer_.before[i];
        const Prospect prospect = tracker_.successors_.prospect(*parent, input_);
        Hypothesis made = tracker_.successors_.predicted(prospect);
        const bool explains = tracker_.successors_.explains(made);
        if (explains) {
            add(std::move(made), i);
        } else {
            answer_.contradicted.push_back(i);
        }
        const double followed = followProbable(prospect, i);
        predicted_ += std::exp(parent->logWeight) * (explains ? 1.0 : followed);
        if (parent->isFaulty() && tracker_.settings_.follow <= 1.0) {
            for (Hypothesis& recovered : tracker_.successors_.recovered(prospect)) {
                budget_.spendRecord();
                add(std::move(recovered), i);
            }
        }
        if (!explains && !triesEverything()) {
            search(prospect, i);
        }
    }

    bool isCut() const { return budget_.limit() != SearchLimit::none; }
    bool triesEverything() const { return tracker_.settings_.follow <= 0.0; }
    int faultsLeft(const Hypothesis& parent) const
    {
        return std::max(
            0, tracker_.successors_.faultsLeft(parent, input_, tracker_.settings_.maxFaults));
    }

    // What is probable beside what is expected. Returns how probable the step is by what of it explains the step.
    double followProbable(const Prospect& prospect, std::size_t place)
    {
        const Hypothesis& parent = prospect.parent;
        const double least =
            triesEverything() ? 0.0 : tracker_.settings_.follow / std::exp(parent.logWeight);
        if (least > 1.0) {
            return 0.0;
        }
        const std::size_t most =
            tracker_.settings_.keep * (triesEverything() ? tryingEverything : 1);
        SuccessorSearch others = tracker_.successors_.probable(prospect, least, faultsLeft(parent),
                                                               most, budget_.remaining());
        double sum = 0.0;
        for (const Hypothesis& other : others.found) {
            sum += std::exp(other.logStep);
        }
        takeAll(std::move(others), prospect, place);
        return sum;
    }

    void search(const Prospect& prospect, std::size_t place)
    {
        takeAll(
            tracker_.successors_.search(prospect, faultsLeft(prospect.parent), budget_.remaining()),
            prospect, place);
    }

    void takeAll(SuccessorSearch search, const Prospect& prospect, std::size_t place)
    {
        note(search.complete, search.limit, search.work);
        if (!search.complete) {
            giveUp(prospect.parent.logWeight + tracker_.successors_.logOthers(prospect));
        }
        for (Hypothesis& hypothesis : search.found) {
            add(std::move(hypothesis), place);
        }
    }

    // What becomes of a kept hypothesis at this step.
    void add(Hypothesis hypothesis, std::size_t parent)
    {
        Way way{tracker_.memory_.past.size(), parent, {}, hypothesis.modes, hypothesis.lost};
        take(std::move(hypothesis), std::move(way));
    }

    // A way counts once, whichever beginning of it is known already: from there on, the heavier one has all the ways to it.
    void take(Hypothesis hypothesis, Way way)
    {
        const auto [known, isNew] =
            ways_.emplace(std::tuple(way.begin, way.parent, way.steps()), found_.size());
        if (isNew) {
            found_.push_back({std::move(hypothesis), {std::move(way)}});
        } else if (hypothesis.logWeight > found_[known->second].hypothesis.logWeight) {
            found_[known->second] = {std::move(hypothesis), {std::move(way)}};
        }
    }

    void goBack()
    {
        if (firstToGoBackTo() == tracker_.memory_.past.size()) {
            return;
        }
        answer_.wentBack = true;
        goBack(Otherwise::givenUp);
        if (found_.empty()) {
            goBack(Otherwise::searched);
            goBack(Otherwise::combined);
        }
    }

    // Behind the last step that nothing explained: a way through that one was looked for when it came, in vain or until a limit cut
    // it. What was cut then is counted as missing; it is not looked for at every step that follows.
    std::size_t firstToGoBackTo() const
    {
        const std::deque<PastStep>& past = tracker_.memory_.past;
        std::size_t first = past.size();
        while (first > 0 && !past[first - 1].unexplained) {
            --first;
        }
        return first;
    }

    void goBack(Otherwise otherwise)
    {
        takeUp(lookBack(
            tracker_.successors_, tracker_.plant_, tracker_.memory_.past,
            tracker_.memory_.hypotheses, input_,
            {tracker_.settings_.maxFaults, budget_.remaining(), otherwise, firstToGoBackTo()}));
    }

    void takeUp(LookBackResult result)
    {
        note(result.complete, result.limit, result.work);
        giveUp(result.logUntried);
        for (Replay& replay : result.found) {
            Hypothesis last = std::move(replay.way.back());
            replay.way.pop_back();
            Way way{replay.begin, replay.parent, std::move(replay.way), last.modes, last.lost};
            take(std::move(last),
                 withoutKnownBeginning(tracker_.plant_, std::move(way), tracker_.memory_.past,
                                       tracker_.memory_.hypotheses));
        }
    }

    // Nothing explains the step, so every hypothesis is contradicted: the predictions stand, without what contradicts them.
    void goOn()
    {
        for (std::size_t i = 0; i < answer_.before.size(); ++i) {
            Hypothesis hypothesis = tracker_.successors_.predicted(
                tracker_.successors_.prospect(*answer_.before[i], input_),
                isCut() ? Successors::Contradictions::areNot
                        : Successors::Contradictions::areWeighed);
            if (!std::isfinite(hypothesis.logWeight)) {
                hypothesis.logWeight = tracker_.memory_.hypotheses[i]->logWeight;
            }
            if (!hypothesis.labels.consistent()) {
                hypothesis.labels = StepLabels(
                    tracker_.plant_, concludedFrom(tracker_.plant_, hypothesis.modes.toVector()));
            }
            if (hypothesis.unexplained.empty()) {
                hypothesis.unexplained = refutedByCases(hypothesis);
            }
            add(std::move(hypothesis), i);
        }
    }

    // The readings of which trying values shows that they contradict the modes; all, where the modes contradict the laws anyway.
    std::vector<AtomIndex> refutedByCases(const Hypothesis& hypothesis) const
    {
        if (isCut()) {
            return input_.values.observations;
        }
        const auto refutation = refuteByCases(tracker_.plant_, hypothesis.labels.prediction());
        std::vector<AtomIndex> readings;
        std::copy_if(input_.values.observations.begin(), input_.values.observations.end(),
                     std::back_inserter(readings), [&](AtomIndex observed) {
                         return refutation && refutation->assumed.contains(observed);
                     });
        return readings.empty() ? input_.values.observations : readings;
    }

    // One hypothesis for those that have the same future; the most probable way stays, of nearly equal ones the first: that is
    // the one in which the fault is youngest. It may be older, but nothing tells.
    void merge()
    {
        std::map<SharedArray<AtomIndex>, std::vector<std::size_t>> known; // by modes
        std::vector<Found> merged;
        for (Found& found : found_) {
            std::vector<std::size_t>& places = known[found.hypothesis.modes];
            const auto same = std::find_if(places.begin(), places.end(), [&](std::size_t place) {
                return haveSameFuture(tracker_.plant_, merged[place].hypothesis, found.hypothesis);
            });
            if (same == places.end()) {
                places.push_back(merged.size());
                merged.push_back(std::move(found));
                best_.push_back(merged.back().hypothesis.logWeight);
                continue;
            }
            const std::size_t index = *same;
            const double own = found.hypothesis.logWeight;
            const double sum = logOfSum(merged[index].hypothesis.logWeight, own);
            constexpr double nearly = 0.01;
            std::vector<Way> ways = std::move(merged[index].ways);
            std::move(found.ways.begin(), found.ways.end(), std::back_inserter(ways));
            if (own > best_[index] + nearly) {
                best_[index] = own;
                merged[index] = std::move(found);
            }
            merged[index].ways = std::move(ways);
            merged[index].hypothesis.logWeight = sum;
        }
        found_ = std::move(merged);
    }

    void rank()
    {
        for (Found& found : found_) {
            order_.push_back(&found);
        }
        std::stable_sort(order_.begin(), order_.end(), [this](const Found* a, const Found* b) {
            const double left = rounded(a->hypothesis.logWeight);
            const double right = rounded(b->hypothesis.logWeight);
            if (left != right) {
                return left > right;
            }
            return isBeforeByName(tracker_.plant_, a->hypothesis, b->hypothesis);
        });
        if (order_.size() > tracker_.settings_.keep) {
            answer_.dropped = order_.size() - tracker_.settings_.keep;
            for (std::size_t i = tracker_.settings_.keep; i < order_.size(); ++i) {
                giveUp(order_[i]->hypothesis.logWeight);
            }
            order_.resize(tracker_.settings_.keep);
        }
    }

    // Scales the weights of those that are kept so that their probabilities add up to 1.
    double keep()
    {
        double logScale = order_.front()->hypothesis.logWeight;
        for (std::size_t i = 1; i < order_.size(); ++i) {
            logScale = logOfSum(logScale, order_[i]->hypothesis.logWeight);
        }
        for (Found* found : order_) {
            found->hypothesis.logWeight -= logScale;
            answer_.approximate = answer_.approximate || !found->hypothesis.exact;
            answer_.probabilities.push_back(std::exp(found->hypothesis.logWeight));
            answer_.hypotheses.push_back(
                std::make_shared<const Hypothesis>(std::move(found->hypothesis)));
        }
        return logScale;
    }

    TrackStatus status(bool explained) const
    {
        if (!explained) {
            // What a limit cut says nothing about what explains the step.
            return isCut() ? TrackStatus::ambiguous : TrackStatus::inconsistent;
        }
        if (input_.values.observations.empty()) {
            return TrackStatus::stale;
        }
        if (answer_.probabilities.front() <= 0.5 + 1e-9) {
            return TrackStatus::ambiguous;
        }
        return answer_.hypotheses.front()->differs(tracker_.plant_) ? TrackStatus::faulty
                                                                    : TrackStatus::nominal;
    }

    // Remembers the step, and for the steps that were gone back to what is believed of them now.
    void finish(double logScale, bool explained)
    {
        TrackMemory& memory = tracker_.memory_;
        const double logMissing = logOfSum(logGivenUp_, memory.logMissing) - logScale;
        memory.logMissing = logMissing > logOfNothing ? logMissing : minusInfinity;
        answer_.missing = 1.0 / (1.0 + std::exp(-memory.logMissing));
        std::set<Passage> passages;
        for (std::size_t to = 0; to < order_.size(); ++to) {
            for (const Way& way : order_[to]->ways) {
                const auto from = enter(tracker_.plant_, way, memory.past, memory.hypotheses,
                                        2 * tracker_.settings_.keep);
                if (from) {
                    passages.insert({*from, to, way.lost});
                }
            }
        }
        memory.past.push_back({input_, std::move(memory.hypotheses), logScale, std::move(passages),
                               logCalm(), !explained});
        memory.hypotheses = answer_.hypotheses;
        while (memory.past.size() > tracker_.settings_.lookBack) {
            memory.past.pop_front();
        }
        double calm = 0.0;
        for (const PastStep& step : memory.past) {
            calm += step.logCalm;
        }
        answer_.silent = triesEverything() ? 0.0 : 0.0 - std::expm1(calm);
    }

    // By the rates, no fault began at this step but those of the hypotheses.
    double logCalm() const
    {
        double sum = minusInfinity;
        for (const HypothesisPointer& hypothesis : answer_.hypotheses) {
            sum = logOfSum(sum, hypothesis->logWeight + hypothesis->logCalm);
        }
        return std::min(0.0, sum);
    }

    // Takes note of what was not kept, or not searched.
    void giveUp(double logWeight) { logGivenUp_ = logOfSum(logGivenUp_, logWeight); }

    void note(bool complete, SearchLimit limit, const SearchWork& work)
    {
        answer_.complete = answer_.complete && complete;
        budget_.meet(limit);
        budget_.spend(work);
    }

    /// So many times as many are tried as are kept, where all are.
    static constexpr std::size_t tryingEverything = 1000;
    static constexpr double minusInfinity = -std::numeric_limits<double>::infinity();
    /// Of a weight that does not matter any more.
    static constexpr double logOfNothing = -40.0;

    Tracker& tracker_;
    const TrackInput& input_;
    TrackAnswer& answer_;
    Budget budget_;
    double predicted_ =
        0.0; ///< what the kept hypotheses that predict the step had of the probability before it
    double logGivenUp_ = minusInfinity; ///< a bound of the weight of what was given up at this step
    std::vector<Found> found_;
    std::map<std::tuple<std::size_t, std::size_t,
                        std::vector<std::pair<SharedArray<AtomIndex>, std::vector<AtomIndex>>>>,
             std::size_t>
        ways_;                 ///< places in `found_`
    std::vector<double> best_; ///< the weight of the most probable way of each of `found_`
    std::vector<Found*> order_;
};

Tracker::Tracker(itms& engine, const Plant& plant, const TrackSettings& settings)
    : Tracker(Successors(engine, plant, settings.lookBack), plant, settings)
{
}

Tracker::Tracker(std::shared_ptr<ExplanationSearch> search, const Plant& plant,
                 const TrackSettings& settings)
    : Tracker(Successors(std::move(search), plant, settings.lookBack), plant, settings)
{
}

Tracker::Tracker(Successors successors, const Plant& plant, const TrackSettings& settings)
    : plant_(plant), settings_(settings), successors_(std::move(successors))
{
    memory_.hypotheses.push_back(std::make_shared<const Hypothesis>(initialHypothesis(plant)));
}

const TrackAnswer& Tracker::advance(const TrackInput& input)
{
    Step(*this, input).run();
    return answer_;
}

} // namespace monitor
