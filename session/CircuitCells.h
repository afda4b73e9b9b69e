// A circuit as a network of cells, without a model of it: what `CircuitModel` says in laws, one cell for each gate.
#pragma once

#include "monitor/step/CellNetwork.h"
#include "netlist/Circuit.h"

#include <vector>

namespace session {

struct CircuitCells {
    monitor::CellNetwork
        network; ///< the `mode` of a cell is the index of its gate; sources are the inputs, in their order
    std::vector<monitor::SignalNumber> signalOf; ///< by SignalIndex
};

/// The cells of a circuit. A parity of many inputs takes several, of which the last one may be faulty. Linear in the circuit.
CircuitCells cellsOf(const netlist::Circuit& circuit);

} // namespace session
