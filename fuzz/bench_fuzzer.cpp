// Feeds the circuit reader with any bytes. Whatever they are, it must come back with a sound circuit or with errors that
// can be shown; what it accepts must become a model.
#include "fuzz/Require.h"
#include "netlist/BenchReader.h"
#include "netlist/CircuitModel.h"

#include <algorithm>
#include <cstdint>

namespace {

void checkErrors(const std::vector<text::Diagnostic>& errors, std::string_view text)
{
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    for (const text::Diagnostic& error : errors) {
        require(error.place.line <= lines, "an error is in a line of the text");
        require(error.source.size() < 1000, "a long line is cut");
        requireShown(error);
    }
}

// Every gate stands in the order once, after those that drive its inputs; everything else is an input.
void checkCircuit(const netlist::Circuit& circuit)
{
    std::vector<bool> known(circuit.signals.size(), false);
    for (const netlist::SignalIndex input : circuit.inputs) {
        require(!known[input], "an input is declared once");
        known[input] = true;
    }
    require(circuit.order.size() == circuit.gates.size(), "every gate is in the order");
    for (const std::size_t index : circuit.order) {
        const netlist::Gate& gate = circuit.gates[index];
        require(!gate.inputs.empty(), "a gate has inputs");
        require(!netlist::isUnary(gate.kind) || gate.inputs.size() == 1,
                "NOT and BUF have one input");
        for (const netlist::SignalIndex input : gate.inputs) {
            require(known[input], "the inputs of a gate come before it");
        }
        require(!known[gate.output], "a signal is driven once");
        known[gate.output] = true;
    }
    require(std::find(known.begin(), known.end(), false) == known.end(), "every signal is defined");
    require(!circuit.outputs.empty(), "there is an output");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const netlist::BenchResult result = netlist::readBench(text, "fuzz.bench");
    require(result.circuit.has_value() == result.errors.empty(), "there is a circuit or an error");
    checkErrors(result.errors, text);
    if (result.circuit) {
        checkCircuit(*result.circuit);
        const netlist::CircuitModel built = netlist::buildModel(*result.circuit);
        require(built.model->components().size() == result.circuit->signals.size(),
                "every signal has a component");
    }
    return 0;
}
