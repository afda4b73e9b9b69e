// The distribution of examples/power: its faults are found, and told apart.
#include "tests/examples/PlantTest.h"

namespace {

using monitor::StepStatus;

const Names island{"generator.request=start", "main[1].request=close", "tie.request=open"};

class Grid : public PlantTest {
protected:
    Grid() : PlantTest("power/grid.itms", {"mains.voltage=live"}) {}

    Situation joined() const { return situation({{}}, {}); }
    Situation separated() const { return situation({{}}, island); }
    Situation dark() const { return situation({{}}, {"main[0].request=open", "tie.request=open"}); }
    Situation feedersOpen() const
    {
        Names open{"motor[3]/load.request=on"};
        for (const char* feeder : {"motor", "rack"}) {
            for (const char* number : {"[0]", "[1]", "[2]", "[3]"}) {
                open.push_back(std::string(feeder) + number + "/breaker.request=open");
            }
        }
        return situation({{}}, open);
    }
    Situation spareOn() const { return situation({{}}, {"motor[3]/load.request=on"}); }
    Situation loadsOff() const
    {
        return situation({{}}, {"motor[0]/load.request=off", "rack[0]/load.request=off"});
    }
    Situation withoutMains() const { return situation({{}}, {}, {"mains.voltage=dead"}); }
};

TEST_F(Grid, IsDeterminedByModesCommandsAndMains)
{
    for (const Situation& at :
         {joined(), separated(), dark(), feedersOpen(), spareOn(), loadsOff(), withoutMains()}) {
        EXPECT_TRUE(plant_.complete(plant_.after(at.before, at.commands, {}, at.ambient)));
        EXPECT_EQ(explain(at, Names{}, 1).status, StepStatus::nominal);
    }
}

TEST_F(Grid, ExplainsEverySingleFaultOfJoinedBusbars)
{
    explainEverySingleFault(joined());
}

TEST_F(Grid, ExplainsEverySingleFaultAtTheSeparation)
{
    explainEverySingleFault(separated());
}

TEST_F(Grid, ExplainsEverySingleFaultInAnOutage)
{
    explainEverySingleFault(withoutMains());
}

TEST_F(Grid, TellsAnOutageFromABrokenVoltmeter)
{
    EXPECT_EQ(explain(withoutMains(), Names{}, 2).status, StepStatus::nominal);
    const monitor::StepAnswer answer = explain(joined(), Names{"mainsMeter.state=open"}, 2);
    EXPECT_EQ(answer.status, StepStatus::faulty);
    EXPECT_EQ(modes(answer)[0], Names{"mainsMeter.state=open"});
}

// With the voltmeter of the mains frozen, an outage looks like a short on a busbar until the breaker stays closed.
TEST_F(Grid, TellsAnOutageThatIsNotSeenFromAShortInTheNextStep)
{
    const Names frozen{"mainsMeter.state=frozen"};
    const Names shorted{"bus[0].state=shorted"};
    const Situation at = withoutMains();
    const monitor::StepAnswer first = explain(at, frozen, 1);
    ASSERT_GE(first.candidates.size(), 2U);
    EXPECT_EQ(modes(first)[0], frozen);
    EXPECT_EQ(modes(first)[1], shorted);
    const Situation afterFrozen{plant_.after(at.before, {}, frozen, at.ambient), {}, at.ambient};
    const Situation afterShort{plant_.after(at.before, {}, shorted), {}};
    const std::vector<plant::AtomIndex> observed = readings(afterFrozen, {});
    EXPECT_EQ(modes(explain(afterFrozen, observed, 1)), std::vector<Names>{{}});
    EXPECT_FALSE(explain(afterShort, observed, 1).discrepancies.empty());
}

TEST_F(Grid, ExplainsAShortThatTheBreakerClearsInTheNextStep)
{
    const Names shorted{"motor[0]/load.state=shorted"};
    Situation at = joined();
    EXPECT_EQ(modes(explain(at, shorted, 1))[0], shorted);
    at.before = plant_.after(at.before, {}, shorted);
    const Labels cleared = plant_.after(at.before, {});
    EXPECT_TRUE(plant_.holds(cleared, "motor[0]/breaker.position=tripped"));
    EXPECT_TRUE(explain(at, Names{}, 1).discrepancies.empty());
    // A breaker that does not clear it is slow, or welded: 1/1000 against 5 in a million.
    const monitor::StepAnswer answer = explain(at, Names{"motor[0]/breaker.position=welded"}, 1);
    ASSERT_GE(answer.candidates.size(), 2U);
    EXPECT_EQ(modes(answer)[0], Names{"motor[0]/breaker.position=closed"});
    EXPECT_EQ(modes(answer)[1], Names{"motor[0]/breaker.position=welded"});
}

TEST_F(Grid, ClearsAShortedBusbarAndKeepsTheOther)
{
    Labels labels = plant_.after(plant_.initial(), {});
    labels = plant_.after(labels, {"generator.request=start"});
    labels = plant_.after(labels, {"main[1].request=close"});
    labels = plant_.after(labels, {}, {"bus[0].state=shorted"});
    const auto holds = [&](const char* id) { return plant_.holds(labels, id); };
    EXPECT_TRUE(holds("bus[1].voltage=dead"));
    labels = plant_.after(labels, {});
    EXPECT_TRUE(holds("tie.position=tripped"));
    EXPECT_TRUE(holds("main[0].position=tripped"));
    EXPECT_TRUE(holds("main[1].position=closed"));
    EXPECT_TRUE(holds("bus[1].voltage=live"));
}

TEST_F(Grid, TellsAConverterFromItsLoad)
{
    for (const char* fault :
         {"rack[1]/converter.state=failed", "rack[1]/converter.state=shorted",
          "rack[1]/load.state=burnt", "rack[1]/load.state=shorted", "rack[1]/voltmeter.state=open",
          "rack[1]/ammeter.state=open", "rack[1]/breaker.position=broken"}) {
        EXPECT_EQ(modes(explain(joined(), Names{fault}, 1))[0], Names{fault});
    }
}

TEST_F(Grid, ExplainsTwoFaultsAtOnce)
{
    for (const Names& faults :
         {Names{"motor[1]/load.state=burnt", "motor[1]/ammeter.state=saturated"},
          Names{"bus[1].state=shorted", "busMeter[0].state=frozen"},
          Names{"rack[2]/converter.state=unknown", "motor[0]/breaker.position=broken"}}) {
        SCOPED_TRACE(testing::PrintToString(faults));
        EXPECT_FALSE(explain(joined(), faults, 2).candidates.empty());
    }
}

TEST_F(Grid, TellsAllFaultsApart)
{
    EXPECT_EQ(
        alike({joined(), separated(), dark(), feedersOpen(), spareOn(), loadsOff(), withoutMains()}),
        (std::set<std::set<std::string>>{}));
}

TEST_F(Grid, ShowsTheSameForFewFaultsInOneSituation)
{
    using Groups = std::set<std::set<std::string>>;
    const std::set<std::string> spare{"motor[3]/ammeter.state=saturated",
                                      "motor[3]/load.state=shorted"};
    EXPECT_EQ(alikeAt(joined()), (Groups{{"bus[0].state=shorted", "bus[1].state=shorted"}, spare}));
    EXPECT_EQ(alikeAt(separated()), Groups{spare});
    EXPECT_EQ(alikeAt(spareOn()), (Groups{{"bus[0].state=shorted", "bus[1].state=shorted"}}));
}

} // namespace
