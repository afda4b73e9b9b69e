#include "tests/simulate/SimulatorFixture.h"

#include <gmock/gmock.h>

namespace {

using simulate::ModeCause;
using simulate::SimulatedStep;
using simulate::SimulationProblem;
using simulate::Simulator;
using simulate::SimulatorSettings;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(SimulatorTest, FollowsCommandsAndLetsConditionsFollow)
{
    makeValve();
    EXPECT_THAT(ids(step({{}, {"v.in=positive"}, {}}).observations),
                ElementsAre("v.out=zero", "v.in=positive"));
    const SimulatedStep opened = step({{"v.request=open"}, {}, {}});
    EXPECT_THAT(ids(opened.observations), ElementsAre("v.out=positive", "v.in=positive"));
    EXPECT_THAT(ids(opened.commands), ElementsAre("v.request=open"));
    ASSERT_EQ(opened.changes.size(), 1U);
    EXPECT_EQ(ids({opened.changes[0].before, opened.changes[0].after}),
              (Texts{"v.position=closed", "v.position=open"}));
    EXPECT_EQ(opened.changes[0].cause, ModeCause::predicted);
}

TEST_F(SimulatorTest, ACommandThatIsNotGivenHasItsFirstValue)
{
    makeValve();
    EXPECT_THAT(ids(step().commands), ElementsAre("v.request=none"));
}

TEST_F(SimulatorTest, AnInjectedFaultAppearsWithItsEffect)
{
    makeValve();
    step({{"v.request=open"}, {"v.in=positive"}, {}});
    step({{"v.request=close"}, {}, {"v.position=stuckOpen"}});
    const SimulatedStep later = step();
    EXPECT_THAT(ids(later.values), Contains("v.position=stuckOpen"));
    EXPECT_THAT(ids(later.observations), ElementsAre("v.out=positive", "v.in=positive"));
}

TEST_F(SimulatorTest, TellsThatAChangeWasInjected)
{
    makeValve();
    const SimulatedStep stuck = step({{"v.request=open"}, {}, {"v.position=stuckClosed"}});
    ASSERT_EQ(stuck.changes.size(), 1U);
    EXPECT_EQ(stuck.changes[0].cause, ModeCause::injected);
    EXPECT_EQ(ids({stuck.changes[0].after}), Texts{"v.position=stuckClosed"});
}

TEST_F(SimulatorTest, StayingCanBeInjectedWhereAChangeIsPredicted)
{
    makeValve();
    const SimulatedStep stayed = step({{"v.request=open"}, {}, {"v.position=closed"}});
    ASSERT_EQ(stayed.changes.size(), 1U);
    EXPECT_EQ(stayed.changes[0].before, stayed.changes[0].after);
    EXPECT_THAT(ids(stayed.values), Contains("v.position=closed"));
}

TEST_F(SimulatorTest, RefusesAFaultThatNoTransitionReachesAndNamesWhatIsReached)
{
    makeValve();
    const SimulationProblem refused = problem({{}, {}, {"v.position=stuckOpen"}});
    EXPECT_EQ(refused.kind, SimulationProblem::Kind::unreachable);
    EXPECT_EQ(ids({refused.injected}), Texts{"v.position=stuckOpen"});
    EXPECT_THAT(ids(refused.values),
                testing::UnorderedElementsAre("v.position=closed", "v.position=stuckClosed"));
}

TEST_F(SimulatorTest, AProblemLeavesTheStateAsItWas)
{
    makeValve();
    step({{"v.request=open"}, {"v.in=positive"}, {}});
    problem({{"v.request=close"}, {"v.in=zero"}, {"v.position=stuckClosed"}});
    EXPECT_THAT(ids(step().observations), ElementsAre("v.out=positive", "v.in=positive"));
}

TEST_F(SimulatorTest, ReportsModesThatCannotBeTogether)
{
    model_.mode("a.mode", {"ok", "bad!"});
    model_.mode("b.mode", {"ok", "bad!"});
    model_.mode("c.mode", {"ok", "bad!"});
    for (const std::string name : {"a", "b", "c"}) {
        model_.fault(name + ".mode=ok", name + ".mode=bad", 1.0 / 4);
    }
    model_.law("!a.mode=bad | !b.mode=bad");
    const SimulationProblem both = problem({{}, {}, {"a.mode=bad", "b.mode=bad", "c.mode=bad"}});
    EXPECT_EQ(both.kind, SimulationProblem::Kind::contradiction);
    EXPECT_THAT(ids(both.values), testing::UnorderedElementsAre("a.mode=bad", "b.mode=bad"));
}

TEST_F(SimulatorTest, DrawsModesThatContradictOneAnotherAnew)
{
    // Three pairs of modes can be together, with chances 9/16, 3/16 and 3/16: 1/5 of the runs have `a` bad.
    model_.mode("a.mode", {"ok", "bad!"});
    model_.mode("b.mode", {"ok", "bad!"});
    model_.fault("a.mode=ok", "a.mode=bad", 1.0 / 4);
    model_.fault("b.mode=ok", "b.mode=bad", 1.0 / 4);
    model_.law("!a.mode=bad | !b.mode=bad");
    active_ = model_.activate();
    int bad = 0;
    for (std::uint64_t seed = 0; seed < 4000; ++seed) {
        simulator_.reset();
        simulator(seed);
        const Texts values = ids(step().values);
        const bool a = std::count(values.begin(), values.end(), "a.mode=bad") > 0;
        const bool b = std::count(values.begin(), values.end(), "b.mode=bad") > 0;
        EXPECT_FALSE(a && b) << "seed " << seed;
        bad += a ? 1 : 0;
    }
    EXPECT_NEAR(bad / 4000.0, 0.2, 0.025); // four standard deviations
}

TEST_F(SimulatorTest, ReportsLawsThatLeaveNoValues)
{
    model_.mode("a.mode", {"ok", "bad!"});
    model_.fault("a.mode=ok", "a.mode=bad", 1.0 / 4);
    model_.condition("a.x", {"0", "1"});
    model_.condition("a.y", {"0", "1"});
    for (const std::string law :
         {"a.x=0 | a.y=0", "a.x=0 | a.y=1", "a.x=1 | a.y=0", "a.x=1 | a.y=1"}) {
        model_.law("!a.mode=bad | " + law);
    }
    EXPECT_EQ(problem({{}, {}, {"a.mode=bad"}}).kind, SimulationProblem::Kind::contradiction);
    step();
}

TEST_F(SimulatorTest, AnInjectedRepairMendsAFault)
{
    model_.mode("a.mode", {"bad!", "ok"});
    model_.repair("a.mode=bad", "a.mode=ok", 1.0 / 1024);
    EXPECT_THAT(ids(step().values), ElementsAre("a.mode=bad"));
    const SimulatedStep mended = step({{}, {}, {"a.mode=ok"}});
    EXPECT_THAT(ids(mended.values), ElementsAre("a.mode=ok"));
    ASSERT_EQ(mended.changes.size(), 1U);
    EXPECT_EQ(mended.changes.front().cause, ModeCause::injected);
    EXPECT_THAT(ids(step().values), ElementsAre("a.mode=ok"));
}

TEST_F(SimulatorTest, RepairsAreDrawnByTheirProbability)
{
    model_.mode("a.mode", {"bad!", "ok"});
    model_.repair("a.mode=bad", "a.mode=ok", 1.0 / 4);
    active_ = model_.activate();
    int mended = 0;
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        simulator_.reset();
        simulator(seed);
        const SimulatedStep drawn = step();
        mended += ids(drawn.values).front() == "a.mode=ok" ? 1 : 0;
        EXPECT_EQ(drawn.changes.empty(), ids(drawn.values).front() == "a.mode=bad");
    }
    EXPECT_NEAR(mended / 2000.0, 1.0 / 4, 0.039); // four standard deviations
}

TEST_F(SimulatorTest, LostCommandsHaveNoEffect)
{
    makeValve();
    bindings_.lost[model_.atom("v.request=open")->stateVar] = 1.0;
    simulator(1);
    for (int i = 0; i < 20; ++i) {
        const SimulatedStep asked = step({{"v.request=open"}, {}, {"v.position=closed"}});
        EXPECT_THAT(ids(asked.commands), ElementsAre("v.request=open"));
        EXPECT_EQ(asked.lost.size(), 1U);
        EXPECT_THAT(ids(asked.values), Contains("v.request=none"));
        EXPECT_THAT(asked.changes, IsEmpty()); // nothing else was predicted
    }
}

TEST_F(SimulatorTest, CommandsAreLostByTheirProbability)
{
    makeValve();
    bindings_.lost[model_.atom("v.request=open")->stateVar] = 1.0 / 4;
    simulator(11);
    int lost = 0;
    for (int i = 0; i < 1000; ++i) {
        lost += step({{"v.request=open"}, {}, {}}).lost.empty() ? 0 : 1;
    }
    EXPECT_NEAR(lost / 1000.0, 0.25, 0.055); // four standard deviations
}

// Half of the wrong readings are right by chance.
TEST_F(SimulatorTest, ReadingsAreWrongByTheirProbability)
{
    model_.condition("a.flow", {"zero", "one"});
    model_.law("a.flow=zero");
    active_ = model_.activate();
    observe("a.flow");
    bindings_.channels.front().misread = 1.0 / 2;
    simulator(11);
    int marked = 0;
    int wrong = 0;
    for (int i = 0; i < 1000; ++i) {
        const SimulatedStep drawn = step();
        marked += drawn.misread.empty() ? 0 : 1;
        wrong += ids(drawn.observations).front() == "a.flow=one" ? 1 : 0;
        EXPECT_THAT(ids(drawn.values), Contains("a.flow=zero"));
    }
    EXPECT_NEAR(marked / 1000.0, 0.5, 0.064); // four standard deviations
    EXPECT_NEAR(wrong / 1000.0, 0.25, 0.055);
}

TEST_F(SimulatorTest, NoReadingIsWrongWhereNothingIsDrawn)
{
    model_.condition("a.flow", {"zero", "one"});
    model_.law("a.flow=zero");
    active_ = model_.activate();
    observe("a.flow");
    bindings_.channels.front().misread = 0.999;
    const SimulatedStep predicted = step();
    EXPECT_THAT(predicted.misread, IsEmpty());
    EXPECT_THAT(ids(predicted.observations), ElementsAre("a.flow=zero"));
}

TEST_F(SimulatorTest, NoCommandIsLostWhereNothingIsDrawn)
{
    makeValve();
    bindings_.lost[model_.atom("v.request=open")->stateVar] = 1.0;
    EXPECT_THAT(step({{"v.request=open"}, {}, {}}).lost, IsEmpty());
}

TEST_F(SimulatorTest, TransitionsAreDrawnByTheirProbability)
{
    model_.mode("a.mode", {"ok", "slow!", "dead!"});
    model_.fault("a.mode=ok", "a.mode=slow", 1.0 / 4);
    model_.fault("a.mode=ok", "a.mode=dead", 1.0 / 8);
    active_ = model_.activate();
    std::map<std::string, int> counts;
    for (std::uint64_t seed = 0; seed < 4000; ++seed) {
        simulator_.reset();
        simulator(seed);
        const SimulatedStep drawn = step();
        ++counts[ids(drawn.values).front()];
        EXPECT_EQ(drawn.changes.empty(), ids(drawn.values).front() == "a.mode=ok");
    }
    EXPECT_NEAR(counts["a.mode=ok"] / 4000.0, 5.0 / 8, 0.031); // four standard deviations
    EXPECT_NEAR(counts["a.mode=slow"] / 4000.0, 1.0 / 4, 0.028);
    EXPECT_NEAR(counts["a.mode=dead"] / 4000.0, 1.0 / 8, 0.021);
}

TEST_F(SimulatorTest, FurtherVariablesAreObservedAfterTheBoundOnes)
{
    makeValve();
    active_ = model_.activate();
    const auto position = active_->plant->variableOf(active_->index("v.position=open"));
    simulator_ =
        std::make_unique<Simulator>(*active_->plant, bindings_, SimulatorSettings{{}, {position}});
    EXPECT_THAT(ids(step().observations),
                ElementsAre("v.out=zero", "v.in=zero", "v.position=closed"));
}

TEST_F(SimulatorTest, ObservingMoreChangesNothing)
{
    makeValve();
    bindings_.channels.resize(1); // v.out
    active_ = model_.activate();
    const auto inflow = active_->plant->variableOf(active_->index("v.in=zero"));
    const auto inputs = simulate::randomCommands(*active_->plant, 50, 2);
    const auto plain = simulate::simulate(*active_->plant, bindings_, inputs, {2, {}});
    const auto observed = simulate::simulate(*active_->plant, bindings_, inputs, {2, {inflow}});
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        EXPECT_EQ(plain.steps[i].values, observed.steps[i].values);
    }
    EXPECT_EQ(observed.steps.front().observations.size(), 2U);
}

TEST_F(SimulatorTest, NamesTheFaultsThatTheNextStepCouldBring)
{
    makeValve();
    EXPECT_EQ(faults(), Texts{"v.position=stuckClosed"});
    step({{"v.request=open"}, {}, {}});
    EXPECT_THAT(faults(),
                testing::UnorderedElementsAre("v.position=stuckOpen", "v.position=unknown"));
}

} // namespace
