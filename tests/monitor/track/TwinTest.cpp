// What is wrong with a plant: what differs from its fault-free twin.
#include "tests/monitor/track/TrackFixture.h"

namespace {

using monitor::TrackStatus;
using testing::ElementsAre;
using testing::IsEmpty;

class TwinTest : public TrackFixture {
protected:
    /// A relay that goes over at each toggle, most of the time, and back at a reset; NAME.out shows where it is.
    void addRelay(const std::string& name)
    {
        model_.mode(name + ".state", {"off", "on"});
        model_.command(name + ".command", {"none", "toggle", "reset"});
        model_.condition(name + ".out", {"0", "1"});
        model_.law("!" + name + ".state=off | " + name + ".out=0");
        model_.law("!" + name + ".state=on | " + name + ".out=1");
        model_.nominal(name + ".state=off", name + ".state=on", 0.75, name + ".command=toggle");
        model_.nominal(name + ".state=on", name + ".state=off", 0.75, name + ".command=toggle");
        model_.nominal(name + ".state=on", name + ".state=off", 0.75, name + ".command=reset");
    }
    /// A pump that is started and breaks, and is off once it is repaired.
    void addPump(double repaired)
    {
        model_.mode("p.state", {"off", "on", "broken!"});
        model_.command("p.command", {"none", "start", "replace"});
        model_.condition("p.flow", {"no", "yes", "leaking"});
        model_.law("!p.state=off | p.flow=no");
        model_.law("!p.state=on | p.flow=yes");
        model_.law("!p.state=broken | p.flow=leaking");
        model_.nominal("p.state=off", "p.state=on", 0.75, "p.command=start");
        model_.fault("p.state=on", "p.state=broken", 1.0 / 64);
        model_.repair("p.state=broken", "p.state=off", repaired, "p.command=replace");
    }
    /// A lamp that breaks and comes back: by a repair, or by itself.
    void addLamp(const std::string& name)
    {
        model_.mode(name + ".state", {"ok", "broken!"});
        model_.condition(name + ".light", {"yes", "no"});
        model_.law("!" + name + ".state=ok | " + name + ".light=yes");
        model_.law("!" + name + ".state=broken | " + name + ".light=no");
        model_.fault(name + ".state=ok", name + ".state=broken", 1.0 / 64);
    }
    Names twinModes() const { return active_->ids(best().twinModes().toVector()); }
};

TEST_F(TwinTest, IsTheHypothesisItselfWhileNothingDeviates)
{
    addRelay("r");
    step({"r.out=1"}, {"r.command=toggle"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_FALSE(best().twin);
    EXPECT_FALSE(best().isFaulty());
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

TEST_F(TwinTest, DiffersInAModeThatDidNotDoAsPredicted)
{
    addRelay("r");
    step({"r.out=0"}, {"r.command=toggle"});
    EXPECT_THAT(texts(), ElementsAre("r.state=off@1"));
    EXPECT_THAT(twinModes(), ElementsAre("r.state=on"));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
}

// Every step since is as predicted.
TEST_F(TwinTest, IsOffAfterTwoTogglesOfWhichTheFirstWasMissed)
{
    addRelay("r");
    step({"r.out=0"}, {"r.command=none"});
    step({"r.out=0"}, {"r.command=toggle"});
    step({"r.out=1"}, {"r.command=toggle"});
    EXPECT_THAT(tracker_->answer().contradicted, IsEmpty());
    EXPECT_THAT(texts(), ElementsAre("r.state=on@2"));
    EXPECT_THAT(twinModes(), ElementsAre("r.state=off"));
    EXPECT_EQ(best().since.begin()->second.t, 20.0);
    EXPECT_EQ(best().faultCount(), 0);
    step({"r.out=1"}, {"r.command=none"});
    EXPECT_THAT(texts(), ElementsAre("r.state=on@2"));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
}

TEST_F(TwinTest, IsTheHypothesisAgainOnceATransitionBringsItBack)
{
    addRelay("r");
    step({"r.out=0"}, {"r.command=toggle"});
    step({"r.out=1"}, {"r.command=toggle"});
    step({"r.out=0"}, {"r.command=reset"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_FALSE(best().twin);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
    step({"r.out=1"}, {"r.command=toggle"});
    EXPECT_THAT(texts(), ElementsAre(""));
}

TEST_F(TwinTest, DiffersInOneOfTwo)
{
    addRelay("r");
    addRelay("s");
    step({"r.out=1", "s.out=0"}, {"r.command=toggle", "s.command=toggle"});
    step({"r.out=0", "s.out=1"}, {"r.command=toggle", "s.command=toggle"});
    EXPECT_THAT(texts(), ElementsAre("s.state=on@1"));
}

// The command arrived at the twin.
TEST_F(TwinTest, DiffersAfterACommandThatWasLost)
{
    addValve("v", 1.0);
    step({"v.flow=0"}, {"v.request=open"}, {{"v.request=open", "v.request=none", 0.5}});
    ASSERT_TRUE(best().twin);
    EXPECT_THAT(twinModes(), ElementsAre("v.position=open"));
}

TEST_F(TwinTest, StaysAsItIsWhileAFaultLasts)
{
    addPump(0.25);
    step({"p.flow=yes"}, {"p.command=start"});
    step({"p.flow=leaking"}, {"p.command=none"});
    step({"p.flow=leaking"}, {"p.command=none"});
    EXPECT_THAT(texts(), ElementsAre("p.state=broken@2"));
    EXPECT_THAT(twinModes(), ElementsAre("p.state=on"));
}

// It was on; once repaired it is off, and has to be started.
TEST_F(TwinTest, HasTheValueOfAModeThatWasRepaired)
{
    addPump(0.25);
    step({"p.flow=yes"}, {"p.command=start"});
    step({"p.flow=leaking"}, {"p.command=none"});
    step({"p.flow=no"}, {"p.command=replace"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_FALSE(best().twin);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
    step({"p.flow=yes"}, {"p.command=start"});
    EXPECT_THAT(texts(), ElementsAre(""));
}

TEST_F(TwinTest, HasTheValueOfAModeWhoseRepairIsCertain)
{
    addPump(1.0);
    step({"p.flow=yes"}, {"p.command=start"});
    step({"p.flow=leaking"}, {"p.command=none"});
    step({"p.flow=no"}, {"p.command=replace"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

TEST_F(TwinTest, DoesNotTakeANominalTransitionForARepair)
{
    addRelay("r");
    model_.repair("r.state=off", "r.state=on", 1.0 / 64, "r.command=toggle");
    step({"r.out=0"}, {"r.command=toggle"});
    step({"r.out=1"}, {"r.command=toggle"});
    EXPECT_THAT(texts(), ElementsAre("r.state=on@1"));
}

TEST_F(TwinTest, DoesNotExpectAFaultToEndByItselfWhileItRatherStays)
{
    addLamp("l");
    model_.nominal("l.state=broken", "l.state=ok", 0.02);
    step({"l.light=no"});
    step({});
    EXPECT_THAT(texts(), ElementsAre("l.state=broken@1", ""));
    EXPECT_NEAR(tracker_->answer().probabilities.front(), 0.98, 1e-12);
    step({"l.light=no"});
    EXPECT_THAT(texts(), ElementsAre("l.state=broken@1"));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    EXPECT_NEAR(std::exp(best().logStep), 0.98, 1e-12);
    step({"l.light=yes"});
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_NEAR(std::exp(best().logStep), 0.02, 1e-12);
}

TEST_F(TwinTest, ExpectsAFaultToEndByItselfWhereThatIsMoreProbable)
{
    addLamp("l");
    model_.nominal("l.state=broken", "l.state=ok", 0.98);
    step({"l.light=no"});
    step({});
    EXPECT_THAT(texts(), ElementsAre(""));
}

class FaultsInTime : public TwinTest {
protected:
    FaultsInTime()
    {
        addLamp("l");
        model_.repair("l.state=broken", "l.state=ok", 0.25);
    }
};

TEST_F(FaultsInTime, CountUntilTheyAreOverAndOutsideTheLookBack)
{
    settings_.lookBack = 2;
    std::vector<int> counts;
    for (const std::string light : {"no", "yes", "yes", "yes", "yes"}) {
        step({"l.light=" + light});
        counts.push_back(best().faultCount());
    }
    EXPECT_THAT(counts, ElementsAre(1, 1, 1, 0, 0));
}

TEST_F(FaultsInTime, CountAsLongAsTheyAreThere)
{
    settings_.lookBack = 2;
    for (int i = 0; i < 10; ++i) {
        step({"l.light=no"});
        EXPECT_EQ(best().faultCount(), 1);
    }
    step({"l.light=yes"});
    EXPECT_EQ(best().faultCount(), 0);
}

TEST_F(FaultsInTime, AreNeverTooManyWhereTheyAreFarEnoughApart)
{
    settings_.maxFaults = 3;
    settings_.lookBack = 5;
    for (int i = 0; i < 60; ++i) {
        for (const std::string light : {"no", "yes", "yes"}) {
            step({"l.light=" + light});
            ASSERT_EQ(tracker_->answer().status,
                      light == "no" ? TrackStatus::faulty : TrackStatus::nominal)
                << number_;
            ASSERT_LE(best().faultCount(), 3);
        }
    }
}

// Three of them began within five steps, the present one included.
TEST_F(FaultsInTime, AreNeverTooManyWhereEveryOtherStepHasOne)
{
    settings_.maxFaults = 3;
    settings_.lookBack = 5;
    for (int i = 0; i < 60; ++i) {
        for (const std::string light : {"no", "yes"}) {
            step({"l.light=" + light});
            ASSERT_EQ(tracker_->answer().status,
                      light == "no" ? TrackStatus::faulty : TrackStatus::nominal)
                << number_;
            ASSERT_LE(best().faultCount(), 3);
        }
    }
}

// The relay missed its toggle. Its twin is on, where y and z would be the same: it takes neither reading. k goes over where y is 0,
// and where z is 0 if that is what guards it.
class TwinOfContradictingReadings : public TwinTest {
protected:
    explicit TwinOfContradictingReadings(const std::string& guard = "y")
    {
        addRelay("r");
        model_.condition("y.v", {"0", "1"});
        model_.condition("z.v", {"0", "1"});
        model_.law("!r.state=on | !y.v=0 | z.v=0");
        model_.law("!r.state=on | !y.v=1 | z.v=1");
        model_.mode("k.state", {"a", "b"});
        model_.nominal("k.state=a", "k.state=b", 1.0, guard + ".v=0");
        model_.nominal("k.state=b", "k.state=a", 1.0, guard + ".v=1");
    }
    // The twin's modes after the steps, for readings in one order or the other.
    std::vector<Names> modes(bool yFirst)
    {
        tracker_.reset();
        number_ = 0;
        std::vector<Names> modes;
        for (const std::string y : {"0", "1", "1", "0", "0"}) {
            const Names command{number_ == 0 ? "r.command=toggle" : "r.command=none"};
            const std::string readY = "y.v=" + y;
            const std::string readZ = y == "0" ? "z.v=1" : "z.v=0";
            step(yFirst ? Names{"r.out=0", readY, readZ} : Names{readZ, readY, "r.out=0"}, command);
            EXPECT_TRUE(best().twin);
            modes.push_back(twinModes());
        }
        return modes;
    }
};

TEST_F(TwinOfContradictingReadings, DoesNotDependOnTheirOrder)
{
    EXPECT_EQ(modes(true), modes(false));
}

TEST_F(TwinOfContradictingReadings, TakesNeitherOfThem)
{
    step({"r.out=0", "y.v=0", "z.v=1"}, {"r.command=toggle"});
    ASSERT_TRUE(best().twin);
    const monitor::Prediction& twin = best().twin->labels.prediction();
    EXPECT_EQ(twin.label(active_->index("y.v=0")), monitor::Label::unknown);
    EXPECT_EQ(twin.label(active_->index("z.v=1")), monitor::Label::unknown);
}

class TwinOfContradictingReadingsRenamed : public TwinOfContradictingReadings {
protected:
    TwinOfContradictingReadingsRenamed() : TwinOfContradictingReadings("z") {}
};

TEST_F(TwinOfContradictingReadingsRenamed, DoesNotDependOnTheirOrder)
{
    EXPECT_EQ(modes(true), modes(false));
}

} // namespace
