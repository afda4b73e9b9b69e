// A combinational circuit at the level of gates, read and checked.
#pragma once

#include "text/Diagnostic.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace netlist {

/// What a gate computes from its inputs. A gate of one input passes it on (AND, OR, XOR, BUF) or inverts it
/// (NAND, NOR, XNOR, NOT). XOR of more than two inputs is their parity.
enum class GateKind : std::uint8_t {
    andGate,
    nandGate,
    orGate,
    norGate,
    xorGate,
    xnorGate,
    notGate,
    bufGate
};

/// Every kind, with the name by which it is printed.
inline constexpr std::array<std::pair<GateKind, std::string_view>, 8> gateKinds{{
    {GateKind::andGate, "AND"},
    {GateKind::nandGate, "NAND"},
    {GateKind::orGate, "OR"},
    {GateKind::norGate, "NOR"},
    {GateKind::xorGate, "XOR"},
    {GateKind::xnorGate, "XNOR"},
    {GateKind::notGate, "NOT"},
    {GateKind::bufGate, "BUF"},
}};

/// The name of a kind, in capitals.
std::string_view gateKindName(GateKind kind);
/// The kind with that name in any letter case; BUF is also called BUFF.
std::optional<GateKind> gateKind(std::string_view name);
/// All names, `AND, NAND, ...`, for a message.
std::string gateKindNames();
/// True for the kinds with exactly one input: NOT and BUF.
bool isUnary(GateKind kind);
/// True for the kinds that invert: NAND, NOR, XNOR, NOT.
bool isInverting(GateKind kind);

/// A signal by its place in Circuit::signals.
using SignalIndex = std::size_t;

/// One gate. It is named by its output signal.
struct Gate {
    GateKind kind = GateKind::bufGate;
    SignalIndex output = 0;
    std::vector<SignalIndex>
        inputs;        ///< in the order of the text, at least one; a signal may stand there twice
    text::Place place; ///< of its output's name in the file
};

/// A circuit. Every signal is an input or driven by exactly one gate, there is an output, and no cycle.
struct Circuit {
    std::string name;
    std::vector<std::string> signals; ///< the names, each once, in the order of their first appearance
    std::unordered_map<std::string, SignalIndex> signalsByName;
    std::vector<SignalIndex> inputs;  ///< in the order of their declarations, as are the outputs
    std::vector<SignalIndex> outputs; ///< an output is an input or some gate's output
    std::vector<Gate> gates;          ///< in the order of the text
    std::vector<std::size_t> order; ///< indices of `gates`: each gate after those that drive its inputs

    /// The signal with that name. Letter case counts.
    std::optional<SignalIndex> signal(const std::string& signalName) const;
};

} // namespace netlist
