#include "report/Text.h"

#include <gtest/gtest.h>

using namespace report;

TEST(Text, GivesPercentWithThreeDigits)
{
    EXPECT_EQ(percent(1.0), "100 %");
    EXPECT_EQ(percent(0.5), "50.0 %");
    EXPECT_EQ(percent(1.0 / 6.0), "16.7 %");
    EXPECT_EQ(percent(0.00409836), "0.41 %");
    EXPECT_EQ(percent(0.0), "0 %");
}

TEST(Text, DoesNotTakeTheNearlySureForSure)
{
    EXPECT_EQ(percent(0.9994), "99.9 %");
    EXPECT_EQ(percent(0.99996), ">99.9 %");
    EXPECT_EQ(percent(0.00001), "<0.01 %");
    EXPECT_EQ(percent(1.0 - 1e-12), "100 %") << "the sum of a rounding error is no doubt";
}

TEST(Text, ChangesTheFormOfPercentWhereTheDigitsDo)
{
    EXPECT_EQ(percent(0.09994), "9.99 %");
    EXPECT_EQ(percent(0.09996), "10.0 %");
    EXPECT_EQ(percent(0.00005), "0.01 %");
}

TEST(Text, AlignsByCharactersAndNotByBytes)
{
    EXPECT_EQ(width("größe"), 5U);
    EXPECT_EQ(left("ö", 3) + "|", "ö  |");
    EXPECT_EQ(right("ö", 3), "  ö");
    EXPECT_EQ(left("longer", 3), "longer");
}

TEST(Text, WrapsAtTheWidthOfALine)
{
    const std::string word(38, 'x');
    EXPECT_EQ(wrapped("  ", word + " " + word + "x"), "  " + word + " " + word + "x\n")
        << "80 characters fit";
    EXPECT_EQ(wrapped("  ", word + " " + word + "xx"), "  " + word + "\n  " + word + "xx\n");
}

TEST(Text, GivesAWordThatIsTooLongALineOfItsOwn)
{
    const std::string word(100, 'x');
    EXPECT_EQ(wrapped("- ", "a " + word + " b"), "- a\n  " + word + "\n  b\n");
    EXPECT_EQ(wrapped("- ", ""), "- \n");
}

TEST(Text, DoesNotBreakWhereItMustNot)
{
    const std::string word(70, 'x');
    EXPECT_EQ(wrapped("", word + " predicted" + unbreakable + "1."), word + "\npredicted 1.\n");
}

TEST(Text, ColoursOnlyWhenOn)
{
    EXPECT_EQ(Colours(false).red("text"), "text");
    EXPECT_EQ(Colours(true).red("text"), "\x1b[1;31mtext\x1b[0m");
    EXPECT_EQ(Colours(true).bold(""), "");
}

TEST(Text, ShowsControlCharactersBesideItsColours)
{
    const std::string name = "a\x1b[2Jb\x1b"
                             "c\x1b[31";
    const std::string shown = "a\\x1b[2Jb\\x1b"
                              "c\\x1b[31";
    EXPECT_EQ(Colours(false).printable(name), shown);
    for (const Colours& colours : {Colours(true), Colours(false)}) {
        EXPECT_EQ(colours.printable(colours.red(name) + "\n"), colours.red(shown) + "\n");
    }
    EXPECT_EQ(Colours(false).printable("\x1b[31m"), "\\x1b[31m");
}
