// With all gates ok, a model's clauses allow one labelling for each input vector: the one that a plain simulator
// finds. A faulty gate's output is free, and nothing else is.
#include "netlist/CircuitModel.h"
#include "tests/netlist/Circuits.h"
#include "tests/reference/Labellings.h"
#include "tests/reference/LogicSimulator.h"

#include <set>

namespace {

using netlist::Circuit;
using netlist::CircuitModel;
using netlist::SignalIndex;

using Inputs = std::map<SignalIndex, bool>;

Inputs inputVector(const Circuit& circuit, std::uint64_t bits)
{
    Inputs inputs;
    for (std::size_t i = 0; i < circuit.inputs.size(); ++i) {
        inputs[circuit.inputs[i]] = (bits >> i & 1U) != 0;
    }
    return inputs;
}

class Laws {
public:
    explicit Laws(Circuit circuit)
        : circuit_(std::move(circuit)), built_(netlist::buildModel(circuit_)),
          labellings_(Labellings::of(*built_.model)), simulator_(circuit_)
    {
    }

    const Circuit& circuit() const { return circuit_; }

    void expectOneLabelling(const Inputs& inputs) const
    {
        const auto found = labellings_.find(labels(inputs, {}), 2);
        ASSERT_EQ(found.size(), 1U);
        const std::vector<bool> values = simulator_.values(inputs);
        for (SignalIndex signal = 0; signal < values.size(); ++signal) {
            for (const bool bit : {false, true}) {
                EXPECT_EQ(found[0].at(built_.out[signal][bit]), values[signal] == bit)
                    << circuit_.signals[signal] << " = " << values[signal];
            }
        }
    }

    // Every vector of outputs of the faulty gates, each with what the other gates make of it.
    void expectFreeOutputs(const Inputs& inputs, const std::vector<std::size_t>& faultyGates) const
    {
        std::set<std::vector<bool>> expected;
        for (unsigned vector = 0; vector < 1U << faultyGates.size(); ++vector) {
            Inputs forced;
            for (std::size_t i = 0; i < faultyGates.size(); ++i) {
                forced[circuit_.gates[faultyGates[i]].output] = (vector >> i & 1U) != 0;
            }
            expected.insert(simulator_.values(inputs, forced));
        }
        std::multiset<std::vector<bool>> found;
        for (const auto& labelling : labellings_.find(labels(inputs, faultyGates), 1000)) {
            std::vector<bool> values;
            for (const auto& atoms : built_.out) {
                values.push_back(labelling.at(atoms[1]));
            }
            found.insert(values);
        }
        EXPECT_EQ(found, std::multiset<std::vector<bool>>(expected.begin(), expected.end()));
    }

private:
    Labellings::Labelling labels(const Inputs& inputs,
                                 const std::vector<std::size_t>& faultyGates) const
    {
        Labellings::Labelling given;
        for (const auto& [signal, bit] : inputs) {
            given[built_.out[signal][bit]] = true;
        }
        for (std::size_t gate = 0; gate < circuit_.gates.size(); ++gate) {
            const bool faulty = std::count(faultyGates.begin(), faultyGates.end(), gate) > 0;
            given[faulty ? built_.faulty[gate] : built_.ok[gate]] = true;
        }
        return given;
    }

    Circuit circuit_;
    CircuitModel built_;
    Labellings labellings_;
    LogicSimulator simulator_;
};

void expectOneLabellingForEachVector(const Laws& laws)
{
    for (std::uint64_t bits = 0; bits < 1U << laws.circuit().inputs.size(); ++bits) {
        SCOPED_TRACE("input vector " + std::to_string(bits));
        laws.expectOneLabelling(inputVector(laws.circuit(), bits));
    }
}

TEST(CircuitLaws, OfEveryKindOfGateAgreeWithTheSimulatorUpToEightInputs)
{
    for (const auto& [kind, name] : netlist::gateKinds) {
        for (std::size_t arity = 1; arity <= (netlist::isUnary(kind) ? 1U : 8U); ++arity) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(arity));
            expectOneLabellingForEachVector(Laws(gateCircuit(kind, arity)));
        }
    }
}

TEST(CircuitLaws, LeaveTheOutputOfAFaultyGateFree)
{
    for (const auto& [kind, name] : netlist::gateKinds) {
        for (std::size_t arity = 1; arity <= (netlist::isUnary(kind) ? 1U : 6U); ++arity) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(arity));
            const Laws laws(gateCircuit(kind, arity));
            for (std::uint64_t bits = 0; bits < 1U << arity; ++bits) {
                laws.expectFreeOutputs(inputVector(laws.circuit(), bits), {0});
            }
        }
    }
}

// The lists of 2 to 6 inputs over signals a, b, c, each list once.
TEST(CircuitLaws, AgreeWithTheSimulatorWhenASignalStandsTwice)
{
    for (const auto& [kind, name] : netlist::gateKinds) {
        if (netlist::isUnary(kind)) continue;
        for (unsigned arity = 2, lists = 9; arity <= 6; ++arity, lists *= 3) {
            for (unsigned list = 0; list < lists; list += arity < 5 ? 1 : 7) {
                std::string arguments;
                for (unsigned i = 0, rest = list; i < arity; ++i, rest /= 3) {
                    arguments += (i == 0 ? "" : ", ") + std::string(1, "abc"[rest % 3]);
                }
                SCOPED_TRACE(std::string(name) + "(" + arguments + ")");
                expectOneLabellingForEachVector(Laws(
                    circuitOf("INPUT(a)\nINPUT(b)\nINPUT(c)\nOUTPUT(y)\ny = " + std::string(name) +
                              "(" + arguments + ")\n")));
            }
        }
    }
}

TEST(CircuitLaws, OfLargeGatesAgreeWithTheSimulatorOnRandomVectors)
{
    Random random(1);
    for (const auto& [kind, name] : netlist::gateKinds) {
        if (netlist::isUnary(kind)) continue;
        for (const std::size_t arity : {9U, 17U, 40U}) {
            SCOPED_TRACE(std::string(name) + " of " + std::to_string(arity));
            const Laws laws(gateCircuit(kind, arity));
            const std::uint64_t all = (std::uint64_t{1} << arity) - 1;
            for (const std::uint64_t bits :
                 {std::uint64_t{0}, all, std::uint64_t{1}, all - 1, random.next(), random.next()}) {
                laws.expectOneLabelling(inputVector(laws.circuit(), bits));
            }
        }
    }
}

class RandomCircuits : public testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomCircuits, HaveOneLabellingForEachInputVector)
{
    Random random(GetParam());
    const std::string text =
        randomCircuitText(random, random.between(1, 4), random.between(1, 12), 6);
    SCOPED_TRACE(text);
    expectOneLabellingForEachVector(Laws(circuitOf(text)));
}

TEST_P(RandomCircuits, HaveFreeOutputsWhereGatesAreFaulty)
{
    Random random(GetParam());
    const std::string text =
        randomCircuitText(random, random.between(1, 4), random.between(1, 8), 6);
    SCOPED_TRACE(text);
    const Laws laws(circuitOf(text));
    std::vector<std::size_t> faulty;
    for (std::size_t gate = 0; gate < laws.circuit().gates.size() && faulty.size() < 3; ++gate) {
        if (random.chance(40)) faulty.push_back(gate);
    }
    laws.expectFreeOutputs(inputVector(laws.circuit(), random.next()), faulty);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCircuits, testing::Range<std::uint64_t>(1, 61));

} // namespace
