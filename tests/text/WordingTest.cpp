#include "text/Wording.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using text::enumerated;
using text::printable;
using text::Rest;

TEST(Wording, GroupsDigitsByThree)
{
    EXPECT_EQ(text::grouped(0), "0");
    EXPECT_EQ(text::grouped(999), "999");
    EXPECT_EQ(text::grouped(1000), "1,000");
    EXPECT_EQ(text::grouped(1234567), "1,234,567");
    EXPECT_EQ(text::grouped(18446744073709551615U), "18,446,744,073,709,551,615");
}

TEST(Wording, CountsInSingularAndPlural)
{
    EXPECT_EQ(text::counted(0, "gate"), "0 gates");
    EXPECT_EQ(text::counted(1, "gate"), "1 gate");
    EXPECT_EQ(text::counted(2000, "gate"), "2,000 gates");
}

TEST(Wording, JoinsWithAndOrOr)
{
    EXPECT_EQ(text::listed({}), "");
    EXPECT_EQ(text::listed({"a"}), "a");
    EXPECT_EQ(text::listed({"a", "b"}), "a and b");
    EXPECT_EQ(text::listed({"a", "b", "c"}), "a, b and c");
    EXPECT_EQ(text::alternatives({}), "");
    EXPECT_EQ(text::alternatives({"a"}), "a");
    EXPECT_EQ(text::alternatives({"a", "b"}), "a or b");
    EXPECT_EQ(text::alternatives({"a", "b", "c"}), "a, b or c");
}

TEST(Wording, ShowsAllDigitsOfAWholeNumber)
{
    EXPECT_EQ(text::shown(1000001), "1000001");
    EXPECT_EQ(text::shown(-3), "-3");
    EXPECT_EQ(text::shown(1.0000001), "1");
    EXPECT_EQ(text::shown(0.25), "0.25");
    EXPECT_EQ(text::shown(1e12), "1e+12");
}

TEST(Wording, ShowsThatANumberIsAboveALimit)
{
    EXPECT_EQ(text::shownAbove(1.1, 1), "1.1");
    EXPECT_EQ(text::shownAbove(1.0000004, 1), "1.0000004");
    EXPECT_EQ(text::shownAbove(1.00000049, 1), "1.0000005");
    EXPECT_EQ(text::shownAbove(std::nextafter(1.0, 2.0), 1), "1.0000000000000002");
}

TEST(Wording, EnumeratesAllOfAShortList)
{
    EXPECT_EQ(enumerated({}), "");
    EXPECT_EQ(enumerated({"a"}), "a");
    for (const Rest rest : {Rest::ellipsis, Rest::more, Rest::total}) {
        EXPECT_EQ(enumerated({"a", "b", "c"}, 3, rest), "a, b, c");
    }
    EXPECT_EQ(enumerated(std::vector<std::string_view>(12, "x")),
              "x, x, x, x, x, x, x, x, x, x, x, x");
}

TEST(Wording, EnumeratesTheFirstOfALongList)
{
    EXPECT_EQ(enumerated(std::vector<std::string_view>(13, "x")),
              "x, x, x, x, x, x, x, x, x, x, x, x, ...");
    EXPECT_EQ(enumerated({"a", "b", "c"}, 2), "a, b, ...");
    EXPECT_EQ(enumerated({"a", "b", "c"}, 2, Rest::more), "a, b and 1 more");
    EXPECT_EQ(enumerated({"a", "b", "c"}, 2, Rest::total), "a, b, ... (3 in all)");
}

TEST(Wording, ShowsControlCharacters)
{
    EXPECT_EQ(printable("caf\u00e9 \u4e16\n\tx"), "caf\u00e9 \u4e16\n\tx");
    EXPECT_EQ(printable("a\x1b[31mb\x7f\r"), "a\\x1b[31mb\\x7f\\x0d");
    EXPECT_EQ(printable(std::string_view("\0", 1)), "\\x00");
    EXPECT_EQ(printable("\u0080\u009b\u00a0"), "\\u0080\\u009b\u00a0");
    EXPECT_EQ(printable("\x9b"
                        "31m\xe9\xc2"),
              "\\x9b"
              "31m\xe9\xc2");
}

} // namespace
