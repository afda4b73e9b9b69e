#include "session/CircuitCells.h"

namespace session {

namespace {

using monitor::CellTerms;
using monitor::SignalNumber;
using netlist::Gate;
using netlist::GateKind;

constexpr std::int32_t neverFaulty = -1;

class CellMaker {
public:
    explicit CellMaker(const netlist::Circuit& circuit) : circuit_(circuit)
    {
        cells_.signalOf.resize(circuit.signals.size());
        for (const netlist::SignalIndex input : circuit.inputs) {
            cells_.signalOf[input] = cells_.network.addSource();
        }
        for (const std::size_t gate : circuit.order) {
            cells_.signalOf[circuit.gates[gate].output] =
                add(circuit.gates[gate], static_cast<std::int32_t>(gate));
        }
    }

    CircuitCells made() { return std::move(cells_); }

private:
    SignalNumber add(const Gate& gate, std::int32_t number)
    {
        std::vector<SignalNumber> inputs;
        for (const netlist::SignalIndex input : gate.inputs) {
            inputs.push_back(cells_.signalOf[input]);
        }
        const bool inverting = netlist::isInverting(gate.kind);
        switch (gate.kind) {
        case GateKind::andGate:
        case GateKind::nandGate:
        case GateKind::notGate:
        case GateKind::bufGate: return dominated(inputs, false, inverting, number);
        case GateKind::orGate:
        case GateKind::norGate: return dominated(inputs, true, inverting, number);
        case GateKind::xorGate:
        case GateKind::xnorGate: break;
        }
        return parity(inputs, inverting, number);
    }

    // One input at `dominant` gives the output that value, and all inputs at the other value the other one.
    SignalNumber dominated(const std::vector<SignalNumber>& inputs, bool dominant, bool inverting,
                           std::int32_t number)
    {
        CellTerms one;
        CellTerms all(1);
        for (const SignalNumber input : inputs) {
            one.push_back({{input, dominant}});
            all.front().push_back({input, !dominant});
        }
        return dominant != inverting ? cells_.network.addCell(number, number, all, one)
                                     : cells_.network.addCell(number, number, one, all);
    }

    SignalNumber parity(const std::vector<SignalNumber>& inputs, bool inverting, std::int32_t number)
    {
        if (inputs.size() == 1) {
            return dominated(inputs, false, inverting, number);
        }
        SignalNumber soFar = inputs[0];
        for (std::size_t i = 1; i < inputs.size(); ++i) {
            const bool last = i + 1 == inputs.size();
            soFar = oddOf(soFar, inputs[i], last && inverting, last ? number : neverFaulty);
        }
        return soFar;
    }

    SignalNumber oddOf(SignalNumber a, SignalNumber b, bool inverting, std::int32_t number)
    {
        const CellTerms equal{{{a, false}, {b, false}}, {{a, true}, {b, true}}};
        const CellTerms different{{{a, false}, {b, true}}, {{a, true}, {b, false}}};
        return inverting ? cells_.network.addCell(number, number, different, equal)
                         : cells_.network.addCell(number, number, equal, different);
    }

    const netlist::Circuit& circuit_;
    CircuitCells cells_;
};

} // namespace

CircuitCells cellsOf(const netlist::Circuit& circuit)
{
    return CellMaker(circuit).made();
}

} // namespace session
