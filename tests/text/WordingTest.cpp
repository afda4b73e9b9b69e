#include "text/Wording.h"

#include <gtest/gtest.h>

using namespace text;

TEST(Wording, GroupsDigitsInThrees)
{
    EXPECT_EQ(grouped(0), "0");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(1000), "1,000");
    EXPECT_EQ(grouped(1234567), "1,234,567");
}

TEST(Wording, CountsInTheSingularAndPlural)
{
    EXPECT_EQ(counted(0, "gate"), "0 gates");
    EXPECT_EQ(counted(1, "gate"), "1 gate");
    EXPECT_EQ(counted(1200, "gate"), "1,200 gates");
}

TEST(Wording, ListsWithAnAnd)
{
    EXPECT_EQ(listed({}), "");
    EXPECT_EQ(listed({"a"}), "a");
    EXPECT_EQ(listed({"a", "b"}), "a and b");
    EXPECT_EQ(listed({"a", "b", "c"}), "a, b and c");
}

TEST(Wording, GivesAlternativesWithAnOr)
{
    EXPECT_EQ(alternatives({"a"}), "a");
    EXPECT_EQ(alternatives({"a", "b"}), "a or b");
    EXPECT_EQ(alternatives({"a", "b", "c"}), "a, b or c");
}
