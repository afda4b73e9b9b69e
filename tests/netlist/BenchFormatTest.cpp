// What a text in the format means.
#include "netlist/BenchReader.h"
#include "tests/netlist/Circuits.h"

#include <gmock/gmock.h>

namespace {

using netlist::Circuit;
using netlist::Gate;
using netlist::GateKind;
using testing::ElementsAre;

std::vector<std::string> names(const Circuit& circuit,
                               const std::vector<netlist::SignalIndex>& signals)
{
    std::vector<std::string> result;
    for (const netlist::SignalIndex signal : signals) {
        result.push_back(circuit.signals[signal]);
    }
    return result;
}

GateKind onlyKind(const std::string& text)
{
    return circuitOf("INPUT(a)\nOUTPUT(y)\ny = " + text + "\n").gates.at(0).kind;
}

// The name of the only input of a circuit with that name for it.
std::string nameRead(const std::string& name)
{
    const Circuit circuit = circuitOf("INPUT(" + name + ")\nOUTPUT(out)\nout=not(" + name + ")\n");
    return circuit.signals[circuit.inputs.at(0)];
}

TEST(BenchFormat, ReadsInputsOutputsAndGatesInTheirOrder)
{
    const Circuit circuit = circuitOf("INPUT(b)\nINPUT(a)\nOUTPUT(z)\nOUTPUT(y)\n"
                                      "y = nand(a, b)\nz = or(b, y, a)\n");
    EXPECT_THAT(names(circuit, circuit.inputs), ElementsAre("b", "a"));
    EXPECT_THAT(names(circuit, circuit.outputs), ElementsAre("z", "y"));
    ASSERT_EQ(circuit.gates.size(), 2U);
    EXPECT_EQ(circuit.gates[0].kind, GateKind::nandGate);
    EXPECT_EQ(circuit.signals[circuit.gates[0].output], "y");
    EXPECT_THAT(names(circuit, circuit.gates[0].inputs), ElementsAre("a", "b"));
    EXPECT_EQ(circuit.gates[1].kind, GateKind::orGate);
    EXPECT_EQ(circuit.signals[circuit.gates[1].output], "z");
    EXPECT_THAT(names(circuit, circuit.gates[1].inputs), ElementsAre("b", "y", "a"));
}

TEST(BenchFormat, NumbersSignalsInTheOrderOfTheirFirstAppearance)
{
    const Circuit circuit = circuitOf("OUTPUT(y)\ny = and(b, a)\nINPUT(a)\nINPUT(b)\n");
    EXPECT_THAT(circuit.signals, ElementsAre("y", "b", "a"));
    EXPECT_EQ(circuit.signal("a"), 2U);
    EXPECT_EQ(circuit.signal("A"), std::nullopt);
}

TEST(BenchFormat, KnowsTheLineAndColumnOfAGate)
{
    const Circuit circuit = circuitOf("INPUT(a)\nOUTPUT(y)\n\n  y = buf(a)\n");
    EXPECT_EQ(circuit.gates.at(0).place, (text::Place{4, 3}));
}

TEST(BenchFormat, NamesTheCircuitAfterTheFile)
{
    const std::string text = "INPUT(a)\nOUTPUT(a)\n";
    EXPECT_EQ(netlist::readBench(text, "some/where/c17.bench").circuit->name, "c17");
    EXPECT_EQ(netlist::readBench(text, "c17.v2.bench").circuit->name, "c17.v2");
}

TEST(BenchFormat, TakesEveryKindOfGate)
{
    EXPECT_EQ(onlyKind("AND(a, a)"), GateKind::andGate);
    EXPECT_EQ(onlyKind("NAND(a, a)"), GateKind::nandGate);
    EXPECT_EQ(onlyKind("OR(a, a)"), GateKind::orGate);
    EXPECT_EQ(onlyKind("NOR(a, a)"), GateKind::norGate);
    EXPECT_EQ(onlyKind("XOR(a, a)"), GateKind::xorGate);
    EXPECT_EQ(onlyKind("XNOR(a, a)"), GateKind::xnorGate);
    EXPECT_EQ(onlyKind("NOT(a)"), GateKind::notGate);
    EXPECT_EQ(onlyKind("BUF(a)"), GateKind::bufGate);
    EXPECT_EQ(onlyKind("BUFF(a)"), GateKind::bufGate);
}

TEST(BenchFormat, TakesKeywordsInAnyLetterCase)
{
    const Circuit circuit = circuitOf("input(a)\nOutput(y)\ny = xNoR(a, a)\n");
    EXPECT_THAT(names(circuit, circuit.inputs), ElementsAre("a"));
    EXPECT_THAT(names(circuit, circuit.outputs), ElementsAre("y"));
    EXPECT_EQ(circuit.gates.at(0).kind, GateKind::xnorGate);
}

TEST(BenchFormat, TellsSignalsApartByLetterCase)
{
    const Circuit circuit = circuitOf("INPUT(a)\nINPUT(A)\nOUTPUT(y)\ny = and(a, A)\n");
    EXPECT_NE(circuit.signal("a"), circuit.signal("A"));
}

TEST(BenchFormat, TakesOneInputForAnyKind)
{
    for (const auto& [kind, name] : netlist::gateKinds) {
        EXPECT_EQ(onlyKind(std::string(name) + "(a)"), kind);
    }
}

TEST(BenchFormat, TakesASignalTwiceInOneGate)
{
    const Circuit circuit = circuitOf("INPUT(a)\nOUTPUT(y)\ny = nand(a, a)\n");
    EXPECT_EQ(circuit.gates.at(0).inputs.size(), 2U);
}

TEST(BenchFormat, PassesOverCommentsAndBlankLines)
{
    const Circuit circuit =
        circuitOf("# c17 (a test) = 1, 2\n\n  \t \nINPUT(a)# no blank\nOUTPUT(y) # y = (\n"
                  "#\ny = not(a)   # inverts\n   # INPUT(b)\n");
    EXPECT_EQ(circuit.inputs.size(), 1U);
    EXPECT_EQ(circuit.gates.size(), 1U);
}

TEST(BenchFormat, TakesAnyBytesInAComment)
{
    EXPECT_EQ(circuitOf("# caf\xE9 \x01 \xFF\nINPUT(a) # \x80\nOUTPUT(a)\n").inputs.size(), 1U);
}

TEST(BenchFormat, TakesBlanksAnywhereBetweenWords)
{
    const Circuit circuit =
        circuitOf("\tINPUT ( a )  \nINPUT(b)\nOUTPUT\t(\ty\t)\n  y\t=  and \t( a ,b , a )\t\n");
    EXPECT_THAT(names(circuit, circuit.gates.at(0).inputs), ElementsAre("a", "b", "a"));
    EXPECT_EQ(circuitOf("INPUT(a)\nOUTPUT(y)\ny=and(a,a)").gates.at(0).inputs.size(), 2U);
}

TEST(BenchFormat, TakesLinesThatEndWithCarriageReturns)
{
    const Circuit circuit = circuitOf("INPUT(a)\r\n\r\nOUTPUT(y)\r\ny = not(a) # c\r\n");
    EXPECT_THAT(circuit.signals, ElementsAre("a", "y"));
}

TEST(BenchFormat, TakesALastLineWithoutAnEnd)
{
    EXPECT_EQ(circuitOf("INPUT(a)\nOUTPUT(y)\ny = not(a)").gates.size(), 1U);
}

TEST(BenchFormat, PassesOverAByteOrderMarkAndAControlZ)
{
    const Circuit circuit = circuitOf("\xEF\xBB\xBFINPUT(a)\r\nOUTPUT(a)\r\n\x1A");
    EXPECT_THAT(circuit.signals, ElementsAre("a"));
}

TEST(BenchFormat, TakesStatementsInAnyOrder)
{
    const Circuit circuit = circuitOf("z = not(y)\ny = not(a)\nOUTPUT(z)\nINPUT(a)\n");
    EXPECT_THAT(circuit.order, ElementsAre(1, 0));
}

TEST(BenchFormat, TakesAnInputThatIsAnOutput)
{
    const Circuit circuit = circuitOf("OUTPUT(a)\nINPUT(a)\n");
    EXPECT_EQ(circuit.inputs, circuit.outputs);
}

TEST(BenchFormat, TakesInputsThatNothingUses)
{
    EXPECT_EQ(circuitOf("INPUT(a)\nINPUT(b)\nOUTPUT(y)\ny = not(a)\n").inputs.size(), 2U);
}

TEST(BenchFormat, TakesKeywordsAsNamesOfSignals)
{
    const Circuit circuit =
        circuitOf("INPUT(INPUT)\nOUTPUT(OUTPUT)\nOUTPUT = nand(INPUT, not)\nINPUT(not)\n");
    EXPECT_EQ(circuit.signals[circuit.gates.at(0).output], "OUTPUT");
}

TEST(BenchFormat, TakesEveryPrintableNameWithoutASeparator)
{
    std::string all;
    for (char letter = '!'; letter <= '~'; ++letter) {
        if (std::string("(),=#").find(letter) == std::string::npos) all += letter;
    }
    EXPECT_EQ(all.size(), 89U);
    EXPECT_EQ(nameRead(all), all);
    for (const char letter : all) {
        EXPECT_EQ(nameRead(std::string(1, letter)), std::string(1, letter));
    }
}

TEST(BenchFormat, TakesNamesAsTheyArePublished)
{
    for (const std::string name : {"G1gat", "1", "N[3]", "u1.b$7", "a-b", "_x", "\\a/b", "<0>",
                                   "t\xC3\xA4st", "\xE2\x82\xAC"}) {
        EXPECT_EQ(nameRead(name), name);
    }
}

} // namespace
