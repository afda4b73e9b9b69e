#include "plant/Plant.h"

#include "model/keys.h"
#include "plant/PlantPart.h"

#include <algorithm>

namespace plant {

Plant::~Plant() = default;

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
    addReaders();
}

Plant::Plant(const Plant& whole, const std::vector<VariableIndex>& variables)
{
    std::vector<ClauseIndex> clauses;
    std::unordered_map<AtomIndex, AtomIndex> here;
    for (const VariableIndex variable : variables) {
        for (const AtomIndex value : whole.variable(variable).values) {
            here.emplace(value, static_cast<AtomIndex>(here.size()));
            const std::vector<ClauseIndex>& of = whole.clausesOf(value);
            clauses.insert(clauses.end(), of.begin(), of.end());
        }
        addVariable(whole.variable(variable).variable);
    }
    std::sort(clauses.begin(), clauses.end());
    clauses.erase(std::unique(clauses.begin(), clauses.end()), clauses.end());
    clausesOf_.resize(atoms_.size());
    for (const ClauseIndex clause : clauses) {
        std::vector<PlantLiteral> literals = whole.clause(clause);
        for (PlantLiteral& literal : literals) {
            literal.atom = here.at(literal.atom);
        }
        firstLaw_ += whole.isLaw(clause) ? 0 : 1;
        addClause(whole.modelClause(clause), std::move(literals));
    }
    changesFrom_.resize(atoms_.size());
    addModes();
    addReaders();
    modesOfWhole_ = whole.modesOfWhole();
}

PlantParts& Plant::parts() const
{
    if (!parts_) {
        parts_ = std::make_unique<PlantParts>(*this);
    }
    return *parts_;
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
    modePlaces_.resize(variables_.size());
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        modesOfWhole_ += variables_[i].isMode ? 1 : 0;
        commandCount_ += variables_[i].isCommand && !variables_[i].values.empty() ? 1 : 0;
        if (variables_[i].isMode && !variables_[i].values.empty()) {
            modePlaces_[i] = modes_.size();
            modes_.push_back(static_cast<VariableIndex>(i));
        }
    }
}

void Plant::addReaders()
{
    std::vector<std::vector<VariableIndex>> readers(atoms_.size());
    for (const VariableIndex mode : modes_) {
        for (const AtomIndex value : variable(mode).values) {
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
    if (!clauseIndexOf_.emplace(clause, static_cast<ClauseIndex>(clauses_.size())).second) {
        return;
    }
    std::vector<PlantLiteral> literals;
    for (const auto& [negated, atom] : *clause->literals) {
        literals.push_back({indexOf_.at(atom), negated});
    }
    addClause(clause, std::move(literals));
}

void Plant::addClause(const Clause* clause, std::vector<PlantLiteral> literals)
{
    const auto number = static_cast<ClauseIndex>(clauses_.size());
    modelClauses_.push_back(clause);
    if (literals.size() <= 1) {
        unitClauses_.push_back(number);
    }
    for (const PlantLiteral& literal : literals) {
        std::vector<ClauseIndex>& of = clausesOf_[static_cast<std::size_t>(literal.atom)];
        if (of.empty() || of.back() != number) {
            of.push_back(number);
        }
    }
    clauses_.push_back(std::move(literals));
}

} // namespace plant
