// The children of a conflict: what a flip changes, and what a child takes over from its parent.
#include "tests/engine/ExpansionTest.h"

namespace {

using Names = std::vector<std::string>;

TEST_F(ExpansionTest, TheTraceTellsTheConflictTheElementsTheOrderAndTheFlip)
{
    props("a b! c");
    Clause* conflict = law("!a | b");
    Clause* support = law("c | b");
    begin({{"a", "true"}, {"b", "false"}, {"c", "true"}});
    el("a")->lock = 0;
    el("b")->support = support;
    const Transition* produced = el("b")->transition =
        model.transition(model.variable(k, "m", "Mode", {"x"})->atomLinks->front(), "go", 1.0);
    ASSERT_NE(produced, nullptr);
    expand(conflict, {.open = {support}});
    EXPECT_EQ(text, "[propagateThroughConflict] --> beginning\n"
                    "curr_conf :\n"
                    "!k.a=1 | k.b=1\n"
                    "entering constraints size : 1\n"
                    "fail : 0\nrank_test : 1\nwkst rank : 0\n"
                    "curr_el : k.a=1\ncurr_el label : true\ncurr_el lock : 0\n"
                    "curr_el support: 0\n"
                    "count : 0\n"
                    "fail : 1\nrank_test : 1\nwkst rank : 0\n"
                    "curr_el : k.b=1\ncurr_el label : false\ncurr_el lock : 2\n"
                    "curr_el support: " +
                        printed(support) +
                        "\n"
                        "k.b=1 [unknown] | k.c=1 [unknown]\n"
                        "\n"
                        "count : 0\n"
                        "transition 0 m: go (1)\n"
                        "adding to not_unknown : k.b=1\n"
                        "not_unknown's size : 1\n"
                        "0 -- k.b=1\n"
                        "[propagateThroughConflict] --> beginning propagation\n"
                        "[propagateThroughConflict] --> clause to be added :\n"
                        "k.b=1 : false\n"
                        "\n"
                        "[propagateThroughConflict] --> adding a new clause. true\n"
                        "k.b=1 : false\n"
                        "!k.a=1 | k.b=1\n"
                        "k.b=1 | k.c=1\n");
}

TEST_F(ExpansionTest, EveryCandidateFlipsAloneInAChildOfItsOwn)
{
    props("a b");
    Clause* conflict = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    expand(conflict);
    ASSERT_EQ(others.size(), 1U);
    EXPECT_EQ(label(first, "a"), "false");
    EXPECT_EQ(label(first, "b"), "false");
    EXPECT_EQ(label(others[0], "a"), "true");
    EXPECT_EQ(label(others[0], "b"), "true");
    EXPECT_EQ(linesThatBegin(text, "[propagateThroughConflict] --> adding a new clause."),
              (Names{"[propagateThroughConflict] --> adding a new clause. false",
                     "[propagateThroughConflict] --> adding a new clause. true"}));
}

TEST_F(ExpansionTest, OfNCandidatesOneIsReturnedAndTheOthersPushed)
{
    props("a b c d");
    Clause* conflict = law("a | b | c | d");
    begin({{"a", "false"}, {"b", "false"}, {"c", "false"}, {"d", "false"}});
    expand(conflict);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(decided(first), Names{"d"});
    ASSERT_EQ(others.size(), 3U);
    EXPECT_EQ(decided(others[0]), Names{"c"});
    EXPECT_EQ(decided(others[1]), Names{"b"});
    EXPECT_EQ(decided(others[2]), Names{"a"});
}

TEST_F(ExpansionTest, TheAgendasEarlierRecordsStayBelow)
{
    props("a b");
    Clause* conflict = law("a | b");
    std::stack<ItmsRes*> agenda;
    begin({{"a", "false"}, {"b", "false"}});
    auto* earlier = new ItmsRes(state.release());
    agenda.push(earlier);
    begin({{"a", "false"}, {"b", "false"}});
    first.reset(engine.propagateThroughConflict(conflict, new ItmsRes(state.release()), &agenda,
                                                false, 1.0, &trajectory, step));
    const std::vector<OwnedRecord> records = drain(agenda);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[1].get(), earlier);
}

TEST_F(ExpansionTest, TheConflictBecomesTheSupportOfTheFlippedElement)
{
    props("a b c");
    Clause* conflict = law("!a | b");
    Clause* old = law("c | b");
    begin({{"a", "true"}, {"b", "false"}, {"c", "true"}});
    el("a")->lock = 0;
    engine.setSupport(old, el("b"), state.get(), &trajectory, step);
    expand(conflict);
    const TrajEl* flipped = elementOf(first->state, "b");
    EXPECT_EQ(flipped->support, conflict);
    EXPECT_EQ(*elementOf(first->state, "a")->dependents,
              std::vector<TrajEl*>{elementOf(first->state, "b")});
    EXPECT_TRUE(elementOf(first->state, "c")->dependents->empty());
}

TEST_F(ExpansionTest, TheFlippedElementIsOneDeeperThanTheConflict)
{
    props("a b");
    Clause* conflict = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    el("a")->propagationNumber = 4;
    el("b")->propagationNumber = 6;
    expand(conflict);
    EXPECT_EQ(elementOf(first->state, "a")->propagationNumber, 7);
    EXPECT_EQ(elementOf(first->state, "b")->propagationNumber, 6);
    EXPECT_EQ(elementOf(others[0]->state, "b")->propagationNumber, 7);
    EXPECT_EQ(elementOf(others[0]->state, "a")->propagationNumber, 4);
}

TEST_F(ExpansionTest, FlippingAFaultEitherWayRaisesTheChildsRankByOne)
{
    props("f! g! a");
    Clause* conflict = law("!f | g | a");
    begin({{"f", "true"}, {"g", "false"}, {"a", "false"}});
    state->wkstRank = 0.5;
    expand(conflict);
    ASSERT_EQ(others.size(), 2U);
    EXPECT_EQ(first->state->wkstRank, 1.5) << "f, which is switched off";
    EXPECT_EQ(decided(others[0]), Names{"a"});
    EXPECT_EQ(others[0]->state->wkstRank, 0.5);
    EXPECT_EQ(others[1]->state->wkstRank, 1.5) << "g, which is switched on";
}

TEST_F(ExpansionTest, GivingUpAnUnknownModeMarksTheChild)
{
    model.variable(k, "m", "Mode", {"unknown"});
    Clause* conflict = law("!k.m=unknown");
    begin({{"k.m=unknown", "true"}});
    expand(conflict);
    EXPECT_TRUE(first->state->unknown);
}

TEST_F(ExpansionTest, OnlyAnUnknownModeThatHeldMarksTheChild)
{
    model.variable(k, "m", "Mode", {"unknown", "other"});
    model.variable(k, "c", "Cond", {"unknown"});
    for (const auto& [literal, label] : std::vector<std::pair<std::string, std::string>>{
             {"k.m=unknown", "false"}, {"k.m=other", "true"}, {"k.c=unknown", "true"}}) {
        Clause* conflict = law(literal);
        begin({{literal, label}});
        expand(conflict);
        ASSERT_NE(first, nullptr);
        EXPECT_FALSE(first->state->unknown) << literal << " was " << label;
    }
}

TEST_F(ExpansionTest, AMarkOfTheParentIsTakenOver)
{
    props("a");
    Clause* conflict = law("a");
    begin({{"a", "false"}});
    state->setUnknown();
    expand(conflict);
    EXPECT_TRUE(first->state->unknown);
}

TEST_F(ExpansionTest, AChildHasTheParentsOpenConflictsInAQueueOfItsOwn)
{
    props("a b");
    Clause* conflict = law("a | b");
    Clause* one = law("a");
    Clause* two = law("b");
    begin({{"a", "false"}, {"b", "false"}});
    expand(conflict, {.open = {two, one}});
    EXPECT_EQ(listed(*first->constraints), (std::vector<Clause*>{two, one}));
    first->constraints->pop();
    EXPECT_EQ(listed(*others[0]->constraints), (std::vector<Clause*>{two, one}));
}

TEST_F(ExpansionTest, AChildHasTheParentsDecisionsAndItsOwnOnItsOwnElements)
{
    props("a b c");
    Clause* conflict = law("a | b");
    begin({{"a", "false"}, {"b", "false"}, {"c", "true"}});
    expand(conflict, {.decided = {"c"}});
    EXPECT_EQ(decided(first), (Names{"b", "c"}));
    EXPECT_EQ(decided(others[0]), (Names{"a", "c"}));
    for (const ItmsRes* child : {first.get(), others[0].get()}) {
        EXPECT_EQ((*child->already_changed)["k.c=1"], elementOf(child->state, "c"));
    }
}

TEST_F(ExpansionTest, TheFocusIsTheDecisionsAndWhatIsResupportedAroundTheFlip)
{
    props("a b c");
    Clause* conflict = law("!a");
    Clause* around = law("!a | c");
    begin({{"a", "true"}, {"b", "true"}});
    expand(conflict, {.decided = {"b"}});
    Names focus = names(*first->focus);
    std::sort(focus.begin(), focus.end());
    EXPECT_EQ(focus, (Names{"a", "b", "c"}));
    EXPECT_EQ(elementOf(first->state, "c")->support, around);
    EXPECT_EQ(decided(first), (Names{"a", "b"})) << "what is resupported is not decided";
}

TEST_F(ExpansionTest, DependentsWhoseSupportNoLongerHoldsAreRetracted)
{
    props("a b c");
    Clause* conflict = law("!a");
    Clause* lost = law("a | b");
    Clause* kept = law("a | !c");
    begin({{"a", "true"}, {"b", "false"}, {"c", "false"}});
    engine.setSupport(lost, el("b"), state.get(), &trajectory, step);
    engine.setSupport(kept, el("c"), state.get(), &trajectory, step);
    expand(conflict);
    EXPECT_EQ(names(*first->retracted), Names{"b"});
    EXPECT_EQ(label(first, "b"), "unknown");
    EXPECT_EQ(label(first, "c"), "false");
    EXPECT_EQ(elementOf(first->state, "c")->support, kept);
}

TEST_F(ExpansionTest, DependentsWithoutSupportAreRetracted)
{
    props("a b");
    Clause* conflict = law("!a");
    begin({{"a", "true"}, {"b", "true"}});
    el("a")->dependents->push_back(el("b"));
    expand(conflict);
    EXPECT_EQ(names(*first->retracted), Names{"b"});
}

TEST_F(ExpansionTest, ADependentThatIsListedTwiceIsRetractedTwice)
{
    props("a b");
    Clause* conflict = law("!a");
    begin({{"a", "true"}, {"b", "true"}});
    el("a")->dependents->assign({el("b"), el("b")});
    expand(conflict);
    EXPECT_EQ(names(*first->retracted), (Names{"b", "b"}));
}

TEST_F(ExpansionTest, TheFlippedElementKeepsItsListOfDependents)
{
    props("a b");
    Clause* conflict = law("!a");
    begin({{"a", "true"}, {"b", "true"}});
    el("a")->dependents->push_back(el("b"));
    expand(conflict);
    EXPECT_EQ(names(*elementOf(first->state, "a")->dependents), Names{"b"});
}

TEST_F(ExpansionTest, WithoutDependentsNothingIsRetracted)
{
    props("a");
    Clause* conflict = law("a");
    begin({{"a", "false"}});
    expand(conflict);
    EXPECT_TRUE(first->retracted->empty());
    EXPECT_EQ(occurrences(text, "[deleteClause]"), 0U);
}

// The transition to ok admits y=1 alone, that to bad y=0 alone.
class ExpansionProbabilityTest : public ExpansionTest {
protected:
    ExpansionProbabilityTest()
    {
        StateVar* mode = model.variable(k, "m", "Mode", {"ok", "bad!"});
        model.variable(k, "y", "Cond", {"0", "1"});
        model.transition(mode->atomLinks->at(0), "stay", 0.75)->id = 0;
        model.transition(mode->atomLinks->at(1), "fail", 0.25)->id = 1;
        law("!k.m=ok | k.y=1");
        law("!k.m=bad | k.y=0");
        conflict = law("k.y=1 | k.y=0");
        begin({{"k.y=0", "false"}, {"k.y=1", "false"}});
    }
    static std::map<int, double> distribution(const ProbMap& of) { return {of.begin(), of.end()}; }

    Clause* conflict;
};

TEST_F(ExpansionProbabilityTest, TheChildsDistributionIsTheOneGivenTheFlippedAtom)
{
    expand(conflict);
    ASSERT_EQ(decided(first), Names{"k.y=0"});
    EXPECT_EQ(distribution(*first->state->postProbs), (std::map<int, double>{{0, 0.0}, {1, 1.0}}));
    EXPECT_EQ(distribution(*others[0]->state->postProbs),
              (std::map<int, double>{{0, 1.0}, {1, 0.0}}));
}

TEST_F(ExpansionProbabilityTest, AChildKnowsTheDistributionsOfEveryValueOfTheRatedVariable)
{
    expand(conflict);
    for (const ItmsRes* child : {first.get(), others[0].get()}) {
        CondProbMap& given = *child->state->condProbs;
        ASSERT_EQ(given.size(), 2U);
        EXPECT_EQ(distribution(*given["k.y=0"]), (std::map<int, double>{{0, 0.0}, {1, 1.0}}));
        EXPECT_EQ(distribution(*given["k.y=1"]), (std::map<int, double>{{0, 1.0}, {1, 0.0}}));
    }
}

TEST_F(ExpansionProbabilityTest, ThePosteriorIsACopyOfTheDistribution)
{
    expand(conflict);
    (*first->state->postProbs)[1] = 0.125;
    EXPECT_EQ((*(*first->state->condProbs)["k.y=0"])[1], 1.0);
}

TEST_F(ExpansionProbabilityTest, WritingOneChildsDistributionLeavesTheOthersAlone)
{
    expand(conflict);
    (*(*first->state->condProbs)["k.y=1"])[0] = 0.125;
    EXPECT_EQ((*(*others[0]->state->condProbs)["k.y=1"])[0], 1.0);
}

} // namespace
