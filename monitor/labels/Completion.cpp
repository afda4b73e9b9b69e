// Depth-first search with unit propagation after each choice and chronological backtracking: the choices stand on a stack, and
// a value that contradicts the others is taken back together with everything that followed from it.
#include "monitor/labels/Completion.h"

#include "monitor/labels/Meter.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace monitor {

namespace {

// A variable that was open, its values, and how many of them were tried.
struct Choice {
    std::size_t place; ///< in the order of variables
    std::size_t mark;
    std::vector<AtomIndex> values;
    std::size_t tried = 0;
};

// Takes back the value that the choice has, if any, and gives it its next one. False when there is none.
bool tryNext(Choice& choice, Prediction& labels)
{
    while (choice.tried < choice.values.size()) {
        labels.undo(choice.mark);
        const AtomIndex value = choice.values[choice.tried++];
        if (labels.assume(value) && labels.propagate()) {
            return true;
        }
    }
    labels.undo(choice.mark);
    return false;
}

bool isOpen(const PlantVariable& variable, const Prediction& labels)
{
    return std::any_of(variable.values.begin(), variable.values.end(),
                       [&](AtomIndex value) { return !labels.isKnown(value); });
}

} // namespace

Completion complete(const Plant& plant, Prediction& labels, const std::vector<VariableIndex>& order,
                    const ValueOrder& values, std::uint64_t mostRetreats)
{
    const std::size_t start = labels.mark();
    std::vector<Choice> choices;
    std::uint64_t retreats = 0;
    for (std::size_t next = 0; next < order.size(); ++next) {
        Meter::spend(1);
        if (!isOpen(plant.variable(order[next]), labels)) {
            continue;
        }
        choices.push_back({next, labels.mark(), values(order[next])});
        while (!tryNext(choices.back(), labels)) {
            choices.pop_back();
            if (choices.empty()) {
                return Completion::impossible;
            }
            if (++retreats > mostRetreats) {
                labels.undo(start);
                return Completion::unsettled;
            }
        }
        next = choices.back().place;
    }
    return Completion::possible;
}

std::vector<VariableIndex> variablesAround(const Plant& plant, const Prediction& labels,
                                           const Prediction& others)
{
    std::vector<VariableIndex> reached;
    std::unordered_set<VariableIndex> seen;
    const auto reach = [&](AtomIndex atom) {
        const VariableIndex variable = plant.variableOf(atom);
        if (!labels.isKnown(atom) && seen.insert(variable).second) {
            reached.push_back(variable);
        }
    };
    const auto reachAround = [&](AtomIndex atom, bool openOnly) {
        for (const ClauseIndex clause : plant.clausesOf(atom)) {
            Meter::spend(plant.clause(clause).size());
            if (openOnly && labels.satisfies(clause)) {
                continue;
            }
            for (const PlantLiteral& literal : plant.clause(clause)) {
                reach(literal.atom);
            }
        }
    };
    forEachDifference(labels, others, [&](AtomIndex atom) {
        reach(atom);
        reachAround(atom, false);
    });
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (const AtomIndex value : plant.variable(reached[next]).values) {
            if (!labels.isKnown(value)) {
                reachAround(value, true);
            }
        }
    }
    std::sort(reached.begin(), reached.end());
    return reached;
}

bool fillsInTurn(const Plant& plant, Prediction labels, const std::vector<VariableIndex>& variables)
{
    const auto values = [&](VariableIndex variable) {
        return plant.variable(variable).values.toVector();
    };
    return complete(plant, labels, variables, values, 0) == Completion::possible;
}

bool stillFillsInTurn(const Plant& plant, const Prediction& labels, const Prediction& before)
{
    return labels.complete() || fillsInTurn(plant, labels, variablesAround(plant, labels, before));
}

Completion completionOf(const Plant& plant, Prediction labels, std::uint64_t mostRetreats)
{
    std::vector<VariableIndex> order(plant.variables().size());
    std::iota(order.begin(), order.end(), 0);
    return complete(
        plant, labels, order,
        [&](VariableIndex variable) { return plant.variable(variable).values.toVector(); },
        mostRetreats);
}

} // namespace monitor
