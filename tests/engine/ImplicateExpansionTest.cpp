// Prime implicates in the search: a flip to "true" comes with the members of an implicate set of its atom.
#include "tests/engine/ExpansionTest.h"

namespace {

using Names = std::vector<std::string>;

class ImplicateExpansionTest : public ExpansionTest {
protected:
    ImplicateExpansionTest()
    {
        engine.piTable = DataManager::newPiTable();
        props("a x y f! g!");
        conflict = law("a");
    }
    // Gives the atom the sets as its prime implicates.
    void implicates(const std::string& head, const std::vector<Names>& sets)
    {
        auto* list = new PiTable::Implicates;
        for (const Names& set : sets) {
            auto* atoms = new std::vector<Atom*>;
            for (const std::string& member : set) {
                atoms->push_back(atom(member));
            }
            list->push_back(atoms);
        }
        engine.piTable->addPIAtom(atom(head), list);
    }
    static const Labels& allFalse()
    {
        static const Labels labels{
            {"a", "false"}, {"x", "false"}, {"y", "false"}, {"f", "false"}, {"g", "false"}};
        return labels;
    }
    void expandFalse(const Rules& rules)
    {
        begin(allFalse());
        expand(conflict, rules);
    }
    void expandFalse() { expandFalse(Rules{}); }

    Clause* conflict;
};

TEST_F(ImplicateExpansionTest, KSetsMakeKChildrenInTheTablesOrder)
{
    implicates("a", {{"x"}, {"y"}, {"x", "y"}});
    expandFalse();
    EXPECT_EQ(candidates(), Names{"k.a=1"});
    EXPECT_EQ(decided(first), (Names{"a", "x"}));
    ASSERT_EQ(others.size(), 2U);
    EXPECT_EQ(decided(others[0]), (Names{"a", "y"}));
    EXPECT_EQ(decided(others[1]), (Names{"a", "x", "y"}));
}

TEST_F(ImplicateExpansionTest, MembersThatWereFalseHoldInTheChildThatAdoptsThem)
{
    implicates("a", {{"x"}, {"y"}});
    expandFalse();
    EXPECT_EQ(label(first, "a"), "true");
    EXPECT_EQ(label(first, "x"), "true");
    EXPECT_EQ(label(first, "y"), "false");
    EXPECT_EQ(label(others[0], "a"), "true");
    EXPECT_EQ(label(others[0], "x"), "false");
    EXPECT_EQ(label(others[0], "y"), "true");
}

TEST_F(ImplicateExpansionTest, MembersThatAreTrueOrUnknownAreRecordedAndKeepTheirLabel)
{
    implicates("a", {{"x", "y"}});
    begin({{"a", "false"}, {"x", "true"}, {"y", "unknown"}});
    expand(conflict);
    EXPECT_EQ(label(first, "x"), "true");
    EXPECT_EQ(label(first, "y"), "unknown");
    EXPECT_EQ(decided(first), (Names{"a", "x", "y"}));
}

TEST_F(ImplicateExpansionTest, NormalMembersAreAdoptedDespiteLocksAndEarlierDecisions)
{
    implicates("a", {{"x", "y"}});
    begin(allFalse());
    el("x")->lock = 1;
    expand(conflict, {.decided = {"y"}});
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(label(first, "x"), "true");
    EXPECT_EQ(label(first, "y"), "true");
}

TEST_F(ImplicateExpansionTest, MembersGetNeitherSupportNorDepth)
{
    implicates("a", {{"x"}});
    expandFalse();
    const TrajEl* member = elementOf(first->state, "x");
    EXPECT_EQ(member->support, nullptr);
    EXPECT_EQ(member->propagationNumber, 0);
    EXPECT_EQ(elementOf(first->state, "a")->support, conflict);
    EXPECT_EQ(elementOf(first->state, "a")->propagationNumber, 1);
}

TEST_F(ImplicateExpansionTest, AdoptedMembersAreInTheFocus)
{
    implicates("a", {{"x"}});
    expandFalse();
    EXPECT_EQ(first->focus->count("k.x=1"), 1U);
    EXPECT_EQ(first->focus->count("k.a=1"), 1U);
}

TEST_F(ImplicateExpansionTest, AdoptedFaultsDoNotRaiseTheRank)
{
    implicates("a", {{"f", "g"}});
    expandFalse({.maxRank = 1.0});
    ASSERT_NE(first, nullptr) << "both are tested against the parent's rank";
    EXPECT_EQ(label(first, "f"), "true");
    EXPECT_EQ(label(first, "g"), "true");
    EXPECT_EQ(first->state->wkstRank, 0.0);
}

TEST_F(ImplicateExpansionTest, ASetWithAFaultBeyondTheRankBoundIsRejected)
{
    implicates("a", {{"f"}});
    expandFalse({.maxRank = 0.5});
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(others.empty());
    EXPECT_EQ(occurrences(text, "adding a new clause"), 0U) << "nothing is flipped";
}

TEST_F(ImplicateExpansionTest, ASetWithALockedOrDecidedFaultIsRejected)
{
    implicates("a", {{"f"}});
    for (const int lock : {1, 4}) {
        begin(allFalse());
        el("f")->lock = lock;
        expand(conflict);
        EXPECT_EQ(first, nullptr) << lock;
    }
    expandFalse({.decided = {"f"}});
    EXPECT_EQ(first, nullptr);
}

TEST_F(ImplicateExpansionTest, AFaultThatHoldsAlreadyIsNoReasonToReject)
{
    implicates("a", {{"f"}});
    begin({{"a", "false"}, {"f", "true"}});
    el("f")->lock = 0;
    expand(conflict, {.decided = {"f"}, .maxRank = -1.0});
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(label(first, "f"), "true");
}

TEST_F(ImplicateExpansionTest, AfterARejectedSetTheNextOfTheSameCandidateIsTried)
{
    implicates("a", {{"x"}, {"f"}, {"y"}});
    expandFalse({.maxRank = 0.5});
    EXPECT_EQ(decided(first), (Names{"a", "x"}));
    ASSERT_EQ(others.size(), 1U);
    EXPECT_EQ(decided(others[0]), (Names{"a", "y"}));
}

TEST_F(ImplicateExpansionTest, ARejectedFirstSetLeavesNoChildToReturnOnlyOnesToPush)
{
    implicates("a", {{"f"}, {"x"}});
    expandFalse({.maxRank = 0.5});
    EXPECT_EQ(first, nullptr) << "the child was counted";
    ASSERT_EQ(others.size(), 1U);
    EXPECT_EQ(decided(others[0]), (Names{"a", "x"}));
}

TEST_F(ImplicateExpansionTest, TheDriverTakesUpWhatARejectedFirstSetLeftOnTheAgenda)
{
    implicates("a", {{"f"}, {"x"}});
    law("!y | a");
    begin({{"a", "false"}, {"x", "false"}, {"f", "false"}});
    const Candidates found = add({{true, "y"}}, {.maxRank = 0.5});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(elementOf(found[0]->state, "x")->label, "true");
    EXPECT_EQ(occurrences(trace.take(), "a sol has been discarded...\n"), 2U);
}

TEST_F(ImplicateExpansionTest, ARejectionLateInASetTakesTheEarlierMembersBackWithTheChild)
{
    implicates("a", {{"x", "f"}, {"y"}});
    expandFalse({.maxRank = 0.5});
    EXPECT_EQ(first, nullptr);
    ASSERT_EQ(others.size(), 1U);
    EXPECT_EQ(label(others[0], "x"), "false");
    EXPECT_EQ(label(others[0], "y"), "true");
}

TEST_F(ImplicateExpansionTest, TheFlippedFaultInItsOwnSetIsNoReasonToReject)
{
    Clause* fault = law("f");
    implicates("f", {{"f", "x", "f"}});
    begin(allFalse());
    expand(fault, {.maxRank = 1.0});
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(decided(first), (Names{"f", "x"}));
    EXPECT_EQ(label(first, "f"), "true");
    EXPECT_EQ(first->state->wkstRank, 1.0);
}

TEST_F(ImplicateExpansionTest, AMemberTwiceInASetIsNoReasonToReject)
{
    implicates("a", {{"f", "f"}});
    expandFalse();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(decided(first), (Names{"a", "f"}));
}

TEST_F(ImplicateExpansionTest, AnEmptySetFlipsTheTargetAlone)
{
    implicates("a", {{}});
    expandFalse();
    EXPECT_EQ(decided(first), Names{"a"});
}

TEST_F(ImplicateExpansionTest, AnAtomWithoutAnEntryFlipsAlone)
{
    implicates("x", {{"y"}});
    expandFalse();
    EXPECT_EQ(decided(first), Names{"a"});
}

TEST_F(ImplicateExpansionTest, AnEmptyListMakesNoChild)
{
    implicates("a", {});
    expandFalse();
    EXPECT_EQ(linesThatBegin(text, "not_unknown's size"), Names{"not_unknown's size : 1"});
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(others.empty());
}

TEST_F(ImplicateExpansionTest, AnEmptyListLeavesTheFirstPlaceToTheNextCandidate)
{
    implicates("a", {});
    Clause* both = law("x | a");
    begin(allFalse());
    expand(both);
    EXPECT_EQ(candidates(), (Names{"k.a=1", "k.x=1"}));
    ASSERT_NE(first, nullptr) << "no child was begun before";
    EXPECT_EQ(decided(first), Names{"x"});
}

TEST_F(ImplicateExpansionTest, ACandidateThatHoldsFlipsAlone)
{
    Clause* negated = law("!a");
    implicates("a", {{"x"}, {"y"}});
    begin({{"a", "true"}, {"x", "false"}, {"y", "false"}});
    expand(negated);
    EXPECT_EQ(decided(first), Names{"a"});
    EXPECT_TRUE(others.empty());
    EXPECT_EQ(label(first, "x"), "false");
}

TEST_F(ImplicateExpansionTest, ACommandFlipsAlone)
{
    model.variable(k, "c", "Command", {"none"});
    Clause* command = law("k.c=none");
    implicates("k.c=none", {{"x"}});
    begin({{"k.c=none", "false"}, {"x", "false"}});
    expand(command);
    EXPECT_EQ(decided(first), Names{"k.c=none"});
}

TEST_F(ImplicateExpansionTest, ChildrenOfLaterCandidatesFollowThoseOfEarlierOnes)
{
    implicates("a", {{"y"}, {"a"}});
    Clause* both = law("x | a");
    begin(allFalse());
    expand(both);
    ASSERT_EQ(others.size(), 2U);
    EXPECT_EQ(decided(first), (Names{"a", "y"}));
    EXPECT_EQ(decided(others[0]), Names{"a"});
    EXPECT_EQ(decided(others[1]), Names{"x"});
}

TEST_F(ImplicateExpansionTest, MembersOfOtherComponentsAreInstantiated)
{
    remote("far")->setLabel("false");
    implicates("a", {{"far.x=1"}});
    expandFalse();
    EXPECT_EQ(label(first, "far.x=1"), "true");
    EXPECT_EQ(first->state->comps->count("far"), 1U);
}

TEST_F(ImplicateExpansionTest, TheTablesListsStayAsTheyAre)
{
    implicates("a", {{"x"}, {"y"}});
    expandFalse();
    const PiTable::Implicates& list = *engine.piTable->getPIs(atom("a"));
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(*list[0], std::vector<Atom*>{atom("x")});
    EXPECT_EQ(*list[1], std::vector<Atom*>{atom("y")});
}

TEST_F(ImplicateExpansionTest, WithoutATableEveryCandidateFlipsAlone)
{
    implicates("a", {{"x"}, {"y"}});
    engine.piTable = nullptr;
    expandFalse();
    EXPECT_EQ(decided(first), Names{"a"});
    EXPECT_TRUE(others.empty());
}

} // namespace
