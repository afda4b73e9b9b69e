// The pumping station of examples/water: its faults are found, and told apart.
#include "tests/examples/PlantTest.h"

namespace {

using monitor::StepStatus;

const Names startB{"branchB/valve.request=open", "branchB/starter.request=start"};
const Names stopA{"branchA/valve.request=close", "branchA/starter.request=stop"};
const Names changeOver{startB[0], startB[1], stopA[0], stopA[1]};

class Station : public PlantTest {
protected:
    Station() : PlantTest("water/station.itms", {"tank.level=normal"}) {}

    Situation running() const { return situation({{}}, {}); }
    Situation startingB() const { return situation({{}}, startB); }
    Situation changingOver() const { return situation({{}}, changeOver); }
    Situation onB() const { return situation({{}, changeOver}, {}); }
    Situation stopped() const { return situation({{}}, stopA); }
    Situation onBWithValveA() const
    {
        return situation({{}}, {startB[0], startB[1], "branchA/starter.request=stop"});
    }
    Situation onAWithValveB() const { return situation({{}}, {"branchB/valve.request=open"}); }
    Situation outletClosed() const { return situation({{}}, {"outlet.request=close"}); }
    Situation ranEmpty() const { return situation({{}}, {}, {"tank.level=empty"}); }
};

TEST_F(Station, IsDeterminedByModesCommandsAndLevel)
{
    for (const Situation& at : {running(), startingB(), changingOver(), onB(), stopped(),
                                onBWithValveA(), onAWithValveB(), outletClosed(), ranEmpty()}) {
        EXPECT_TRUE(plant_.complete(plant_.after(at.before, at.commands, {}, at.ambient)));
        const monitor::StepAnswer answer = explain(at, Names{}, 1);
        EXPECT_EQ(answer.status, StepStatus::nominal);
        EXPECT_TRUE(answer.discrepancies.empty());
    }
}

TEST_F(Station, ExplainsEverySingleFaultWhileRunning)
{
    explainEverySingleFault(running());
}

TEST_F(Station, ExplainsEverySingleFaultAtAChangeOver)
{
    explainEverySingleFault(changingOver());
}

TEST_F(Station, ExplainsEverySingleFaultWhileStopped)
{
    explainEverySingleFault(situation({{}, stopA}, {}));
}

TEST_F(Station, ExplainsAValveThatDoesNotOpen)
{
    const Situation at = changingOver();
    const Names stuck{"branchB/valve.position=stuckClosed"};
    const monitor::StepAnswer answer = explain(at, stuck, 2);
    // The motor may have ignored the request: far more probable than a valve that got stuck just then.
    ASSERT_GE(answer.candidates.size(), 2U);
    EXPECT_EQ(modes(answer)[0], Names{"branchB/valve.position=closed"});
    EXPECT_EQ(modes(answer)[1], stuck);
}

TEST_F(Station, SuspectsTheValveWhenItDoesNotOpenASecondTime)
{
    const Names ignored{"branchB/valve.position=closed"};
    const Names stuck{"branchB/valve.position=stuckClosed"};
    const Situation at = changingOver();
    const monitor::StepAnswer first = explain(at, stuck, 1);
    // The request is repeated, and nothing changes.
    const Names again{"branchB/valve.request=open"};
    const Situation afterIgnored{plant_.after(at.before, at.commands, ignored), again};
    const Situation afterStuck{plant_.after(at.before, at.commands, stuck), again};
    const std::vector<plant::AtomIndex> observed = readings(afterStuck, {});
    const monitor::StepAnswer second = explain(afterIgnored, observed, 1);
    const monitor::StepAnswer still = explain(afterStuck, observed, 1);
    ASSERT_EQ(modes(second)[0], ignored);
    ASSERT_EQ(modes(still)[0], Names{});
    EXPECT_GT(first.candidates[0].logProbability, first.candidates[1].logProbability);
    EXPECT_LT(first.candidates[0].logProbability + second.candidates[0].logProbability,
              first.candidates[1].logProbability + still.candidates[0].logProbability);
}

TEST_F(Station, FindsAPumpThatTurnsWithoutMovingWater)
{
    const monitor::StepAnswer answer = explain(running(), Names{"branchA/pump.state=sheared"}, 2);
    EXPECT_EQ(answer.status, StepStatus::faulty);
    EXPECT_EQ(modes(answer)[0], Names{"branchA/pump.state=sheared"});
}

TEST_F(Station, FindsABurstLine)
{
    const monitor::StepAnswer answer = explain(running(), Names{"line.state=burst"}, 2);
    EXPECT_EQ(answer.status, StepStatus::faulty);
    EXPECT_EQ(modes(answer)[0], Names{"line.state=burst"});
    EXPECT_GT(answer.candidates.size(), 1U); // both meters may be wrong
}

TEST_F(Station, CannotTellAReturnThroughTheIdleBranchFromAShutCheckValve)
{
    const Names jammedOpen{"branchB/check.flap=jammedOpen"};
    const Names jammedShut{"branchA/check.flap=jammedShut"};
    const monitor::StepAnswer both = explain(onAWithValveB(), jammedOpen, 1);
    ASSERT_GE(both.candidates.size(), 2U);
    EXPECT_EQ(modes(both)[0], jammedOpen);
    EXPECT_EQ(modes(both)[1], jammedShut);
    EXPECT_NEAR(both.candidates[0].probability / both.candidates[1].probability, 4.0, 1e-4);
    // With the valve of the idle branch closed nothing can return.
    EXPECT_EQ(modes(explain(running(), jammedShut, 1))[0], jammedShut);
}

TEST_F(Station, BelievesTheFloatSwitchAgainstAStuckLevelTransmitter)
{
    const Situation at = ranEmpty();
    const monitor::StepAnswer answer = explain(at, Names{"level.state=stuck"}, 2);
    EXPECT_EQ(answer.status, StepStatus::faulty);
    EXPECT_EQ(modes(answer)[0], Names{"level.state=stuck"});
}

TEST_F(Station, OpensTheContactorOfAPumpThatRunsDry)
{
    const Situation at = ranEmpty();
    Situation next{plant_.after(at.before, at.commands, {}, at.ambient), {}, at.ambient};
    EXPECT_TRUE(plant_.holds(next.before, "branchA/pump.current=idling"));
    const Labels tripped = plant_.after(next.before, {}, {}, at.ambient);
    EXPECT_TRUE(plant_.holds(tripped, "branchA/starter.contactor=open"));
    const Names welded{"branchA/starter.contactor=welded"};
    EXPECT_EQ(modes(explain(next, welded, 2))[0], welded);
}

TEST_F(Station, ExplainsTwoFaultsAtOnce)
{
    for (const Names& faults :
         {Names{"branchA/starter.contactor=coilBurnt", "stationMeter.state=dead"},
          Names{"branchA/pump.state=seized", "pressure.state=dead"},
          Names{"outlet.position=unknown", "line.state=blocked"}}) {
        SCOPED_TRACE(testing::PrintToString(faults));
        explain(running(), faults, 2);
    }
}

// That a closed valve did not close, or only says so, would be seen by starting its pump against it.
TEST_F(Station, TellsFaultsApartInTheCourseOfADayButForTwoPairs)
{
    EXPECT_EQ(alike({running(), startingB(), changingOver(), onB(), stopped(), onBWithValveA(),
                     onAWithValveB(), outletClosed(), ranEmpty()}),
              (std::set<std::set<std::string>>{
                  {"branchA/limit.state=stuckYes", "branchA/valve.position=stuckOpen"},
                  {"branchB/limit.state=stuckYes", "branchB/valve.position=stuckOpen"}}));
}

TEST_F(Station, TellsTheTwoPairsApartByStartingAPumpAgainstItsClosedValve)
{
    const Situation againstA = situation({{}, stopA}, {"branchA/starter.request=start"});
    const Situation againstB = situation({{}}, {"branchB/starter.request=start"});
    EXPECT_EQ(alike({running(), startingB(), changingOver(), onB(), stopped(), onBWithValveA(),
                     onAWithValveB(), outletClosed(), ranEmpty(), againstA, againstB}),
              (std::set<std::set<std::string>>{}));
}

TEST_F(Station, ShowsTheSameForFewFaultsInOneSituation)
{
    using Groups = std::set<std::set<std::string>>;
    const std::set<std::string> valveB{"branchB/limit.state=stuckYes",
                                       "branchB/valve.position=stuckOpen"};
    EXPECT_EQ(alikeAt(running()), Groups{valveB});
    EXPECT_EQ(alikeAt(startingB()),
              (Groups{{"branchA/ammeter.state=dead", "branchA/starter.contactor=coilBurnt"},
                      {"branchB/ammeter.state=dead", "branchB/starter.contactor=coilBurnt"}}));
    EXPECT_EQ(alikeAt(onAWithValveB()),
              (Groups{{"branchA/check.flap=jammedShut", "branchB/check.flap=jammedOpen"},
                      {"branchB/limit.state=stuckNo", "branchB/valve.position=stuckClosed"}}));
    EXPECT_EQ(alikeAt(outletClosed()),
              (Groups{{"branchA/check.flap=jammedShut", "pressure.state=clogged"}, valveB}));
}

} // namespace
