// Circuits for tests, made from text or at random.
#pragma once

#include "netlist/BenchReader.h"
#include "tests/reference/Random.h"

#include <gtest/gtest.h>

#include <string>

/// The circuit of a text without errors; ends the program when there are some.
inline netlist::Circuit circuitOf(const std::string& text)
{
    netlist::BenchResult result = netlist::readBench(text, "test.bench");
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.circuit) std::abort();
    return std::move(*result.circuit);
}

/// A gate `y` of that kind over the inputs i0, i1, ....
inline netlist::Circuit gateCircuit(netlist::GateKind kind, std::size_t arity)
{
    std::string text = "OUTPUT(y)\n";
    std::string arguments;
    for (std::size_t i = 0; i < arity; ++i) {
        text += "INPUT(i" + std::to_string(i) + ")\n";
        arguments += (i == 0 ? "i" : ", i") + std::to_string(i);
    }
    return circuitOf(text + "y = " + std::string(netlist::gateKindName(kind)) + "(" + arguments +
                     ")\n");
}

/// The text of a random circuit of n0, n1, ...: some inputs, then gates over what comes before them, a signal perhaps twice.
/// The lines are shuffled.
inline std::string randomCircuitText(Random& random, int inputs, int gates, int maxArity)
{
    std::vector<std::string> lines;
    for (int i = 0; i < inputs; ++i) {
        lines.push_back("INPUT(n" + std::to_string(i) + ")");
    }
    for (int g = inputs; g < inputs + gates; ++g) {
        const auto& [kind, name] = netlist::gateKinds[random.below(netlist::gateKinds.size())];
        const int arity = netlist::isUnary(kind) ? 1 : random.between(1, maxArity);
        std::string line = "n" + std::to_string(g) + " = " + std::string(name) + "(";
        for (int i = 0; i < arity; ++i) {
            line += (i == 0 ? "n" : ", n") + std::to_string(random.between(0, g - 1));
        }
        lines.push_back(line + ")");
    }
    lines.push_back("OUTPUT(n" + std::to_string(inputs + gates - 1) + ")");
    std::string text;
    while (!lines.empty()) {
        const std::size_t next = random.below(lines.size());
        text += lines[next] + "\n";
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(next));
    }
    return text;
}
