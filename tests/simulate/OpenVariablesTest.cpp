// What inputs, observed and other variables have where modes and commands leave them open.
#include "tests/simulate/SimulatorFixture.h"

#include <gmock/gmock.h>

namespace {

using simulate::SimulatedStep;
using testing::Contains;
using testing::ElementsAre;

TEST_F(SimulatorTest, InputsKeepTheirValueUntilAnotherIsGiven)
{
    makeValve();
    EXPECT_THAT(ids(step().observations), Contains("v.in=zero"));
    EXPECT_THAT(ids(step({{}, {"v.in=positive"}, {}}).observations), Contains("v.in=positive"));
    EXPECT_THAT(ids(step().observations), Contains("v.in=positive"));
    EXPECT_THAT(ids(step({{}, {"v.in=zero"}, {}}).observations), Contains("v.in=zero"));
}

TEST_F(SimulatorTest, InputsKeepTheirValueWhereAllElseIsDrawn)
{
    makeValve();
    simulator(7);
    step({{}, {"v.in=positive"}, {}});
    for (int i = 0; i < 20; ++i) {
        EXPECT_THAT(ids(step().observations), Contains("v.in=positive")) << "step " << i;
    }
}

TEST_F(SimulatorTest, WhatAnObservedVariableShowsIsAnInputAsWell)
{
    // The sensor shows the level. When it is stuck, nothing tells the level any more, which stays what it is.
    model_.condition("tank.level", {"low", "high"});
    model_.condition("tank.colour", {"red", "blue"}); // nothing shows it
    model_.mode("sensor.mode", {"ok", "stuck!"});
    model_.condition("sensor.reading", {"zero", "low", "high"});
    model_.law("!sensor.mode=ok | !tank.level=low | sensor.reading=low");
    model_.law("!sensor.mode=ok | !tank.level=high | sensor.reading=high");
    model_.law("!sensor.mode=stuck | sensor.reading=zero");
    model_.fault("sensor.mode=ok", "sensor.mode=stuck", 1.0 / 1024);
    observe("sensor.reading");
    simulator(5);
    EXPECT_THAT(ids(step({{}, {"tank.level=high"}, {}}).observations),
                ElementsAre("sensor.reading=high"));
    step({{}, {}, {"sensor.mode=stuck"}});
    int red = 0;
    for (int i = 0; i < 40; ++i) {
        const Texts values = ids(step().values);
        EXPECT_THAT(values, Contains("tank.level=high"));
        red += std::count(values.begin(), values.end(), "tank.colour=red") > 0 ? 1 : 0;
    }
    EXPECT_GT(red, 5);
    EXPECT_LT(red, 35);
}

TEST_F(SimulatorTest, OfGivenValuesThoseOfInputsCount)
{
    makeValve();
    step({{"v.request=open"}, {"v.in=positive"}, {}});
    const SimulatedStep contradictory = step({{}, {"v.out=zero", "v.in=positive"}, {}});
    EXPECT_THAT(ids(contradictory.ignored), ElementsAre("v.out=zero"));
    EXPECT_THAT(ids(contradictory.values), Contains("v.in=positive"));
}

TEST_F(SimulatorTest, AGivenValueOfWhatFollowsFromOthersIsIgnored)
{
    makeValve();
    const SimulatedStep closed = step({{}, {"v.out=positive"}, {}});
    EXPECT_THAT(ids(closed.ignored), ElementsAre("v.out=positive"));
    EXPECT_THAT(ids(closed.observations), Contains("v.out=zero"));
}

TEST_F(SimulatorTest, WhatFlowsInTakesWhatFlowsOutAlong)
{
    makeValve();
    bindings_.channels.clear(); // so that the order of bindings does not tell which one comes first
    step({{}, {"v.in=positive"}, {}});
    EXPECT_THAT(ids(step({{"v.request=open"}, {}, {}}).values), Contains("v.out=positive"));
}

TEST_F(SimulatorTest, WhatNothingDeterminesKeepsItsValue)
{
    makeValve();
    step({{"v.request=open"}, {"v.in=positive"}, {}});
    step({{}, {}, {"v.position=unknown"}});
    EXPECT_THAT(ids(step({{}, {"v.in=zero"}, {}}).observations),
                ElementsAre("v.out=positive", "v.in=zero"));
}

TEST_F(SimulatorTest, WhatNothingDeterminesIsDrawnFromAllThatIsPossible)
{
    makeValve();
    simulator(3);
    while (std::get<SimulatedStep>(simulator_->step(input({{"v.request=open"}, {}, {}})))
               .changes.empty()) {
    }
    step({{}, {}, {"v.position=unknown"}});
    int positive = 0;
    for (int i = 0; i < 400; ++i) {
        const Texts seen = ids(step().observations);
        positive += seen.front() == "v.out=positive" ? 1 : 0;
    }
    EXPECT_NEAR(positive / 400.0, 0.5, 0.1); // four standard deviations
}

TEST_F(SimulatorTest, DeclaredInputsKeepTheirValueWhereNothingDeterminesThem)
{
    makeValve();
    bindings_.channels.front().input = true; // v.out
    simulator(3);
    breakValve();
    step({{}, {"v.out=positive"}, {}});
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(ids(step().observations).front(), "v.out=positive");
    }
}

TEST_F(SimulatorTest, OpenReadingsChangeAsOftenAsTheyVary)
{
    makeValve();
    for (plant::ChannelBinding& channel : bindings_.channels) {
        channel.varies = 1.0 / 8;
    }
    simulator(3);
    Texts last = ids(breakValve().observations);
    std::vector<int> changes(last.size());
    for (int i = 0; i < 2000; ++i) {
        const Texts seen = ids(step().observations);
        for (std::size_t j = 0; j < seen.size(); ++j) {
            changes[j] += seen[j] != last[j] ? 1 : 0;
        }
        last = seen;
    }
    for (const int count : changes) {
        EXPECT_NEAR(count / 2000.0, 1.0 / 8, 0.03); // four standard deviations
    }
}

TEST_F(SimulatorTest, ReadingsThatVaryKeepTheirValueWhereNothingIsDrawn)
{
    makeValve();
    bindings_.channels.front().varies = 0.99;
    const Texts first = ids(breakValve().observations);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(ids(step().observations), first);
    }
}

} // namespace
