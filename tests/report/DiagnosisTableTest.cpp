// What tables of real problems look like is in tests/app/sessions; here is what they do not show.
#include "report/Diagnosis.h"
#include "tests/report/Diagnoses.h"

#include <gmock/gmock.h>

using report::Colours;
using report::DiagnosisTable;
using report::Layout;
using testing::HasSubstr;
using testing::Not;

namespace {

netlist::Circuit someCircuit()
{
    netlist::Circuit circuit;
    circuit.name = "some";
    circuit.inputs.resize(1234);
    circuit.outputs.resize(1);
    circuit.gates.resize(2);
    return circuit;
}

} // namespace

TEST(DiagnosisTable, HeadingCountsWhatTheCircuitHas)
{
    const netlist::Circuit circuit = someCircuit();
    EXPECT_EQ(DiagnosisTable(circuit, Layout::single, Colours(false), 5).heading(),
              "some: 1,234 inputs, 1 output, 2 gates\n");
}

TEST(DiagnosisTable, SaysInTheTitleThatASearchWasCut)
{
    const netlist::Circuit circuit = someCircuit();
    const report::Diagnosis cut = cutAnswer(SearchLimit::seconds, 1, {});
    EXPECT_THAT(DiagnosisTable(circuit, Layout::single, Colours(false), 5).rows(cut),
                HasSubstr("Diagnosis: inconsistent (not complete)\n"));
    EXPECT_THAT(DiagnosisTable(circuit, Layout::many, Colours(false), 5).rows(cut),
                HasSubstr("problem 1: inconsistent (not complete)\n"));
}

TEST(DiagnosisTable, ListsAsManyExplanationsAsAskedFor)
{
    const netlist::Circuit circuit = someCircuit();
    const report::Diagnosis three =
        answer(1, {faulty(0.5, {"a1"}), faulty(0.3, {"b1"}), faulty(0.2, {"c1"})});
    const std::string two = DiagnosisTable(circuit, Layout::many, Colours(false), 2).rows(three);
    EXPECT_THAT(two, HasSubstr("b1\n"));
    EXPECT_THAT(two, Not(HasSubstr("c1")));
    EXPECT_THAT(two, HasSubstr("...  and 1 more (-n 0 shows all)\n"));
    const std::string all = DiagnosisTable(circuit, Layout::many, Colours(false), 0).rows(three);
    EXPECT_THAT(all, HasSubstr("c1\n"));
    EXPECT_THAT(all, Not(HasSubstr("more (-n 0")));
}

TEST(DiagnosisTable, WidensItsColumnForALongOutput)
{
    const netlist::Circuit circuit = someCircuit();
    report::Diagnosis diagnosis = answer(1, {faulty(1.0, {"a"})});
    diagnosis.outputs = {{"a_rather_long_output", true, false}};
    EXPECT_THAT(DiagnosisTable(circuit, Layout::single, Colours(false), 5).rows(diagnosis),
                HasSubstr("    output                predicted  observed\n"
                          "    a_rather_long_output          1         0\n"));
}

TEST(DiagnosisTable, SummaryCountsStatusesSearchesAndLines)
{
    const netlist::Circuit circuit = someCircuit();
    DiagnosisTable table(circuit, Layout::many, Colours(false), 5);
    table.rows(answer(1, {faulty(1.0, {"a"})}));
    table.rows(cutAnswer(SearchLimit::records, 1, {}));
    table.rows(cutAnswer(SearchLimit::records, 1, {}));
    EXPECT_THAT(
        table.summary(2),
        HasSubstr("3 problems: 1 faulty, 2 inconsistent. 2 searches were not complete. 2 lines in\n"
                  "error were left out.\n"));
}

TEST(DiagnosisTable, SummaryOfASingleProblemIsNothing)
{
    const netlist::Circuit circuit = someCircuit();
    DiagnosisTable table(circuit, Layout::single, Colours(false), 5);
    table.rows(answer(1, {faulty(1.0, {"a"})}));
    EXPECT_EQ(table.summary(0), "");
}

TEST(DiagnosisTable, NoLineWithoutColourIsLongerThanATerminal)
{
    const netlist::Circuit circuit = someCircuit();
    report::Diagnosis diagnosis =
        answer(2, {faulty(0.6, {"a_gate_with_a_name", "another_gate_with_one", "a_third_gate",
                                "a_fourth_gate_too"}),
                   faulty(0.4, {"b"})});
    diagnosis.outputs.assign(30, {"output_with_a_name", false, true});
    for (const Layout layout : {Layout::single, Layout::many}) {
        std::istringstream lines(DiagnosisTable(circuit, layout, Colours(false), 5).rows(diagnosis));
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), report::lineWidth) << line;
        }
    }
}
