// The scans for the first unit clause, and the clauses they print on the way.
#include "tests/engine/EngineTest.h"

namespace {

class UnitClauseScanTest : public EngineTest {
protected:
    // Satisfied, then two that are unit, all three in the clauses of a.
    UnitClauseScanTest()
    {
        props("a b c d");
        satisfied = law("b | a");
        unit = law("!a | c");
        later = law("!a | d");
        begin({{"a", "true"}, {"b", "false"}});
    }
    Clause* first(std::vector<TrajEl*> els)
    {
        return engine.getFirstUnitClause(&els, state.get(), &trajectory, step);
    }

    Clause* satisfied;
    Clause* unit;
    Clause* later;
};

TEST_F(UnitClauseScanTest, OfAnAtomTheFirstUnitClauseInOrderIsFound)
{
    EXPECT_EQ(engine.getFirstUnitClause(atom("a"), state.get(), &trajectory, step), unit);
}

TEST_F(UnitClauseScanTest, OfAnAtomEachScannedClauseIsPrintedOnce)
{
    engine.getFirstUnitClause(atom("a"), state.get(), &trajectory, step);
    EXPECT_EQ(trace.take(), "k.a=1 | k.b=1\n!k.a=1 | k.c=1\n");
}

TEST_F(UnitClauseScanTest, OfTheModelTheFirstUnitClauseIsFoundAndPrintedTwice)
{
    EXPECT_EQ(engine.getFirstUnitClause(state.get(), &trajectory, step), unit);
    EXPECT_EQ(trace.take(), "k.a=1 | k.b=1\n!k.a=1 | k.c=1\n!k.a=1 | k.c=1\n");
}

TEST_F(UnitClauseScanTest, TheModelWideScanReadsTheRegistrysClauses)
{
    Clause* hidden = law("!a | d", false);
    DataManager::cls->assign({satisfied, hidden});
    EXPECT_EQ(engine.getFirstUnitClause(state.get(), &trajectory, step), hidden);
}

TEST_F(UnitClauseScanTest, OfElementsTheClausesAreScannedElementByElement)
{
    EXPECT_EQ(first({el("b"), el("d"), el("a")}), later);
    EXPECT_EQ(trace.take(), "k.a=1 | k.b=1\n!k.a=1 | k.d=1\n!k.a=1 | k.d=1\n");
}

TEST_F(UnitClauseScanTest, WithoutAUnitClauseEveryClauseIsPrintedOnceAndNoneFound)
{
    el("c")->setLabel("true");
    el("d")->setLabel("true");
    EXPECT_EQ(first({el("a")}), nullptr);
    EXPECT_EQ(trace.take(), "k.a=1 | k.b=1\n!k.a=1 | k.c=1\n!k.a=1 | k.d=1\n");
    EXPECT_EQ(engine.getFirstUnitClause(atom("a"), state.get(), &trajectory, step), nullptr);
    EXPECT_EQ(engine.getFirstUnitClause(state.get(), &trajectory, step), nullptr);
}

TEST_F(UnitClauseScanTest, NoElementsHaveNoUnitClause)
{
    EXPECT_EQ(first({}), nullptr);
    EXPECT_EQ(trace.take(), "");
}

TEST_F(UnitClauseScanTest, AScanChangesNoLabel)
{
    first({el("a")});
    EXPECT_EQ(el("c")->label, "unknown");
    EXPECT_EQ(el("d")->label, "unknown");
}

} // namespace
