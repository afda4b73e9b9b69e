// Texts that are large in some way: what they cost grows with their size and not faster, and messages stay short.
#include "netlist/BenchReader.h"
#include "netlist/CircuitModel.h"
#include "tests/netlist/Circuits.h"

namespace {

using netlist::BenchResult;
using netlist::Circuit;

// "PREFIX0, PREFIX1, ..."
std::string list(const std::string& prefix, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ", ") + prefix + std::to_string(i);
    }
    return text;
}

std::string inputs(const std::string& prefix, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "INPUT(" + prefix + std::to_string(i) + ")\n";
    }
    return text;
}

std::size_t longestLine(const std::string& text)
{
    std::size_t longest = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\n', begin);
        longest = std::max(longest, end - begin);
        begin = end + 1;
    }
    return longest;
}

TEST(BenchLimits, AGateMayHaveTenThousandInputs)
{
    constexpr std::size_t arity = 10'000;
    const Circuit circuit =
        circuitOf(inputs("i", arity) + "OUTPUT(y)\ny = nor(" + list("i", arity) + ")\n");
    EXPECT_EQ(circuit.gates.at(0).inputs.size(), arity);
    EXPECT_EQ(netlist::buildModel(circuit).model->laws().size(), arity + 1);
}

TEST(BenchLimits, AParityOfAThousandInputsHasFourLawsForEachFurtherInput)
{
    constexpr std::size_t arity = 1'000;
    const Circuit circuit =
        circuitOf(inputs("i", arity) + "OUTPUT(y)\ny = xnor(" + list("i", arity) + ")\n");
    EXPECT_EQ(netlist::buildModel(circuit).model->laws().size(), 4 * (arity - 1));
}

TEST(BenchLimits, ACircuitMayBeAHundredThousandGatesDeep)
{
    constexpr std::size_t depth = 100'000;
    std::string text = "INPUT(g0)\nOUTPUT(g" + std::to_string(depth) + ")\n";
    for (std::size_t i = depth; i > 0; --i) {
        text += "g" + std::to_string(i) + " = not(g" + std::to_string(i - 1) + ")\n";
    }
    const Circuit circuit = circuitOf(text);
    ASSERT_EQ(circuit.order.size(), depth);
    EXPECT_EQ(circuit.signals[circuit.gates[circuit.order.front()].output], "g1");
}

TEST(BenchLimits, ACycleMayHaveAHundredThousandGates)
{
    constexpr std::size_t length = 100'000;
    std::string text = "OUTPUT(g0)\ng0 = not(g" + std::to_string(length - 1) + ")\n";
    for (std::size_t i = 1; i < length; ++i) {
        text += "g" + std::to_string(i) + " = not(g" + std::to_string(i - 1) + ")\n";
    }
    const BenchResult result = netlist::readBench(text, "x.bench");
    ASSERT_EQ(result.errors.size(), 1U);
    EXPECT_NE(
        result.errors[0].message.find("'g7' (line 9) -> (99984 more) -> 'g99992' (line 99994)"),
        std::string::npos)
        << result.errors[0].message;
}

TEST(BenchLimits, ANameMayBeAMegabyte)
{
    const std::string name(1'000'000, 'n');
    EXPECT_EQ(circuitOf("INPUT(" + name + ")\nOUTPUT(" + name + ")\n").signals.at(0), name);
}

TEST(BenchLimits, ErrorsOfALongNameStayShort)
{
    const std::string name(1'000'000, 'n');
    const BenchResult result = netlist::readBench("OUTPUT(" + name + ")\n", "x.bench");
    ASSERT_EQ(result.errors.size(), 1U);
    EXPECT_EQ(result.errors[0].format(),
              "x.bench:1:8: OUTPUT '" + std::string(60, 'n') +
                  "...' is not defined\n"
                  "  OUTPUT(" +
                  std::string(93, 'n') +
                  "...\n"
                  "         ^" +
                  std::string(92, '~') +
                  "\n"
                  "  expected: an INPUT or the output of a gate\n"
                  "  hint: declare it INPUT, or add the gate that drives it\n");
}

TEST(BenchLimits, EachErrorOfALongLineShowsItsOwnPart)
{
    constexpr std::size_t count = 20'000;
    const BenchResult result =
        netlist::readBench("OUTPUT(y)\ny = and(" + list("u", count) + ")\n", "x.bench");
    ASSERT_EQ(result.errors.size(), count);
    EXPECT_EQ(result.errors.back().format(),
              "x.bench:2:148891: signal 'u19999' is not defined\n"
              "  ..., u19993, u19994, u19995, u19996, u19997, u19998, u19999)\n"
              "                                                       ^~~~~~\n"
              "  expected: an INPUT or the output of a gate\n"
              "  hint: declare it INPUT, or add the gate that drives it\n");
    for (const text::Diagnostic& error : result.errors) {
        EXPECT_LT(longestLine(error.format()), 120U);
    }
}

TEST(BenchLimits, EveryLineMayBeWrong)
{
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        text += "INPUT(a b\n";
    }
    EXPECT_EQ(netlist::readBench(text, "x.bench").errors.size(), 20'000U);
}

TEST(BenchLimits, NearNamesAreNoLongerSoughtWhenThatTakesTooLong)
{
    std::string text = inputs("G", 10'000) + "OUTPUT(y)\ny = and(" + list("Gx", 200) + ")\n";
    const BenchResult result = netlist::readBench(text, "x.bench");
    ASSERT_EQ(result.errors.size(), 200U);
    EXPECT_EQ(result.errors.front().hint, "did you mean 'G0'?");
    EXPECT_EQ(result.errors.back().hint, "declare it INPUT, or add the gate that drives it");
}

} // namespace
