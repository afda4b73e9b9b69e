// Resupport: which satisfied clause may become the support of an unknown element, and what that changes.
//
// A clause is a support only while none of its other atoms is labelled "true"; so it is a negated "false" literal
// that satisfies it.
#include "tests/engine/EngineTest.h"

namespace {

using Names = std::vector<std::string>;

class ResupportTest : public EngineTest {
protected:
    bool resupportable(const std::string& name, Clause* clause, bool sign)
    {
        return engine.isResupportable(el(name), clause, sign, state.get(), &trajectory, step);
    }
    void resupportAround(const std::string& name)
    {
        engine.resupportDependence(el(name), &focus, state.get(), &trajectory, step);
    }

    ElMap focus;
};

TEST_F(ResupportTest, AClauseWithTheElementsOtherSignIsNoSupport)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin();
    EXPECT_FALSE(resupportable("a", clause, false));
    EXPECT_TRUE(resupportable("a", clause, true));
    EXPECT_FALSE(resupportable("b", clause, true));
    EXPECT_TRUE(resupportable("b", clause, false));
}

TEST_F(ResupportTest, AClauseWithTheElementInBothSignsIsNoSupport)
{
    props("a");
    Clause* clause = law("a | !a");
    begin();
    EXPECT_FALSE(resupportable("a", clause, false));
    EXPECT_FALSE(resupportable("a", clause, true));
}

TEST_F(ResupportTest, AnotherNegatedLiteralLabelledTrueRulesTheClauseOut)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}});
    EXPECT_FALSE(resupportable("b", clause, false));
}

TEST_F(ResupportTest, AnotherPositiveLiteralLabelledTrueRulesTheClauseOut)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"a", "true"}});
    EXPECT_FALSE(resupportable("b", clause, false));
}

TEST_F(ResupportTest, FalseAndUnknownLiteralsLeaveTheClauseASupport)
{
    props("a b c d e");
    Clause* clause = law("!a | !b | c | d | e");
    begin({{"a", "false"}, {"c", "false"}});
    EXPECT_TRUE(resupportable("e", clause, false));
}

TEST_F(ResupportTest, TheElementsOwnLabelPlaysNoRole)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"b", "true"}});
    EXPECT_TRUE(resupportable("b", clause, false));
}

TEST_F(ResupportTest, AClauseWithoutTheElementIsASupport)
{
    props("a b c");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}});
    EXPECT_TRUE(resupportable("c", clause, false));
    EXPECT_TRUE(resupportable("c", clause, true));
}

TEST_F(ResupportTest, TheEmptyClauseIsASupport)
{
    props("a");
    Clause* clause = law("");
    begin();
    EXPECT_TRUE(resupportable("a", clause, false));
}

TEST_F(ResupportTest, ADepthBeyondTheOtherAtomsInitialMarkRulesTheClauseOut)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin();
    el("b")->propagationNumber = 1;
    EXPECT_FALSE(resupportable("b", clause, false));
    atom("a")->initTrue = 1;
    EXPECT_TRUE(resupportable("b", clause, false)) << "an equal mark will do";
    el("b")->propagationNumber = 2;
    EXPECT_FALSE(resupportable("b", clause, false));
}

TEST_F(ResupportTest, TheOtherElementsDepthPlaysNoRole)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin();
    el("a")->propagationNumber = 9;
    EXPECT_TRUE(resupportable("b", clause, false));
    atom("b")->initTrue = 1;
    el("b")->propagationNumber = 1;
    EXPECT_FALSE(resupportable("b", clause, false)) << "it is the other atom's mark that counts";
}

TEST_F(ResupportTest, ADepthIsNotComparedWithTheElementsOwnAtom)
{
    props("a");
    Clause* clause = law("a");
    begin();
    el("a")->propagationNumber = 3;
    EXPECT_TRUE(resupportable("a", clause, false));
}

TEST_F(ResupportTest, UnsatisfiedClausesAreOnlyPrinted)
{
    props("a b c");
    law("!a | b");
    law("!a | c");
    begin({{"a", "true"}});
    resupportAround("a");
    EXPECT_EQ(trace.take(), "!k.a=1 | k.b=1\n!k.a=1 | k.c=1\n");
    EXPECT_TRUE(focus.empty());
    EXPECT_EQ(el("b")->support, nullptr);
}

TEST_F(ResupportTest, AnUnknownElementOfASatisfiedClauseGetsItAsSupport)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}});
    el("a")->propagationNumber = 4;
    resupportAround("a");
    EXPECT_EQ(el("b")->support, clause);
    EXPECT_EQ(el("b")->propagationNumber, 5);
    EXPECT_EQ(el("b")->label, "unknown");
    EXPECT_EQ(names(focus), Names{"b"});
}

TEST_F(ResupportTest, TheTraceNamesTheResupportedElement)
{
    props("a b");
    law("!a | b");
    begin({{"a", "false"}});
    resupportAround("a");
    EXPECT_EQ(trace.take(),
              "!k.a=1 | k.b=1\n[resupportDependency] --> resupporting :\nk.b=1 : unknown\n");
}

TEST_F(ResupportTest, TheNewSupportsOtherElementsGetNoDependents)
{
    props("a b c");
    law("!a | b | c");
    begin({{"a", "false"}});
    resupportAround("a");
    EXPECT_TRUE(el("a")->dependents->empty());
    EXPECT_TRUE(el("b")->dependents->empty());
    EXPECT_TRUE(el("c")->dependents->empty());
}

TEST_F(ResupportTest, TheOldSupportsElementsLoseOneEntry)
{
    props("a b c");
    Clause* old = law("!c | b");
    law("!a | b");
    begin({{"a", "false"}, {"c", "unknown"}});
    el("b")->support = old;
    el("c")->dependents->assign({el("b"), el("a"), el("b")});
    resupportAround("a");
    EXPECT_EQ(names(*el("c")->dependents), (Names{"a", "b"}));
}

TEST_F(ResupportTest, AFormerSupportTakesAnEntryOfTheElementsOwnListToo)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}});
    el("b")->support = clause;
    el("b")->dependents->assign({el("b"), el("a")});
    resupportAround("a");
    EXPECT_EQ(names(*el("b")->dependents), Names{"a"});
}

TEST_F(ResupportTest, AnElementIsNeverResupportedAroundItself)
{
    props("a b");
    law("!b | a");
    begin({{"b", "false"}});
    resupportAround("a");
    EXPECT_EQ(el("a")->support, nullptr);
    EXPECT_TRUE(focus.empty());
    EXPECT_EQ(trace.take(), "!k.b=1 | k.a=1\n");
}

TEST_F(ResupportTest, LabelledElementsKeepTheirSupport)
{
    props("a b");
    law("!a | b");
    begin({{"a", "false"}, {"b", "false"}});
    resupportAround("a");
    EXPECT_EQ(el("b")->support, nullptr);
}

TEST_F(ResupportTest, AClauseThatATrueAtomSatisfiesResupportsNothing)
{
    props("a b");
    law("a | b");
    begin({{"a", "true"}});
    resupportAround("a");
    EXPECT_EQ(el("b")->support, nullptr);
    EXPECT_TRUE(focus.empty());
}

TEST_F(ResupportTest, OfSeveralSupportsTheLastThatTheDepthAdmitsStays)
{
    props("a b");
    law("!a | b");
    Clause* second = law("!a | b");
    begin({{"a", "false"}});
    atom("a")->initTrue = 1;
    resupportAround("a");
    EXPECT_EQ(el("b")->support, second);
    EXPECT_EQ(el("b")->propagationNumber, 2) << "its own depth counts as well";
}

TEST_F(ResupportTest, TheDepthOfAFirstSupportMayRuleTheNextOut)
{
    props("a b");
    Clause* first = law("!a | b");
    law("!a | b");
    begin({{"a", "false"}});
    resupportAround("a");
    EXPECT_EQ(el("b")->support, first);
}

TEST_F(ResupportTest, AllUnknownElementsOfTheClauseAreResupportedInTheirOrder)
{
    props("a b c");
    law("!a | b | c");
    begin({{"a", "false"}});
    resupportAround("a");
    EXPECT_EQ(linesThatBegin(trace.take(), "k."), (Names{"k.b=1 : unknown", "k.c=1 : unknown"}));
    EXPECT_EQ(el("b")->propagationNumber, 1);
    EXPECT_EQ(el("c")->propagationNumber, 2) << "b's new depth counts for c";
}

TEST_F(ResupportTest, AFocusEntryThatIsThereStays)
{
    props("a b");
    law("!a | b");
    begin({{"a", "false"}});
    focus["k.b=1"] = el("a");
    resupportAround("a");
    EXPECT_EQ(focus["k.b=1"], el("a"));
}

} // namespace
