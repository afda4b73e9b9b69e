// Readings in time on small plants, with their likelihood calculated by hand.
#include "tests/reference/ExactFilterFixture.h"

namespace {

class ExactReadingsTest : public ExactFilterFixture {};

// r is open between three values; v is 1/8.
TEST_F(ExactReadingsTest, AReadingIsExpectedToStay)
{
    model(breakable + "cond r: x, y, z\nlaw m = broken -> r = x");
    settings_.readingsInTime = true;
    settings_.changing = {{variable("r"), ExactFraction(1, 8)}};
    step({}, {"r=y"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
    step({}, {"r=y"});
    EXPECT_EQ(likelihood(), ExactFraction(7, 8));
    step({}, {"r=z"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 16)); // one of two others
    step();
    EXPECT_EQ(likelihood(), ExactFraction(1));
    step({}, {"r=z"});
    EXPECT_EQ(likelihood(), ExactFraction(7, 8));
}

TEST_F(ExactReadingsTest, AReadingIsNewWhereAModeThatBearsOnItChanged)
{
    model(R"(
        mode m { a initial b dead fault }
        mode n { a initial b dead fault }
        command go: none, m, n
        cond r: x, y, z
        cond s: x, y, z
        cond t: x, y, z
        law m = dead -> s = x
        law r = s
        law n = dead -> t = x
        nominal m = a -> b when go = m : 1
        nominal n = a -> b when go = n : 1)");
    settings_.readingsInTime = true;
    step({"go=none"}, {"r=y"});
    step({"go=n"}, {"r=y"}); // n has nothing to do with r
    EXPECT_EQ(likelihood(), ExactFraction(1));
    step({"go=m"}, {"r=y"}); // m has, over s
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
}

TEST_F(ExactReadingsTest, AReadingIsNewWhereItWasNotOpen)
{
    model(R"(
        mode m { a initial dead fault }
        command go: none, hold
        cond r: x, y, z
        law m = dead -> r = z
        law go = hold -> r = y)");
    settings_.readingsInTime = true;
    step({"go=none"}, {"r=y"});
    step({"go=hold"});
    step({"go=none"}, {"r=y"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
}

// (x, x), (x, y) and (y, x) are allowed. v is 1 - 7/8 * 3/4 = 11/32.
TEST_F(ExactReadingsTest, ReadingsThatLawsConnectChangeTogether)
{
    model(breakable + "cond r: x, y\ncond s: x, y\nlaw r = x | s = x");
    settings_.readingsInTime = true;
    settings_.changing = {{variable("r"), ExactFraction(1, 8)},
                          {variable("s"), ExactFraction(1, 4)}};
    step({}, {"r=x", "s=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
    step({}, {"s=x", "r=x"});
    EXPECT_EQ(likelihood(), ExactFraction(21, 32));
    step({}, {"r=x", "s=y"});
    EXPECT_EQ(likelihood(), ExactFraction(11, 64));
}

// r changes to one of two other values, s stays.
TEST_F(ExactReadingsTest, ReadingsThatNothingConnectsChangeByThemselves)
{
    model(breakable + "cond r: x, y, z\ncond s: x, y");
    settings_.readingsInTime = true;
    settings_.changing = {{variable("r"), ExactFraction(1, 8)},
                          {variable("s"), ExactFraction(1, 4)}};
    step({}, {"r=x", "s=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 6));
    step({}, {"r=y", "s=x"});
    EXPECT_EQ(likelihood(), ExactFraction(3, 64)); // 1/8 * 1/2 * 3/4
}

// s was not read before: as far as that goes, it may be anything with r, of which nothing is expected then.
TEST_F(ExactReadingsTest, AGroupWithAVariableThatWasNotReadIsNew)
{
    model(breakable + "cond r: x, y\ncond s: x, y\nlaw r = x | s = x");
    settings_.readingsInTime = true;
    step({}, {"r=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 2));
    step({}, {"r=x", "s=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
    step({}, {"s=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1));
}

// y and y cannot both be: read one after the other they say nothing of what both are.
TEST_F(ExactReadingsTest, ReadingsThatAreImpossibleTogetherAreNotExpectedAgain)
{
    model(breakable + "cond r: x, y\ncond s: x, y\nlaw r = x | s = x");
    settings_.readingsInTime = true;
    step({}, {"r=y"});
    step({}, {"s=y"});
    step({}, {"r=x", "s=y"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 3));
}

// Any two of the three have all four combinations; together they have four of eight.
TEST_F(ExactReadingsTest, ThreeReadingsAreOneGroupWhereAnyTwoAreIndependent)
{
    model(breakable + R"(
        cond r: x, y
        cond s: x, y
        cond t: x, y
        law t = x <-> (r = x <-> s = x))");
    settings_.readingsInTime = true;
    settings_.changing = {{variable("r"), ExactFraction(1, 2)}};
    step({}, {"r=x", "s=x", "t=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 4));
    step({}, {"r=y", "s=y", "t=x"});
    EXPECT_EQ(likelihood(), ExactFraction(1, 6)); // a half, of three others
}

// Of the probability of each what was read first is a third; then it is the modes that remembered it that are left.
TEST_F(ExactReadingsTest, WaysThatRememberOtherReadingsAreKeptApart)
{
    model(R"(
        mode m { a initial b dead fault }
        cond r: x, y, z
        law m = dead -> r = x
        nominal a -> b : 0.5)");
    settings_.readingsInTime = true;
    step({}, {"r=y"});
    step({}, {"r=y"});
    // Stayed twice: 1/4 * 1/3 * 1. To b at the first step: 1/2 * 1/3 * 1. To b at the second step: 1/4 * 1/3 * 1/3.
    EXPECT_EQ(probability("m=a"), ExactFraction(3, 10)); // 3, 6 and 1 of 36
    EXPECT_EQ(probability("m=b"), ExactFraction(7, 10));
    EXPECT_EQ(likelihood(), ExactFraction(10, 12));
    step({}, {"r=z"});
    // v is 0: only those that go to b now read anew.
    EXPECT_EQ(probability("m=b"), ExactFraction(1));
    EXPECT_EQ(likelihood(), ExactFraction(1, 20)); // 3/10 * 1/2 * 1/3
}

} // namespace
