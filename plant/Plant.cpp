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
    changesFrom_.resize(atoms_.size());
    addChanges(model);
    addModes();
}

// A transition is an alternative of the change before it, or begins a new one.
void Plant::addChanges(const Model& model)
{
    std::unordered_map<std::size_t, std::size_t> placeOf; // of changes among those that leave the same value
    for (std::size_t i = 0; i < model.transitions().size(); ++i) {
        const Transition* transition = model.transitions()[i].get();
        const auto precondition = model.preconditionOf(i);
        const Atom* from = precondition.front().second;
        if (transition->atom == from || transition->proba <= 0.0) {
            continue;
        }
        std::vector<PlantLiteral> guard;
        bool possible = true;
        for (const auto& [holds, atom] : precondition.subspan(1)) {
            if (atom->stateVar == from->stateVar) {
                possible = possible && holds == (atom == from);
            } else {
                guard.push_back({indexOf(atom), !holds});
            }
        }
        if (!possible) {
            continue;
        }
        std::vector<PlantChange>& changes = changesFrom_[static_cast<std::size_t>(indexOf(from))];
        const auto [place, isNew] = placeOf.emplace(model.changeOf(i), changes.size());
        if (isNew) {
            changes.push_back({indexOf(transition->atom),
                               transition->proba,
                               transition->name == "Nominal" && !transition->idle,
                               transition->type == "Repair",
                               {}});
        }
        changes[place->second].alternatives.push_back({std::move(guard), transition});
    }
}

void Plant::addModes()
{
    std::vector<std::vector<VariableIndex>> readers(atoms_.size());
    modePlaces_.resize(variables_.size());
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        const PlantVariable& variable = variables_[i];
        if (!variable.isMode || variable.values.empty()) {
            continue;
        }
        const auto mode = static_cast<VariableIndex>(i);
        modePlaces_[i] = modes_.size();
        modes_.push_back(mode);
        for (const AtomIndex value : variable.values) {
            for (const PlantChange& change : changesFrom(value)) {
                for (const PlantChange::Alternative& alternative : change.alternatives) {
                    for (const PlantLiteral& literal : alternative.literals) {
                        auto& of = readers[static_cast<std::size_t>(literal.atom)];
                        if (of.empty() || of.back() != mode) {
                            of.push_back(mode);
                        }
                    }
                }
            }
        }
    }
    for (const std::vector<VariableIndex>& of : readers) {
        modesReading_.add(of);
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
