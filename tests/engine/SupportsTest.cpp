// Supports and dependents: who justifies a label, and whom that concerns.
#include "tests/engine/EngineTest.h"

namespace {

using Names = std::vector<std::string>;

class SupportsTest : public EngineTest {
protected:
    void support(Clause* clause, const std::string& name)
    {
        engine.setSupport(clause, el(name), state.get(), &trajectory, step);
    }
    Names dependents(const std::string& name) { return names(*el(name)->dependents); }
    int depth(Clause* clause)
    {
        return engine.maxPropagationNumber(clause, nullptr, state.get(), &trajectory, step);
    }
};

TEST_F(SupportsTest, AnElementJoinsTheDependentsOfItsSupportsOtherElements)
{
    props("a b c");
    Clause* clause = law("!a | b | c");
    begin();
    support(clause, "c");
    EXPECT_EQ(el("c")->support, clause);
    EXPECT_EQ(dependents("a"), Names{"c"});
    EXPECT_EQ(dependents("b"), Names{"c"});
    EXPECT_EQ(dependents("c"), Names{});
}

TEST_F(SupportsTest, LabelAndDepthAreLeftAlone)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"b", "false"}});
    el("b")->propagationNumber = 7;
    support(clause, "b");
    EXPECT_EQ(el("b")->label, "false");
    EXPECT_EQ(el("b")->propagationNumber, 7);
}

TEST_F(SupportsTest, TheSameSupportTwiceLeavesOneEntry)
{
    props("a b c");
    Clause* clause = law("!a | b | c");
    begin();
    support(clause, "c");
    support(clause, "c");
    EXPECT_EQ(dependents("a"), Names{"c"});
    EXPECT_EQ(dependents("b"), Names{"c"});
}

TEST_F(SupportsTest, ANewSupportWithdrawsTheElementFromTheOldOne)
{
    props("a b c");
    Clause* first = law("!a | c");
    Clause* second = law("!b | c");
    begin();
    support(first, "c");
    support(second, "c");
    EXPECT_EQ(el("c")->support, second);
    EXPECT_EQ(dependents("a"), Names{});
    EXPECT_EQ(dependents("b"), Names{"c"});
}

TEST_F(SupportsTest, AnElementInBothSupportsLosesOneEntryAndGainsOne)
{
    props("a b c d");
    Clause* first = law("!a | c");
    Clause* second = law("!a | b | c");
    begin();
    support(first, "c");
    el("a")->dependents->push_back(el("d"));
    support(second, "c");
    EXPECT_EQ(dependents("a"), (Names{"d", "c"})) << "the new entry comes last";
}

TEST_F(SupportsTest, OfTwoEntriesOnlyTheFirstIsWithdrawn)
{
    props("a b c d");
    Clause* first = law("!a | c");
    Clause* second = law("!b | c");
    begin();
    support(first, "c");
    el("a")->dependents->assign({el("c"), el("d"), el("c")});
    support(second, "c");
    EXPECT_EQ(dependents("a"), (Names{"d", "c"}));
}

TEST_F(SupportsTest, OthersStayAmongTheDependents)
{
    props("a b c d");
    Clause* first = law("!a | c");
    Clause* second = law("!b | c");
    begin();
    el("a")->dependents->push_back(el("d"));
    support(first, "c");
    support(second, "c");
    EXPECT_EQ(dependents("a"), Names{"d"});
}

TEST_F(SupportsTest, AnElementTwiceInTheClauseIsEnteredTwice)
{
    props("a b");
    Clause* clause = law("a | !a | b");
    begin();
    support(clause, "b");
    EXPECT_EQ(dependents("a"), (Names{"b", "b"}));
}

TEST_F(SupportsTest, TheNewSupportInstantiatesNothing)
{
    props("a");
    const Atom* far = remote("far");
    Clause* clause = law("a | far.x=1");
    begin();
    support(clause, "a");
    ASSERT_EQ(state->elements->count(far->getId()), 1U);
    EXPECT_EQ((*state->elements)[far->getId()], nullptr);
}

TEST_F(SupportsTest, PropagationSetsTheUnknownElementToTrueAndPrintsIt)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}});
    el("b")->propagationNumber = 3;
    el("b")->lock = 1;
    engine.propagateClause(clause, state.get(), &trajectory, step);
    EXPECT_EQ(el("b")->label, "true");
    EXPECT_EQ(trace.take(), "[propagateClause] --> propagating (setting to true) :\n"
                            "k.b=1 : unknown (depth 3, lock 1)\n");
}

TEST_F(SupportsTest, PropagationSetsANegatedLiteralToTrueAsWell)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"b", "false"}});
    engine.propagateClause(clause, state.get(), &trajectory, step);
    EXPECT_EQ(el("a")->label, "true");
    EXPECT_EQ(el("b")->label, "false");
    EXPECT_FALSE(engine.testClause(clause, state.get(), &trajectory, step));
}

TEST_F(SupportsTest, PropagationRecordsNoSupportNoDependentsAndNoDepth)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}});
    el("a")->propagationNumber = 4;
    engine.propagateClause(clause, state.get(), &trajectory, step);
    EXPECT_EQ(el("b")->support, nullptr);
    EXPECT_EQ(el("b")->propagationNumber, 0);
    EXPECT_EQ(dependents("a"), Names{});
    EXPECT_EQ(dependents("b"), Names{});
}

TEST_F(SupportsTest, OfSeveralUnknownElementsPropagationSetsTheFirst)
{
    props("a b");
    Clause* clause = law("a | b");
    begin();
    ASSERT_EQ(engine.unitClause(clause, state.get(), &trajectory, step), el("a"));
    engine.propagateClause(clause, state.get(), &trajectory, step);
    EXPECT_EQ(el("b")->label, "true");
    EXPECT_EQ(el("a")->label, "unknown");
}

TEST_F(SupportsTest, TheDepthOfAClauseIsTheLargestOfItsElements)
{
    props("a b c");
    Clause* clause = law("!a | b | c");
    begin();
    el("a")->propagationNumber = 2;
    el("b")->propagationNumber = 5;
    el("c")->propagationNumber = -9;
    EXPECT_EQ(depth(clause), 5);
}

TEST_F(SupportsTest, TheSupportedElementItselfCountsForTheDepth)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin();
    el("b")->propagationNumber = 8;
    EXPECT_EQ(engine.maxPropagationNumber(clause, el("b"), state.get(), &trajectory, step), 8);
}

TEST_F(SupportsTest, TheDepthIsAtLeastZero)
{
    props("a b");
    Clause* clause = law("!a | b");
    Clause* empty = law("");
    begin();
    el("a")->propagationNumber = -1;
    EXPECT_EQ(depth(clause), 0);
    el("b")->propagationNumber = -2;
    EXPECT_EQ(depth(clause), 0);
    EXPECT_EQ(depth(empty), 0);
}

} // namespace
