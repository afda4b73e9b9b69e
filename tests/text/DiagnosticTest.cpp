#include "text/Diagnostic.h"

#include <gtest/gtest.h>

namespace {

using text::Diagnostic;
using text::utf8Length;

Diagnostic errorAt(std::size_t column, std::size_t length, const std::string& line)
{
    Diagnostic error;
    error.file = "pump.itms";
    error.place = {3, column};
    error.message = "wrong";
    error.quote(line, length);
    return error;
}

TEST(SourceErrorTest, ShowsPlaceMessageLineMarkExpectedAndHint)
{
    Diagnostic error = errorAt(5, 4, "law open -> x");
    error.message = "unknown name 'open'";
    error.expected = "a variable";
    error.hint = "did you mean 'opened'?";
    EXPECT_EQ(error.format(), "pump.itms:3:5: unknown name 'open'\n"
                              "  law open -> x\n"
                              "      ^~~~\n"
                              "  expected: a variable\n"
                              "  hint: did you mean 'opened'?\n");
}

TEST(SourceErrorTest, LeavesOutWhatThereIsNot)
{
    Diagnostic error;
    error.file = "pump.itms";
    error.message = "no system";
    EXPECT_EQ(error.format(), "pump.itms: no system\n");
    error.place = {7, 0};
    error.quote("law", 0);
    EXPECT_EQ(error.format(), "pump.itms:7: no system\n  law\n");
}

TEST(SourceErrorTest, MarksOneCharacterAtTheEndOfALine)
{
    EXPECT_EQ(errorAt(4, 0, "law").format(), "pump.itms:3:4: wrong\n  law\n     ^\n");
    EXPECT_EQ(errorAt(1, 0, "").format(), "pump.itms:3:1: wrong\n  ^\n");
}

TEST(SourceErrorTest, EndsTheMarkWithTheLine)
{
    EXPECT_EQ(errorAt(2, 100, "law").format(), "pump.itms:3:2: wrong\n  law\n   ^~\n");
}

TEST(SourceErrorTest, CountsCharactersAndNotBytesUnderTheLine)
{
    EXPECT_EQ(errorAt(3, 5, "\u00E9\u20AC\u00E4x").format(),
              "pump.itms:3:3: wrong\n  \u00E9\u20AC\u00E4x\n   ^~\n");
}

TEST(SourceErrorTest, ShowsTabsAsSpacesAndWhatIsNotPrintableAsQuestionMarks)
{
    EXPECT_EQ(errorAt(5, 1, "\ta\x01\x7F\xFFz").source, " a???z");
    EXPECT_EQ(errorAt(1, 1, "a\u200Bb\u00A0c\uFEFF").source, "a?b?c?");
}

TEST(SourceErrorTest, CutsALongLineBehindAPlaceNearItsStart)
{
    const Diagnostic error = errorAt(70, 3, std::string(300, 'x'));
    EXPECT_EQ(error.source, std::string(100, 'x') + "...");
    EXPECT_EQ(error.caret, 69U);
    EXPECT_EQ(error.marked, 3U);
}

TEST(SourceErrorTest, CutsALongLineAroundAPlaceFarOut)
{
    const Diagnostic error = errorAt(201, 1, std::string(200, 'a') + "b" + std::string(200, 'c'));
    EXPECT_EQ(error.source, "..." + std::string(50, 'a') + "b" + std::string(46, 'c') + "...");
    EXPECT_EQ(error.source[error.caret], 'b');
}

TEST(SourceErrorTest, DoesNotCutThroughACharacter)
{
    std::string line;
    for (int i = 0; i < 100; ++i) {
        line += "\u20AC";
    }
    for (std::size_t column = 240; column < 250; ++column) {
        EXPECT_EQ(errorAt(column, 1, line).source.find('?'), std::string::npos) << column;
    }
}

TEST(Quoted, CutsAfterSixtyCharacters)
{
    EXPECT_EQ(text::quoted("a b"), "'a b'");
    EXPECT_EQ(text::quoted(std::string(60, 'a')), "'" + std::string(60, 'a') + "'");
    EXPECT_EQ(text::quoted(std::string(61, 'a')), "'" + std::string(60, 'a') + "...'");
    EXPECT_EQ(text::quoted("a\nb"), "'a?b'");
    EXPECT_EQ(text::quoted(""), "''");
}

TEST(Utf8Length, IsThatOfTheFirstCharacter)
{
    EXPECT_EQ(utf8Length("ab"), 1U);
    EXPECT_EQ(utf8Length("\u00E9x"), 2U);
    EXPECT_EQ(utf8Length("\u20ACx"), 3U);
    EXPECT_EQ(utf8Length("\U0001F600x"), 4U);
    EXPECT_EQ(utf8Length(std::string_view("\0", 1)), 1U);
}

TEST(Utf8Length, IsZeroForWhatIsNotUtf8)
{
    for (const std::string_view bytes :
         {"\x80", "\xBF", "\xC1\x80", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
        EXPECT_EQ(utf8Length(bytes), 0U);
    }
}

} // namespace
