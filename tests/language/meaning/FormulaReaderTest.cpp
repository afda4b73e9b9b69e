// Formulas over a built model: what they become, and what is said of those that make no sense.
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='FormulaErrorTexts*'
//
// writes errors/formulas.txt anew: each formula behind a `?`, and below it what is said.
#include "language/meaning/FormulaReader.h"

#include "language/Reader.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

const char* const plant = R"(
component Valve {
    command request: none, open
    cond    inflow: zero, positive
    cond    outflow: zero, positive
    cond    level: low, middle, high
    mode    position { closed initial open stuck fault }
    law position = open -> outflow = inflow
    nominal closed -> open when request = open : 0.9
    fault any -> stuck : 0.01
    idle any
}
component Branch {
    valve: Valve
    pair[2]: Valve
    law valve.outflow = pair[0].inflow
    law valve.outflow = pair[1].inflow
}
system Station {
    branch: Branch
    main: Valve
    cond pressure: low, middle, high
    law main.outflow = branch.valve.inflow
    law pressure = main.level
}
)";

class FormulaReader : public testing::Test {
protected:
    // `main.position=open | !main.outflow=zero; ...`, with `not: ` in front where the negation was made clauses.
    std::string clauses(const std::string& text) const
    {
        const language::ReadFormula read = language::readFormula(text, *model_.model, model_.system);
        if (!read.formula) return "error: " + read.errors.at(0).message;
        std::string shown = read.formula->negated ? "not: " : "";
        const char* between = "";
        for (const plant::ClauseLiterals& clause : read.formula->clauses) {
            shown += between;
            between = "; ";
            const char* bar = "";
            for (const plant::Literal& literal : clause) {
                shown += std::string(bar) + (literal.negated ? "!" : "") + literal.atom->id;
                bar = " | ";
            }
        }
        return shown;
    }

    language::ReadResult model_ = language::readModelText("station.itms", plant);
};

TEST_F(FormulaReader, FindsAVariableOfAPart)
{
    EXPECT_EQ(clauses("main.position = stuck"), "main.position=stuck");
}

TEST_F(FormulaReader, FindsAVariableOfTheSystemItself)
{
    EXPECT_EQ(clauses("pressure = low"), "Station.pressure=low");
}

TEST_F(FormulaReader, TakesNamesAsTheProgramPrintsThem)
{
    EXPECT_EQ(clauses("branch/pair[1].outflow=zero"), "branch/pair[1].outflow=zero");
    EXPECT_EQ(clauses("Station.pressure=low"), "Station.pressure=low");
}

TEST_F(FormulaReader, FindsTheSystemsVariablesByTheNameOfTheirComponentWhereTheSystemHasNone)
{
    const auto read = language::readFormula("Station.pressure = low", *model_.model, "");
    ASSERT_TRUE(read.formula) << read.errors.front().format();
    EXPECT_EQ(read.formula->clauses.front().front().atom->id, "Station.pressure=low");
    EXPECT_EQ(language::readFormula("presure = low", *model_.model, "").errors.front().message,
              "'presure' is not known in the model");
}

TEST_F(FormulaReader, ComputesAnIndex)
{
    EXPECT_EQ(clauses("branch.pair[4 / 2 - 1].outflow = zero"), "branch/pair[1].outflow=zero");
}

TEST_F(FormulaReader, ReadsEveryOperator)
{
    EXPECT_EQ(clauses("main.position != stuck"), "!main.position=stuck");
    EXPECT_EQ(clauses("main.position in {open, stuck}"),
              "main.position=open | main.position=stuck");
    EXPECT_EQ(clauses("main.position = open & main.outflow = zero"),
              "not: !main.position=open | !main.outflow=zero");
    EXPECT_EQ(clauses("main.position = open -> main.outflow = zero"),
              "!main.position=open | main.outflow=zero");
    EXPECT_EQ(clauses("main.position = open <-> main.outflow = zero"),
              "!main.position=open | main.outflow=zero; main.position=open | !main.outflow=zero");
    EXPECT_EQ(clauses("not (main.position = open or main.outflow = zero)"),
              "not: main.position=open | main.outflow=zero");
}

TEST_F(FormulaReader, ComparesVariables)
{
    const std::string neverBoth = "!main.level=low | !Station.pressure=low; "
                                  "!main.level=middle | !Station.pressure=middle; "
                                  "!main.level=high | !Station.pressure=high";
    EXPECT_EQ(clauses("main.level != pressure"), neverBoth);
    EXPECT_EQ(clauses("main.level = pressure"), "not: " + neverBoth);
}

TEST_F(FormulaReader, MakesClausesOfTheNegationWhereTheseAreFewer)
{
    EXPECT_EQ(clauses("(main.position = open & main.outflow = zero) | "
                      "(main.position = stuck & main.inflow = zero)"),
              "not: !main.position=open | !main.outflow=zero; !main.position=stuck | "
              "!main.inflow=zero");
}

TEST_F(FormulaReader, LeavesNoClauseOfWhatAlwaysHolds)
{
    EXPECT_EQ(clauses("main.position in {closed, open, stuck}"), "");
}

TEST_F(FormulaReader, RefusesAFormulaOfTooManyClauses)
{
    // An equivalence of many parts is large in either form.
    std::string text = "main.inflow = zero";
    const std::vector<std::string> others = {
        "main.outflow = zero",           "main.level = low",
        "main.position = open",          "main.request = open",
        "branch.valve.inflow = zero",    "branch.valve.outflow = zero",
        "branch.valve.level = low",      "pressure = low",
        "branch.pair[0].inflow = zero",  "branch.pair[0].outflow = zero",
        "branch.pair[1].level = low",    "branch.pair[1].inflow = zero",
        "branch.pair[1].outflow = zero", "branch.pair[0].level = low",
        "branch.valve.position = open"};
    for (const std::string& other : others) {
        text = "(" + text + ") <-> " + other;
    }
    EXPECT_EQ(clauses(text), "error: the formula has more than 10000 clauses in normal form");
}

// ---- what is said

std::string reported(const language::ReadResult& model, const std::string& formula)
{
    std::string text = "? " + formula + "\n";
    for (const text::Diagnostic& error :
         language::readFormula(formula, *model.model, model.system).errors) {
        text += error.format();
    }
    return text + "\n";
}

TEST(FormulaErrorTexts, AreAsExpected)
{
    const std::vector<std::string> formulas = {
        "",
        "   // nothing",
        "main.position",
        "main.position = ",
        "main.position == open",
        "main.position = open &",
        "main.position = open main.outflow = zero",
        "(main.position = open",
        "main.position = open)",
        "main.position in open",
        "main.position = open -> main.outflow = zero -> pressure = low",
        "main.position = 1",
        "main.position = open; pressure = low",
        "main.position = \"open",
        "law main.position = open",
        "mian.position = open",
        "main.positoin = open",
        "branch.valv.position = open",
        "branch/valv.position = open",
        "stuck = open",
        "main = open",
        "branch.pair.position = open",
        "branch.pair[2].position = open",
        "branch.pair[i].position = open",
        "branch.pair[1/0].position = open",
        "main[0].position = open",
        "main.position[0] = open",
        "main.position.open = open",
        "main.position = opne",
        "main.position = zero",
        "main.position in {open, opne}",
        "main.position = main.outflow",
        "main.position = presure",
        "Station.presure = low",
        "mian.position = open & main.positoin = stuck",
    };
    const language::ReadResult model = language::readModelText("station.itms", plant);
    ASSERT_TRUE(model.model);
    std::string text;
    for (const std::string& formula : formulas) {
        text += reported(model, formula);
    }
    const std::string path = std::string(ITMS_ROOT) + "/tests/language/errors/formulas.txt";
    if (std::getenv("ITMS_REGENERATE")) std::ofstream(path, std::ios::binary) << text;
    std::ostringstream expected;
    expected << std::ifstream(path, std::ios::binary).rdbuf();
    EXPECT_EQ(text, expected.str());
}

TEST(FormulaErrorTexts, AreSaidOfEveryByteString)
{
    const language::ReadResult model = language::readModelText("station.itms", plant);
    ASSERT_TRUE(model.model);
    const std::string pieces[] = {"main", ".", "/",  "position", "=",  "open", "(", ")", "[", "]",
                                  "0",    "!", "->", "{",        "}",  "in",   "&", "|", ",", "\n",
                                  "\xff", "#", "\"", "law",      "//", "/*",   ":", "-"};
    // Every sequence of up to three pieces: each is a formula, or something is said of it.
    for (const std::string& a : pieces) {
        for (const std::string& b : pieces) {
            for (const std::string& c : pieces) {
                const std::string text = a + " " + b + c;
                const auto read = language::readFormula(text, *model.model, model.system);
                EXPECT_NE(read.formula.has_value(), !read.errors.empty()) << text;
            }
        }
    }
}

} // namespace
