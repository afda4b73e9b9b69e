// Disjoint sets, with paths halved when they are walked.
#include "monitor/track/ConnectedVariables.h"

#include "monitor/labels/Meter.h"

#include <numeric>

namespace monitor {

ConnectedVariables::ConnectedVariables(const Plant& plant) : first_(plant.variables().size())
{
    std::iota(first_.begin(), first_.end(), 0);
    for (std::size_t i = 0; i < plant.clauseCount(); ++i) {
        const std::span<const PlantLiteral> literals = plant.clause(static_cast<ClauseIndex>(i));
        Meter::spend(literals.size());
        VariableIndex before = -1;
        for (const PlantLiteral& literal : literals) {
            const VariableIndex variable = plant.variableOf(literal.atom);
            if (plant.variable(variable).isCommand) {
                continue;
            }
            if (before >= 0) {
                at(groupOf(before)) = groupOf(variable);
            }
            before = variable;
        }
    }
}

VariableIndex ConnectedVariables::groupOf(VariableIndex variable)
{
    while (at(variable) != variable) {
        at(variable) = at(at(variable));
        variable = at(variable);
    }
    return variable;
}

} // namespace monitor
