// Small plants, with what the filter should answer calculated by hand.
#include "tests/reference/ExactFilterFixture.h"

namespace {

using Ids = std::vector<std::string>;

class ExactFilterTest : public ExactFilterFixture {};

TEST_F(ExactFilterTest, TwoAlternativesOfAGuardThatBothHoldCountOnce)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        initially a = yes
        initially b = yes
        fault ok -> broken when a = yes | b = yes : 0.3)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction::of(0.3));
    EXPECT_EQ(probability("m=ok"), ExactFraction(1) - ExactFraction::of(0.3));
}

TEST_F(ExactFilterTest, StatementsThatDifferInTheirGuardsOnlyAddUp)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        initially a = yes
        initially b = yes
        fault ok -> broken when a = yes : 0.25
        fault ok -> broken when b = yes : 0.25)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 2));
}

TEST_F(ExactFilterTest, StatementsWithOtherProbabilitiesAddUp)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        initially a = yes
        initially b = yes
        fault ok -> broken when a = yes : 0.25
        fault ok -> broken when b = yes : 0.125)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(3, 8));
}

TEST_F(ExactFilterTest, StayingHasWhatTheOthersLeave)
{
    model("mode m { ok initial worn fault dead fault }\n"
          "fault ok -> worn : 0.25\n"
          "fault ok -> dead : 0.125");
    step();
    EXPECT_EQ(probability("m=ok"), ExactFraction(5, 8)); // 1 - 2/8 - 1/8
}

// 0.7 + 0.2 + 0.1 is a little less than 1 in doubles.
TEST_F(ExactFilterTest, StayingHasNothingWhereTheOthersAddUpToOne)
{
    model("mode m { ok initial done worn fault dead fault }\n"
          "nominal ok -> done : 0.7\n"
          "fault ok -> worn : 0.2\n"
          "fault ok -> dead : 0.1");
    step();
    EXPECT_TRUE(probability("m=ok").isZero());
    EXPECT_NEAR(probability("m=done").value(), 0.7, 1e-12);
}

TEST_F(ExactFilterTest, ATransitionToTheValueThatThereIsCountsNothing)
{
    model(breakable + "fault ok -> broken : 0.25\nidle ok : 0.5");
    step();
    EXPECT_EQ(probability("m=ok"), ExactFraction(3, 4));
}

// b is yes whether a is or not, and a stays open.
TEST_F(ExactFilterTest, AGuardThatFollowsByCasesOnlyHolds)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        law a = yes -> b = yes
        law a = no  -> b = yes
        fault ok -> broken when b = yes : 0.25)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4));
}

TEST_F(ExactFilterTest, AnOpenGuardHasItsShare)
{
    model(breakable + R"(
        cond a: x, y, z
        fault ok -> broken when a = x : 0.75)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4)); // 3/4 of a third
}

// The laws allow (yes, x), (yes, y), (yes, z) and (no, x): a is yes in three of four.
TEST_F(ExactFilterTest, TheShareOfAnOpenGuardIsThatOfCompleteAssignments)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: x, y, z
        law a = no -> b = x
        fault ok -> broken when a = yes : 0.5)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(3, 8));
}

// a is no or yes; that it is no with one more of the commands that may have been given does not matter.
TEST_F(ExactFilterTest, OpenCommandsDoNotCountInTheShareOfAConditionAfterThem)
{
    model(breakable + R"(
        command go: slow, fast
        cond a: no, yes
        law go = slow -> a = no
        fault ok -> broken when a = yes : 0.5)");
    step({"go=slow"});
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4));
}

// Of the four combinations of a and b three have a yes; not a half and a quarter from two guards.
TEST_F(ExactFilterTest, AlternativesOfAnOpenGuardShareTheirCombinations)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        fault ok -> broken when a = yes | b = yes : 0.5)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(3, 8));
}

// First a half of 3/4: 3/8 broken. Then all of 3/4 of what is left: 3/8 + 5/8 * 3/4 = 27/32.
TEST_F(ExactFilterTest, AReadingOfTheStepBeforeDecidesAGuard)
{
    model(breakable + R"(
        cond a: no, yes
        fault ok -> broken when a = yes : 0.75)");
    step({}, {"a=yes"});
    EXPECT_EQ(probability("m=broken"), ExactFraction(3, 8));
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(27, 32));
}

TEST_F(ExactFilterTest, ACommandThatIsNotGivenLeavesAGuardOpen)
{
    model(breakable + R"(
        command go: none, slow, fast
        fault ok -> broken when go = fast : 0.75)");
    step();
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4));
    step({"go=none"});
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4));
    step({"go=fast"}); // 1/4 + 3/4 * 3/4
    EXPECT_EQ(probability("m=broken"), ExactFraction(13, 16));
}

TEST_F(ExactFilterTest, ALostCommandLeavesTheModeAsItWas)
{
    model(R"(
        mode m { closed initial open }
        command go { none, open } lost 0.25
        nominal closed -> open when go = open : 1)");
    step({"go=open"});
    EXPECT_EQ(probability("m=open"), ExactFraction(3, 4));
    EXPECT_EQ(probability("m=closed"), ExactFraction(1, 4));
}

TEST_F(ExactFilterTest, TheFirstValueOfACommandIsNeverLost)
{
    model(R"(
        mode m { closed initial open }
        command go { none, open } lost 0.25
        cond seen: none, open
        law seen = go
        nominal closed -> open when go = open : 1)");
    step({"go=none"}, {"seen=none"});
    EXPECT_EQ(likelihood(), ExactFraction(1));
}

// The command arrives in a half of all cases; in a half of those in which it did, the mode breaks one step later.
TEST_F(ExactFilterTest, WhichCommandsArrivedMattersForTheGuardsOfTheNextStep)
{
    model(breakable + R"(
        command go { none, on } lost 0.5
        cond c: none, on
        law c = go
        initially c = none
        fault ok -> broken when c = on : 0.5)");
    step({"go=on"});
    EXPECT_TRUE(probability("m=broken").isZero());
    step({"go=none"});
    EXPECT_EQ(probability("m=broken"), ExactFraction(1, 4));
}

TEST_F(ExactFilterTest, LawsThatAllowTheSameValuesGiveAReadingTheSameProbability)
{
    for (const std::string laws :
         {"law y != hi -> y = mid", "law y != lo", "law y != hi -> y = mid\nlaw y != lo",
          "law y in {mid, hi}", "law y = lo -> y = hi"}) {
        SCOPED_TRACE(laws);
        model(breakable + "cond y: lo, mid, hi\n" + laws);
        step({}, {"y=mid"});
        EXPECT_EQ(likelihood(), ExactFraction(1, 2));
    }
}

TEST_F(ExactFilterTest, EachOfTheValuesThatALawLeavesHasTheSameProbability)
{
    for (const std::string value : {"b", "c"}) {
        model(breakable + "cond x: a, b, c, d\nlaw x in {b, c}");
        step({}, {"x=" + value});
        EXPECT_EQ(likelihood(), ExactFraction(1, 2));
    }
}

// Two combinations are allowed, (a, a) and (b, b).
TEST_F(ExactFilterTest, AnOutputBeforeItsInputIsAsProbableAsAfterIt)
{
    for (const Ids& readings : {Ids{"out=b", "source=b"}, Ids{"source=b", "out=b"}}) {
        model(breakable + "cond source: a, b\ncond out: a, b\nlaw out = source");
        step({}, readings);
        EXPECT_EQ(likelihood(), ExactFraction(1, 2));
    }
}

TEST_F(ExactFilterTest, ReadingsThatHaveNothingToDoWithEachOtherMultiply)
{
    model(breakable + "cond x: a, b, c\ncond y: a, b\ncond z: a, b\nlaw z = a");
    step({}, {"x=a", "y=b", "z=a"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 6));
}

// Where it is ok, (a, a) is one of two combinations; where it is broken, one of four.
TEST_F(ExactFilterTest, ReadingsThatAModeExplainsBetterMakeItMoreProbable)
{
    model(breakable + R"(
        cond source: a, b
        cond out: a, b
        law m = ok -> out = source
        fault ok -> broken : 0.5)");
    step({}, {"source=a", "out=a"});
    EXPECT_EQ(likelihood(), ExactFraction(3, 8));
    EXPECT_EQ(probability("m=ok"), ExactFraction(2, 3));
}

// The same where `source` is given: out follows where it is ok, and is one of two values where it is broken.
TEST_F(ExactFilterTest, AnInputIsNotScored)
{
    model(breakable + R"(
        cond source: a, b
        cond out: a, b
        law m = ok -> out = source
        fault ok -> broken : 0.5)");
    settings_.inputs = {variable("source")};
    step({}, {"source=a", "out=a"});
    EXPECT_EQ(likelihood(), ExactFraction(3, 4));
    EXPECT_EQ(probability("m=ok"), ExactFraction(2, 3));
}

TEST_F(ExactFilterTest, AModeThatAllowsFewerInputsIsNoMoreProbableForIt)
{
    model(breakable + R"(
        cond source: a, b
        law m = broken -> source = a
        fault ok -> broken : 0.5)");
    step({}, {"source=a"});
    EXPECT_EQ(probability("m=ok"), ExactFraction(1, 3)); // 1/2 against 1
    filter_.reset();
    settings_.inputs = {variable("source")};
    step({}, {"source=a"});
    EXPECT_EQ(probability("m=ok"), ExactFraction(1, 2));
}

TEST_F(ExactFilterTest, AnObservedModeIsThatMode)
{
    model(breakable + "fault ok -> broken : 0.125");
    step({}, {"m=broken"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 8));
    EXPECT_EQ(probability("m=broken"), ExactFraction(1));
}

TEST_F(ExactFilterTest, TwoReadingsOfOneVariableContradictEachOther)
{
    model(breakable + "cond x: a, b");
    EXPECT_TRUE(step({}, {"x=a", "x=b"}).inconsistent);
    filter_.reset();
    settings_.inputs = {variable("x")};
    EXPECT_TRUE(step({}, {"x=a", "x=b"}).inconsistent);
}

TEST_F(ExactFilterTest, LawsThatExcludeEverythingGiveAnInconsistentStep)
{
    model(breakable + R"(
        command go: none, on
        law go = on -> m = broken
        fault broken -> ok : 0.5)");
    EXPECT_FALSE(step({"go=none"}).inconsistent);
    EXPECT_TRUE(step({"go=on"}).inconsistent);
    EXPECT_TRUE(likelihood().isZero());
    EXPECT_TRUE(step({"go=none"}).inconsistent);
}

// Modes that the laws exclude only by cases are excluded.
TEST_F(ExactFilterTest, AModeForWhichNothingIsLeftIsImpossible)
{
    model(breakable + R"(
        cond a: no, yes
        cond b: no, yes
        law m = broken & a = yes -> b = yes
        law m = broken & a = yes -> b = no
        law m = broken & a = no -> b = yes
        law m = broken & a = no -> b = no
        fault ok -> broken : 0.5)");
    step();
    EXPECT_EQ(probability("m=ok"), ExactFraction(1));
}

TEST_F(ExactFilterTest, TwoWaysToTheSameModesAddUp)
{
    model(R"(
        mode m { start initial left right end }
        nominal start -> left : 0.5
        nominal start -> right : 0.5
        nominal left -> end : 0.25
        nominal right -> end : 0.5)");
    step();
    step();
    EXPECT_EQ(probability("m=end"), ExactFraction(3, 8)); // 1/2 * 1/4 + 1/2 * 1/2
    EXPECT_EQ(probability("m=left"), ExactFraction(3, 8));
    EXPECT_EQ(probability("m=right"), ExactFraction(1, 4));
}

// An open guard of two modes counts for each by itself: 1/2 * 1/4 that both break, not 1/4.
TEST_F(ExactFilterTest, EachModeChangesByItself)
{
    model(R"(
        mode m { ok initial broken fault }
        mode n { ok initial broken fault }
        cond a: no, yes
        fault m = ok -> broken when a = yes : 1
        fault n = ok -> broken when a = yes : 0.5)");
    const FilterAnswer& answer = step();
    EXPECT_EQ(answer.probability(atoms({"m=broken", "n=broken"})), ExactFraction(1, 8));
    EXPECT_EQ(answer.probability(atom("m=broken")), ExactFraction(1, 2));
    EXPECT_EQ(answer.probability(atom("n=broken")), ExactFraction(1, 4));
}

TEST_F(ExactFilterTest, AFaultIsThereUnlessAllModesAreWithoutOne)
{
    model(R"(
        mode m { ok initial broken fault }
        mode n { ok initial other broken fault }
        fault m = ok -> broken : 0.5
        fault n = ok -> broken : 0.25
        nominal n = ok -> other : 0.25)");
    EXPECT_EQ(step().fault(), ExactFraction(5, 8)); // 1 - 1/2 * 3/4
}

} // namespace
