// The propagation driver: fixed points, the agenda, and what is accepted or abandoned.
#include "tests/engine/EngineTest.h"
#include "tests/support/FlushLog.h"

namespace {

using Names = std::vector<std::string>;

const char* const discarded = "a sol has been discarded...\n";

class PropagationTest : public EngineTest {
protected:
    // Makes the record that `propagate` works on; the state goes with it.
    ItmsRes* record()
    {
        res = new ItmsRes(state.release());
        return res;
    }
    void decide(const Names& decided)
    {
        for (const std::string& name : decided) {
            TrajEl* element = elementOf(res->state, name);
            (*res->already_changed)[element->getId()] = element;
        }
    }
    Candidates propagate(double maxRank = 10.0)
    {
        auto* results = new std::vector<ItmsRes*>;
        engine.unitPropagate(res, results, false, maxRank, &trajectory, step);
        return Candidates(results);
    }
    std::string label(const Candidates& found, std::size_t index, const std::string& name)
    {
        return elementOf(found[index]->state, name)->label;
    }
    // The elements that are "true" in each candidate, of the named ones.
    std::vector<Names> holding(const Candidates& found, const Names& of)
    {
        std::vector<Names> all;
        for (std::size_t i = 0; i < found.size(); ++i) {
            Names one;
            for (const std::string& name : of) {
                if (label(found, i, name) == "true") {
                    one.push_back(name);
                }
            }
            all.push_back(one);
        }
        return all;
    }

    ItmsRes* res = nullptr;
};

TEST_F(PropagationTest, WithoutConflictsTheRecordIsTheOnlySolution)
{
    props("a b");
    begin();
    const Candidates found = add({{true, "a"}, {false, "b"}});
    EXPECT_EQ(found.size(), 1U);
    EXPECT_EQ(trace.take(), std::string(discarded) +
                                "sol added !\nagenda's size : 0\nalready_changed's size end : 2\n"
                                "[addClause] --> res' size : 1\n");
}

TEST_F(PropagationTest, TheSizesOfAnAcceptedRecordAreFlushed)
{
    begin();
    record();
    const FlushLog log;
    const Candidates found = propagate();
    EXPECT_EQ(log.pieces(), (Names{std::string(discarded) + "sol added !\nagenda's size : 0\n",
                                   "already_changed's size end : 0\n"}));
}

TEST_F(PropagationTest, ResultsAreAppendedToTheGivenOnes)
{
    begin();
    auto* earlier = new ItmsRes(state.release());
    begin();
    std::vector<ItmsRes*> results{earlier};
    const auto* second = record();
    engine.unitPropagate(res, &results, false, 1.0, &trajectory, step);
    EXPECT_EQ(results, (std::vector<ItmsRes*>{earlier, res}));
    EXPECT_EQ(results[1], second);
    release(results[0]);
    release(results[1]);
}

TEST_F(PropagationTest, FirstTheSurroundingsOfEveryDecisionAreResupported)
{
    props("a b");
    Clause* clause = law("!a | b");
    begin({{"a", "false"}});
    record();
    decide({"a"});
    const Candidates found = propagate();
    EXPECT_EQ(elementOf(found[0]->state, "b")->support, clause);
    EXPECT_EQ(names(*found[0]->focus), Names{"b"});
    EXPECT_EQ(trace.take(), "!k.a=1 | k.b=1\n"
                            "[resupportDependency] --> resupporting :\nk.b=1 : unknown\n"
                            "!k.a=1 | k.b=1\n" +
                                std::string(discarded) +
                                "sol added !\nagenda's size : 0\nalready_changed's size end : 1\n");
}

TEST_F(PropagationTest, PropositionsAloneForceNoLabel)
{
    props("a b");
    law("!a | b");
    begin();
    const Candidates found = add({{true, "a"}});
    EXPECT_EQ(label(found, 0, "b"), "unknown")
        << "propagation resumes from retracted elements only";
}

TEST_F(PropagationTest, UnitClausesOfRetractedElementsArePropagated)
{
    props("a b");
    law("!a | b");
    begin({{"a", "true"}});
    record()->retracted->push_back(elementOf(res->state, "a"));
    const Candidates found = propagate();
    EXPECT_EQ(label(found, 0, "b"), "true");
    EXPECT_EQ(trace.take(), std::string(discarded) +
                                "!k.a=1 | k.b=1\n!k.a=1 | k.b=1\n"
                                "[propagateClause] --> propagating (setting to true) :\n"
                                "k.b=1 : unknown (depth 0, lock 2)\n"
                                "!k.a=1 | k.b=1\n"
                                "sol added !\nagenda's size : 0\nalready_changed's size end : 0\n");
}

TEST_F(PropagationTest, PropagationGoesOnUntilNoClauseAroundTheRetractedIsUnit)
{
    props("a b c d");
    law("!a | b");
    law("!a | c | d");
    begin({{"a", "true"}});
    record()->retracted->push_back(elementOf(res->state, "a"));
    const Candidates found = propagate();
    EXPECT_EQ(label(found, 0, "b"), "true");
    EXPECT_EQ(label(found, 0, "d"), "true") << "the first unknown one: the newest is visited first";
    EXPECT_EQ(label(found, 0, "c"), "unknown") << "the clause holds by then";
}

TEST_F(PropagationTest, PropagationDoesNotGoOnFromWhatItLabelled)
{
    props("a b c");
    law("!a | b");
    law("!b | c");
    begin({{"a", "true"}});
    record()->retracted->push_back(elementOf(res->state, "a"));
    const Candidates found = propagate();
    EXPECT_EQ(label(found, 0, "b"), "true");
    EXPECT_EQ(label(found, 0, "c"), "unknown");
}

TEST_F(PropagationTest, QueuedClausesThatHoldAreDroppedWithoutASearch)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"a", "true"}});
    record()->constraints->push(clause);
    res->constraints->push(clause);
    const Candidates found = propagate();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0], res);
    EXPECT_TRUE(found[0]->constraints->empty());
    EXPECT_EQ(DataManager::searchWork.records, 0U);
    EXPECT_EQ(occurrences(trace.take(), "[propagateThroughConflict]"), 0U);
}

TEST_F(PropagationTest, AnOpenQueuedClauseIsHandedToTheSearch)
{
    props("a b");
    Clause* clause = law("a | b");
    begin({{"b", "false"}});
    record()->constraints->push(clause);
    const Candidates found = propagate();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(label(found, 0, "b"), "true") << "the unknown one cannot be flipped";
    EXPECT_EQ(DataManager::searchWork.records, 1U);
}

TEST_F(PropagationTest, AConflictWithoutAlternativesEndsTheSearch)
{
    props("a b");
    law("!a | b");
    begin();
    const Candidates found = add({{true, "a"}, {false, "b"}});
    EXPECT_EQ(found.size(), 0U);
    const std::string text = trace.take();
    EXPECT_EQ(occurrences(text, discarded), 2U);
    EXPECT_EQ(occurrences(text, "sol added"), 0U);
    EXPECT_EQ(linesThatBegin(text, "[addClause]"), Names{"[addClause] --> res' size : 0"});
}

TEST_F(PropagationTest, AnAbandonedRecordLeavesEarlierResultsAlone)
{
    props("a b");
    law("!a | b");
    begin();
    auto* results = new std::vector<ItmsRes*>{new ItmsRes(state.release())};
    ItmsRes* earlier = results->front();
    begin();
    const Candidates found = add({{true, "a"}, {false, "b"}}, {.results = results});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0], earlier);
}

TEST_F(PropagationTest, ADecidedConflictInAVariablesOwnClausesIsFoundAtTheStart)
{
    StateVar* mode = model.variable(k, "m", "Cond", {"0", "1"});
    model.domainClauses(mode);
    begin({{"k.m=0", "true"}, {"k.m=1", "false"}});
    const Candidates found = add({{true, "k.m=1"}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(label(found, 0, "k.m=0"), "false");
}

TEST_F(PropagationTest, AVariablesOwnConflictComesBeforeThoseOfItsAtoms)
{
    StateVar* mode = model.variable(k, "m", "Cond", {"0", "1"});
    props("a");
    law("!k.m=1 | a");
    model.domainClauses(mode);
    begin({{"k.m=0", "true"}, {"k.m=1", "false"}, {"a", "false"}});
    const Candidates found = add({{true, "k.m=1"}});
    const std::string text = trace.take();
    EXPECT_EQ(linesAfter(text, "curr_conf :"), (Names{"!k.m=1 | !k.m=0", "!k.m=1 | k.a=1"}));
}

TEST_F(PropagationTest, TheStartUpCheckLooksAroundDecisionsNotAroundTheFocus)
{
    props("a b c d");
    law("!a | b");
    law("!c | d");
    begin({{"a", "true"}, {"b", "false"}, {"c", "true"}, {"d", "false"}});
    record();
    TrajEl* inFocus = elementOf(res->state, "c");
    (*res->focus)[inFocus->getId()] = inFocus;
    const Candidates found = propagate();
    ASSERT_EQ(found.size(), 1U) << "neither clause is looked at";
    EXPECT_EQ(DataManager::searchWork.records, 0U);
}

TEST_F(PropagationTest, AfterAPassTheClausesAroundTheFocusAreChecked)
{
    props("a b c d");
    law("!c | d");
    Clause* unit = law("!a | b");
    begin({{"a", "true"}, {"c", "true"}, {"d", "false"}});
    record()->retracted->push_back(elementOf(res->state, "a"));
    TrajEl* inFocus = elementOf(res->state, "c");
    (*res->focus)[inFocus->getId()] = inFocus;
    decide({"d"});
    const Candidates found = propagate();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(label(found, 0, "c"), "false") << "d is decided: only c can resolve the clause";
    EXPECT_TRUE(engine.testClause(unit, found[0]->state, &trajectory, step));
}

// p makes both clauses false; each is resolved by either of its conditions, of which the newer is visited first.
class TwoConflicts : public PropagationTest {
protected:
    TwoConflicts()
    {
        props("p a b c d");
        law("!p | a | b");
        law("!p | c | d");
        begin({{"a", "false"}, {"b", "false"}, {"c", "false"}, {"d", "false"}});
    }
};

TEST_F(TwoConflicts, EveryCombinationOfAlternativesIsASolution)
{
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(found.size(), 4U);
    EXPECT_EQ(DataManager::searchWork.records, 3U);
    EXPECT_EQ(DataManager::searchWork.flips, 6U);
    EXPECT_EQ(DataManager::searchWork.candidates, 4U);
}

TEST_F(TwoConflicts, SolutionsComeDepthFirstAndTheLatestAlternativeNext)
{
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(holding(found, {"a", "b", "c", "d"}),
              (std::vector<Names>{{"b", "d"}, {"b", "c"}, {"a", "d"}, {"a", "c"}}));
}

TEST_F(TwoConflicts, TheSizeOfTheAgendaIsPrintedAtEachSolution)
{
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(
        linesThatBegin(trace.take(), "agenda's size"),
        (Names{"agenda's size : 2", "agenda's size : 1", "agenda's size : 1", "agenda's size : 0"}));
}

TEST_F(TwoConflicts, DecisionsAreCountedPerSolution)
{
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(linesThatBegin(trace.take(), "already_changed"),
              Names(4, "already_changed's size end : 3"));
}

TEST_F(TwoConflicts, NothingIsDiscardedWhenEveryRecordIsASolution)
{
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(occurrences(trace.take(), discarded), 1U);
}

TEST_F(TwoConflicts, ADeadAlternativeIsDiscardedAndTheNextIsTakenUp)
{
    elementOf(state.get(), "c")->lock = 1;
    elementOf(state.get(), "d")->lock = 1;
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(found.size(), 0U);
    EXPECT_EQ(occurrences(trace.take(), discarded), 3U) << "the start, and either child";
}

TEST_F(TwoConflicts, SolutionsShareNoElements)
{
    const Candidates found = add({{true, "p"}});
    std::vector<const TrajEl*> seen;
    for (const ItmsRes* candidate : found) {
        for (const auto& [id, element] : *candidate->state->elements) {
            EXPECT_EQ(std::count(seen.begin(), seen.end(), element), 0) << id;
            seen.push_back(element);
        }
    }
    EXPECT_EQ(seen.size(), 4 * 5U);
}

TEST_F(TwoConflicts, EverySolutionSatisfiesTheClausesAroundItsDecisions)
{
    const Candidates found = add({{true, "p"}});
    for (const ItmsRes* candidate : found) {
        for (Clause* clause : *DataManager::cls) {
            EXPECT_TRUE(engine.testClause(clause, candidate->state, &trajectory, step));
        }
    }
}

// Flipping a makes the next clause false, which only the check around the record's own focus can find.
TEST_F(PropagationTest, AConflictThatAFlipCausesIsFoundAndResolved)
{
    props("p a b");
    law("!p | a");
    law("!a | b");
    begin({{"a", "false"}, {"b", "false"}});
    const Candidates found = add({{true, "p"}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(label(found, 0, "a"), "true");
    EXPECT_EQ(label(found, 0, "b"), "true");
}

TEST_F(PropagationTest, ARecordFromTheAgendaIsCheckedAroundItsFocusWhenItIsTakenUp)
{
    props("p a b c");
    law("!p | a | b");
    law("!b | c");
    begin({{"a", "false"}, {"b", "false"}, {"c", "false"}});
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(holding(found, {"a", "b", "c"}), (std::vector<Names>{{"b", "c"}, {"a"}}));
}

TEST_F(PropagationTest, ARecordFromTheAgendaIsCheckedAfterADeadEndToo)
{
    props("p a b c d");
    law("!p | a | b");
    law("!a | c");
    law("!b | d");
    begin({{"a", "false"}, {"b", "false"}, {"c", "false"}, {"d", "false"}});
    el("d")->lock = 1;
    const Candidates found = add({{true, "p"}});
    EXPECT_EQ(holding(found, {"a", "b", "c", "d"}), (std::vector<Names>{{"a", "c"}}));
    EXPECT_EQ(occurrences(trace.take(), discarded), 2U);
}

} // namespace
