// A circuit as a model for the engine.
//
// Each gate is a component, named by its output signal, with
//
//     mode    `ok` (initial) or the fault `faulty`, which leaves the output free
//     out     `0` or `1`: the condition of the output signal
//
// and each primary input one with `out` only. Atoms are `G10gat.mode=ok`, `G10gat.out=1`. The laws of y =
// NAND(a, b):
//
//     y.mode=faulty | !a.out=0 | y.out=1
//     y.mode=faulty | !b.out=0 | y.out=1
//     y.mode=faulty | !a.out=1 | !b.out=1 | y.out=0
//
// always with the literals in this order: the fault, what the inputs have to be, in the order of the gate's
// inputs, and the output that follows. A gate of the AND or OR family with n inputs has n + 1 such laws. XOR
// and XNOR have one for each of the 2^n input vectors up to n = 4; a larger one has further conditions `x2`,
// `x3`, ..., `x(n-1)` in its component, the parity of its first 2, 3, ... inputs, with four laws each and no
// fault in them, since they only name something; then 4 laws take `x(n-1)` and the last input to the output. A
// signal that stands twice among the inputs makes no literal twice, and no law that would need it to be both 0
// and 1.
#pragma once

#include "netlist/Circuit.h"
#include "plant/Model.h"

#include <array>
#include <memory>
#include <vector>

namespace netlist {

struct CircuitModelOptions {
    /// Probability per step, 0..1, that a gate that is ok becomes faulty: of the one fault transition of each
    /// gate. The larger, the less a further fault costs an explanation.
    double faultProbability = 0.01;
};

/// The model, and where the signals and gates are in it. The atoms are the model's.
struct CircuitModel {
    std::unique_ptr<plant::Model> model;   ///< named as the circuit
    std::vector<std::array<Atom*, 2>> out; ///< by SignalIndex and bit: `SIGNAL.out=BIT`
    std::vector<Atom*> ok;                 ///< by index of the gate: `SIGNAL.mode=ok`
    std::vector<Atom*> faulty;             ///< by index of the gate: `SIGNAL.mode=faulty`
};

/// Makes the model of a circuit: components in the order of the inputs, then of the gates. Linear in the size of the circuit.
/// Requires: 0 < `faultProbability` < 1.
CircuitModel buildModel(const Circuit& circuit, const CircuitModelOptions& options = {});

/// The atom `SIGNAL.out=BIT` of a circuit's model; null when the circuit has no such signal.
/// Requires: the model was made of the circuit.
Atom* outAtom(const Circuit& circuit, const CircuitModel& model, const std::string& signal,
              bool bit);

} // namespace netlist
