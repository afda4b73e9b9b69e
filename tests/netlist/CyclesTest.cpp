// The order of gates and their cycles, on random circuits, checked against their definitions.
#include "netlist/Cycles.h"
#include "tests/reference/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using netlist::Circuit;
using netlist::GateList;

// Gates 0 .. n-1, each driving the signal of its number, over random signals; signal n is an input.
Circuit randomGraph(Random& random, std::size_t gates, int maxArity)
{
    Circuit circuit;
    for (std::size_t g = 0; g < gates; ++g) {
        netlist::Gate& gate = circuit.gates.emplace_back();
        gate.output = g;
        for (int i = random.between(1, maxArity); i > 0; --i) {
            gate.inputs.push_back(random.chance(50) ? gates : random.below(gates));
        }
    }
    return circuit;
}

std::vector<std::size_t> driversOf(const Circuit& circuit)
{
    std::vector<std::size_t> drivers;
    for (std::size_t g = 0; g < circuit.gates.size(); ++g) {
        drivers.push_back(g);
    }
    drivers.push_back(netlist::noGate);
    return drivers;
}

bool reads(const Circuit& circuit, std::size_t gate, std::size_t signal)
{
    const std::vector<netlist::SignalIndex>& inputs = circuit.gates[gate].inputs;
    return std::find(inputs.begin(), inputs.end(), signal) != inputs.end();
}

// feeds[a][b]: the shortest way from gate a to gate b, in steps, at least one; 0: none.
std::vector<std::vector<std::size_t>> distances(const Circuit& circuit)
{
    const std::size_t n = circuit.gates.size();
    std::vector<std::vector<std::size_t>> way(n, std::vector<std::size_t>(n, 0));
    for (std::size_t a = 0; a < n; ++a) {
        for (std::size_t b = 0; b < n; ++b) {
            way[a][b] = reads(circuit, b, a) ? 1 : 0;
        }
    }
    for (std::size_t over = 0; over < n; ++over) {
        for (std::size_t a = 0; a < n; ++a) {
            for (std::size_t b = 0; b < n; ++b) {
                const std::size_t sum = way[a][over] + way[over][b];
                if (way[a][over] > 0 && way[over][b] > 0 && (way[a][b] == 0 || sum < way[a][b]))
                    way[a][b] = sum;
            }
        }
    }
    return way;
}

class RandomGraphs : public testing::TestWithParam<std::uint64_t> {};

TEST_P(RandomGraphs, AreOrderedUpToTheirCycles)
{
    Random random(GetParam());
    const std::size_t gates = 1 + random.below(12);
    const Circuit circuit = randomGraph(random, gates, 3);
    const auto way = distances(circuit);
    const GateList order = netlist::gateOrder(circuit, driversOf(circuit));
    std::set<std::size_t> listed;
    for (const std::size_t gate : order) {
        for (const netlist::SignalIndex input : circuit.gates[gate].inputs) {
            EXPECT_TRUE(input == gates || listed.contains(input));
        }
        EXPECT_TRUE(listed.insert(gate).second);
    }
    for (std::size_t gate = 0; gate < gates; ++gate) {
        bool dependsOnACycle = false;
        for (std::size_t other = 0; other < gates; ++other) {
            const bool leadsHere = other == gate || way[other][gate] > 0;
            dependsOnACycle = dependsOnACycle || (way[other][other] > 0 && leadsHere);
        }
        EXPECT_EQ(listed.contains(gate), !dependsOnACycle) << "gate " << gate;
    }
}

TEST_P(RandomGraphs, HaveAShortestCycleReportedForEachGroup)
{
    Random random(GetParam());
    const std::size_t gates = 1 + random.below(12);
    const Circuit circuit = randomGraph(random, gates, 3);
    const auto way = distances(circuit);
    // A group is named by its first gate.
    std::vector<std::size_t> firsts;
    for (std::size_t gate = 0; gate < gates; ++gate) {
        bool isFirst = way[gate][gate] > 0;
        for (std::size_t earlier = 0; earlier < gate; ++earlier) {
            isFirst = isFirst && !(way[earlier][gate] > 0 && way[gate][earlier] > 0);
        }
        if (isFirst) firsts.push_back(gate);
    }
    const std::vector<GateList> cycles = netlist::gateCycles(circuit, driversOf(circuit));
    ASSERT_EQ(cycles.size(), firsts.size());
    for (std::size_t i = 0; i < cycles.size(); ++i) {
        const GateList& cycle = cycles[i];
        EXPECT_EQ(cycle.front(), firsts[i]);
        EXPECT_EQ(cycle.size(), way[firsts[i]][firsts[i]]);
        for (std::size_t at = 0; at < cycle.size(); ++at) {
            EXPECT_TRUE(reads(circuit, cycle[(at + 1) % cycle.size()], cycle[at]));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomGraphs, testing::Range<std::uint64_t>(1, 201));

} // namespace
