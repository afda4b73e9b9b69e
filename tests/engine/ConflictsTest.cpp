// Violated clauses: in a variable's own clauses, around a focus, and in the whole model.
#include "tests/engine/EngineTest.h"

namespace {

class ConflictsTest : public EngineTest {
protected:
    Clause* internal(const std::string& name)
    {
        return engine.checkForInternalConflicts(el(name), state.get(), &trajectory, step);
    }
    std::vector<Clause*> internals(ElMap focus)
    {
        engine.checkForFocusedInternalConflicts(&focus, &queue, state.get(), &trajectory, step);
        return listed(queue);
    }
    std::vector<Clause*> focused(ElMap focus)
    {
        engine.checkForFocusedConflicts(&focus, &queue, state.get(), &trajectory, step);
        return listed(queue);
    }
    // A variable of k with the values 0 and 1, its own clauses being the given ones.
    void bit(const std::string& name, const std::vector<std::string>& own)
    {
        StateVar* variable = model.variable(k, name, "Cond", {"0", "1"});
        for (const std::string& text : own) {
            variable->clauses->push_back(model.clause(text, false));
        }
    }

    using Clauses = std::vector<Clause*>;
    std::queue<Clause*> queue;
};

TEST_F(ConflictsTest, ASatisfiedVariableHasNoInternalConflict)
{
    bit("v", {"k.v=0 | k.v=1", "!k.v=0 | !k.v=1"});
    begin({{"k.v=0", "true"}, {"k.v=1", "false"}});
    EXPECT_EQ(internal("k.v=0"), nullptr);
}

TEST_F(ConflictsTest, AnOpenInternalClauseIsNoConflict)
{
    bit("v", {"k.v=0 | k.v=1"});
    begin({{"k.v=0", "false"}, {"k.v=1", "unknown"}});
    EXPECT_EQ(internal("k.v=0"), nullptr);
}

TEST_F(ConflictsTest, AViolatedInternalClauseIsFoundFromAnyOfTheVariablesElements)
{
    bit("v", {"k.v=0 | k.v=1", "!k.v=0 | !k.v=1"});
    begin({{"k.v=0", "true"}, {"k.v=1", "true"}});
    Clause* violated = atom("k.v=0")->stateVar->clauses->back();
    EXPECT_EQ(internal("k.v=0"), violated);
    EXPECT_EQ(internal("k.v=1"), violated);
}

TEST_F(ConflictsTest, OfTwoViolatedInternalClausesTheLaterIsReported)
{
    bit("v", {"k.v=0 | k.v=1", "k.v=0", "!k.v=0"});
    begin({{"k.v=0", "false"}, {"k.v=1", "false"}});
    const Clauses& own = *atom("k.v=0")->stateVar->clauses;
    EXPECT_EQ(internal("k.v=0"), own[1]);
    EXPECT_EQ(internals(mapOf({"k.v=0"})), Clauses{own[1]});
}

TEST_F(ConflictsTest, TheInternalChecksPrintNothing)
{
    bit("v", {"k.v=0 | k.v=1"});
    begin({{"k.v=0", "false"}, {"k.v=1", "false"}});
    EXPECT_EQ(internals(mapOf({"k.v=0"})).size(), 1U);
    EXPECT_EQ(trace.take(), "");
}

TEST_F(ConflictsTest, TwoFocusedElementsOfOneVariableYieldOneInternalConflict)
{
    bit("v", {"k.v=0 | k.v=1"});
    begin({{"k.v=0", "false"}, {"k.v=1", "false"}});
    EXPECT_EQ(internals(mapOf({"k.v=0", "k.v=1"})).size(), 1U);
}

TEST_F(ConflictsTest, EachVariableInFocusYieldsItsConflictInTheFocussOrder)
{
    bit("v", {"k.v=0 | k.v=1"});
    bit("w", {"k.w=0 | k.w=1"});
    begin({{"k.v=0", "false"}, {"k.v=1", "false"}, {"k.w=0", "false"}, {"k.w=1", "false"}});
    const ElMap focus = mapOf({"k.v=0", "k.w=0"});
    Clauses expected;
    for (const auto& [id, element] : focus) {
        expected.push_back(element->getStateVar()->clauses->front());
    }
    EXPECT_EQ(internals(focus), expected);
}

TEST_F(ConflictsTest, AFocusedCheckFindsTheViolatedClausesOfTheAtomsInOrder)
{
    props("a b c");
    Clause* first = law("!a | b");
    law("!a | b | !c");
    Clause* third = law("!a | c");
    begin({{"a", "true"}, {"b", "false"}, {"c", "false"}});
    EXPECT_EQ(focused(mapOf({"a"})), (Clauses{first, third}));
}

TEST_F(ConflictsTest, EveryClauseInFocusIsPrintedWhetherViolatedOrNot)
{
    props("a b c");
    law("!a | b");
    law("a | c");
    begin({{"a", "true"}, {"b", "false"}});
    focused(mapOf({"a"}));
    EXPECT_EQ(trace.take(), "!k.a=1 | k.b=1\nk.c=1 | k.a=1\n");
}

TEST_F(ConflictsTest, AClauseOfTwoFocusedElementsIsPushedTwice)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    EXPECT_EQ(focused(mapOf({"a", "b"})), (Clauses{clause, clause}));
}

TEST_F(ConflictsTest, AClauseThatIsQueuedAlreadyIsPushedAgain)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    queue.push(clause);
    EXPECT_EQ(focused(mapOf({"a"})), (Clauses{clause, clause}));
}

TEST_F(ConflictsTest, ClausesAwayFromTheFocusAreNotLookedAt)
{
    props("a b c");
    law("!b | c");
    begin({{"a", "true"}, {"b", "true"}, {"c", "false"}});
    EXPECT_EQ(focused(mapOf({"a"})), Clauses{});
    EXPECT_EQ(trace.take(), "");
}

TEST_F(ConflictsTest, AnOpenClauseIsNotPushedButListedByTheFullScan)
{
    props("a b");
    Clause* open = law("!a | b");
    begin({{"a", "true"}, {"b", "unknown"}});
    EXPECT_EQ(focused(mapOf({"a", "b"})), Clauses{});
    Clauses all;
    engine.checkForConflicts(&all, state.get(), &trajectory, step);
    EXPECT_EQ(all, Clauses{open});
}

TEST_F(ConflictsTest, AnEmptyFocusFindsAndPrintsNothing)
{
    props("a b");
    law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    EXPECT_EQ(focused({}), Clauses{});
    EXPECT_EQ(internals({}), Clauses{});
    EXPECT_EQ(trace.take(), "");
}

TEST_F(ConflictsTest, TheFullScanAppendsEveryClauseWithoutATrueLiteralInOrder)
{
    props("a b c");
    Clause* violated = law("!a | b");
    law("a | c");
    Clause* open = law("b | c");
    begin({{"a", "true"}, {"b", "false"}});
    Clauses out{open};
    engine.checkForConflicts(&out, state.get(), &trajectory, step);
    EXPECT_EQ(out, (Clauses{open, violated, open}));
}

TEST_F(ConflictsTest, TheFullScanReadsTheRegistrysClausesOnly)
{
    props("a b");
    law("!a | b", false);
    begin({{"a", "true"}, {"b", "false"}});
    Clauses out;
    engine.checkForConflicts(&out, state.get(), &trajectory, step);
    EXPECT_EQ(out, Clauses{});
}

TEST_F(ConflictsTest, TheFullScanPrintsItsHeadAndTheListedClauses)
{
    props("a b c");
    law("!a | b");
    law("a | c");
    begin({{"a", "true"}, {"b", "false"}});
    engine.checkForConflicts(nullptr, state.get(), &trajectory, step);
    EXPECT_EQ(trace.take(), "*** detected conflicts ***\n!k.a=1 | k.b=1\n\n");
}

TEST_F(ConflictsTest, TheFullScanPrintsWhatTheGivenVectorHeldAlready)
{
    props("a b");
    Clause* earlier = law("a | b", false);
    law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    Clauses out{earlier};
    engine.checkForConflicts(&out, state.get(), &trajectory, step);
    EXPECT_EQ(trace.take(), "*** detected conflicts ***\nk.b=1 | k.a=1\n!k.a=1 | k.b=1\n\n");
}

} // namespace
