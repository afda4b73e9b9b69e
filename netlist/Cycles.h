// The order of gates along the signals, and the cycles that keep gates from having one.
#pragma once

#include "netlist/Circuit.h"

#include <vector>

namespace netlist {

/// Indices into a circuit's gates.
using GateList = std::vector<std::size_t>;

/// In place of a gate: none.
inline constexpr std::size_t noGate = static_cast<std::size_t>(-1);

/// The gates of a circuit, each after those that drive its inputs; of gates that are ready at the same time, in the order of the
/// text. Gates on a cycle, and those that depend on one, are not in the list. Linear.
/// Requires: gates and signals of the circuit are filled in; `driver` has for each signal the gate that drives it, or `noGate`.
GateList gateOrder(const Circuit& circuit, const std::vector<std::size_t>& driver);

/// One cycle for each group of gates that all depend on each other (a strongly connected component): a shortest
/// one through the group's first gate in the text, beginning with that gate and going along the signals. The
/// cycles come in the order of their first gates. Linear.
/// Requires: the same as gateOrder().
std::vector<GateList> gateCycles(const Circuit& circuit, const std::vector<std::size_t>& driver);

} // namespace netlist
