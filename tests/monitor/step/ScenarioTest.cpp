#include "monitor/step/Scenario.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using monitor::Scenario;
using monitor::StepFrame;

using Names = std::vector<std::string>;

class ScenarioTest : public testing::Test {
protected:
    // in -> a -> b, and a loose condition.
    ScenarioTest()
    {
        model_.condition("in.v", {"0", "1"});
        model_.follower("a", "in.v");
        model_.follower("b", "a.out");
        model_.condition("loose.x", {"0", "1", "2"});
    }
    StepFrame frame(const Names& observations, const Names& commands = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        return makeFrame(*active_->plant, monitor::initialLabels(*active_->plant),
                         input(*active_, commands, observations));
    }
    Scenario scenario(const StepFrame& frame, const Names& deviations = {}) const
    {
        return {frame, input(*active_, {}, deviations).observations};
    }
    // The components of the modes of each conflict.
    std::vector<Names> conflicts(const Scenario& scenario) const
    {
        std::vector<Names> result;
        for (const monitor::Conflict& conflict : scenario.conflicts()) {
            Names names;
            for (const auto variable : conflict) {
                names.push_back(active_->plant->variable(variable).variable->comp->name);
            }
            std::sort(names.begin(), names.end());
            result.push_back(names);
        }
        return result;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(ScenarioTest, AnObservationThatNothingPredictsIsAdoptedAndPropagated)
{
    const StepFrame step = frame({"in.v=1"});
    const Scenario nominal = scenario(step);
    EXPECT_TRUE(nominal.consistent());
    EXPECT_TRUE(nominal.discrepancies().empty());
    EXPECT_TRUE(nominal.prediction().isTrue(active_->index("b.out=1")));
    EXPECT_FALSE(nominal.complete());
}

TEST_F(ScenarioTest, AnObservationThatDiffersFromItsPredictionIsADiscrepancy)
{
    const StepFrame step = frame({"in.v=1", "b.out=0", "loose.x=2"});
    const Scenario nominal = scenario(step);
    EXPECT_TRUE(nominal.complete());
    EXPECT_EQ(active_->ids(nominal.discrepancies()), (Names{"b.out=0"}));
    EXPECT_EQ(conflicts(nominal), (std::vector<Names>{{"a", "b"}}));
}

TEST_F(ScenarioTest, TheOrderOfTheObservationsTellsWhatIsAdopted)
{
    // b.out=0 comes first, and what it says of the input contradicts the reading.
    const StepFrame step = frame({"b.out=0", "in.v=1"});
    EXPECT_EQ(active_->ids(scenario(step).discrepancies()), (Names{"in.v=1"}));
}

TEST_F(ScenarioTest, ADeviationIsPredictedFromItsOwnLaws)
{
    const StepFrame step = frame({"in.v=1", "b.out=0"});
    const Scenario broken = scenario(step, {"a.mode=broken"});
    EXPECT_TRUE(broken.consistent());
    EXPECT_TRUE(broken.discrepancies().empty());
    EXPECT_TRUE(broken.prediction().isTrue(active_->index("a.out=0")));
}

TEST_F(ScenarioTest, WhatTheNominalModesLeaveOpenADeviationMayContradict)
{
    model_.law("!a.mode=broken | in.v=0");
    const StepFrame step = frame({"in.v=1", "b.out=1"});
    EXPECT_TRUE(scenario(step).discrepancies().empty());
    const Scenario broken = scenario(step, {"a.mode=broken"});
    EXPECT_EQ(active_->ids(broken.discrepancies()), (Names{"in.v=1", "b.out=1"}));
    EXPECT_EQ(conflicts(broken), (std::vector<Names>{{"a"}, {"a", "b"}}));
}

TEST_F(ScenarioTest, WhatADeviationLeavesOpenIsAdopted)
{
    model_.mode("c.mode", {"ok", "unknown!"});
    model_.condition("c.out", {"0", "1"});
    model_.law("!c.mode=ok | c.out=0");
    model_.law("!c.out=1 | loose.x=2");
    const StepFrame step = frame({"in.v=0", "c.out=1"});
    EXPECT_EQ(active_->ids(scenario(step).discrepancies()), (Names{"c.out=1"}));
    const Scenario open = scenario(step, {"c.mode=unknown"});
    EXPECT_TRUE(open.discrepancies().empty());
    EXPECT_TRUE(open.prediction().isTrue(active_->index("loose.x=2")));
}

TEST_F(ScenarioTest, AReadingThatWouldViolateALawIsADiscrepancyOfTheModesOfThatLaw)
{
    model_.condition("d.y", {"0", "1"});
    model_.law("!a.out=1 | !loose.x=1 | d.y=0");
    model_.law("!a.out=1 | !loose.x=1 | d.y=1");
    const StepFrame step = frame({"in.v=1", "loose.x=1"});
    const Scenario nominal = scenario(step);
    EXPECT_TRUE(nominal.consistent());
    EXPECT_EQ(active_->ids(nominal.discrepancies()), (Names{"loose.x=1"}));
    EXPECT_EQ(conflicts(nominal), (std::vector<Names>{{"a"}}));
    EXPECT_FALSE(nominal.prediction().isKnown(active_->index("loose.x=1")));
    EXPECT_FALSE(nominal.complete());
}

TEST_F(ScenarioTest, ModesThatContradictTheLawsAreInconsistent)
{
    model_.law("!a.mode=ok | !b.mode=ok");
    const StepFrame step = frame({"in.v=1"});
    const Scenario nominal = scenario(step);
    EXPECT_FALSE(nominal.consistent());
    EXPECT_TRUE(nominal.discrepancies().empty());
    EXPECT_EQ(conflicts(nominal), (std::vector<Names>{{"a", "b"}}));
    EXPECT_TRUE(scenario(step, {"b.mode=broken"}).consistent());
}

TEST_F(ScenarioTest, CommandsThatContradictOneAnotherLeaveNoModeToBlame)
{
    model_.command("k.request", {"none", "go"});
    const StepFrame step = frame({}, {"k.request=none", "k.request=go"});
    const Scenario nominal = scenario(step);
    EXPECT_FALSE(nominal.consistent());
    EXPECT_EQ(conflicts(nominal), (std::vector<Names>{{}}));
}

TEST_F(ScenarioTest, GuardsReadTheCommandsOfTheStep)
{
    model_.mode("m.mode", {"off", "on"});
    model_.command("m.request", {"none", "start"});
    model_.nominal("m.mode=off", "m.mode=on", 0.75, "m.request=start");
    const StepFrame starts = frame({}, {"m.request=start"});
    EXPECT_TRUE(scenario(starts).prediction().isTrue(active_->index("m.mode=on")));
    const StepFrame stays = frame({}, {"m.request=none"});
    EXPECT_TRUE(scenario(stays).prediction().isTrue(active_->index("m.mode=off")));
}

TEST_F(ScenarioTest, AFrameFindsTheStepOfAMode)
{
    const StepFrame step = frame({});
    for (const monitor::ModeStep& mode : step.modes) {
        EXPECT_EQ(&step.stepOf(mode.variable), &mode);
    }
}

TEST(RandomScenarios, AreContradictedByTheModesOfTheirConflictsAlone)
{
    const MutedTrace muted;
    int judged = 0;
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const PlantKind kind = seed % 2 == 0 ? PlantKind::mixed : PlantKind::circuit;
        const ActivePlant active(randomModel(random, kind));
        const DiagnosisProblem problem = randomProblem(random, kind);
        const StepFrame frame =
            makeFrame(*active.plant, active.before(problem), active.input(problem));
        std::vector<plant::AtomIndex> deviations;
        for (const monitor::ModeStep& mode : frame.modes) {
            if (random.chance(25)) {
                deviations.push_back(random.pick(mode.options).value);
            }
        }
        const Scenario scenario(frame, deviations);
        for (const monitor::Conflict& conflict : scenario.conflicts()) {
            std::vector<const Atom*> given = problem.commands;
            given.insert(given.end(), problem.observations.begin(), problem.observations.end());
            for (const auto variable : conflict) {
                const auto held = scenario.prediction().valueOf(active.plant->variable(variable));
                given.push_back(active.plant->atom(held.value()));
            }
            EXPECT_FALSE(BruteForceDiagnosis::world(given));
            ++judged;
        }
    }
    EXPECT_GT(judged, 100);
}

} // namespace
