#include "monitor/step/Judge.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using monitor::Candidate;
using monitor::Deviations;
using monitor::Judgement;

using Names = std::vector<std::string>;

class JudgeTest : public testing::Test {
protected:
    // a gives what comes in and breaks with 1/64; u, whose level is 1, is low with 1/32 and unknown with 1/128.
    JudgeTest()
    {
        model_.condition("in.v", {"0", "1"});
        model_.follower("a", "in.v");
        model_.mode("u.mode", {"ok", "low!", "unknown!"});
        model_.condition("u.level", {"0", "1", "2"});
        model_.law("!u.mode=ok | u.level=1");
        model_.law("!u.mode=low | u.level=0");
        model_.fault("u.mode=ok", "u.mode=low", 1.0 / 32);
        model_.fault("u.mode=ok", "u.mode=unknown", 1.0 / 128);
    }

    Judgement judgeFound(const Names& observations, const std::vector<Names>& found,
                         const Names& commands = {})
    {
        active_ = model_.activate();
        frame_ = std::make_unique<monitor::StepFrame>(
            makeFrame(*active_->plant, monitor::initialLabels(*active_->plant),
                      input(*active_, commands, observations)));
        std::set<Deviations> candidates;
        for (const Names& one : found) {
            Deviations deviations = input(*active_, {}, one).observations;
            std::sort(deviations.begin(), deviations.end());
            candidates.insert(deviations);
        }
        return judge(*frame_, candidates);
    }
    Names modes(const Candidate& candidate) const { return active_->ids(candidate.modes); }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    std::unique_ptr<monitor::StepFrame> frame_;
};

TEST_F(JudgeTest, ThePriorIsTheProductOfTheTransitions)
{
    const Judgement judgement =
        judgeFound({"in.v=1", "a.out=0", "u.level=0"}, {{"a.mode=broken", "u.mode=low"}});
    ASSERT_EQ(judgement.candidates.size(), 1u);
    const Candidate& candidate = judgement.candidates.front();
    EXPECT_EQ(modes(candidate), (Names{"a.mode=broken", "u.mode=low"}));
    EXPECT_EQ(candidate.faults, 2);
    EXPECT_EQ(candidate.probability, 1.0);
    // The input is open between two values.
    const Fraction joint = Fraction(1, 64) * Fraction(1, 32) * Fraction(1, 2);
    EXPECT_NEAR(std::exp(candidate.logProbability), joint.value(), 1e-15);
}

TEST_F(JudgeTest, AnObservationThatIsLeftOpenCountsOneOfItsValues)
{
    const Judgement judgement = judgeFound({"u.level=0"}, {{"u.mode=low"}, {"u.mode=unknown"}});
    ASSERT_EQ(judgement.candidates.size(), 2u);
    EXPECT_EQ(modes(judgement.candidates[0]), (Names{"u.mode=low"}));
    const Fraction low = Fraction(1, 32);
    const Fraction unknown = Fraction(1, 128) * Fraction(1, 3);
    EXPECT_NEAR(judgement.candidates[0].probability, (low / (low + unknown)).value(), 1e-12);
    EXPECT_NEAR(judgement.candidates[1].probability, (unknown / (low + unknown)).value(), 1e-12);
}

TEST_F(JudgeTest, AnObservationCountsForThoseAfterIt)
{
    model_.condition("w.level", {"0", "1", "2"});
    for (const std::string value : {"0", "1", "2"}) {
        model_.law("!u.level=" + value + " | w.level=" + value);
    }
    const Judgement judgement =
        judgeFound({"u.level=0", "w.level=0"}, {{"u.mode=low"}, {"u.mode=unknown"}});
    ASSERT_EQ(judgement.candidates.size(), 2u);
    // Once the level is known, w.level is determined: it counts once, not twice.
    const Fraction ratio = Fraction(1, 32) / (Fraction(1, 128) * Fraction(1, 3));
    EXPECT_NEAR(judgement.candidates[0].probability / judgement.candidates[1].probability,
                ratio.value(), 1e-9);
}

TEST_F(JudgeTest, AReadingThatOnlyADeviationDeterminesSpeaksForIt)
{
    // Nothing predicts loose.x as long as a is ok; when it is broken the value follows.
    model_.condition("loose.x", {"0", "1", "2", "3"});
    model_.law("!a.mode=broken | loose.x=3");
    const Judgement judgement = judgeFound({"loose.x=3", "u.level=0"},
                                           {{"u.mode=low"}, {"a.mode=broken", "u.mode=unknown"}});
    ASSERT_EQ(judgement.candidates.size(), 2u);
    const Fraction low = Fraction(63, 64) * Fraction(1, 32) * Fraction(1, 4);
    const Fraction broken = Fraction(1, 64) * Fraction(1, 128) * Fraction(1, 3);
    EXPECT_NEAR(judgement.candidates[0].probability, (low / (low + broken)).value(), 1e-12);
}

TEST_F(JudgeTest, ACandidateThatAnObservationContradictsIsDropped)
{
    const Judgement judgement = judgeFound({"u.level=2"}, {{}, {"u.mode=low"}, {"u.mode=unknown"}});
    ASSERT_EQ(judgement.candidates.size(), 1u);
    EXPECT_EQ(modes(judgement.candidates.front()), (Names{"u.mode=unknown"}));
    EXPECT_TRUE(judgement.sure);
}

TEST_F(JudgeTest, ACandidateThatIsDroppedDoesNotStandBeforeAnotherOne)
{
    // The one with more modes contains the other, which explains nothing.
    const Judgement judgement = judgeFound({"in.v=1", "a.out=0", "u.level=0"},
                                           {{"u.mode=low"}, {"a.mode=broken", "u.mode=low"}});
    ASSERT_EQ(judgement.candidates.size(), 1u);
    EXPECT_EQ(modes(judgement.candidates.front()), (Names{"a.mode=broken", "u.mode=low"}));
}

TEST_F(JudgeTest, ACandidateThatContainsAnotherOneIsDropped)
{
    const Judgement judgement =
        judgeFound({"in.v=1", "a.out=0"}, {{"a.mode=broken"}, {"a.mode=broken", "u.mode=low"}});
    ASSERT_EQ(judgement.candidates.size(), 1u);
    EXPECT_EQ(modes(judgement.candidates.front()), (Names{"a.mode=broken"}));
}

TEST_F(JudgeTest, ACandidateWhoseOpenConditionsHaveNoValuesIsDropped)
{
    model_.condition("p.x", {"0", "1"});
    model_.condition("p.y", {"0", "1"});
    for (const std::string x : {"0", "1"}) {
        for (const std::string y : {"0", "1"}) {
            model_.law("!u.mode=unknown | p.x=" + x + " | p.y=" + y);
        }
    }
    const Judgement judgement = judgeFound({"u.level=0"}, {{"u.mode=unknown"}, {"u.mode=low"}});
    ASSERT_EQ(judgement.candidates.size(), 1u);
    EXPECT_EQ(modes(judgement.candidates.front()), (Names{"u.mode=low"}));
    EXPECT_TRUE(judgement.sure);
}

TEST_F(JudgeTest, AModeThatNoTransitionReachesIsDropped)
{
    model_.mode("v.mode", {"ok", "strange!"});
    EXPECT_TRUE(judgeFound({}, {{"v.mode=strange"}}).candidates.empty());
}

TEST_F(JudgeTest, TiesAreInTheOrderOfTheIdentifiers)
{
    model_.follower("z", "in.v");
    model_.follower("y", "in.v");
    model_.follower("x", "in.v");
    const Judgement judgement =
        judgeFound({"in.v=0"}, {{"z.mode=broken"}, {"x.mode=broken"}, {"y.mode=broken"}});
    ASSERT_EQ(judgement.candidates.size(), 3u);
    EXPECT_EQ(modes(judgement.candidates[0]), (Names{"x.mode=broken"}));
    EXPECT_EQ(modes(judgement.candidates[1]), (Names{"y.mode=broken"}));
    EXPECT_EQ(modes(judgement.candidates[2]), (Names{"z.mode=broken"}));
}

TEST_F(JudgeTest, NothingFoundIsNothing)
{
    const Judgement judgement = judgeFound({}, {});
    EXPECT_TRUE(judgement.candidates.empty());
    EXPECT_TRUE(judgement.sure);
}

} // namespace
