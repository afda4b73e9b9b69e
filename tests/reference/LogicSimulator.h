// What a circuit computes, by the plain meaning of its gates: slow and obvious, to compare models with.
#pragma once

#include "netlist/Circuit.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

class LogicSimulator {
public:
    using Signal = netlist::SignalIndex;

    explicit LogicSimulator(const netlist::Circuit& circuit)
        : circuit_(circuit), driver_(circuit.signals.size(), nullptr)
    {
        for (const netlist::Gate& gate : circuit.gates) {
            driver_[gate.output] = &gate;
        }
    }

    /// The value of every signal for the given ones of the inputs. A signal in `forced` has that value, whatever its
    /// gate says.
    std::vector<bool> values(const std::map<Signal, bool>& inputs,
                             const std::map<Signal, bool>& forced = {}) const
    {
        std::vector<std::optional<bool>> known(circuit_.signals.size());
        for (const auto& [signal, value] : inputs) {
            known[signal] = value;
        }
        for (const auto& [signal, value] : forced) {
            known[signal] = value;
        }
        std::vector<bool> result;
        for (Signal signal = 0; signal < circuit_.signals.size(); ++signal) {
            result.push_back(valueOf(signal, known));
        }
        return result;
    }

    static bool gateValue(netlist::GateKind kind, const std::vector<bool>& inputs)
    {
        const bool all = std::all_of(inputs.begin(), inputs.end(), [](bool bit) { return bit; });
        const bool any = std::any_of(inputs.begin(), inputs.end(), [](bool bit) { return bit; });
        const bool odd = std::count(inputs.begin(), inputs.end(), true) % 2 == 1;
        switch (kind) {
        case netlist::GateKind::andGate: return all;
        case netlist::GateKind::nandGate: return !all;
        case netlist::GateKind::orGate: return any;
        case netlist::GateKind::norGate: return !any;
        case netlist::GateKind::xorGate: return odd;
        case netlist::GateKind::xnorGate: return !odd;
        case netlist::GateKind::notGate: return !inputs[0];
        case netlist::GateKind::bufGate: return inputs[0];
        }
        return false;
    }

private:
    bool valueOf(Signal signal, std::vector<std::optional<bool>>& known) const
    {
        if (!known[signal]) {
            const netlist::Gate& gate = *driver_[signal];
            std::vector<bool> inputs;
            for (const Signal input : gate.inputs) {
                inputs.push_back(valueOf(input, known));
            }
            known[signal] = gateValue(gate.kind, inputs);
        }
        return *known[signal];
    }

    const netlist::Circuit& circuit_;
    std::vector<const netlist::Gate*> driver_;
};
