#include "plant/Plant.h"

#include "model/keys.h"

namespace plant {

Plant::Plant(const Model& model)
{
    // The order in which Model::activate enters the components, and a hash map then lists them.
    CompMap components;
    for (const auto& component : model.components()) {
        components[component->name.c_str()] = component.get();
    }
    for (const auto& [name, comp] : components) {
        for (StateVar* variable : *comp->stateVars) {
            addVariable(variable);
        }
    }
    clausesOf_.resize(atoms_.size());
    for (const PlantVariable& variable : variables_) {
        for (const Clause* clause : *variable.variable->clauses) {
            addClause(clause);
        }
    }
    firstLaw_ = static_cast<ClauseIndex>(clauses_.size());
    for (const Clause* clause : model.laws()) {
        addClause(clause);
    }
}

void Plant::addVariable(StateVar* variable)
{
    const auto index = static_cast<VariableIndex>(variables_.size());
    PlantVariable& added = variables_.emplace_back();
    added.variable = variable;
    added.isMode = variable->type == "Mode";
    added.isCommand = variable->type == "Command";
    for (Atom* atom : *variable->atomLinks) {
        const auto number = static_cast<AtomIndex>(atoms_.size());
        added.values.push_back(number);
        atoms_.push_back(atom);
        indexOf_.emplace(atom, number);
        variableOf_.push_back(index);
    }
}

void Plant::addClause(const Clause* clause)
{
    const auto number = static_cast<ClauseIndex>(clauses_.size());
    if (!clauseIndexOf_.emplace(clause, number).second) {
        return;
    }
    modelClauses_.push_back(clause);
    if (clause->literals->size() <= 1) {
        unitClauses_.push_back(number);
    }
    std::vector<PlantLiteral>& literals = clauses_.emplace_back();
    for (const auto& [negated, atom] : *clause->literals) {
        const AtomIndex index = indexOf_.at(atom);
        literals.push_back({index, negated});
        std::vector<ClauseIndex>& of = clausesOf_[static_cast<std::size_t>(index)];
        if (of.empty() || of.back() != number) {
            of.push_back(number);
        }
    }
}

} // namespace plant
