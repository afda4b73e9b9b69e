// The words of the language, and that the editors know them.
#include "language/Words.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

namespace {

std::string contents(const std::string& path)
{
    std::ifstream in(std::string(ITMS_ROOT) + "/" + path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool hasWord(const std::string& text, std::string_view word)
{
    return std::regex_search(text, std::regex("[ (|]" + std::string(word) + "[\\s)|]"));
}

TEST(Words, AreKnownToTheEditors)
{
    const std::string vim = contents("editors/vim/syntax/itms.vim");
    const std::string code = contents("editors/vscode/syntaxes/itms.tmLanguage.json");
    ASSERT_FALSE(language::reservedWords().empty());
    for (const std::string_view word : language::reservedWords()) {
        EXPECT_TRUE(hasWord(vim, word)) << word;
        EXPECT_TRUE(hasWord(code, word)) << word;
    }
}

TEST(Words, ThatAreReservedAreNotUnits)
{
    EXPECT_TRUE(language::isReserved("mode"));
    EXPECT_FALSE(language::isReserved("Mode"));
    for (const std::string_view unit : language::timeUnits()) {
        EXPECT_FALSE(language::isReserved(unit)) << unit;
    }
}

TEST(Words, UnitsHaveTheirSeconds)
{
    EXPECT_EQ(language::secondsOf("ms"), 0.001);
    EXPECT_EQ(language::secondsOf("s"), 1.0);
    EXPECT_EQ(language::secondsOf("minutes"), 60.0);
    EXPECT_EQ(language::secondsOf("h"), 3600.0);
    EXPECT_EQ(language::secondsOf("day"), 86400.0);
    EXPECT_FALSE(language::secondsOf("week").has_value());
}

} // namespace
