// Transitions and the formulas that guard them.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

std::string shown(const Transition& transition)
{
    const FlushLog log;
    transition.showTransition();
    EXPECT_EQ(log.flushes(), 0u);
    return log.text();
}

TEST(TransitionTest, GivesACopyOfItsType)
{
    Transition transition;
    transition.type = "Fail";
    const std::string type = transition.getType();
    transition.type = "";
    EXPECT_EQ(type, "Fail");
    EXPECT_EQ(transition.getType(), "");
    static_assert(std::is_same_v<decltype(transition.getType()), std::string>);
}

TEST(TransitionTest, PrintsNumberVariableNameAndProbability)
{
    StateVar variable;
    variable.name = "pos";
    Transition transition;
    transition.id = 12;
    transition.stateVar = &variable;
    transition.name = "Nominal";
    transition.proba = 0.25;
    EXPECT_EQ(shown(transition), "transition 12 pos: Nominal (0.25)\n");
}

TEST(TransitionTest, PrintsItsProbabilityWithSixDigits)
{
    StateVar variable;
    variable.name = "pos";
    Transition transition;
    transition.stateVar = &variable;
    transition.name = "Stick";
    transition.proba = 1.0 / 3;
    EXPECT_EQ(shown(transition), "transition 0 pos: Stick (0.333333)\n");
    transition.proba = 1e-7;
    EXPECT_EQ(shown(transition), "transition 0 pos: Stick (1e-07)\n");
    transition.proba = 1.0;
    EXPECT_EQ(shown(transition), "transition 0 pos: Stick (1)\n");
}

TEST(TransitionTest, PrintsNothingWhenTheTraceIsMuted)
{
    StateVar variable;
    Transition transition;
    transition.stateVar = &variable;
    const FlushLog log;
    {
        const MutedTrace muted;
        transition.showTransition();
    }
    EXPECT_EQ(log.text(), "");
}

class FormulaTest : public testing::Test {
protected:
    FormulaTest() { model_.variable(model_.comp("x"), "v", "Cond", {"a", "b", "c"}); }

    TestModel model_;
};

TEST_F(FormulaTest, GivesItsOwnAtoms)
{
    const StateFormula* formula = model_.formula("and", {{true, model_.atom("x.v=a")}});
    EXPECT_EQ(formula->getAtoms(), formula->atoms);
    const StateFormula none;
    EXPECT_EQ(none.getAtoms(), nullptr);
}

TEST_F(FormulaTest, GivesACopyOfItsSignedAtomsInTheSameOrder)
{
    const StateFormula* formula = model_.formula("or", {{false, model_.atom("x.v=a")},
                                                        {true, model_.atom("x.v=b")},
                                                        {false, model_.atom("x.v=c")}});
    const std::unique_ptr<SignedAtoms> copy(formula->getAllSignedAtoms());
    EXPECT_NE(copy.get(), formula->atoms);
    EXPECT_TRUE(
        std::equal(copy->begin(), copy->end(), formula->atoms->begin(), formula->atoms->end()));
    copy->clear();
    EXPECT_EQ(formula->atoms->size(), 3u);
}

TEST_F(FormulaTest, GivesAnEmptyMapOfSignedAtomsWhenItHasNone)
{
    const StateFormula none;
    const std::unique_ptr<SignedAtoms> first(none.getAllSignedAtoms());
    const std::unique_ptr<SignedAtoms> second(none.getAllSignedAtoms());
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->empty());
    EXPECT_NE(first, second);
}

} // namespace
