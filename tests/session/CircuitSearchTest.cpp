// Random circuits with random faults: both searches give the same answers.
#include "session/CircuitSession.h"

#include "tests/netlist/Circuits.h"
#include "tests/support/Sanitized.h"
#include "tests/support/TestModel.h"

#include <set>

namespace {

using session::CircuitAnswer;
using session::CircuitProblem;
using session::CircuitSearch;
using session::CircuitSession;
using session::CircuitSettings;

netlist::Circuit randomCircuit(Random& random)
{
    const int inputs = random.between(1, 5);
    const int gates = random.between(2, 14);
    std::string text = randomCircuitText(random, inputs, gates, 5);
    for (int i = 0; i + 1 < inputs + gates; ++i) {
        if (random.chance(i < inputs ? 5 : 25)) text += "OUTPUT(n" + std::to_string(i) + ")\n";
    }
    return circuitOf(text);
}

// Inputs at random, and outputs of which some are not observed: any values, so that many gates may be at fault.
CircuitProblem randomProblem(Random& random, const netlist::Circuit& circuit)
{
    CircuitProblem problem;
    for (const netlist::SignalIndex input : circuit.inputs) {
        problem.inputs.emplace_back(input, random.chance(50));
    }
    for (const netlist::SignalIndex output : circuit.outputs) {
        if (problem.outputs.empty() || random.chance(80)) {
            problem.outputs.emplace_back(output, random.chance(50));
        }
    }
    return problem;
}

CircuitAnswer answer(const netlist::Circuit& circuit, const CircuitProblem& problem,
                     const CircuitSettings& settings, CircuitSearch search)
{
    const MutedTrace muted;
    CircuitSession session(circuit, 0.01, search);
    return session.solve(problem, settings, [](int) {});
}

void expectEqual(const CircuitAnswer& one, const CircuitAnswer& other)
{
    EXPECT_EQ(one.faultBound, other.faultBound);
    EXPECT_EQ(one.status, other.status);
    EXPECT_EQ(one.complete, other.complete);
    EXPECT_EQ(one.differing, other.differing);
    ASSERT_EQ(one.explanations.size(), other.explanations.size());
    for (std::size_t i = 0; i < one.explanations.size(); ++i) {
        EXPECT_EQ(one.explanations[i].gates, other.explanations[i].gates);
        EXPECT_NEAR(one.explanations[i].probability, other.explanations[i].probability, 1e-12);
    }
}

// A chain of inverters, each observed but the first: one fault explains one output, at most.
netlist::Circuit chain(int length)
{
    std::string text = "INPUT(n0)\n";
    for (int i = 1; i <= length; ++i) {
        text += "n" + std::to_string(i) + " = NOT(n" + std::to_string(i - 1) + ")\n";
        text += "OUTPUT(n" + std::to_string(i) + ")\n";
    }
    return circuitOf(text);
}

class CircuitSearches : public testing::TestWithParam<int> {};

} // namespace

TEST_P(CircuitSearches, AgreeOnRandomCircuits)
{
    const int faults = GetParam();
    std::set<std::size_t> sizes;
    const std::uint64_t circuits = underSanitizers ? 20 : faults > 6 ? 100 : 700;
    for (std::uint64_t seed = 1; seed <= circuits; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed * 10 + static_cast<std::uint64_t>(faults));
        const netlist::Circuit circuit = randomCircuit(random);
        const CircuitProblem problem = randomProblem(random, circuit);
        CircuitSettings settings;
        if (faults > 0) settings.maxRank = faults;
        const CircuitAnswer given = answer(circuit, problem, settings, CircuitSearch::conflicts);
        expectEqual(given, answer(circuit, problem, settings, CircuitSearch::engine));
        for (const auto& explanation : given.explanations) sizes.insert(explanation.gates.size());
        if (HasFailure()) return;
    }
    EXPECT_GE(*sizes.rbegin(), faults > 0 ? std::min<std::size_t>(faults, 3) : 2U);
}

// 0: as few faults as explain the outputs. 7: more than are counted in the lanes, so that both search a model.
INSTANTIATE_TEST_SUITE_P(UpTo, CircuitSearches, testing::Values(0, 1, 2, 3, 4, 7));

TEST(CircuitSearch, FindsMoreFaultsThanItHasLanesFor)
{
    const netlist::Circuit circuit = chain(8);
    CircuitProblem problem;
    problem.inputs = {{circuit.inputs[0], false}};
    for (const netlist::SignalIndex output : circuit.outputs) {
        problem.outputs.emplace_back(output, false);
    }
    CircuitSettings settings;
    settings.maxRank = 8;
    const CircuitAnswer given = answer(circuit, problem, settings, CircuitSearch::conflicts);
    ASSERT_EQ(given.explanations.size(), 1U);
    EXPECT_EQ(given.explanations[0].gates.size(), 8U);
    expectEqual(given, answer(circuit, problem, settings, CircuitSearch::engine));
}

TEST(CircuitSearch, SaysThatALimitCutIt)
{
    const netlist::Circuit circuit = chain(8);
    CircuitProblem problem;
    problem.inputs = {{circuit.inputs[0], false}};
    problem.outputs = {{circuit.outputs[3], true}, {circuit.outputs[7], true}};
    CircuitSettings settings;
    settings.maxRank = 2;
    const CircuitAnswer all = answer(circuit, problem, settings, CircuitSearch::conflicts);
    ASSERT_TRUE(all.complete);
    for (std::uint64_t records = 0; records < all.work.records; ++records) {
        SCOPED_TRACE(records);
        settings.limits.maxRecords = records;
        const CircuitAnswer cut = answer(circuit, problem, settings, CircuitSearch::conflicts);
        EXPECT_FALSE(cut.complete);
        EXPECT_EQ(cut.limit, SearchLimit::records);
        EXPECT_LE(cut.work.records, records);
        EXPECT_LE(cut.explanations.size(), all.explanations.size());
    }
    settings.limits.maxRecords = all.work.records + 1;
    EXPECT_TRUE(answer(circuit, problem, settings, CircuitSearch::conflicts).complete);
}

TEST(CircuitSearch, KeepsWhatItFoundWhenTheWorkIsUsedUp)
{
    const netlist::Circuit circuit = chain(8);
    CircuitProblem problem;
    problem.inputs = {{circuit.inputs[0], false}};
    problem.outputs = {{circuit.outputs[3], true}, {circuit.outputs[7], true}};
    CircuitSettings settings;
    settings.maxRank = 2;
    settings.work.maxWork = 1;
    const CircuitAnswer given = answer(circuit, problem, settings, CircuitSearch::conflicts);
    EXPECT_FALSE(given.complete);
    EXPECT_EQ(given.limit, SearchLimit::work);
}
