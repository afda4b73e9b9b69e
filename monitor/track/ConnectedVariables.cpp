// Disjoint sets, with paths halved when they are walked.
#include "monitor/track/ConnectedVariables.h"

#include <numeric>

namespace monitor {

namespace {

/// For each variable one of its group that is nearer to the first of it; the first: itself.
class Groups {
public:
    explicit Groups(std::size_t variables) : towards_(variables)
    {
        std::iota(towards_.begin(), towards_.end(), 0);
    }

    VariableIndex of(VariableIndex variable)
    {
        while (at(variable) != variable) {
            at(variable) = at(at(variable));
            variable = at(variable);
        }
        return variable;
    }
    void join(VariableIndex one, VariableIndex other) { at(of(one)) = of(other); }

private:
    VariableIndex& at(VariableIndex variable)
    {
        return towards_[static_cast<std::size_t>(variable)];
    }

    std::vector<VariableIndex> towards_;
};

void joinByLaws(const Plant& plant, Groups& groups)
{
    for (std::size_t i = 0; i < plant.clauseCount(); ++i) {
        VariableIndex before = -1;
        for (const PlantLiteral& literal : plant.clause(static_cast<ClauseIndex>(i))) {
            const VariableIndex variable = plant.variableOf(literal.atom);
            if (plant.variable(variable).isCommand) {
                continue;
            }
            if (before >= 0) {
                groups.join(before, variable);
            }
            before = variable;
        }
    }
}

} // namespace

ConnectedVariables::ConnectedVariables(const Plant& plant)
{
    const auto count = static_cast<VariableIndex>(plant.variables().size());
    Groups groups(plant.variables().size());
    joinByLaws(plant, groups);
    std::vector<bool> read(plant.variables().size(), false); // by group
    for (VariableIndex i = 0; i < count; ++i) {
        groups_.push_back(groups.of(i));
    }
    for (VariableIndex i = 0; i < count; ++i) {
        if (plant.variable(i).isMode) {
            for (const AtomIndex atom : guardAtoms(plant, i)) {
                read[static_cast<std::size_t>(groupOf(plant.variableOf(atom)))] = true;
            }
        }
    }
    for (VariableIndex i = 0; i < count; ++i) {
        matterLater_.push_back(plant.variable(i).isMode ||
                               read[static_cast<std::size_t>(groupOf(i))]);
    }
}

std::vector<AtomIndex> guardAtoms(const Plant& plant, VariableIndex mode)
{
    std::vector<AtomIndex> atoms;
    for (const AtomIndex from : plant.variable(mode).values) {
        for (const PlantChange& change : plant.changesFrom(from)) {
            for (const PlantChange::Alternative& alternative : change.alternatives) {
                for (const PlantLiteral& literal : alternative.literals) {
                    if (!plant.variable(plant.variableOf(literal.atom)).isCommand) {
                        atoms.push_back(literal.atom);
                    }
                }
            }
        }
    }
    return atoms;
}

} // namespace monitor
