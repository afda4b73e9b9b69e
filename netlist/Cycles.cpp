// The order is found by counting down: a gate is ready when every gate that drives it has been listed ("Topological sorting of
// large networks", Communications of the ACM, 1962). Groups are strongly connected components, found by one depth-first walk
// ("Depth-first search and linear graph algorithms", SIAM Journal on Computing, 1972) with a stack of its own, since a circuit can
// be deeper than the stack of the program.
#include "netlist/Cycles.h"

#include <algorithm>
#include <limits>

namespace netlist {

namespace {

// By gate, the gates that its output feeds, once for each input.
std::vector<GateList> readers(const Circuit& circuit, const std::vector<std::size_t>& driver)
{
    std::vector<GateList> result(circuit.gates.size());
    for (std::size_t gate = 0; gate < circuit.gates.size(); ++gate) {
        for (const SignalIndex input : circuit.gates[gate].inputs) {
            if (driver[input] != noGate) result[driver[input]].push_back(gate);
        }
    }
    return result;
}

class Groups {
public:
    explicit Groups(const std::vector<GateList>& next)
        : next_(next), number_(next.size(), 0), low_(next.size(), 0), group_(next.size(), noGroup)
    {
        for (std::size_t gate = 0; gate < next.size(); ++gate) {
            if (number_[gate] == 0) walk(gate);
        }
    }

    std::size_t of(std::size_t gate) const { return group_[gate]; }
    std::size_t count() const { return count_; }

private:
    static constexpr std::size_t noGroup = std::numeric_limits<std::size_t>::max();
    struct Frame {
        std::size_t gate;
        std::size_t edge;
    };

    void enter(std::size_t gate)
    {
        number_[gate] = low_[gate] = ++lastNumber_;
        open_.push_back(gate);
        frames_.push_back({gate, 0});
    }

    void walk(std::size_t root)
    {
        enter(root);
        while (!frames_.empty()) {
            auto& [gate, edge] = frames_.back();
            if (edge < next_[gate].size()) {
                const std::size_t to = next_[gate][edge++];
                if (number_[to] == 0) {
                    enter(to);
                } else if (group_[to] == noGroup) {
                    low_[gate] = std::min(low_[gate], number_[to]);
                }
            } else {
                leave(gate);
            }
        }
    }

    void leave(std::size_t gate)
    {
        frames_.pop_back();
        if (!frames_.empty()) {
            std::size_t& above = low_[frames_.back().gate];
            above = std::min(above, low_[gate]);
        }
        if (low_[gate] != number_[gate]) return;
        std::size_t member = noGroup;
        do {
            member = open_.back();
            open_.pop_back();
            group_[member] = count_;
        } while (member != gate);
        ++count_;
    }

    const std::vector<GateList>& next_;
    std::vector<std::size_t> number_; // of a gate in the order of the walk, from 1; 0: not met
    std::vector<std::size_t> low_;    // the least number that is reached from below it
    std::vector<std::size_t> group_;
    GateList open_;
    std::vector<Frame> frames_;
    std::size_t lastNumber_ = 0;
    std::size_t count_ = 0;
};

// A shortest way from the gate back to it, within its group; empty when there is none. `cameFrom` is all
// noGate, and is written for gates of the group only.
GateList shortestCycle(std::size_t first, const std::vector<GateList>& next, const Groups& groups,
                       std::vector<std::size_t>& cameFrom)
{
    GateList queue{first};
    for (std::size_t at = 0; at < queue.size(); ++at) {
        for (const std::size_t to : next[queue[at]]) {
            if (to == first) {
                GateList cycle;
                for (std::size_t gate = queue[at]; gate != first; gate = cameFrom[gate]) {
                    cycle.push_back(gate);
                }
                cycle.push_back(first);
                std::reverse(cycle.begin(), cycle.end());
                return cycle;
            }
            if (groups.of(to) == groups.of(first) && cameFrom[to] == noGate) {
                cameFrom[to] = queue[at];
                queue.push_back(to);
            }
        }
    }
    return {};
}

} // namespace

GateList gateOrder(const Circuit& circuit, const std::vector<std::size_t>& driver)
{
    const std::vector<GateList> next = readers(circuit, driver);
    std::vector<std::size_t> waitsFor(circuit.gates.size(), 0);
    for (const GateList& fed : next) {
        for (const std::size_t gate : fed) {
            ++waitsFor[gate];
        }
    }
    GateList order;
    order.reserve(circuit.gates.size());
    for (std::size_t gate = 0; gate < circuit.gates.size(); ++gate) {
        if (waitsFor[gate] == 0) order.push_back(gate);
    }
    for (std::size_t at = 0; at < order.size(); ++at) {
        for (const std::size_t gate : next[order[at]]) {
            if (--waitsFor[gate] == 0) order.push_back(gate);
        }
    }
    return order;
}

std::vector<GateList> gateCycles(const Circuit& circuit, const std::vector<std::size_t>& driver)
{
    const std::vector<GateList> next = readers(circuit, driver);
    const Groups groups(next);
    std::vector<bool> seen(groups.count(), false);
    std::vector<std::size_t> cameFrom(circuit.gates.size(), noGate);
    std::vector<GateList> cycles;
    for (std::size_t gate = 0; gate < circuit.gates.size(); ++gate) {
        if (seen[groups.of(gate)]) continue;
        seen[groups.of(gate)] = true;
        GateList cycle = shortestCycle(gate, next, groups, cameFrom);
        if (!cycle.empty()) cycles.push_back(std::move(cycle));
    }
    return cycles;
}

} // namespace netlist
