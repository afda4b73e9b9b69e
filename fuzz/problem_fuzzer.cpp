// Feeds the reader of problems with any line. A problem is whole, or a mistake has a column and can be shown; and what was read is
// solved with few faults.
#include "fuzz/Require.h"
#include "netlist/BenchReader.h"
#include "session/CircuitProblemReader.h"
#include "session/CircuitSession.h"

#include <cstdint>

namespace {

constexpr const char* adder = R"(INPUT(a)
INPUT(b)
INPUT(c)
OUTPUT(sum)
OUTPUT(carry)
half = XOR(a, b)
sum = XOR(half, c)
both = AND(a, b)
more = AND(half, c)
carry = OR(both, more)
)";

const netlist::Circuit& circuit()
{
    static const netlist::BenchResult read = netlist::readBench(adder, "adder.bench");
    require(read.circuit.has_value(), "the circuit can be read");
    return *read.circuit;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static session::CircuitSession session(circuit(), 0.001);
    const std::string line(reinterpret_cast<const char*>(data), size);
    const auto read = session::readProblem(line, circuit());
    if (const auto* error = std::get_if<text::Diagnostic>(&read)) {
        requireShown(*error);
        return 0;
    }
    const auto& problem = std::get<session::CircuitProblem>(read);
    require(problem.inputs.size() == 3, "a problem has every input");
    require(!problem.outputs.empty(), "and an output");
    const session::CircuitAnswer answer = session.solve(problem, {.upTo = 2}, [](int) {});
    require(answer.complete, "a small circuit is searched to the end");
    require(!answer.explanations.empty(), "two faults explain any output of an adder");
    return 0;
}
