// Which elements of a conflict may be flipped, and in what order they are tried.
#include "tests/engine/ExpansionTest.h"

#include <limits>

namespace {

using Names = std::vector<std::string>;

class ExpansionCandidatesTest : public ExpansionTest {
protected:
    // Expands a conflict of one element with that label and lock.
    bool flippable(const std::string& label, int lock)
    {
        begin({{"a", label}});
        el("a")->lock = lock;
        expand(atom("a")->clauses->front());
        return isCandidate("a");
    }
    // Expands a conflict of one fault element under that bound.
    bool withinRank(const std::string& label, double maxRank)
    {
        begin({{"f", label}});
        expand(atom("f")->clauses->front(), {.maxRank = maxRank});
        return isCandidate("f");
    }
    // Expands a conflict of one element of a variable of that type and value.
    bool kept(const std::string& type, const std::string& value, const std::string& label,
              bool typeRules)
    {
        const std::string id = "k.v" + std::to_string(++variables) + "=" + value;
        model.variable(k, "v" + std::to_string(variables), type, {value});
        Clause* conflict = law(id);
        begin({{id, label}});
        expand(conflict, {.typeRules = typeRules});
        return isCandidate(id);
    }

    int variables = 0;
};

TEST_F(ExpansionCandidatesTest, LabelAndLockDecideWhetherAnElementMayBeFlipped)
{
    props("a");
    law("a");
    for (int lock = -1; lock <= 6; ++lock) {
        EXPECT_EQ(flippable("false", lock), lock != 1 && lock != 4) << "false, lock " << lock;
        EXPECT_EQ(flippable("true", lock), lock != 0 && lock != 3) << "true, lock " << lock;
        EXPECT_FALSE(flippable("unknown", lock)) << "unknown, lock " << lock;
        EXPECT_FALSE(flippable("none", lock)) << "none, lock " << lock;
    }
}

TEST_F(ExpansionCandidatesTest, DecidedElementsAreNotFlippedAgain)
{
    props("a b");
    Clause* conflict = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    expand(conflict, {.decided = {"a"}});
    EXPECT_EQ(candidates(), Names{"k.b=1"});
    EXPECT_EQ(linesThatBegin(text, "count : "), (Names{"count : 1", "count : 0"}));
}

TEST_F(ExpansionCandidatesTest, AConflictOfDecidedElementsOnlyHasNoChild)
{
    props("a b");
    Clause* conflict = law("!a | b");
    begin({{"a", "true"}, {"b", "false"}});
    expand(conflict, {.decided = {"a", "b"}});
    EXPECT_EQ(first, nullptr);
    EXPECT_TRUE(others.empty());
    EXPECT_EQ(linesThatBegin(text, "not_unknown's size"), Names{"not_unknown's size : 0"});
    EXPECT_EQ(occurrences(text, "beginning propagation"), 0U);
}

TEST_F(ExpansionCandidatesTest, TheEmptyClauseHasNoChild)
{
    Clause* conflict = law("");
    begin();
    expand(conflict);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(text, "[propagateThroughConflict] --> beginning\ncurr_conf :\nfalse\n"
                    "entering constraints size : 0\nnot_unknown's size : 0\n");
}

TEST_F(ExpansionCandidatesTest, AFaultAtTheRankBoundIsACandidateAndOneBeyondIsNot)
{
    props("f!");
    law("f");
    EXPECT_TRUE(withinRank("false", 1.0));
    EXPECT_EQ(linesThatBegin(text, "rank_test"), Names{"rank_test : 1"});
    EXPECT_FALSE(withinRank("false", 0.999));
    EXPECT_EQ(linesThatBegin(text, "rank_test"), Names{"rank_test : 0"});
}

TEST_F(ExpansionCandidatesTest, TheRankIsTheTrajectorysWithoutTheStepsOwnPlusTheCandidates)
{
    props("f!");
    Clause* conflict = law("f");
    trajectory.currentRank = 7.0;
    for (const auto& [maxRank, expected] :
         std::vector<std::pair<double, bool>>{{7.5, true}, {7.4, false}}) {
        begin({{"f", "false"}});
        state->rank = 3.0;
        state->wkstRank = 2.5;
        expand(conflict, {.maxRank = maxRank});
        EXPECT_EQ(isCandidate("f"), expected) << maxRank;
        EXPECT_EQ(linesThatBegin(text, "wkst rank"), Names{"wkst rank : 2.5"});
    }
}

TEST_F(ExpansionCandidatesTest, AFaultThatHoldsIsNotRankTested)
{
    props("f!");
    law("!f");
    EXPECT_TRUE(withinRank("true", -5.0));
    EXPECT_EQ(linesThatBegin(text, "rank_test"), Names{"rank_test : 1"});
}

TEST_F(ExpansionCandidatesTest, AnElementThatIsNoFaultIsNotRankTested)
{
    props("a");
    Clause* conflict = law("a");
    begin({{"a", "false"}});
    expand(conflict, {.maxRank = -5.0});
    EXPECT_TRUE(isCandidate("a"));
    EXPECT_EQ(linesThatBegin(text, "fail"), Names{"fail : 0"});
}

TEST_F(ExpansionCandidatesTest, ABoundThatIsNoNumberAdmitsNoFault)
{
    props("f!");
    law("f");
    EXPECT_FALSE(withinRank("false", std::numeric_limits<double>::quiet_NaN()));
}

TEST_F(ExpansionCandidatesTest, WithoutTypeRulesACommandMayOnlyBeSwitchedOff)
{
    EXPECT_FALSE(kept("Command", "open", "false", false));
    EXPECT_EQ(occurrences(text, "adding to not_unknown : k.v1=open\n"), 1U) << "printed even so";
    EXPECT_TRUE(kept("Command", "open", "true", false));
}

TEST_F(ExpansionCandidatesTest, WithoutTypeRulesTheCommandNoneMayBeSwitchedEitherWay)
{
    EXPECT_TRUE(kept("Command", "none", "false", false));
    EXPECT_TRUE(kept("Command", "none", "true", false));
}

TEST_F(ExpansionCandidatesTest, WithoutTypeRulesModesAndConditionsAreKept)
{
    for (const char* type : {"Mode", "Cond", "Other"}) {
        EXPECT_TRUE(kept(type, "x", "false", false)) << type;
        EXPECT_TRUE(kept(type, "x", "true", false)) << type;
    }
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesAConditionMayOnlyBeSwitchedOff)
{
    EXPECT_FALSE(kept("Cond", "x", "false", true));
    EXPECT_TRUE(kept("Cond", "x", "true", true));
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesModesAndCommandsAreKept)
{
    for (const char* type : {"Mode", "Command", "Other"}) {
        EXPECT_TRUE(kept(type, "x", "false", true)) << type;
        EXPECT_TRUE(kept(type, "x", "true", true)) << type;
    }
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesAKeptCandidateIsPrintedWithItsType)
{
    kept("Mode", "x", "false", true);
    EXPECT_EQ(occurrences(text, "count : 0\nk.v1=x\nMode\nnot_unknown's size : 1\n"), 1U);
    EXPECT_EQ(occurrences(text, "adding to not_unknown"), 0U);
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesADroppedConditionIsNotPrintedAsOne)
{
    kept("Cond", "x", "false", true);
    EXPECT_EQ(linesAfter(text, "count : 0"), Names{"not_unknown's size : 0"});
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesAModeThatATransitionProducedStays)
{
    StateVar* mode = model.variable(k, "m", "Mode", {"on"});
    Transition* start = model.transition(mode->atomLinks->front(), "start", 0.5);
    Clause* conflict = law("k.m=on");
    for (const bool typeRules : {true, false}) {
        begin({{"k.m=on", "false"}});
        el("k.m=on")->transition = start;
        expand(conflict, {.typeRules = typeRules});
        EXPECT_EQ(isCandidate("k.m=on"), !typeRules);
        EXPECT_EQ(linesAfter(text, "count : 0"), Names{"transition 0 m: start (0.5)"});
    }
}

TEST_F(ExpansionCandidatesTest, WithTypeRulesTheTransitionOfAKeptCandidateIsPrintedAgain)
{
    StateVar* command = model.variable(k, "c", "Command", {"go"});
    Transition* start = model.transition(command->atomLinks->front(), "start", 0.5);
    Clause* conflict = law("k.c=go");
    begin({{"k.c=go", "false"}});
    el("k.c=go")->transition = start;
    expand(conflict, {.typeRules = true});
    EXPECT_EQ(linesAfter(text, "Command"), Names{"transition 0 c: start (0.5)"});
    EXPECT_EQ(occurrences(text, "transition 0 c: start (0.5)\n"), 2U);
}

TEST_F(ExpansionCandidatesTest, EqualRatingsKeepTheClausesOrder)
{
    props("a b c");
    Clause* conflict = law("a | b | !c");
    begin({{"a", "false"}, {"b", "false"}, {"c", "true"}});
    expand(conflict);
    Names order;
    for (const auto& [sign, literal] : *conflict->literals) {
        order.push_back(literal->id);
    }
    EXPECT_EQ(candidates(), order);
}

TEST_F(ExpansionCandidatesTest, AnAtomTwiceInTheConflictIsACandidateTwice)
{
    props("a");
    Clause* conflict = law("a | a");
    begin({{"a", "false"}});
    expand(conflict);
    EXPECT_EQ(candidates(), (Names{"k.a=1", "k.a=1"}));
    EXPECT_EQ(others.size(), 1U);
}

TEST_F(ExpansionCandidatesTest, AConflictInstantiatesItsComponents)
{
    remote("far");
    Clause* conflict = law("far.x=1");
    begin();
    atom("far.x=1")->setLabel("false");
    expand(conflict);
    EXPECT_EQ(candidates(), Names{"far.x=1"});
    EXPECT_EQ(DataManager::searchWork.components, 1U);
}

// k's transitions tell which value y has, and nothing about far: y's rating is 0, that of x the prior's entropy.
// No clause opposes ok and bad to each other: the modes' own rating is not a number.
class ExpansionOrderTest : public ExpansionTest {
protected:
    ExpansionOrderTest()
    {
        StateVar* mode = model.variable(k, "m", "Mode", {"ok", "bad!"});
        model.variable(k, "y", "Cond", {"0", "1"});
        model.variable(model.comp("far"), "x", "Cond", {"0", "1"});
        model.transition(mode->atomLinks->at(0), "stay", 0.5)->id = 0;
        model.transition(mode->atomLinks->at(1), "fail", 0.5)->id = 1;
        law("!k.m=ok | k.y=1");
        law("!k.m=bad | k.y=0");
    }
    Names ratings() const
    {
        Names all;
        for (const std::string& name : candidates()) {
            const std::size_t at = text.find(" -- " + name);
            const std::size_t start = text.rfind('\n', at) + 1;
            all.push_back(text.substr(start, at - start));
        }
        return all;
    }
    void expandAllFalse(const std::string& conflict)
    {
        Clause* clause = law(conflict);
        begin({}, {k, (*DataManager::active_comps)["far"]});
        for (const auto& [id, element] : *state->elements) {
            element->setLabel("false");
        }
        expand(clause);
    }
};

TEST_F(ExpansionOrderTest, TheLowestExpectedEntropyComesFirst)
{
    expandAllFalse("k.y=0 | far.x=0");
    EXPECT_EQ(candidates(), (Names{"k.y=0", "far.x=0"})) << "the clause has them the other way";
    EXPECT_EQ(ratings(), (Names{"0", "0.693147"}));
    EXPECT_EQ(decided(first), Names{"k.y=0"});
    ASSERT_EQ(others.size(), 1U);
    EXPECT_EQ(decided(others[0]), Names{"far.x=0"});
}

TEST_F(ExpansionOrderTest, TheHighestEntropyIsOnTopOfTheAgenda)
{
    expandAllFalse("far.x=0 | k.y=0 | far.x=1");
    EXPECT_EQ(candidates(), (Names{"k.y=0", "far.x=1", "far.x=0"}));
    ASSERT_EQ(others.size(), 2U);
    EXPECT_EQ(decided(others.back()), Names{"far.x=0"});
}

TEST_F(ExpansionOrderTest, ARatingThatIsNoNumberStaysWhereItWasMet)
{
    expandAllFalse("k.y=0 | k.m=bad");
    EXPECT_EQ(candidates(), (Names{"k.m=bad", "k.y=0"}));
    expandAllFalse("k.m=bad | k.y=0");
    EXPECT_EQ(candidates(), (Names{"k.y=0", "k.m=bad"}));
}

} // namespace
