// Adding propositions: labels, early returns, the flag, and the entry that is filed.
//
// Propositions of one sign are visited newest first: {true a, true b} labels b before a. Two of different signs
// are visited as inserted.
#include "tests/engine/EngineTest.h"
#include "tests/support/FlushLog.h"

#include <cmath>

namespace {

using Names = std::vector<std::string>;

class PropositionsTest : public EngineTest {
protected:
    // A command variable of k with the value 1, blocked.
    StateVar* blockedCommand(const std::string& name)
    {
        StateVar* variable = model.variable(k, name, "Command", {"1"});
        variable->commandBlocked = true;
        return variable;
    }
    std::size_t entries() const { return DataManager::itmsBmkEntries.size(); }
};

TEST_F(PropositionsTest, WithoutPropositionsOneCandidateIsFoundInANewVector)
{
    begin();
    const Candidates found = add({});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0]->already_changed->empty());
    EXPECT_EQ(trace.take(), "a sol has been discarded...\n"
                            "sol added !\n"
                            "agenda's size : 0\n"
                            "already_changed's size end : 0\n"
                            "[addClause] --> res' size : 1\n");
}

TEST_F(PropositionsTest, TheNumberOfCandidatesIsFlushed)
{
    begin();
    const FlushLog log;
    const Candidates found = add({});
    EXPECT_EQ(log.pieces().back(), "[addClause] --> res' size : 1\n");
    EXPECT_EQ(log.flushes(), 3U) << "agenda, changed elements, candidates";
}

TEST_F(PropositionsTest, AGivenVectorIsAppendedToAndReturned)
{
    auto* results = new std::vector<ItmsRes*>;
    begin();
    State* first = state.release();
    const int at = 0;
    SignedEls none;
    EXPECT_EQ(engine.addPropositions(&none, nullptr, first, results, false, 1.0, 0.0, &trajectory,
                                     at, false),
              results);
    begin();
    trace.take();
    const Candidates found = add({}, {.results = results});
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]->state, first);
    EXPECT_EQ(linesThatBegin(trace.take(), "[addClause]"), Names{"[addClause] --> res' size : 2"});
    EXPECT_EQ(DataManager::itmsBmkEntries.back().count, 2U);
}

TEST_F(PropositionsTest, TheKeyIsTheTruthValueThatTheElementGets)
{
    props("a b");
    begin();
    const Candidates found = add({{true, "a"}, {false, "b"}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(elementOf(found[0]->state, "a")->label, "true");
    EXPECT_EQ(elementOf(found[0]->state, "b")->label, "false");
}

TEST_F(PropositionsTest, TheSearchStartsOnTheCallersOwnState)
{
    props("a");
    begin();
    const State* given = state.get();
    const Candidates found = add({{true, "a"}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]->state, given);
}

TEST_F(PropositionsTest, ThePropositionsAreTheFirstDecisions)
{
    props("a b c");
    begin();
    const Candidates found = add({{true, "a"}, {false, "b"}, {true, "a"}});
    ASSERT_EQ(found.size(), 1U);
    ElMap& decided = *found[0]->already_changed;
    EXPECT_EQ(decided.size(), 2U);
    EXPECT_EQ(decided["k.a=1"], elementOf(found[0]->state, "a"));
    EXPECT_EQ(decided["k.b=1"], elementOf(found[0]->state, "b"));
    EXPECT_EQ(linesThatBegin(trace.take(), "already_changed"),
              Names{"already_changed's size end : 2"});
}

TEST_F(PropositionsTest, SupportAndDepthOfAnElementStay)
{
    props("a b");
    Clause* clause = law("!b | a");
    begin();
    el("a")->support = clause;
    el("a")->propagationNumber = 2;
    const Candidates found = add({{true, "a"}});
    EXPECT_EQ(elementOf(found[0]->state, "a")->support, clause);
    EXPECT_EQ(elementOf(found[0]->state, "a")->propagationNumber, 2);
}

TEST_F(PropositionsTest, ALaterPropositionOnTheSameElementWins)
{
    props("a");
    begin();
    const Candidates found = add({{true, "a"}, {false, "a"}});
    EXPECT_EQ(elementOf(found[0]->state, "a")->label, "false");
}

TEST_F(PropositionsTest, AFaultAssertedAtTheRankBoundIsAccepted)
{
    props("f!");
    begin({{"f", "false"}});
    const Candidates found = add({{true, "f"}}, {.maxRank = 1.0});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(elementOf(found[0]->state, "f")->label, "true");
}

TEST_F(PropositionsTest, AFaultAssertedBeyondTheRankBoundReturnsAtOnce)
{
    props("f!");
    begin({{"f", "false"}});
    const Candidates found = addInVain({{true, "f"}}, {.maxRank = 0.999});
    EXPECT_EQ(found.size(), 0U);
    EXPECT_EQ(el("f")->label, "false");
    EXPECT_EQ(trace.take(), "");
}

TEST_F(PropositionsTest, TheRankOfAFaultCountsWhatTheTrajectoryAndTheStateHaveAlready)
{
    props("f!");
    trajectory.currentRank = 5.0;
    begin({{"f", "false"}});
    state->rank = 2.0;
    state->wkstRank = 0.5;
    EXPECT_EQ(addInVain({{true, "f"}}, {.maxRank = 4.4}).size(), 0U);
    EXPECT_EQ(add({{true, "f"}}, {.maxRank = 4.5}).size(), 1U);
}

TEST_F(PropositionsTest, AFaultThatWasNotHeldFalseIsNotRankTested)
{
    props("f!");
    for (const char* label : {"unknown", "true"}) {
        begin({{"f", label}});
        EXPECT_EQ(add({{true, "f"}}, {.maxRank = 0.0}).size(), 1U) << label;
    }
}

TEST_F(PropositionsTest, NeitherADeniedFaultNorANormalValueIsRankTested)
{
    props("f! a");
    begin({{"f", "false"}, {"a", "false"}});
    EXPECT_EQ(add({{false, "f"}, {true, "a"}}, {.maxRank = 0.0}).size(), 1U);
}

TEST_F(PropositionsTest, AssertedFaultsDoNotRaiseTheStatesOwnRank)
{
    props("f! g!");
    begin({{"f", "false"}, {"g", "false"}});
    const Candidates found = add({{true, "f"}, {true, "g"}}, {.maxRank = 1.0});
    ASSERT_EQ(found.size(), 1U) << "each is tested against the rank that the state came with";
    EXPECT_EQ(found[0]->state->wkstRank, 0.0);
}

TEST_F(PropositionsTest, ALaterPropositionSeesTheLabelsOfEarlierOnes)
{
    props("f!");
    begin({{"f", "true"}});
    const Candidates found = addInVain({{false, "f"}, {true, "f"}}, {.maxRank = 0.0});
    EXPECT_EQ(found.size(), 0U) << "the fault was held false by then";
    EXPECT_EQ(el("f")->label, "false");
}

TEST_F(PropositionsTest, ABlockedCommandEndsTheCallBeforeLaterPropositions)
{
    props("a b");
    blockedCommand("go");
    begin({}, {k});
    const Candidates found = addInVain({{true, "a"}, {false, "go"}, {true, "b"}}, {});
    EXPECT_EQ(found.size(), 0U);
    EXPECT_EQ(el("go")->label, "unknown");
    // Iterated: true b, true a, false go with another shape of the tree; whatever precedes is written.
    SignedEls order;
    order.insert({true, el("a")});
    order.insert({false, el("go")});
    order.insert({true, el("b")});
    bool before = true;
    for (const auto& [value, element] : order) {
        if (element == el("go")) {
            before = false;
        } else {
            EXPECT_EQ(element->label, before ? "true" : "unknown") << element->getId();
        }
    }
}

TEST_F(PropositionsTest, ABlockedCommandEndsTheCallWithEitherValue)
{
    blockedCommand("go");
    for (const bool value : {true, false}) {
        begin();
        EXPECT_EQ(addInVain({{value, "go"}}, {}).size(), 0U) << value;
        EXPECT_EQ(el("go")->label, "unknown") << value;
    }
}

TEST_F(PropositionsTest, ACommandThatIsNotBlockedIsLabelled)
{
    blockedCommand("go")->commandBlocked = false;
    begin();
    const Candidates found = add({{false, "go"}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(elementOf(found[0]->state, "go")->label, "false");
}

TEST_F(PropositionsTest, TheBlockedFlagCountsForCommandsOnly)
{
    props("a");
    atom("a")->stateVar->commandBlocked = true;
    begin();
    EXPECT_EQ(add({{true, "a"}}).size(), 1U);
}

TEST_F(PropositionsTest, AnEarlyReturnKeepsLabelsAndLeavesTheStateToTheCaller)
{
    props("a");
    blockedCommand("go");
    begin();
    const Candidates found = addInVain({{false, "a"}, {true, "go"}}, {});
    EXPECT_EQ(el("a")->label, "false");
    EXPECT_EQ(state->elements->size(), 2U);
}

TEST_F(PropositionsTest, AnEarlyReturnPrintsNothingAndFilesNoEntry)
{
    blockedCommand("go");
    begin();
    const Candidates found = addInVain({{true, "go"}}, {});
    EXPECT_EQ(trace.take(), "");
    EXPECT_EQ(entries(), 0U);
}

TEST_F(PropositionsTest, AnEarlyReturnHandsBackTheGivenVector)
{
    blockedCommand("go");
    begin();
    std::vector<ItmsRes*> results;
    SignedEls props;
    props.insert({true, el("go")});
    EXPECT_EQ(engine.addPropositions(&props, nullptr, state.get(), &results, false, 1.0, 0.0,
                                     &trajectory, step, false),
              &results);
    EXPECT_TRUE(results.empty());
}

TEST_F(PropositionsTest, AnEarlyReturnLeavesTheFlagRaised)
{
    blockedCommand("go");
    begin();
    addInVain({{true, "go"}}, {.adding = true});
    EXPECT_TRUE(engine.addingPropositions);
    add({}, {.adding = false});
    EXPECT_FALSE(engine.addingPropositions) << "the next call that ends normally lowers it";
}

TEST_F(PropositionsTest, AnEarlyReturnForTheRankLeavesTheFlagRaisedToo)
{
    props("f!");
    begin({{"f", "false"}});
    addInVain({{true, "f"}}, {.maxRank = 0.0, .adding = true});
    EXPECT_TRUE(engine.addingPropositions);
}

TEST_F(PropositionsTest, AnEarlyReturnWithoutAddingRaisesNothing)
{
    blockedCommand("go");
    begin();
    addInVain({{true, "go"}}, {.adding = false});
    EXPECT_FALSE(engine.addingPropositions);
}

/// Notes the engine's flag whenever something is printed.
struct FlagWatch : std::stringbuf {
    explicit FlagWatch(const itms& watched) : engine(watched) {}
    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        seen.push_back(engine.addingPropositions);
        return std::stringbuf::xsputn(text, count);
    }
    const itms& engine;
    std::vector<bool> seen;
};

TEST_F(PropositionsTest, TheFlagIsRaisedDuringTheCallOnlyWhenAdding)
{
    for (const bool adding : {true, false}) {
        begin();
        FlagWatch watch(engine);
        std::streambuf* previous = std::cout.rdbuf(&watch);
        add({}, {.adding = adding});
        std::cout.rdbuf(previous);
        ASSERT_FALSE(watch.seen.empty());
        EXPECT_EQ(watch.seen, std::vector<bool>(watch.seen.size(), adding));
        EXPECT_FALSE(engine.addingPropositions);
    }
}

TEST_F(PropositionsTest, ProbabilitiesAreInitialisedWithoutTypeRulesOrOnTheStatesRequest)
{
    StateVar* mode = model.variable(k, "mode", "Mode", {"ok"});
    Transition* stay = model.transition(mode->atomLinks->front(), "stay", 0.25);
    stay->id = 7;
    const auto initialised = [&](bool typeRules, bool computeProbas) {
        begin();
        state->computeProbas = computeProbas;
        (*state->postProbs)[7] = 0.5;
        const Candidates found = add({}, {.typeRules = typeRules});
        return (*found[0]->state->postProbs)[7] == 0.25;
    };
    EXPECT_TRUE(initialised(false, false));
    EXPECT_TRUE(initialised(false, true));
    EXPECT_TRUE(initialised(true, true));
    EXPECT_FALSE(initialised(true, false));
}

TEST_F(PropositionsTest, ProbabilitiesAreInitialisedBeforeAnEarlyReturn)
{
    StateVar* mode = model.variable(k, "mode", "Mode", {"ok"});
    model.transition(mode->atomLinks->front(), "stay", 0.25)->id = 7;
    blockedCommand("go");
    begin();
    state->postProbs->clear();
    addInVain({{true, "go"}}, {});
    EXPECT_EQ((*state->postProbs)[7], 0.25);
}

TEST_F(PropositionsTest, AnEntryIsFiledWithCountAndIdentifiersInTheirOrder)
{
    props("a b");
    begin();
    const Candidates found = add({{true, "a"}, {true, "b"}});
    ASSERT_EQ(entries(), 1U);
    const ItmsBmkEntry& entry = DataManager::itmsBmkEntries.front();
    EXPECT_EQ(entry.count, 1U);
    EXPECT_EQ(entry.ids, (Names{"k.b=1", "k.a=1"}));
    EXPECT_GE(entry.seconds, 0.0);
    EXPECT_LT(entry.seconds, 60.0);
}

TEST_F(PropositionsTest, AnIdentifierIsFiledAsOftenAsItIsProposed)
{
    props("a");
    begin();
    const Candidates found = add({{true, "a"}, {true, "a"}});
    EXPECT_EQ(DataManager::itmsBmkEntries.front().ids, (Names{"k.a=1", "k.a=1"}));
}

TEST_F(PropositionsTest, EveryCallFilesItsEntry)
{
    for (int i = 0; i < 3; ++i) {
        begin();
        add({});
    }
    EXPECT_EQ(entries(), 3U);
}

TEST_F(PropositionsTest, TheUnusedArgumentsAreNotRead)
{
    props("a");
    begin();
    SignedEls propositions;
    propositions.insert({true, el("a")});
    ElMap unused;
    unused["k.a=1"] = nullptr;
    const Candidates found(engine.addPropositions(&propositions, &unused, state.release(), nullptr,
                                                  false, 1.0, std::nan(""), &trajectory, step,
                                                  false));
    EXPECT_EQ(found.size(), 1U);
    EXPECT_EQ(unused.size(), 1U);
}

} // namespace
