// Components: their variables, and the counts of their guards.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class CompTest : public testing::Test {
protected:
    CompTest()
    {
        valve_ = model_.comp("valve");
        pos_ = model_.variable(valve_, "pos", "Mode", {"open", "closed", "stuck!"});
        cmd_ = model_.variable(valve_, "cmd", "Command", {"go", "none"});
        open_ = model_.atom("valve.pos=open");
        closed_ = model_.atom("valve.pos=closed");
        go_ = model_.atom("valve.cmd=go");
    }

    TestModel model_;
    Comp* valve_;
    StateVar* pos_;
    StateVar* cmd_;
    Atom* open_;
    Atom* closed_;
    Atom* go_;
};

TEST_F(CompTest, ListsAllItsVariablesCommandsIncluded)
{
    EXPECT_EQ(valve_->getStateVariables(), valve_->stateVars);
    EXPECT_EQ(*valve_->getStateVariables(), (std::vector<StateVar*>{pos_, cmd_}));
    ASSERT_NE(valve_->commandVars, nullptr);
    ASSERT_EQ(valve_->commandVars->size(), 1u);
    EXPECT_EQ(valve_->commandVars->front(), cmd_);
}

TEST_F(CompTest, CountsEachGuardForItsVariable)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, go_}});
    model_.guard(model_.transition(closed_, "Nominal", 0.5), {{true, go_}});
    valve_->getTransitionsGuards();
    EXPECT_EQ(pos_->guardsNumber, 2);
    EXPECT_EQ(go_->guardsNumber, 2u);
}

TEST_F(CompTest, CountsATransitionWithoutGuardForNothing)
{
    model_.transition(open_, "Nominal", 0.5);
    valve_->getTransitionsGuards();
    EXPECT_EQ(pos_->guardsNumber, 0);
    EXPECT_EQ(open_->guardsNumber, 0u);
}

TEST_F(CompTest, CountsAGuardWithoutAtoms)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5), {});
    valve_->getTransitionsGuards();
    EXPECT_EQ(pos_->guardsNumber, 1);
}

TEST_F(CompTest, CountsAGuardWithoutAnAtomMap)
{
    StateFormula guard;
    model_.transition(open_, "Nominal", 0.5)->guard = &guard;
    valve_->getTransitionsGuards();
    EXPECT_EQ(pos_->guardsNumber, 1);
}

TEST_F(CompTest, CountsAnAtomOncePerGuard)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5),
                 {{false, go_}, {true, go_}, {false, closed_}, {false, go_}});
    valve_->getTransitionsGuards();
    EXPECT_EQ(go_->guardsNumber, 1u);
    EXPECT_EQ(closed_->guardsNumber, 1u);
}

TEST_F(CompTest, DoesNotCountTheTargetOfATransition)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, go_}});
    valve_->getTransitionsGuards();
    EXPECT_EQ(open_->guardsNumber, 0u);
}

TEST_F(CompTest, CountsAfreshAtEveryCall)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, go_}});
    valve_->getTransitionsGuards();
    valve_->getTransitionsGuards();
    EXPECT_EQ(pos_->guardsNumber, 1);
    EXPECT_EQ(go_->guardsNumber, 1u);
}

TEST_F(CompTest, ClearsTheCountsOfTargetsAndGuardAtoms)
{
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, go_}});
    open_->guardsNumber = 7;
    go_->guardsNumber = 7;
    pos_->guardsNumber = 7;
    valve_->getTransitionsGuards();
    EXPECT_EQ(open_->guardsNumber, 0u);
    EXPECT_EQ(go_->guardsNumber, 1u);
    EXPECT_EQ(pos_->guardsNumber, 1);
}

TEST_F(CompTest, LeavesCountsThatItsTransitionsDoNotTouch)
{
    model_.transition(open_, "Nominal", 0.5);
    closed_->guardsNumber = 7;
    cmd_->guardsNumber = 7;
    valve_->getTransitionsGuards();
    EXPECT_EQ(closed_->guardsNumber, 7u);
    EXPECT_EQ(cmd_->guardsNumber, 7);
}

TEST_F(CompTest, CountsGuardAtomsOfOtherComponents)
{
    model_.variable(model_.comp("pump"), "on", "Mode", {"yes", "no"});
    Atom* yes = model_.atom("pump.on=yes");
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, yes}});
    valve_->getTransitionsGuards();
    EXPECT_EQ(yes->guardsNumber, 1u);
    EXPECT_EQ(yes->stateVar->guardsNumber, 0);
}

TEST_F(CompTest, ClearsAllCountsBeforeTheFirstOneGrows)
{
    // The second transition leads to the atom that the first one's guard mentions.
    model_.guard(model_.transition(open_, "Nominal", 0.5), {{false, closed_}});
    model_.transition(closed_, "Nominal", 0.5);
    valve_->getTransitionsGuards();
    EXPECT_EQ(closed_->guardsNumber, 1u);
    EXPECT_EQ(pos_->guardsNumber, 1);
}

} // namespace
