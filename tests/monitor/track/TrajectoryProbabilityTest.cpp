// Probabilities along time, compared with the sums over all sequences of modes.
//
// What a tracker may leave out: sequences with a deviation (or a lost command) that no contradiction called for. Where
// what a hypothesis predicts explains a step, it is what happens; where it does not, the smallest sets of deviations do.
// Without going back, what is kept is the rest, exactly: BruteForceTrajectories::Which::calledFor. Going back brings in
// sequences that deviated earlier without being noticed: where one fault at most is allowed, all of them, so that from
// the first contradiction on nothing is left out. With more faults allowed some are (two silent ones at once), and the
// sums over all sequences are an upper bound. Where every deviation shows at once, each is called for.
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/HandMade.h"
#include "tests/support/Sanitized.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using monitor::Hypothesis;
using monitor::TrackAnswer;
using monitor::Tracker;
using monitor::TrackSettings;
using monitor::TrackStatus;
using Modes = BruteForceTrajectories::Modes;
using Which = BruteForceTrajectories::Which;

constexpr std::size_t all = 1000;

Modes modesOf(const ActivePlant& active, const Hypothesis& hypothesis)
{
    Modes modes;
    for (const StateVar* variable : allVariables("Mode")) {
        for (const plant::AtomIndex mode : hypothesis.modes) {
            if (active.plant->atom(mode)->stateVar == variable) {
                modes.push_back(active.plant->atom(mode));
            }
        }
    }
    return modes;
}

std::string text(const Modes& modes)
{
    std::string text;
    for (const Atom* mode : modes) {
        text += mode->id + " ";
    }
    return text;
}

// Nothing is followed that nothing calls for.
TrackSettings onlyCalledFor(TrackSettings settings)
{
    settings.follow = 2.0;
    return settings;
}

// The same hypotheses with the same probabilities.
void expectSame(const ActivePlant& active, const TrackAnswer& answer,
                const BruteForceTrajectories& reference)
{
    EXPECT_EQ(answer.hypotheses.size(), reference.weights().size());
    const WholeNumber total = reference.total();
    double sum = 0.0;
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        const Modes modes = modesOf(active, *answer.hypotheses[i]);
        const auto exact = reference.weights().find(modes);
        ASSERT_NE(exact, reference.weights().end()) << text(modes);
        EXPECT_NEAR(answer.probabilities[i], WholeNumber::ratio(exact->second, total), 1e-12)
            << text(modes);
        sum += answer.probabilities[i];
    }
    EXPECT_NEAR(sum, 1.0, 1e-12);
}

class TrajectoryProbability : public testing::Test {
protected:
    // Steps until nothing explains one, or one could not be searched to its end.
    void compareCalledFor(std::uint64_t seed, PlantKind kind, int maxFaults, const TrackOdds& odds)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        RandomTrack track(random, odds);
        BruteForceTrajectories reference(Which::calledFor, maxFaults);
        Tracker tracker(active.engine, *active.plant,
                        onlyCalledFor({.maxFaults = maxFaults, .keep = all, .lookBack = 0}));
        for (std::size_t number = 1; number <= 6; ++number) {
            SCOPED_TRACE("step " + std::to_string(number));
            const TrajectoryStep step = track.next();
            reference.advance(step);
            if (reference.metOpenGuard()) {
                return;
            }
            const TrackAnswer& answer = tracker.advance(trackInput(active, step, number));
            if (!answer.complete) {
                return;
            }
            EXPECT_EQ(answer.dropped, 0u);
            if (answer.status == TrackStatus::inconsistent) {
                EXPECT_TRUE(reference.weights().empty());
                ++inconsistent_;
                return;
            }
            expectSame(active, answer, reference);
            ++steps_;
            several_ += answer.hypotheses.size() > 1 ? 1 : 0;
        }
    }

    // Until the modes that are expected contradict the readings, silent faults may be left out. From then on nothing is:
    // with one fault at most, every sequence has its fault at a step gone back to or at the present one.
    void compareOneFault(std::uint64_t seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, PlantKind::circuit));
        RandomTrack track(random, {.deviating = 8, .observed = 40, .noise = 0});
        BruteForceTrajectories reference(Which::all, 1);
        const Modes initial = reference.weights().begin()->first;
        Tracker tracker(active.engine, *active.plant,
                        onlyCalledFor({.maxFaults = 1, .keep = all, .lookBack = 10}));
        for (std::size_t number = 1; number <= 8; ++number) {
            SCOPED_TRACE("step " + std::to_string(number));
            const TrajectoryStep step = track.next();
            reference.advance(step);
            if (reference.metOpenGuard()) {
                return;
            }
            const TrackAnswer& answer = tracker.advance(trackInput(active, step, number));
            if (!answer.complete) {
                return;
            }
            if (reference.weights().contains(initial)) {
                ASSERT_EQ(answer.hypotheses.size(), 1u);
                EXPECT_EQ(modesOf(active, *answer.hypotheses[0]), initial);
                continue;
            }
            if (answer.status == TrackStatus::inconsistent) {
                EXPECT_TRUE(reference.weights().empty());
                ++inconsistent_;
                return;
            }
            expectSame(active, answer, reference);
            ++steps_;
            several_ += answer.hypotheses.size() > 1 ? 1 : 0;
            wentBack_ += answer.wentBack ? 1 : 0;
        }
    }

    // Whatever is left out, nothing counts twice and nothing impossible counts: the probability before normalising is at
    // most that of all sequences that end in the same modes.
    void compareBound(std::uint64_t seed, PlantKind kind, const TrackOdds& odds,
                      const TrackSettings& settings)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, kind));
        if (combinations() > 40) {
            return;
        }
        RandomTrack track(random, odds);
        BruteForceTrajectories reference(Which::all, 99);
        Tracker tracker(active.engine, *active.plant, settings);
        double logScale = 0.0;
        for (std::size_t number = 1; number <= 8; ++number) {
            SCOPED_TRACE("step " + std::to_string(number));
            const TrajectoryStep step = track.next();
            reference.advance(step);
            if (reference.metOpenGuard()) {
                return;
            }
            const TrackAnswer& answer = tracker.advance(trackInput(active, step, number));
            if (answer.status == TrackStatus::inconsistent) {
                ++inconsistent_;
                return;
            }
            logScale += tracker.memory().past.back().logScale;
            for (const monitor::HypothesisPointer& hypothesis : answer.hypotheses) {
                const Modes modes = modesOf(active, *hypothesis);
                const auto exact = reference.weights().find(modes);
                ASSERT_NE(exact, reference.weights().end()) << text(modes);
                EXPECT_LE(hypothesis->logWeight + logScale,
                          exact->second.log() - reference.logDenominator() + 1e-9)
                    << text(modes);
            }
            ++steps_;
            wentBack_ += answer.wentBack ? 1 : 0;
        }
    }
    static std::size_t combinations()
    {
        std::size_t count = 1;
        for (const StateVar* mode : allVariables("Mode")) {
            count *= mode->atomLinks->size();
        }
        return count;
    }

    MutedTrace muted_;
    int wentBack_ = 0;
    int steps_ = 0;
    int several_ = 0;
    int inconsistent_ = 0;
};

TEST_F(TrajectoryProbability, OfMixedModelsIsThatOfTheSequencesThatWereCalledFor)
{
    for (int i = 0; i < fewerUnderSanitizers(150) && !HasFailure(); ++i) {
        const std::uint64_t seed = 0 + static_cast<std::uint64_t>(i);
        compareCalledFor(seed, PlantKind::mixed, 99, {});
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(150));
    EXPECT_GT(several_, fewerUnderSanitizers(12));
    EXPECT_GT(inconsistent_, fewerUnderSanitizers(5));
}

TEST_F(TrajectoryProbability, OfCircuitsIsThatOfTheSequencesThatWereCalledFor)
{
    for (int i = 0; i < fewerUnderSanitizers(150) && !HasFailure(); ++i) {
        const std::uint64_t seed = 1000 + static_cast<std::uint64_t>(i);
        compareCalledFor(seed, PlantKind::circuit, 1 + static_cast<int>(seed % 3), {});
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(200));
    EXPECT_GT(several_, fewerUnderSanitizers(50));
    EXPECT_GT(inconsistent_, fewerUnderSanitizers(5));
}

TEST_F(TrajectoryProbability, OfMixedModelsWithLostCommandsIsThatOfTheSequencesThatWereCalledFor)
{
    for (int i = 0; i < fewerUnderSanitizers(35) && !HasFailure(); ++i) {
        const std::uint64_t seed = 2000 + static_cast<std::uint64_t>(i);
        compareCalledFor(seed, PlantKind::mixed, 99, {.lossy = 80});
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(120));
    EXPECT_GT(several_, fewerUnderSanitizers(30));
}

TEST_F(TrajectoryProbability, WithOneFaultIsThatOfAllSequences)
{
    for (int i = 0; i < fewerUnderSanitizers(150) && !HasFailure(); ++i) {
        const std::uint64_t seed = 3000 + static_cast<std::uint64_t>(i);
        compareOneFault(seed);
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(200));
    EXPECT_GT(several_, fewerUnderSanitizers(100));
    EXPECT_GT(wentBack_, fewerUnderSanitizers(40));
}

TEST_F(TrajectoryProbability, OfCircuitsNeverExceedsThatOfAllSequences)
{
    for (int i = 0; i < fewerUnderSanitizers(150) && !HasFailure(); ++i) {
        const std::uint64_t seed = 4000 + static_cast<std::uint64_t>(i);
        compareBound(seed, PlantKind::circuit, {.deviating = 15, .observed = 30, .noise = 0},
                     {.maxFaults = 5, .keep = 1 + seed % 5, .lookBack = 10});
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(200));
    EXPECT_GT(wentBack_, fewerUnderSanitizers(10));
}

TEST_F(TrajectoryProbability, OfMixedModelsNeverExceedsThatOfAllSequences)
{
    for (int i = 0; i < fewerUnderSanitizers(150) && !HasFailure(); ++i) {
        const std::uint64_t seed = 4000 + static_cast<std::uint64_t>(i);
        compareBound(seed, PlantKind::mixed,
                     {.deviating = 15, .observed = 30, .noise = 0, .lossy = 30},
                     {.maxFaults = 5, .keep = 1 + seed % 5, .lookBack = 10});
    }
    EXPECT_GT(steps_, fewerUnderSanitizers(500));
    EXPECT_GT(wentBack_, fewerUnderSanitizers(24));
}

// Worn and hot look alike; hot cools down by itself, mostly, and both may end in dead. No reading hides a deviation.
TEST_F(TrajectoryProbability, IsThatOfAllSequencesWhereEveryDeviationShows)
{
    for (std::uint64_t seed = 5000; seed < 5040 && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        HandMade model;
        for (const std::string name : {"a", "b"}) {
            const std::string mode = name + ".mode=";
            model.mode(name + ".mode", {"ok", "worn!", "hot!", "dead!"});
            model.condition(name + ".out", {"good", "poor", "none"});
            model.law("!" + mode + "ok | " + name + ".out=good");
            model.law("!" + mode + "worn | " + name + ".out=poor");
            model.law("!" + mode + "hot | " + name + ".out=poor");
            model.law("!" + mode + "dead | " + name + ".out=none");
            model.fault(mode + "ok", mode + "worn", 1.0 / 64);
            model.fault(mode + "ok", mode + "hot", 3.0 / 64);
            model.fault(mode + "ok", mode + "dead", 1.0 / 128);
            model.nominal(mode + "hot", mode + "ok", 1.0 / 2);
            model.fault(mode + "hot", mode + "dead", 1.0 / 8);
            model.fault(mode + "worn", mode + "dead", 1.0 / 16);
        }
        const auto active = model.activate();
        Random random(seed);
        RandomTrack track(random, {.deviating = 40, .observed = 100, .noise = 0});
        BruteForceTrajectories reference(Which::all, 99);
        Tracker tracker(active->engine, *active->plant, {.maxFaults = 99, .keep = all});
        for (std::size_t number = 1; number <= 6; ++number) {
            const TrajectoryStep step = track.next();
            reference.advance(step);
            if (reference.metOpenGuard()) {
                return;
            }
            expectSame(*active, tracker.advance(trackInput(*active, step, number)), reference);
            EXPECT_TRUE(tracker.answer().complete);
            several_ += tracker.answer().hypotheses.size() > 1 ? 1 : 0;
        }
    }
    EXPECT_GT(several_, 60);
}

// The same sum once more in fractions: two readings, of which the second one shows that the first fault was not b's.
TEST_F(TrajectoryProbability, IsTheQuotientThatOneCalculatesByHand)
{
    HandMade model;
    model.condition("in.v", {"0", "1"});
    model.follower("a", "in.v");
    model.follower("b", "a.out");
    model.mode("c.mode", {"ok", "open!"});
    model.condition("c.v", {"0", "1", "2"});
    model.law("!c.mode=ok | c.v=0");
    model.fault("c.mode=ok", "c.mode=open", 1.0 / 32);
    const auto active = model.activate();
    Tracker tracker(active->engine, *active->plant, {});
    monitor::TrackInput first{1, 1.0, input(*active, {}, {"in.v=1", "b.out=0", "c.v=0"}), {}};
    monitor::TrackInput second{2, 2.0, input(*active, {}, {"in.v=1", "a.out=0", "c.v=1"}), {}};
    tracker.advance(first);
    const TrackAnswer& answer = tracker.advance(second);
    // a broke at 1; or b broke at 1 and a at 2. c opens at 2 and leaves its reading open between three values; or it opened at 1,
    // beside a: what explains the present step by itself is all that is gone back for.
    const Fraction breaks(1, 64);
    const Fraction stays(63, 64);
    const Fraction opens = Fraction(31, 32) * Fraction(1, 32) * Fraction(1, 3);
    const Fraction adopted = Fraction(1, 2) * Fraction(1, 2);
    const Fraction opened = Fraction(1, 32) * Fraction(1, 3) * Fraction(1, 3);
    const Fraction a = breaks * stays * stays * (opens + opened) * adopted;
    const Fraction both = breaks * stays * breaks * opens * adopted;
    ASSERT_EQ(answer.hypotheses.size(), 2u);
    EXPECT_NEAR(answer.probabilities[0], (a / (a + both)).value(), 1e-12);
    EXPECT_NEAR(answer.probabilities[1], (both / (a + both)).value(), 1e-12);
    const double logSum = tracker.memory().past[0].logScale + tracker.memory().past[1].logScale;
    EXPECT_NEAR(std::exp(logSum) / (a + both).value(), 1.0, 1e-12);
}

} // namespace
