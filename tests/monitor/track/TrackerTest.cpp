#include "tests/monitor/track/TrackFixture.h"

#include "tests/monitor/track/RandomTrack.h"
#include "tests/reference/Fraction.h"
#include "tests/support/Sanitized.h"

#include <cmath>

namespace {

using monitor::TrackAnswer;
using monitor::TrackStatus;
using testing::ElementsAre;
using testing::IsEmpty;

class TrackerTest : public TrackFixture {};

TEST_F(TrackerTest, FollowsAPlantThatDoesWhatIsExpected)
{
    addValve("v", 63.0 / 64);
    const TrackAnswer& answer = step({"v.flow=0"}, {"v.request=none"});
    EXPECT_EQ(answer.status, TrackStatus::nominal);
    EXPECT_EQ(answer.step, 1u);
    EXPECT_EQ(answer.t, 10.0);
    step({"v.flow=1"}, {"v.request=open"});
    EXPECT_EQ(answer.status, TrackStatus::nominal);
    EXPECT_THAT(active_->ids(best().modes.toVector()), ElementsAre("v.position=open"));
    step({"v.flow=1"}, {"v.request=none"});
    step({"v.flow=0"}, {"v.request=close"});
    EXPECT_EQ(answer.status, TrackStatus::nominal);
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_THAT(answer.probabilities, ElementsAre(1.0));
    EXPECT_TRUE(answer.complete);
    EXPECT_FALSE(answer.wentBack);
    EXPECT_EQ(best().faultCount(), 0);
    EXPECT_EQ(answer.work.records, 0u);
}

TEST_F(TrackerTest, FindsAFaultAtTheStepWhereItShowsAndRemembersIt)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    step({"in.v=1", "a.out=1"});
    step({"in.v=1", "a.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@2"));
    step({"in.v=1", "a.out=0"});
    step({"in.v=0", "a.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@2"));
    EXPECT_EQ(best().since.begin()->second.t, 20.0);
    EXPECT_EQ(best().faultCount(), 1);
}

TEST_F(TrackerTest, TellsTwoExplanationsApartByALaterReading)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "a.out");
    step({"in.v=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::ambiguous);
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@1", "b.mode=broken@1"));
    EXPECT_NEAR(probability("a.mode=broken@1"), 0.5, 1e-12);
    step({"in.v=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::ambiguous);
    step({"in.v=1", "a.out=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_EQ(texts().front(), "b.mode=broken@1");
    // That a works and both broke now is possible as well: two faults.
    EXPECT_GT(probability("b.mode=broken@1"), 0.9);
}

TEST_F(TrackerTest, KeepsTheMostProbableAndCountsTheRest)
{
    settings_.keep = 2;
    model_.condition("in.v", {"0", "1"});
    model_.mode("a.mode", {"ok", "low!", "off!", "mad!", "gone!"});
    model_.condition("a.out", {"0", "1"});
    model_.law("!a.mode=ok | !in.v=1 | a.out=1");
    for (const std::string fault : {"low", "off", "mad", "gone"}) {
        model_.law("!a.mode=" + fault + " | a.out=0");
    }
    model_.fault("a.mode=ok", "a.mode=low", 1.0 / 64);
    model_.fault("a.mode=ok", "a.mode=off", 3.0 / 64);
    model_.fault("a.mode=ok", "a.mode=mad", 2.0 / 64);
    model_.fault("a.mode=ok", "a.mode=gone", 1.0 / 128);
    step({"in.v=1", "a.out=0"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=off@1", "a.mode=mad@1"));
    EXPECT_EQ(tracker_->answer().dropped, 2u);
    EXPECT_NEAR(probability("a.mode=off@1"), 3.0 / 5, 1e-12);
    EXPECT_NEAR(probability("a.mode=mad@1"), 2.0 / 5, 1e-12);
    step({"in.v=1", "a.out=0"});
    EXPECT_EQ(tracker_->answer().dropped, 0u);
}

// Worn and hot both end in dead: the probabilities of the two ways add up.
TEST_F(TrackerTest, AddsUpTheWaysThatLeadToTheSameModes)
{
    model_.mode("a.mode", {"ok", "worn!", "hot!", "dead!"});
    model_.condition("a.out", {"good", "poor", "none"});
    model_.law("!a.mode=ok | a.out=good");
    model_.law("!a.mode=worn | a.out=poor");
    model_.law("!a.mode=hot | a.out=poor");
    model_.law("!a.mode=dead | a.out=none");
    model_.fault("a.mode=ok", "a.mode=worn", 1.0 / 64);
    model_.fault("a.mode=ok", "a.mode=hot", 2.0 / 64);
    model_.fault("a.mode=worn", "a.mode=dead", 1.0 / 4);
    model_.fault("a.mode=hot", "a.mode=dead", 1.0 / 16);
    step({"a.out=good"});
    step({"a.out=poor"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=hot@2", "a.mode=worn@2"));
    step({"a.out=none"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=dead@2"));
    const Fraction stays = Fraction(61, 64);
    const Fraction both =
        stays * (Fraction(1, 64) * Fraction(1, 4) + Fraction(2, 64) * Fraction(1, 16));
    double logScale = 0.0;
    for (const monitor::PastStep& past : tracker_->memory().past) {
        logScale += past.logScale;
    }
    EXPECT_NEAR(std::exp(logScale), both.value(), 1e-12);
    // The step alone, on the more probable way.
    EXPECT_NEAR(std::exp(best().logStep), 1.0 / 4, 1e-12);
    EXPECT_EQ(best().faultCount(), 2);
}

TEST_F(TrackerTest, GoesOnWithPredictionsWhereNothingExplainsTheReadings)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.law("!a.mode=ok | !in.v=0 | a.out=0");
    step({"in.v=1", "a.out=1"});
    step({"in.v=0", "a.out=1"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_TRUE(tracker_->answer().complete);
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_THAT(active_->ids(best().unexplained), ElementsAre("a.out=1"));
    EXPECT_FALSE(best().explains());
    EXPECT_THAT(tracker_->answer().probabilities, ElementsAre(1.0));
    step({"in.v=1", "a.out=1"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
    EXPECT_THAT(best().unexplained, IsEmpty());
    step({"in.v=1", "a.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@4"));
}

TEST_F(TrackerTest, BoundsTheFaultsAlongTheTrajectory)
{
    settings_.maxFaults = 1;
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    step({"in.v=1", "a.out=0", "b.out=1"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@1"));
    step({"in.v=1", "a.out=0", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_TRUE(tracker_->answer().complete);

    settings_.maxFaults = 2;
    tracker_.reset();
    step({"in.v=1", "a.out=0", "b.out=1"});
    step({"in.v=1", "a.out=0", "b.out=0"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@3 b.mode=broken@4"));
    EXPECT_EQ(best().faultCount(), 2);
}

TEST_F(TrackerTest, IsStaleWhereNothingIsObserved)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    step({});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::stale);
    step({"in.v=1", "a.out=1"});
    step({"in.v=1", "a.out=0"});
    step({});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::stale);
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@3"));
}

TEST_F(TrackerTest, ExplainsANominalTransitionThatDoesNotHappenWithoutAFault)
{
    settings_.maxFaults = 0;
    addValve("v", 31.0 / 32);
    step({"v.flow=0"}, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre("v.position=closed@1"));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_EQ(best().faultCount(), 0);
    step({"v.flow=1"}, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

// It does not open at 2 and at 3: it has been closed against what was asked since 2.
TEST_F(TrackerTest, RemembersTheFirstStepAtWhichAModeWasNotAsExpected)
{
    settings_.maxFaults = 0;
    addValve("v", 31.0 / 32);
    step({"v.flow=0"}, {"v.request=none"});
    step({"v.flow=0"}, {"v.request=open"});
    step({"v.flow=0"}, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre("v.position=closed@2"));
}

// A repair that was asked for and did not happen does not make the fault a new one.
TEST_F(TrackerTest, KeepsTheStepOfAFaultWhoseRepairDoesNotHappen)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.command("a.reset", {"no", "yes"});
    model_.nominal("a.mode=broken", "a.mode=ok", 0.5, "a.reset=yes");
    step({"in.v=1", "a.out=0"}, {"a.reset=no"});
    step({"in.v=1", "a.out=0"}, {"a.reset=yes"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=broken@1"));
    step({"in.v=1", "a.out=1"}, {"a.reset=yes"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

TEST_F(TrackerTest, ListsFaultsThatThePlantBeginsWith)
{
    model_.condition("in.v", {"0", "1"});
    model_.mode("a.mode", {"stuck!", "ok"});
    model_.condition("a.out", {"0", "1"});
    model_.law("!a.mode=ok | !in.v=1 | a.out=1");
    model_.law("!a.mode=stuck | a.out=0");
    step({"in.v=1", "a.out=0"});
    EXPECT_THAT(texts(), ElementsAre("a.mode=stuck@0"));
    EXPECT_EQ(best().since.begin()->second.t, 0.0);
    EXPECT_EQ(best().faultCount(), 0);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
}

TEST_F(TrackerTest, OrdersEquallyProbableOnesByName)
{
    model_.condition("in.v", {"0", "1"});
    const Names parts{"q", "d", "zeta", "b", "m", "alpha"};
    std::string from = "in.v";
    for (const std::string& part : parts) {
        model_.follower(part, from);
        from = part + ".out";
    }
    step({"in.v=1", from + "=0"});
    EXPECT_THAT(texts(), ElementsAre("alpha.mode=broken@1", "b.mode=broken@1", "d.mode=broken@1",
                                     "m.mode=broken@1", "q.mode=broken@1", "zeta.mode=broken@1"));
}

TEST_F(TrackerTest, GoesOnWhereLawsContradictOneAnother)
{
    model_.mode("a.mode", {"ok", "broken!"});
    model_.condition("a.out", {"0", "1"});
    model_.law("a.out=1");
    model_.law("a.out=0");
    step({"a.out=1"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_THAT(active_->ids(best().modes.toVector()), ElementsAre("a.mode=ok"));
    EXPECT_THAT(active_->ids(best().unexplained), ElementsAre("a.out=1"));
    step({});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_THAT(tracker_->answer().probabilities, ElementsAre(1.0));
}

// Commands that no modes allow together contradict the laws at their step only.
TEST_F(TrackerTest, RecoversFromCommandsThatContradictTheLaws)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.command("x.cmd", {"no", "yes"});
    model_.command("y.cmd", {"no", "yes"});
    model_.law("!x.cmd=yes | !y.cmd=yes");
    step({"in.v=1", "a.out=1"}, {"x.cmd=yes", "y.cmd=yes"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_THAT(active_->ids(best().unexplained), ElementsAre("in.v=1", "a.out=1"));
    step({"in.v=1", "a.out=1"}, {"x.cmd=yes", "y.cmd=no"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

TEST_F(TrackerTest, NeedsNoMoreMemoryAfterManySteps)
{
    settings_.maxFaults = 1000000;
    settings_.keep = 4;
    settings_.lookBack = 5;
    addValve("v", 15.0 / 16);
    model_.nominal("v.position=stuck", "v.position=closed", 0.5, "v.request=close");
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.nominal("a.mode=broken", "a.mode=ok", 0.25);
    start();
    Random random(7);
    RandomTrack track(random, {.deviating = 3, .observed = 60, .noise = 1, .lossy = 20});
    std::map<TrackStatus, int> statuses;
    for (std::size_t number = 1; number <= fewerUnderSanitizers(20000U) && !HasFailure(); ++number) {
        const TrackAnswer& answer = tracker_->advance(trackInput(*active_, track.next(), number));
        ++statuses[answer.status];
        EXPECT_LE(answer.hypotheses.size(), 4u);
        double sum = 0.0;
        for (const double probability : answer.probabilities) {
            EXPECT_TRUE(std::isfinite(probability));
            sum += probability;
        }
        EXPECT_NEAR(sum, 1.0, 1e-9);
        EXPECT_EQ(tracker_->memory().past.size(), std::min<std::size_t>(number, 5));
        for (const monitor::PastStep& past : tracker_->memory().past) {
            EXPECT_LE(past.before.size(), 8u);
        }
    }
    EXPECT_GT(statuses[TrackStatus::nominal], fewerUnderSanitizers(1000));
    EXPECT_GT(statuses[TrackStatus::faulty], fewerUnderSanitizers(1000));
}

// A door that may or may not open, as a condition that nobody sees says.
class TrackerFollows : public TrackFixture {
protected:
    TrackerFollows()
    {
        model_.mode("d.door", {"closed", "open"});
        model_.condition("x.clear", {"no", "yes", "partly", "perhaps"});
        model_.nominal("d.door=closed", "d.door=open", 1.0, "x.clear=yes");
    }
    Names doors() const
    {
        Names doors;
        for (const monitor::HypothesisPointer& one : tracker_->answer().hypotheses) {
            doors.push_back(active_->ids(one->modes.toVector()).front());
        }
        return doors;
    }
};

TEST_F(TrackerFollows, WhatAnOpenGuardMayBringAbout)
{
    step({});
    EXPECT_EQ(doors(), (Names{"d.door=closed", "d.door=open"}));
    EXPECT_NEAR(tracker_->answer().probabilities[1], 0.25, 1e-12);
    EXPECT_EQ(texts(), (Names{"", ""})); // neither is wrong
}

TEST_F(TrackerFollows, NothingThatIsLessProbableThanAskedFor)
{
    settings_.follow = 0.5;
    step({});
    EXPECT_EQ(doors(), (Names{"d.door=closed"}));
}

class TrackerSays : public TrackFixture {
protected:
    TrackerSays()
    {
        model_.mode("m.mode", {"ok", "worn!", "dead!"});
        model_.condition("m.out", {"good", "poor", "none"});
        model_.law("!m.mode=ok | m.out=good");
        model_.law("!m.mode=worn | m.out=poor | m.out=none");
        model_.law("!m.mode=dead | m.out=none");
        model_.fault("m.mode=ok", "m.mode=worn", 1.0 / 64);
        model_.fault("m.mode=ok", "m.mode=dead", 1.0 / 64);
    }
};

// Of `none` dead is twice as probable as worn.
TEST_F(TrackerSays, WhatIsMissingBecauseNoMoreIsKept)
{
    settings_.keep = 1;
    step({"m.out=none"});
    EXPECT_THAT(texts(), ElementsAre("m.mode=dead@1"));
    EXPECT_NEAR(tracker_->answer().missing, 1.0 / 3, 1e-12);
    step({"m.out=none"});
    EXPECT_NEAR(tracker_->answer().missing, 1.0 / 3, 1e-12); // a bound: worn would have 1/2 only
}

TEST_F(TrackerSays, ThatNothingIsMissingWhereAllIsKept)
{
    step({"m.out=none"});
    EXPECT_EQ(tracker_->answer().missing, 0.0);
}

TEST_F(TrackerSays, WhatIsMissingBecauseNothingWasSearched)
{
    step({"m.out=good"});
    settings_.limits.maxRecords = 0;
    tracker_.reset();
    step({"m.out=none"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::ambiguous);
    EXPECT_GT(tracker_->answer().missing, 0.0);
}

TEST_F(TrackerSays, HowProbableAFaultIsThatHasNotShown)
{
    settings_.lookBack = 2;
    step({"m.out=good"});
    EXPECT_NEAR(tracker_->answer().silent, 1.0 / 32, 1e-12);
    for (int i = 0; i < 5; ++i) {
        step({"m.out=good"});
    }
    EXPECT_NEAR(tracker_->answer().silent, 1.0 - std::pow(31.0 / 32, 2), 1e-12);
}

TEST_F(TrackerSays, ThatNothingIsSilentWhereEverythingIsFollowed)
{
    settings_.follow = 0.0;
    step({"m.out=good"});
    EXPECT_EQ(tracker_->answer().silent, 0.0);
}

TEST_F(TrackerTest, SaysThatNothingIsSilentWhereNothingCanBreak)
{
    model_.mode("lamp.state", {"off", "on"});
    step({});
    EXPECT_EQ(tracker_->answer().silent, 0.0);
    EXPECT_FALSE(std::signbit(tracker_->answer().silent)); // or it is printed as -0.0
}

} // namespace
