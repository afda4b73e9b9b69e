// What the parser makes of each construct. The tree is compared as the text that syntaxText() writes.
#include "language/syntax/Parser.h"
#include "tests/language/syntax/SyntaxText.h"

#include <gtest/gtest.h>

namespace {

using text::SourceText;

std::string tree(const std::string& text)
{
    const language::ParsedFile parsed = language::parse(SourceText("model.itms", text));
    std::string reported;
    for (const auto& error : parsed.errors) {
        reported += error.format();
    }
    return reported.empty() ? language::syntaxText(parsed.file) : reported;
}

// The tree of a statement in a component, or in a system.
std::string member(const std::string& statement, const std::string& head = "component C {")
{
    std::string text = tree(head + "\n" + statement + "\n}\n");
    const std::size_t begin = text.find("\n  ");
    const std::size_t end = text.rfind("\n)");
    return begin == std::string::npos || end == std::string::npos
               ? text
               : text.substr(begin + 3, end - begin - 3);
}
std::string systemMember(const std::string& statement)
{
    return member(statement, "system S {");
}
std::string formula(const std::string& text)
{
    return member("law " + text);
}

TEST(Parser, ReadsAnEmptyFile)
{
    EXPECT_EQ(tree(""), "");
    EXPECT_EQ(tree("\n // nothing \n"), "");
}

TEST(Parser, ReadsImportsAndConstants)
{
    EXPECT_EQ(tree("import \"a\\\"b\\\\c.itms\" const p = 0.004"),
              "(import \"a\"b\\c.itms\")\n(const p 0.004)\n");
}

TEST(Parser, ComputesFromLeftToRightAndProductsFirst)
{
    EXPECT_EQ(tree("const p = 1 - 2 - 3 * -x / (4 + 1e-3)"),
              "(const p (- (- 1 2) (/ (* 3 (- x)) (+ 4 0.001))))\n");
}

TEST(Parser, ReadsParametersWithAndWithoutDefault)
{
    EXPECT_EQ(tree("component C(p, q = 0.5) { }"), "(component C (p) (q 0.5)\n)\n");
}

TEST(Parser, ReadsValuesInBracesAndAfterAColonAlike)
{
    EXPECT_EQ(member("mode m { a initial\n b\n c fault }"), "(mode m a/initial b c/fault)");
    EXPECT_EQ(member("mode m { a initial, b, c fault }"), "(mode m a/initial b c/fault)");
    EXPECT_EQ(member("mode m: a initial, b, c fault"), "(mode m a/initial b c/fault)");
}

TEST(Parser, ReadsACommandThatCanBeLost)
{
    EXPECT_EQ(member("command r: none, open lost 0.01"), "(command r none open (lost 0.01))");
}

TEST(Parser, TellsTheMarkFaultFromTheTransition)
{
    EXPECT_EQ(member("mode m: a, b fault\nfault a -> b : 0.1"),
              "(mode m a b/fault)\n  (fault (a) b (p 0.1))");
    EXPECT_EQ(member("mode m: a, b\nfault any -> b : 0.1"),
              "(mode m a b)\n  (fault any b (p 0.1))");
    EXPECT_EQ(member("mode m: a, b fault fault a, c -> b"),
              "(mode m a b/fault)\n  (fault (a c) b)");
}

TEST(Parser, BindsNotBeforeAndBeforeOrBeforeArrows)
{
    EXPECT_EQ(formula("!a = b & c != d | e in {f, g} -> h.i[2] = j"),
              "(law (-> (| (& (! (= a b)) (!= c d)) (in e f g)) (= h.i[2] j)))");
    EXPECT_EQ(formula("not a = b and c = d or e = f <-> (g = h)"),
              "(law (<-> (| (& (! (= a b)) (= c d)) (= e f)) (= g h)))");
}

TEST(Parser, KeepsConjunctionsOfManyOperandsFlat)
{
    EXPECT_EQ(formula("a = b & c = d & e = f"), "(law (& (= a b) (= c d) (= e f)))");
    EXPECT_EQ(formula("(a = b & c = d) & e = f"), "(law (& (& (= a b) (= c d)) (= e f)))");
}

TEST(Parser, ReadsTransitions)
{
    EXPECT_EQ(member("nominal closed -> open when request = open : 0.99"),
              "(nominal (closed) open (when (= request open)) (p 0.99))");
    EXPECT_EQ(member("fault position = closed, open -> stuck : 0.25 per hour"),
              "(fault (of position) (closed open) stuck (p 0.25 hour))");
    EXPECT_EQ(member("fault any -> stuck : p per step"), "(fault any stuck (p p step))");
    EXPECT_EQ(member("idle any"), "(idle any)");
    EXPECT_EQ(member("idle closed, open : 0.5"), "(idle (closed open) (p 0.5))");
}

TEST(Parser, ReadsPartsArraysArgumentsAndInitialValues)
{
    EXPECT_EQ(member("cell[2 * n]: Cell(p = 0.1, q = 2) { initially a.b = c initially d = e }"),
              "(part cell[(* 2 n)] Cell (p 0.1) (q 2) (initially a.b c) (initially d e))");
    EXPECT_EQ(member("initially tank.level = high"), "(initially tank.level high)");
}

TEST(Parser, ReadsLoopsOfOneStatementAndOfSeveral)
{
    EXPECT_EQ(member("for i in 0..6: law cell[i].out = cell[i+1].in_"),
              "(for i 0 6\n    (law (= cell[i].out cell[(+ i 1)].in_))\n  )");
    EXPECT_EQ(
        systemMember(
            "for i in 0..6 { observe c[i].out from \"T-{i}\" for j in 0..i: law a[i] = b[j] }"),
        "(for i 0 6\n    (observe c[i].out \"T-{i}\")\n    (for j 0 i\n      (law (= a[i] b[j]))\n "
        "   )\n  )");
}

TEST(Parser, ReadsThresholds)
{
    EXPECT_EQ(
        systemMember(
            "observe t.p from \"PT\" : low < 1.2 <= nominal <= 4.5 < high within 0.1 hold 5 s"),
        "(observe t.p \"PT\" (low < 1.2 <= nominal <= 4.5 < high within 0.1) (hold 5 s))");
}

TEST(Parser, ReadsReadingsOfNumbersAndTexts)
{
    EXPECT_EQ(systemMember("command v.r from \"XV\" : open = 1, close = \"CL\", none otherwise"),
              "(command v.r \"XV\" (open 1) (close \"CL\") (none otherwise))");
}

TEST(Parser, TellsACommandOfTheSystemFromOneThatIsBound)
{
    EXPECT_EQ(systemMember("command r: none, open"), "(command r none open)");
    EXPECT_EQ(systemMember("command r from \"R\""), "(command r \"R\")");
    EXPECT_EQ(systemMember("command r : none = 0, open = 1"), "(command r (none 0) (open 1))");
    EXPECT_EQ(systemMember("command v.r"), "(command v.r)");
}

TEST(Parser, ReadsTheLengthOfAStep)
{
    EXPECT_EQ(systemMember("step 0.5s"), "(step 0.5 s)");
}

TEST(Parser, TakesWordsForValuesWhereNothingElseIsMeant)
{
    EXPECT_EQ(member("cond p: low, nominal, hold\nlaw p = nominal\nidle nominal"),
              "(cond p low nominal hold)\n  (law (= p nominal))\n  (idle (nominal))");
    EXPECT_EQ(member("mode m {\n idle initial\n lost fault\n}\nnominal idle -> lost"),
              "(mode m idle/initial lost/fault)\n  (nominal (idle) lost)");
}

TEST(Parser, IgnoresLineEndsByteOrderMarkAndComments)
{
    EXPECT_EQ(tree("\xEF\xBB\xBF// \xC3\xA4\r\ncomponent\r\nC /* { */ {\r\n}\r\n"),
              "(component C\n)\n");
}

TEST(Parser, GivesEachNodeItsPlace)
{
    const SourceText source("model.itms",
                            "component C {\n\tlaw (a = b) -> c.d != e  // remark\n}\n", 7);
    const language::ParsedFile parsed = language::parse(source);
    const auto& component = std::get<language::syntax::Component>(parsed.file.declarations.at(0));
    const auto& law = std::get<language::syntax::Law>(component.members.at(0));
    EXPECT_EQ(source.at(component.name.range), "C");
    EXPECT_EQ(source.at(component.range), "component C {\n\tlaw (a = b) -> c.d != e  // remark\n}");
    EXPECT_EQ(source.at(law.range), "law (a = b) -> c.d != e");
    EXPECT_EQ(source.at(law.formula.operands.at(0).range), "(a = b)");
    EXPECT_EQ(source.at(law.formula.operands.at(1).left.range), "c.d");
    EXPECT_EQ(law.range.file, 7U);
    EXPECT_EQ(law.range.line, 2U);
    EXPECT_EQ(law.range.column, 2U);
}

TEST(Parser, TakesTimeProportionalToTheText)
{
    // Far more than any reader that is quadratic in statements or in the length of one could do in the time of a test.
    std::string text = "component C {\n law a = b";
    for (int i = 0; i < 20000; ++i) {
        text += " & a" + std::to_string(i) + " = b | !c = d";
    }
    text += "\n";
    for (int i = 0; i < 20000; ++i) {
        text += " p" + std::to_string(i) + ": Part\n law x = \n";
    }
    const language::ParsedFile parsed = language::parse(SourceText("model.itms", text));
    EXPECT_EQ(parsed.errors.size(), 101U);
}

} // namespace
