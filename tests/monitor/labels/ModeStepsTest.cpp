#include "monitor/labels/ModeSteps.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using monitor::ModeStep;
using monitor::Prediction;

class ModeStepsTest : public testing::Test {
protected:
    ModeStepsTest()
    {
        model_.mode("p.mode", {"off", "on", "stuck!", "dead!"});
        model_.command("p.request", {"none", "start", "stop"});
        model_.condition("p.power", {"absent", "present"});
    }

    // The step of p.mode from the given values under the commands.
    ModeStep step(const std::vector<std::string>& before, const std::vector<std::string>& commands)
    {
        if (!active_) {
            active_ = model_.activate();
        }
        Prediction labels(*active_->plant);
        for (const std::string& id : before) {
            labels.assume(active_->index(id));
        }
        const monitor::ModeSteps steps =
            modeSteps(*active_->plant, labels, input(*active_, commands, {}).commands);
        EXPECT_EQ(steps.size(), 1u);
        return steps[0];
    }
    std::string id(plant::AtomIndex atom) const { return active_->plant->atom(atom)->id; }

    // The options as texts: "p.mode=on 3/4", faults with a mark.
    std::set<std::string> options(const ModeStep& step) const
    {
        std::set<std::string> texts;
        for (const monitor::ModeOption& option : step.options) {
            std::ostringstream text;
            text << id(option.value) << ' ' << Fraction::ofDyadic(option.probability)
                 << (option.fault ? " !" : "");
            texts.insert(text.str());
        }
        return texts;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

using Texts = std::set<std::string>;

TEST_F(ModeStepsTest, AModeWithoutTransitionsStays)
{
    const ModeStep stays = step({"p.mode=on"}, {});
    EXPECT_EQ(id(stays.predicted), "p.mode=on");
    EXPECT_EQ(options(stays), (Texts{"p.mode=on 1/1"}));
    EXPECT_FALSE(stays.deviatesFreely());
}

TEST_F(ModeStepsTest, AFaultTakesItsProbabilityFromStaying)
{
    model_.fault("p.mode=off", "p.mode=stuck", 1.0 / 64);
    model_.fault("p.mode=off", "p.mode=dead", 3.0 / 64);
    const ModeStep stays = step({"p.mode=off"}, {"p.request=none"});
    EXPECT_EQ(id(stays.before), "p.mode=off");
    EXPECT_EQ(id(stays.predicted), "p.mode=off");
    EXPECT_EQ(options(stays),
              (Texts{"p.mode=off 15/16", "p.mode=stuck 1/64 !", "p.mode=dead 3/64 !"}));
    EXPECT_FALSE(stays.deviatesFreely());
}

TEST_F(ModeStepsTest, ANominalTransitionIsFollowedWhenItsCommandIsGiven)
{
    model_.nominal("p.mode=off", "p.mode=on", 3.0 / 4, "p.request=start");
    const ModeStep starts = step({"p.mode=off"}, {"p.request=start"});
    EXPECT_EQ(id(starts.predicted), "p.mode=on");
    EXPECT_EQ(options(starts), (Texts{"p.mode=on 3/4", "p.mode=off 1/4"}));
    EXPECT_TRUE(starts.deviatesFreely());

    const ModeStep stays = step({"p.mode=off"}, {"p.request=stop"});
    EXPECT_EQ(id(stays.predicted), "p.mode=off");
    EXPECT_EQ(options(stays), (Texts{"p.mode=off 1/1"}));
}

TEST_F(ModeStepsTest, ACommandOfAnEarlierStepIsNotGivenNow)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "p.request=start");
    const ModeStep stays = step({"p.mode=off", "p.request=start"}, {});
    EXPECT_EQ(id(stays.predicted), "p.mode=off");
    const ModeStep starts = step({"p.mode=off", "p.request=stop"}, {"p.request=start"});
    EXPECT_EQ(id(starts.predicted), "p.mode=on");
}

TEST_F(ModeStepsTest, ACertainTransitionLeavesNothingToStaying)
{
    model_.nominal("p.mode=off", "p.mode=on", 0.9, "p.request=start");
    model_.fault("p.mode=off", "p.mode=stuck", 0.06);
    model_.fault("p.mode=off", "p.mode=dead", 0.04);
    const ModeStep starts = step({"p.mode=off"}, {"p.request=start"});
    EXPECT_EQ(starts.options.size(), 3u);
    EXPECT_FALSE(starts.option(active_->index("p.mode=off")));
    EXPECT_FALSE(starts.deviatesFreely());
}

TEST_F(ModeStepsTest, WhereFaultsLeaveNothingToStayingTheMostProbableOneIsPredicted)
{
    model_.fault("p.mode=off", "p.mode=stuck", 1.0 / 4);
    model_.fault("p.mode=off", "p.mode=dead", 3.0 / 4);
    const ModeStep breaks = step({"p.mode=off"}, {});
    EXPECT_EQ(id(breaks.predicted), "p.mode=dead");
    EXPECT_EQ(options(breaks), (Texts{"p.mode=stuck 1/4 !", "p.mode=dead 3/4 !"}));
}

TEST_F(ModeStepsTest, AnImpossibleTransitionIsNoOption)
{
    model_.nominal("p.mode=off", "p.mode=on", 0.0);
    model_.fault("p.mode=off", "p.mode=dead", 0.0);
    const ModeStep stays = step({"p.mode=off"}, {});
    EXPECT_EQ(id(stays.predicted), "p.mode=off");
    EXPECT_EQ(options(stays), (Texts{"p.mode=off 1/1"}));
}

TEST_F(ModeStepsTest, AGuardReadsConditionsBeforeTheStep)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "p.request=start p.power=present");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=present"}, {"p.request=start"}).predicted),
              "p.mode=on");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=absent"}, {"p.request=start"}).predicted),
              "p.mode=off");
}

TEST_F(ModeStepsTest, ANegatedGuardHoldsWhereTheAtomIsFalse)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "!p.power=absent");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=present"}, {}).predicted), "p.mode=on");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=absent"}, {}).predicted), "p.mode=off");
}

TEST_F(ModeStepsTest, AnOpenGuardHasItsShareOfTheProbability)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0 / 2, "p.power=present");
    const ModeStep starts = step({"p.mode=off"}, {});
    EXPECT_EQ(options(starts), (Texts{"p.mode=off 3/4", "p.mode=on 1/4"}));
    EXPECT_EQ(id(starts.predicted), "p.mode=off");
}

TEST_F(ModeStepsTest, ANominalTransitionOfAnOpenGuardIsFollowedWhereItIsNoLessProbableThanStaying)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "p.power=present");
    EXPECT_EQ(id(step({"p.mode=off"}, {}).predicted), "p.mode=on");
}

TEST_F(ModeStepsTest, AGuardWithAlternativesHoldsWhenOneOfThemDoes)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "p.request=start");
    model_.builder().alternative({{true, model_.atom("p.power=present")}});
    EXPECT_EQ(id(step({"p.mode=off", "p.power=present"}, {"p.request=stop"}).predicted),
              "p.mode=on");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=absent"}, {"p.request=start"}).predicted),
              "p.mode=on");
    EXPECT_EQ(id(step({"p.mode=off", "p.power=absent"}, {"p.request=stop"}).predicted),
              "p.mode=off");
}

TEST_F(ModeStepsTest, AGuardOfWhichTwoAlternativesHoldCountsOnce)
{
    model_.fault("p.mode=off", "p.mode=stuck", 1.0 / 4, "p.request=start");
    model_.builder().alternative({{true, model_.atom("p.power=present")}});
    EXPECT_EQ(options(step({"p.mode=off", "p.power=present"}, {"p.request=start"})),
              (Texts{"p.mode=off 3/4", "p.mode=stuck 1/4 !"}));
}

TEST_F(ModeStepsTest, TwoTransitionsToTheSameValueCountTwice)
{
    model_.fault("p.mode=off", "p.mode=stuck", 1.0 / 4, "p.request=start");
    model_.fault("p.mode=off", "p.mode=stuck", 1.0 / 8, "p.power=present");
    EXPECT_EQ(options(step({"p.mode=off", "p.power=present"}, {"p.request=start"})),
              (Texts{"p.mode=off 5/8", "p.mode=stuck 3/8 !"}));
}

TEST_F(ModeStepsTest, TransitionsFromAnotherModeAreNotEnabled)
{
    model_.nominal("p.mode=on", "p.mode=off", 1.0);
    model_.fault("p.mode=on", "p.mode=dead", 1.0 / 8);
    EXPECT_EQ(options(step({"p.mode=off"}, {})), (Texts{"p.mode=off 1/1"}));
}

TEST_F(ModeStepsTest, IdleOnesAreStaying)
{
    model_.builder().idle(model_.atom("p.mode=off"), 1.0);
    model_.fault("p.mode=off", "p.mode=dead", 1.0 / 8);
    EXPECT_EQ(options(step({"p.mode=off"}, {})), (Texts{"p.mode=off 7/8", "p.mode=dead 1/8 !"}));
}

TEST_F(ModeStepsTest, TransitionsToTheSameValueAddUp)
{
    model_.fault("p.mode=off", "p.mode=dead", 1.0 / 8);
    model_.fault("p.mode=off", "p.mode=dead", 1.0 / 16, "p.power=present");
    EXPECT_EQ(options(step({"p.mode=off", "p.power=present"}, {})),
              (Texts{"p.mode=off 13/16", "p.mode=dead 3/16 !"}));
}

TEST_F(ModeStepsTest, OfTwoNominalTransitionsTheMoreProbableIsFollowed)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0 / 4);
    model_.nominal("p.mode=off", "p.mode=stuck", 1.0 / 2);
    const ModeStep starts = step({"p.mode=off"}, {});
    EXPECT_EQ(id(starts.predicted), "p.mode=stuck");
    EXPECT_EQ(options(starts), (Texts{"p.mode=off 1/4", "p.mode=on 1/4", "p.mode=stuck 1/2 !"}));
}

TEST_F(ModeStepsTest, AFaultThatPersistsIsNoNewFault)
{
    model_.nominal("p.mode=stuck", "p.mode=off", 1.0 / 2);
    const ModeStep recovers = step({"p.mode=stuck"}, {});
    EXPECT_EQ(id(recovers.predicted), "p.mode=off");
    EXPECT_EQ(options(recovers), (Texts{"p.mode=stuck 1/2", "p.mode=off 1/2"}));
    EXPECT_TRUE(recovers.deviatesFreely());
}

TEST_F(ModeStepsTest, AModeWithoutAValueBeforeHasItsFirst)
{
    model_.nominal("p.mode=off", "p.mode=on", 1.0);
    const ModeStep starts = step({}, {});
    EXPECT_EQ(id(starts.before), "p.mode=off");
    EXPECT_EQ(id(starts.predicted), "p.mode=on");
}

TEST_F(ModeStepsTest, ChancesAreThoseOfThePlainReference)
{
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const ActivePlant active(randomModel(random, PlantKind::mixed));
        const DiagnosisProblem problem = randomProblem(random, PlantKind::mixed);
        const BruteForceDiagnosis reference(problem);
        for (const ModeStep& given :
             modeSteps(*active.plant, active.before(problem), active.indices(problem.commands))) {
            const StateVar* mode = active.plant->variable(given.variable).variable;
            EXPECT_EQ(active.plant->atom(given.predicted), reference.predicted(mode));
            ASSERT_EQ(given.options.size(), reference.chances(mode).size());
            for (const monitor::ModeOption& option : given.options) {
                const ModeChance& chance =
                    reference.chances(mode).at(active.plant->atom(option.value));
                EXPECT_NEAR(option.probability, chance.probability.value(), 1e-12);
                EXPECT_EQ(option.fault, chance.fault);
            }
        }
    }
}

} // namespace
