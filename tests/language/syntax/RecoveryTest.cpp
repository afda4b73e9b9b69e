// After a mistake the parser goes on: which mistakes of a file are reported, and what of the file is in the tree all the same.
#include "language/syntax/Parser.h"
#include "tests/language/syntax/SyntaxText.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using text::SourceText;

std::vector<std::size_t> linesOfErrors(const std::string& text,
                                       const language::syntax::Limits& limits = {})
{
    std::vector<std::size_t> lines;
    for (const auto& error : language::parse(SourceText("model.itms", text), limits).errors) {
        lines.push_back(error.place.line);
    }
    return lines;
}

using Lines = std::vector<std::size_t>;

TEST(Recovery, TellsEveryMistakeOfAFileOnce)
{
    EXPECT_EQ(linesOfErrors(
                  "component C {\n law a\n cond x y\n mode m { a }\n fault a b\n}\nconst = 3\n"),
              (Lines{2, 3, 5, 7}));
}

TEST(Recovery, KeepsTheStatementsAroundAMistake)
{
    const auto parsed =
        language::parse(SourceText("m", "component C {\n law a = b\n law c\n law d = e\n}\n"));
    EXPECT_EQ(language::syntaxText(parsed.file),
              "(component C\n  (law (= a b))\n  (law (= d e))\n)\n");
}

TEST(Recovery, PassesOverTheBracesOfABadHead)
{
    EXPECT_EQ(linesOfErrors("compnent C {\n law a\n mode m { x }\n}\ncomponent D {\n law b\n}\n"),
              (Lines{1, 6}));
}

TEST(Recovery, PassesOverTheOtherLinesOfABadStatement)
{
    EXPECT_EQ(linesOfErrors("component C {\n law a = = b &\n     c = = d &\n     e\n law f\n}\n"),
              (Lines{2, 5}));
}

TEST(Recovery, FindsTheNextStatementBehindAnOpenListOfValues)
{
    EXPECT_EQ(linesOfErrors("component C {\n mode m {\n  a\n  b\n law x = y\n law z\n}\n"),
              (Lines{4, 6}));
}

TEST(Recovery, FindsTheNextComponentBehindAnOpenOne)
{
    EXPECT_EQ(linesOfErrors("component C {\n law a = b\n\ncomponent D {\n law c\n}\n"),
              (Lines{1, 5}));
}

TEST(Recovery, IsSilentAboutAStatementWithBytesThatAreNoToken)
{
    EXPECT_EQ(linesOfErrors("component C {\n law a # b\n law c = \"x\n law d\n}\n"),
              (Lines{2, 3, 4}));
}

TEST(Recovery, TellsAFileThatBreaksOffOnce)
{
    EXPECT_EQ(linesOfErrors("component C {\n law a = b &"), (Lines{2}));
    EXPECT_EQ(linesOfErrors("component C {\n law a = b /* to be continued"), (Lines{2}));
}

TEST(Recovery, ReportsTheFirstTokenOfAFileBehindAComment)
{
    EXPECT_EQ(linesOfErrors("// C\n= D\n"), (Lines{2}));
    EXPECT_EQ(linesOfErrors("/* C */ &&"), (Lines{1}));
}

TEST(Recovery, StopsAtTheLimitAndSaysSo)
{
    language::syntax::Limits limits;
    limits.errors = 3;
    std::string text = "component C {\n";
    for (int i = 0; i < 10; ++i) {
        text += " law a\n";
    }
    const auto parsed = language::parse(SourceText("model.itms", text + "}\n"), limits);
    ASSERT_EQ(parsed.errors.size(), 4U);
    EXPECT_EQ(parsed.errors[2].place.line, 4U);
    EXPECT_EQ(parsed.errors[3].format(),
              "model.itms: there may be more errors: only the first 3 are told\n");
}

TEST(Recovery, RefusesAFileThatIsTooLarge)
{
    language::syntax::Limits limits;
    limits.fileBytes = 10;
    const auto parsed = language::parse(SourceText("model.itms", "// 12345678"), limits);
    ASSERT_EQ(parsed.errors.size(), 1U);
    EXPECT_EQ(parsed.errors[0].format(), "model.itms: a file of 11 bytes\n  expected: at most 10\n"
                                         "  hint: divide it and use 'import'\n");
}

TEST(Recovery, BoundsTheDepthOfEveryKindOfNesting)
{
    const auto repeated = [](const std::string& text, std::size_t count) {
        std::string all;
        for (std::size_t i = 0; i < count; ++i) {
            all += text;
        }
        return all;
    };
    constexpr std::size_t many = 50000;
    EXPECT_EQ(linesOfErrors("component C {\nlaw " + repeated("(", many) + "\n}").front(), 2U);
    EXPECT_EQ(linesOfErrors("component C {\nlaw " + repeated("!", many) + "\n}").front(), 2U);
    EXPECT_EQ(linesOfErrors("component C {\n" + repeated("for i in 0..1: ", many) + "\n}").front(),
              2U);
    EXPECT_EQ(linesOfErrors("component C {\n" + repeated("for i in 0..1 {", many) + "\n}").front(),
              2U);
    EXPECT_EQ(linesOfErrors("const c = " + repeated("-", many) + "1"), (Lines{1}));
    EXPECT_EQ(linesOfErrors("const c = 1" + repeated(" + 1", many)), (Lines{1}));
    EXPECT_EQ(linesOfErrors("const c = " + repeated("(", many) + "1"), (Lines{1}));
}

// A file from which one token is taken, or in which one stands twice: no crash, and no error but in a file that has one.
TEST(Recovery, ReadsFilesWithATokenTooManyOrTooFew)
{
    const std::vector<std::string> tokens{
        "import", "\"a\"",   "\nconst",  "p",        "=",         "1",         "\ncomponent",
        "C",      "(",       "q",        ")",        "{",         "\nmode",    "m",
        "{",      "a",       "initial",  "}",        "\nlaw",     "x",         "in",
        "{",      "a",       ",",        "b",        "}",         "->",        "!",
        "y",      "=",       "z",        "\nrepair", "b",         ",",         "c",
        "->",     "a",       ":",        "0.1",      "\nnominal", "a",         "->",
        "b",      "when",    "x",        "=",        "y",         ":",         "0.5",
        "per",    "h",       "\npart",   "[",        "3",         "]",         ":",
        "C",      "\n}",     "\nsystem", "S",        "{",         "\nfor",     "i",
        "in",     "0",       "..",       "3",        "{",         "\nobserve", "x",
        "from",   "\"A\"",   ":",        "a",        "<",         "1",         "<=",
        "b",      "hold",    "5",        "s",        "varies",    "2",         "per",
        "h",      "\ninput", "y",        "from",     "\"B\"",     "\n}",       "\n}"};
    const auto join = [](const std::vector<std::string>& list) {
        std::string text;
        for (const std::string& token : list) {
            text += token + " ";
        }
        return text;
    };
    ASSERT_EQ(linesOfErrors(join(tokens)), Lines{});
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        std::vector<std::string> fewer = tokens;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_LE(linesOfErrors(join(fewer)).size(), 4U) << join(fewer);
        std::vector<std::string> more = tokens;
        more.insert(more.begin() + static_cast<std::ptrdiff_t>(i), tokens[i]);
        EXPECT_LE(linesOfErrors(join(more)).size(), 4U) << join(more);
    }
}

TEST(Recovery, EndsForAnySequenceOfTokens)
{
    const std::vector<std::string> pieces{
        "component", "system", "{",       "}",       "(",          ")",      "[",     "]",   "law",
        "a",         "b",      "=",       "->",      "\n",         ":",      ",",     "for", "in",
        "0..3",      "mode",   "observe", "from",    "\"x",        "\"y\"",  "/*",    "*/",  "//",
        "0.5",       "fault",  "any",     "nominal", "idle",       "<",      "<=",    "&",   "\xFF",
        "initially", "!",      "import",  "input",   "measurable", "repair", "varies"};
    constexpr unsigned seed = 20240611;
    std::mt19937 random(seed);
    for (int round = 0; round < 1000; ++round) {
        std::string text;
        for (int i = 0; i < 40; ++i) {
            text += pieces[random() % pieces.size()] + " ";
        }
        EXPECT_LE(linesOfErrors(text).size(), 101U) << "seed " << seed << ", round " << round;
    }
}

} // namespace
