#include "monitor/track/Hypothesis.h"

#include <algorithm>

namespace monitor {

namespace {

// What does not depend on commands is the same whether they arrived or not. So it is with readings.
std::vector<AtomIndex> lostThatBear(const Plant& plant, const Hypothesis& hypothesis)
{
    const auto isInALaw = [&](AtomIndex atom) {
        const std::span<const ClauseIndex> clauses = plant.clausesOf(atom);
        return std::any_of(clauses.begin(), clauses.end(),
                           [&](ClauseIndex clause) { return plant.isLaw(clause); });
    };
    std::vector<AtomIndex> lost;
    for (const AtomIndex command : hypothesis.lost) {
        const plant::ValueRange values = plant.variable(plant.variableOf(command)).values;
        if (std::any_of(values.begin(), values.end(), isInALaw)) {
            lost.push_back(command);
        }
    }
    return lost;
}

} // namespace

bool Hypothesis::differs(const Plant& plant) const
{
    return isFaulty() || std::any_of(lost.begin(), lost.end(), [&](AtomIndex value) {
               return plant.variable(plant.variableOf(value)).isCommand;
           });
}

bool haveSameFuture(const Plant& plant, const Hypothesis& a, const Hypothesis& b)
{
    return a.modes == b.modes && a.twinModes() == b.twinModes() &&
           a.readings.last == b.readings.last && lostThatBear(plant, a) == lostThatBear(plant, b);
}

} // namespace monitor
