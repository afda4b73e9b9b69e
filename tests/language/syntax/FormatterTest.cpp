// The layout of model files, and that laying out changes neither what a file says nor what is laid out already.
#include "language/syntax/Formatter.h"
#include "language/syntax/Parser.h"
#include "tests/language/syntax/SyntaxText.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using text::SourceText;

std::string formatted(const std::string& text)
{
    const language::Formatted result = language::format(SourceText("model.itms", text));
    std::string reported;
    for (const auto& error : result.errors) {
        reported += error.format();
    }
    return reported.empty() ? result.text : reported;
}

std::string treeOf(const std::string& text)
{
    return language::syntaxText(language::parse(SourceText("model.itms", text)).file);
}

// The layout, after the checks that hold for every file.
std::string checked(const std::string& text)
{
    std::string once = formatted(text);
    EXPECT_EQ(formatted(once), once);
    EXPECT_EQ(treeOf(once), treeOf(text));
    return once;
}

TEST(Formatter, SeparatesTokensByOneBlankOrNone)
{
    EXPECT_EQ(
        checked("component  C ( p=0.1 ,q ){law ! ( a=b )&cell [ i + 1 ] . x in{ a,b }  law x=y}"),
        "component C(p = 0.1, q) {\n    law !(a = b) & cell[i+1].x in {a, b}\n    law x = y\n}\n");
    EXPECT_EQ(checked("const p=-1+2*- (3-x)"), "const p = -1 + 2 * -(3 - x)\n");
}

TEST(Formatter, AlignsNeighbouringStatementsOfAKind)
{
    EXPECT_EQ(
        checked("component C {\ncond a: x, y\ncommand longer: z\n\ncond b: x, y\n}\n"),
        "component C {\n    cond    a:      x, y\n    command longer: z\n\n    cond b: x, y\n}\n");
    EXPECT_EQ(checked("component C {\nnominal closed -> open when r = open : 0.9\nnominal open -> "
                      "closed when r = close : 0.9\n"
                      "fault any -> stuckClosed : 0.1\n}\n"),
              "component C {\n"
              "    nominal closed -> open   when r = open  : 0.9\n"
              "    nominal open   -> closed when r = close : 0.9\n"
              "    fault   any    -> stuckClosed : 0.1\n"
              "}\n");
    EXPECT_EQ(checked("system S {\nobserve a.bc from \"X\": u<1<=v\ncommand d from \"YY\": w=1,z "
                      "otherwise\n}\n"),
              "system S {\n"
              "    observe a.bc from \"X\"  : u < 1 <= v\n"
              "    command d    from \"YY\" : w = 1, z otherwise\n"
              "}\n");
}

TEST(Formatter, AlignsInputsWithObservationsAndRepairsWithFaults)
{
    EXPECT_EQ(
        checked("system S {\nobserve a.bc from \"X\": u<1<=v hold 5s varies(1-p)per h\ninput d "
                "from \"YY\": w=1\n}\n"),
        "system S {\n"
        "    observe a.bc from \"X\"  : u < 1 <= v hold 5 s varies (1 - p) per h\n"
        "    input   d    from \"YY\" : w = 1\n"
        "}\n");
    EXPECT_EQ(checked("system S {\nfor i in 0..3: observe a[i] varies (p)\n}\n"),
              "system S {\n    for i in 0..3: observe a[i] varies (p)\n}\n");
    EXPECT_EQ(checked("component C {\nfault any -> stuck : 0.1\nrepair stuck -> ok : 1 per d\n}\n"),
              "component C {\n"
              "    fault  any   -> stuck : 0.1\n"
              "    repair stuck -> ok    : 1 per d\n"
              "}\n");
}

TEST(Formatter, SeparatesWhatIsComputedFromChannels)
{
    EXPECT_EQ(
        checked(
            "system S{observe a.b from(\"A\"-\"B\")/-\"C\":low<mean ( \"D\" )over 5 min+1<=high "
            "within(1+1) for 2 min settled 3 min after\"E\" , \"F\"\n"
            "observe c from \"A\"ago 5 s:x<max(\"D\",2)<=y varies(0.1)}"),
        "system S {\n"
        "    observe a.b from (\"A\" - \"B\") / -\"C\" : low < mean(\"D\") over 5 min + 1 <= high "
        "within (1 + 1) for 2 min settled 3 min after \"E\", \"F\"\n"
        "    observe c   from \"A\" ago 5 s        : x < max(\"D\", 2) <= y varies (0.1)\n"
        "}\n");
}

TEST(Formatter, KeepsABlockOfOneLineOnOneLine)
{
    EXPECT_EQ(checked("component C {\nmode m { a initial b fault }\nmode n {\na b fault }\nt: T { "
                      "initially x=y }\n}\n"),
              "component C {\n"
              "    mode m { a initial, b fault }\n"
              "    mode n {\n        a\n        b fault\n    }\n"
              "    t: T { initially x = y }\n"
              "}\n");
}

TEST(Formatter, KeepsOneBlankLineOfSeveralAndNoneAtTheEndsOfABlock)
{
    EXPECT_EQ(
        checked("\n\nconst a = 1\n\n\n\nconst b = 1\ncomponent C {\n\n\nlaw x = y\n\n}\n\n\n"),
        "const a = 1\n\nconst b = 1\ncomponent C {\n    law x = y\n}\n");
}

TEST(Formatter, KeepsComments)
{
    EXPECT_EQ(checked("// head  \ncomponent C { // C\n/* first\n  * second */\nlaw a = b // "
                      "why\nlaw ccc = d /* 1 */ // 2\n"
                      "// last\n} // end\n// \xC3\xA4"),
              "// head\n"
              "component C {  // C\n"
              "    /* first\n"
              "     * second */\n"
              "    law a = b    // why\n"
              "    law ccc = d  /* 1 */ // 2\n"
              "    // last\n"
              "}  // end\n"
              "// \xC3\xA4\n");
}

TEST(Formatter, KeepsTheBreaksWithinAStatement)
{
    EXPECT_EQ(checked("component C {\nlaw a = b &\n// why\nc = d // or\n| e /* in */ = f\n}\n"),
              "component C {\n"
              "    law a = b &\n"
              "            // why\n"
              "            c = d // or\n"
              "            | e /* in */ = f\n"
              "}\n");
}

TEST(Formatter, WritesLinesThatEndInOneCharacter)
{
    EXPECT_EQ(checked("\xEF\xBB\xBF"
                      "const a = 1 // x\r\nconst b = 2\r\n"),
              "const a = 1  // x\nconst b = 2\n");
}

TEST(Formatter, LaysOutNothingThatHasErrors)
{
    EXPECT_EQ(formatted("const = 1\n"),
              "model.itms:1:7: unexpected '=' in a constant\n  const = 1\n        ^\n"
              "  expected: a name\n");
}

// A file with everything in it, cut into tokens that are put together with other blanks, line ends and comments between them.
TEST(Formatter, KeepsTheTreeHoweverAFileIsBroken)
{
    const std::vector<std::string> tokens{
        "import",    "\"a\"",   "const",  "p",      "=",       "1",       "-",       "2",
        "component", "C",       "(",      "q",      "=",       "p",       ")",       "{",
        "mode",      "m",       "{",      "a",      "initial", "b",       "fault",   "}",
        "cond",      "x",       ":",      "u",      ",",       "v",       "command", "c",
        ":",         "n",       ",",      "o",      "lost",    "0.1",     "law",     "x",
        "in",        "{",       "u",      ",",      "v",       "}",       "->",      "!",
        "(",         "x",       "=",      "u",      ")",       "nominal", "a",       "->",
        "a",         "when",    "c",      "=",      "o",       ":",       "0.5",     "per",
        "h",         "idle",    "any",    "part",   "[",       "3",       "]",       ":",
        "D",         "(",       "q",      "=",      "2",       ")",       "{",       "initially",
        "y",         "=",       "z",      "}",      "}",       "system",  "S",       "{",
        "step",      "1",       "s",      "for",    "i",       "in",      "0",       "..",
        "3",         ":",       "for",    "j",      "in",      "0",       "..",      "3",
        ":",         "observe", "x",      "[",      "i",       "+",       "j",       "]",
        "from",      "\"A\"",   ":",      "a",      "<",       "1",       "<=",      "b",
        "hold",      "5",       "s",      "varies", "(",       "2",       "-",       "p",
        ")",         "per",     "h",      "input",  "y",       "from",    "\"B\"",   "varies",
        ":",         "D",       "repair", "b",      "->",      "a",       ":",       "0.5",
        "for",       "k",       "in",     "0",      "..",      "p",       "{",       "law",
        "x",         "[",       "k",      "]",      "=",       "y",       "}",       "}"};
    const std::vector<std::string> between{
        " ", " ", " ", " ", " ", "\n", "\n\n", "  ", " /* c */ ", " // c\n", "\n// c\n", "/*\n*/"};
    constexpr unsigned seed = 4711;
    std::mt19937 random(seed);
    std::string plain;
    for (const std::string& token : tokens) {
        plain += token + " ";
    }
    ASSERT_EQ(formatted(plain).find("model.itms"), std::string::npos) << formatted(plain);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (const std::string& token : tokens) {
            text += token + between[random() % between.size()];
        }
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round) + "\n" +
                     text);
        const std::string once = checked(text);
        EXPECT_EQ(treeOf(once), treeOf(plain));
        const auto count = [](const std::string& in, const std::string& what) {
            std::size_t found = 0;
            for (std::size_t at = in.find(what); at != std::string::npos;
                 at = in.find(what, at + 1)) {
                ++found;
            }
            return found;
        };
        EXPECT_EQ(count(once, "// c"), count(text, "// c"));
        EXPECT_EQ(count(once, "/*"), count(text, "/*"));
    }
}

} // namespace
