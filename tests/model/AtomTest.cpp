// Atoms and their variables: accessors, the initial assignment, labels, references from transitions, printing.
#include "model/Atom.h"
#include "model/Comp.h"
#include "model/Transition.h"
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

class AtomTest : public testing::Test {
protected:
    AtomTest()
    {
        comp_.name = "valve";
        variable_.name = "pos";
        variable_.type = "Mode";
        variable_.comp = &comp_;
        open_.stateVar = &variable_;
        open_.value = "open";
        open_.id = "valve.pos=open";
        closed_.stateVar = &variable_;
        variable_.atomLinks->assign({&open_, &closed_});
    }

    Comp comp_;
    StateVar variable_;
    Atom open_;
    Atom closed_;
};

TEST_F(AtomTest, AnswersForItsVariable)
{
    EXPECT_EQ(open_.getStateVar(), &variable_);
    EXPECT_EQ(open_.getVarComp(), &comp_);
    EXPECT_EQ(open_.getVarType(), "Mode");
}

TEST_F(AtomTest, GivesACopyOfTheVariablesType)
{
    const std::string type = open_.getVarType();
    variable_.type = "Command";
    EXPECT_EQ(type, "Mode");
    EXPECT_EQ(open_.getVarType(), "Command");
    static_assert(std::is_same_v<decltype(open_.getVarType()), std::string>);
}

TEST_F(AtomTest, GivesTheCharactersOfItsOwnIdentifier)
{
    EXPECT_STREQ(open_.getId(), "valve.pos=open");
    EXPECT_EQ(open_.getId(), open_.id.c_str());
    EXPECT_EQ(open_.getId(), open_.getId());
}

TEST_F(AtomTest, HoldsInitiallyWhenItIsTheInitialValue)
{
    variable_.initial = &open_;
    EXPECT_TRUE(open_.evalAtom());
    EXPECT_FALSE(closed_.evalAtom());
}

TEST_F(AtomTest, DoesNotHoldInitiallyWhenTheVariableHasNoInitialValue)
{
    EXPECT_FALSE(open_.evalAtom());
    EXPECT_FALSE(closed_.evalAtom());
}

TEST_F(AtomTest, WhetherItHoldsInitiallyDoesNotDependOnItsLabel)
{
    variable_.initial = &open_;
    open_.setLabel("false");
    closed_.set();
    EXPECT_TRUE(open_.evalAtom());
    EXPECT_FALSE(closed_.evalAtom());
}

TEST_F(AtomTest, IsLabelledTrueWhenSet)
{
    open_.set();
    EXPECT_EQ(open_.label, "true");
    EXPECT_EQ(closed_.label, "unknown");
    EXPECT_EQ(open_.initTrue, 0);
}

TEST_F(AtomTest, TakesAnyLabel)
{
    open_.setLabel("false");
    EXPECT_EQ(open_.label, "false");
    open_.setLabel("true");
    EXPECT_EQ(open_.label, "true");
}

TEST_F(AtomTest, IsReferredToByTransitionsInTheOrderOfTheirReferences)
{
    Transition first;
    Transition second;
    open_.addRefTransPre(&second);
    open_.addRefTransPre(&first);
    EXPECT_EQ(*open_.outTransitions, (std::vector<Transition*>{&second, &first}));
}

TEST_F(AtomTest, IsReferredToOnceByATransition)
{
    Transition first;
    Transition second;
    open_.addRefTransPre(&first);
    open_.addRefTransPre(&second);
    open_.addRefTransPre(&first);
    EXPECT_EQ(*open_.outTransitions, (std::vector<Transition*>{&first, &second}));
}

TEST_F(AtomTest, AReferenceFromAPreconditionIsNoTransitionToTheAtom)
{
    Transition transition;
    open_.addRefTransPre(&transition);
    EXPECT_TRUE(open_.transitions->empty());
}

TEST_F(AtomTest, PrintsItsIdentifierAlone)
{
    const FlushLog log;
    open_.showAtom(false);
    EXPECT_EQ(log.pieces(), std::vector<std::string>{"valve.pos=open\n"});
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(AtomTest, PrintsItsOwnLabelInFull)
{
    open_.setLabel("false");
    const FlushLog log;
    open_.showAtom(true);
    EXPECT_EQ(log.text(), "valve.pos=open : false\n");
    EXPECT_EQ(log.flushes(), 0u);
}

TEST_F(AtomTest, PrintsNothingWhenTheTraceIsMuted)
{
    const FlushLog log;
    {
        const MutedTrace muted;
        open_.showAtom(false);
        open_.showAtom(true);
    }
    EXPECT_EQ(log.text(), "");
}

TEST_F(AtomTest, AVariableAnswersWithItsFields)
{
    EXPECT_EQ(variable_.getType(), "Mode");
    EXPECT_EQ(variable_.getComp(), &comp_);
    EXPECT_EQ(variable_.getAtomLinks(), variable_.atomLinks);
    EXPECT_STREQ(variable_.getCharName(), "pos");
    static_assert(std::is_same_v<decltype(variable_.getType()), std::string>);
}

} // namespace
