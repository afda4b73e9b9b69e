#include "netlist/CircuitModel.h"

#include "plant/ModelBuilder.h"

#include <span>

namespace netlist {

namespace {

using plant::Literal;
using plant::ModelBuilder;
using plant::VariableKind;

/// The atoms of a signal, or of an auxiliary condition, for 0 and 1.
using Bits = std::array<Atom*, 2>;

// Up to this many inputs an XOR has one law for each input vector: 16 at most.
constexpr std::size_t widestParityTable = 4;

Bits condition(ModelBuilder& builder, Comp* component, const std::string& name)
{
    const StateVar* made =
        builder.variable(component, name, VariableKind::condition, {{"0"}, {"1"}});
    return {(*made->atomLinks)[0], (*made->atomLinks)[1]};
}

bool bitOf(unsigned vector, std::size_t position)
{
    return (vector >> position & 1U) != 0;
}

// The laws of one gate.
class GateLaws {
public:
    GateLaws(ModelBuilder& builder, Comp* component, Atom* faulty, const Bits& out)
        : builder_(builder), component_(component), faulty_(faulty), out_(out)
    {
    }

    void add(const Gate& gate, const std::vector<Bits>& signals)
    {
        std::vector<Bits> inputs;
        inputs.reserve(gate.inputs.size());
        for (const SignalIndex input : gate.inputs) {
            inputs.push_back(signals[input]);
        }
        const bool inverting = isInverting(gate.kind);
        switch (gate.kind) {
        case GateKind::andGate:
        case GateKind::nandGate:
        case GateKind::notGate:
        case GateKind::bufGate: dominated(inputs, false, inverting); break;
        case GateKind::orGate:
        case GateKind::norGate: dominated(inputs, true, inverting); break;
        case GateKind::xorGate:
        case GateKind::xnorGate: parity(inputs, inverting); break;
        }
    }

private:
    // One input at `dominant` gives the output that value, and all inputs at the other value give the other
    // one. Inverting gates give the opposite.
    void dominated(const std::vector<Bits>& inputs, bool dominant, bool inverting)
    {
        for (const Bits& input : inputs) {
            builder_.law(
                component_,
                {{false, faulty_}, {true, input[dominant]}, {false, out_[dominant != inverting]}});
        }
        std::vector<Literal> all{{false, faulty_}};
        for (const Bits& input : inputs) {
            all.push_back({true, input[!dominant]});
        }
        all.push_back({false, out_[dominant == inverting]});
        builder_.law(component_, all);
    }

    void parity(const std::vector<Bits>& inputs, bool inverting)
    {
        if (inputs.size() <= widestParityTable) {
            parityTable(faulty_, inputs, inverting, out_);
            return;
        }
        Bits soFar = inputs[0];
        for (std::size_t count = 2; count < inputs.size(); ++count) {
            const Bits next = condition(builder_, component_, "x" + std::to_string(count));
            parityTable(nullptr, std::array{soFar, inputs[count - 1]}, false, next);
            soFar = next;
        }
        parityTable(faulty_, std::array{soFar, inputs.back()}, inverting, out_);
    }

    // A law for each vector of the inputs, counted up with the first input as the lowest bit.
    void parityTable(Atom* unless, std::span<const Bits> inputs, bool inverting, const Bits& result)
    {
        for (unsigned vector = 0; vector < 1U << inputs.size(); ++vector) {
            std::vector<Literal> literals;
            if (unless) literals.push_back({false, unless});
            bool odd = false;
            bool possible = true;
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                const bool bit = bitOf(vector, i);
                odd = odd != bit;
                literals.push_back({true, inputs[i][bit]});
                for (std::size_t j = 0; j < i; ++j) {
                    possible = possible && (inputs[j] != inputs[i] || bitOf(vector, j) == bit);
                }
            }
            literals.push_back({false, result[odd != inverting]});
            if (possible) builder_.law(component_, literals);
        }
    }

    ModelBuilder& builder_;
    Comp* component_;
    Atom* faulty_;
    Bits out_;
};

} // namespace

CircuitModel buildModel(const Circuit& circuit, const CircuitModelOptions& options)
{
    ModelBuilder builder(circuit.name);
    CircuitModel result;
    result.out.resize(circuit.signals.size());
    for (const SignalIndex input : circuit.inputs) {
        result.out[input] = condition(builder, builder.component(circuit.signals[input]), "out");
    }
    std::vector<Comp*> components;
    for (const Gate& gate : circuit.gates) {
        Comp* component = components.emplace_back(builder.component(circuit.signals[gate.output]));
        const StateVar* mode =
            builder.variable(component, "mode", VariableKind::mode, {{"ok"}, {"faulty", true}}, 0);
        result.ok.push_back((*mode->atomLinks)[0]);
        result.faulty.push_back((*mode->atomLinks)[1]);
        result.out[gate.output] = condition(builder, component, "out");
        builder.fault(result.ok.back(), result.faulty.back(), options.faultProbability);
    }
    for (std::size_t gate = 0; gate < circuit.gates.size(); ++gate) {
        GateLaws laws(builder, components[gate], result.faulty[gate],
                      result.out[circuit.gates[gate].output]);
        laws.add(circuit.gates[gate], result.out);
    }
    result.model = builder.build();
    return result;
}

Atom* outAtom(const Circuit& circuit, const CircuitModel& model, const std::string& signal, bool bit)
{
    const std::optional<SignalIndex> index = circuit.signal(signal);
    return index ? model.out[*index][bit] : nullptr;
}

} // namespace netlist
