// `input`, `measurable`, `repair` and `varies`: words where they begin something, names everywhere else.
#include "language/Reader.h"
#include "language/syntax/Parser.h"
#include "tests/language/Reported.h"
#include "tests/language/syntax/SyntaxText.h"

#include <gtest/gtest.h>

namespace {

std::string treeOfModel(const std::string& text)
{
    const language::ParsedFile parsed = language::parse(text::SourceText("model.itms", text));
    return parsed.errors.empty() ? language::syntaxText(parsed.file) : ::reported(parsed.errors);
}

std::string inSystem(const std::string& statements)
{
    return treeOfModel("system S {\n" + statements + "\n}\n");
}

std::string systemTree(const std::string& statements)
{
    return "(system S\n" + statements + ")\n";
}

TEST(SoftWords, InputBeginsABinding)
{
    EXPECT_EQ(inSystem("input flow"), systemTree("  (input flow)\n"));
    EXPECT_EQ(inSystem("input t.p from \"PT\" : low < 1.2 <= high within 0.1 hold 5 s"),
              systemTree("  (input t.p \"PT\" (low < 1.2 <= high within 0.1) (hold 5 s))\n"));
    EXPECT_EQ(inSystem("input cell[0].v : on = 1, off otherwise"),
              systemTree("  (input cell[0].v (on 1) (off otherwise))\n"));
    EXPECT_EQ(inSystem("for i in 0..3: input c[i].out from \"T-{i}\""),
              systemTree("  (for i 0 3\n    (input c[i].out \"T-{i}\")\n  )\n"));
}

TEST(SoftWords, MeasurableBeginsADeclarationOfAVariable)
{
    EXPECT_EQ(inSystem("measurable flow\nmeasurable: Meter"),
              systemTree("  (measurable flow)\n  (part measurable Meter)\n"));
    EXPECT_EQ(inSystem("for i in 0..3: measurable c[i].out"),
              systemTree("  (for i 0 3\n    (measurable c[i].out)\n  )\n"));
    EXPECT_EQ(inSystem("law a = measurable measurable measurable.x"),
              systemTree("  (law (= a measurable))\n  (measurable measurable.x)\n"));
}

TEST(SoftWords, VariesIsTheLastPartOfABinding)
{
    EXPECT_EQ(inSystem("observe a varies 0.1"), systemTree("  (observe a (varies 0.1))\n"));
    EXPECT_EQ(inSystem("observe a from \"A\" varies 2 * p per step"),
              systemTree("  (observe a \"A\" (varies (* 2 p) step))\n"));
    EXPECT_EQ(inSystem("observe a : u < 1 <= v within 0.1 hold 5 s varies 2 per hour"),
              systemTree("  (observe a (u < 1 <= v within 0.1) (hold 5 s) (varies 2 hour))\n"));
    EXPECT_EQ(inSystem("observe a : u = 1, v otherwise\n varies (1 - p)\nobserve b"),
              systemTree("  (observe a (u 1) (v otherwise) (varies (- 1 p)))\n  (observe b)\n"));
}

TEST(SoftWords, RepairBeginsATransition)
{
    EXPECT_EQ(inSystem("repair bad -> ok when c = fix : 1 per day"),
              systemTree("  (repair (bad) ok (when (= c fix)) (p 1 day))\n"));
    EXPECT_EQ(inSystem("repair m = bad, worn -> ok : 0.1"),
              systemTree("  (repair (of m) (bad worn) ok (p 0.1))\n"));
    EXPECT_EQ(inSystem("repair any -> ok : p"), systemTree("  (repair any ok (p p))\n"));
    EXPECT_EQ(inSystem("repair idle -> nominal : p"),
              systemTree("  (repair (idle) nominal (p p))\n"));
}

TEST(SoftWords, StandBesideNamesOfTheSameSpelling)
{
    EXPECT_EQ(
        inSystem("input input from \"I\"\nobserve varies : varies < 1 <= repair varies varies"),
        systemTree("  (input input \"I\")\n"
                   "  (observe varies (varies < 1 <= repair) (varies varies))\n"));
    EXPECT_EQ(
        inSystem("repair repair = repair -> input when varies = input : repair"),
        systemTree("  (repair (of repair) (repair) input (when (= varies input)) (p repair))\n"));
    EXPECT_EQ(inSystem("law a = input repair b -> c : 0.1\ncond x: varies repair d -> e : 0.2"),
              systemTree("  (law (= a input))\n  (repair (b) c (p 0.1))\n"
                         "  (cond x varies)\n  (repair (d) e (p 0.2))\n"));
}

TEST(SoftWords, AreNamesOfPartsBeforeAColonOrAnIndex)
{
    EXPECT_EQ(inSystem("input: input\nrepair[3]: Repair\nobserve a from \"A\"\nvaries: Pump"),
              systemTree("  (part input input)\n  (part repair[3] Repair)\n  (observe a \"A\")\n"
                         "  (part varies Pump)\n"));
    EXPECT_EQ(inSystem("observe a hold 5 s\nvaries[2]: Pump\nlaw a = b\ninput[2]: Pump"),
              systemTree("  (observe a (hold 5 s))\n  (part varies[2] Pump)\n  (law (= a b))\n"
                         "  (part input[2] Pump)\n"));
}

TEST(SoftWords, AreStillNamesOfEverythingInAModel)
{
    const language::ReadResult read = language::readModelText("test.itms", R"(
const varies = 0.1
component input(repair = varies) {
    command varies: none, repair
    cond input: varies, repair
    mode repair {
        input initial
        repair
        varies fault
    }
    law repair = repair -> input = repair
    law input = varies | repair in {input, repair, varies}
    nominal input -> repair when varies = repair
    fault repair -> varies : repair
}
system repair {
    input:     input(repair = varies)
    repair[2]: input { initially repair = repair }
    law input.input = repair[0].input
    observe input.input from "A" : varies < 1 <= repair
    varies: input
    law varies.input = repair[1].input
}
)");
    EXPECT_EQ(::reported(read.errors), "");
    ASSERT_TRUE(read.model);
    EXPECT_EQ(read.model->components().size(), 4U);
}

TEST(SoftWords, AtTheBeginningOfALineEndAStatementThatLacksItsEnd)
{
    EXPECT_EQ(inSystem("law a =\ninput b from \"B\"\nnominal a ->\nrepair any -> c : 0.1"),
              "model.itms:2:8: unexpected end of the line\n  law a =\n         ^\n"
              "  hint: the next line begins with 'input'\n"
              "model.itms:4:13: unexpected end of the line\n  nominal a ->\n              ^\n"
              "  hint: the next line begins with 'repair'\n");
}

TEST(SoftWords, AtTheBeginningOfALineEndAStatementThatIsPassedOver)
{
    const auto parsed = language::parse(text::SourceText(
        "m", "system S {\n law a = = b\n    input c\n law ?\n    repair d -> e\n}\n"));
    EXPECT_EQ(parsed.errors.size(), 2U);
    EXPECT_EQ(language::syntaxText(parsed.file), systemTree("  (input c)\n  (repair (d) e)\n"));
}

} // namespace
