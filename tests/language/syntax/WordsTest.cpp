// The words of the language, and that the editors know them.
#include "language/syntax/Words.h"
#include "language/syntax/Token.h"

#include <fstream>
#include <gtest/gtest.h>
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
    const auto among = [](char character, std::string_view set) {
        return set.find(character) != std::string_view::npos;
    };
    for (std::size_t at = text.find(word, 1); at != std::string::npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if (among(text[at - 1], " (|") && end < text.size() && among(text[end], " \t\r\n)|")) {
            return true;
        }
    }
    return false;
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

TEST(Words, ThatAreSoftAreKnownToTheEditorsAndReadAsNames)
{
    const std::string vim = contents("editors/vim/syntax/itms.vim");
    const std::string code = contents("editors/vscode/syntaxes/itms.tmLanguage.json");
    ASSERT_FALSE(language::softWords().empty());
    for (const std::string_view word : language::softWords()) {
        EXPECT_EQ(language::wordKind(word), language::TokenKind::name) << word;
        EXPECT_TRUE(hasWord(vim, word)) << word;
        EXPECT_TRUE(hasWord(code, word)) << word;
    }
}

TEST(Words, ThatAreUnitsAndFunctionsAreKnownToTheEditors)
{
    const std::string vim = contents("editors/vim/syntax/itms.vim");
    const std::string code = contents("editors/vscode/syntaxes/itms.tmLanguage.json");
    for (const std::string_view word : {"week", "month", "year"}) {
        EXPECT_NE(vim.find(word), std::string::npos) << word;
        EXPECT_NE(code.find(word), std::string::npos) << word;
    }
    for (const language::ChannelFunction& function : language::channelFunctions()) {
        EXPECT_TRUE(hasWord(vim, function.name)) << function.name;
        EXPECT_TRUE(hasWord(code, function.name)) << function.name;
    }
}

TEST(Words, ThatAreReservedAreNotUnits)
{
    EXPECT_EQ(language::wordKind("mode"), language::TokenKind::modeWord);
    EXPECT_EQ(language::wordKind("Mode"), language::TokenKind::name);
    for (const std::string_view unit : language::timeUnits()) {
        EXPECT_EQ(language::wordKind(unit), language::TokenKind::name) << unit;
    }
}

TEST(Words, UnitsHaveTheirSeconds)
{
    EXPECT_EQ(language::secondsOf("ms"), 0.001);
    EXPECT_EQ(language::secondsOf("s"), 1.0);
    EXPECT_EQ(language::secondsOf("minutes"), 60.0);
    EXPECT_EQ(language::secondsOf("h"), 3600.0);
    EXPECT_EQ(language::secondsOf("day"), 86400.0);
    EXPECT_EQ(language::secondsOf("week"), 7 * 86400.0);
    EXPECT_EQ(language::secondsOf("months"), 30 * 86400.0);
    EXPECT_EQ(language::secondsOf("year"), 365 * 86400.0);
    EXPECT_FALSE(language::secondsOf("fortnight").has_value());
}

} // namespace
