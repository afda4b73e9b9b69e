#include "plant/Plant.h"

#include "model/keys.h"
#include "plant/PlantPart.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace plant {

Plant::~Plant() = default;

Plant::Plant(const Model& model) : model_(model)
{
    addVariables();
    addClauses();
    listClauses();
    addChanges();
    addModes();
    addReaders();
}

Plant::Plant(const Plant& whole, const std::vector<VariableIndex>& variables) : model_(whole.model_)
{
    std::vector<ClauseIndex> clauses;
    for (const VariableIndex variable : variables) {
        for (const AtomIndex value : whole.variable(variable).values) {
            numbers_.emplace_back(whole.atom(value)->number,
                                  static_cast<AtomIndex>(numbers_.size()));
            const auto of = whole.clausesOf(value);
            clauses.insert(clauses.end(), of.begin(), of.end());
        }
        addVariable(whole.variable(variable).variable);
    }
    std::sort(numbers_.begin(), numbers_.end());
    std::sort(clauses.begin(), clauses.end());
    clauses.erase(std::unique(clauses.begin(), clauses.end()), clauses.end());
    for (const ClauseIndex clause : clauses) {
        for (const PlantLiteral& literal : whole.clause(clause)) {
            clauses_.push({indexInPart(whole.atom(literal.atom)), literal.negated});
        }
        if (whole.clause(clause).size() <= 1) {
            unitClauses_.push_back(static_cast<ClauseIndex>(clauses_.size()));
        }
        firstLaw_ += whole.isLaw(clause) ? 0 : 1;
        clauses_.end();
    }
    listClauses();
    changesFrom_ = ListSequence<PlantChange>::grouped(atoms_.size(), {});
    addModes();
    addReaders();
    modesOfWhole_ = whole.modesOfWhole();
}

AtomIndex Plant::indexInPart(const Atom* atom) const
{
    return std::lower_bound(numbers_.begin(), numbers_.end(), std::pair(atom->number, AtomIndex{}))
        ->second;
}

PlantParts& Plant::parts() const
{
    if (!parts_) {
        parts_ = std::make_unique<PlantParts>(*this);
    }
    return *parts_;
}

// The order in which Model::activate enters the components, and a hash map then lists them.
void Plant::addVariables()
{
    CompMap components;
    std::size_t variables = 0;
    for (Comp* component : model_.components()) {
        components[component->name.c_str()] = component;
        variables += component->stateVars->size();
    }
    variables_.reserve(variables);
    atoms_.reserve(model_.atoms().size());
    variableOf_.reserve(model_.atoms().size());
    indexOf_.resize(model_.atoms().size());
    for (const auto& [name, component] : components) {
        for (StateVar* variable : *component->stateVars) {
            addVariable(variable);
        }
    }
    for (std::size_t i = 0; i < atoms_.size(); ++i) {
        indexOf_[atoms_[i]->number] = static_cast<AtomIndex>(i);
    }
}

void Plant::addVariable(StateVar* variable)
{
    const auto first = static_cast<AtomIndex>(atoms_.size());
    for (Atom* atom : *variable->atomLinks) {
        variableOf_.push_back(static_cast<VariableIndex>(variables_.size()));
        atoms_.push_back(atom);
    }
    variables_.push_back({variable,
                          {first, static_cast<AtomIndex>(atoms_.size())},
                          variable->type == "Mode",
                          variable->type == "Command"});
}

// First those that make each variable have exactly one value: (v1 | v2 | ...) and (!vi | !vj) for each pair.
void Plant::addClauses()
{
    std::size_t literals = 0;
    for (const PlantVariable& variable : variables_) {
        literals += variable.values.size() * variable.values.size();
    }
    firstLaw_ = static_cast<ClauseIndex>(model_.clauseCount() - model_.lawCount());
    for (std::size_t law = 0; law < model_.lawCount(); ++law) {
        literals += model_.signedLiteralsOf(law).size();
    }
    clauses_.reserve(model_.clauseCount(), literals);
    std::vector<SignedNumber> clause;
    for (const PlantVariable& variable : variables_) {
        const std::vector<Atom*>& values = *variable.variable->atomLinks;
        clause.clear();
        for (const Atom* value : values) {
            clause.push_back(signedNumber(value->number, false));
        }
        addClause(clause);
        for (std::size_t i = 0; i < values.size(); ++i) {
            for (std::size_t j = i + 1; j < values.size(); ++j) {
                clause = {signedNumber(values[i]->number, true),
                          signedNumber(values[j]->number, true)};
                addClause(clause);
            }
        }
    }
    for (std::size_t law = 0; law < model_.lawCount(); ++law) {
        const auto given = model_.signedLiteralsOf(law);
        clause.assign(given.begin(), given.end());
        addClause(clause);
    }
}

// The literals are in the order in which the engine meets them.
void Plant::addClause(std::vector<SignedNumber>& literals)
{
    if (literals.size() <= 1) {
        unitClauses_.push_back(static_cast<ClauseIndex>(clauses_.size()));
    }
    sortAsListed(literals);
    for (const SignedNumber literal : literals) {
        clauses_.push({indexOf_[literal / 2], (literal & 1U) != 0});
    }
    clauses_.end();
}

void Plant::listClauses()
{
    std::vector<std::pair<std::uint32_t, ClauseIndex>> entries;
    entries.reserve(clauses_.entries().size());
    for (std::size_t i = 0; i < clauses_.size(); ++i) {
        for (const PlantLiteral& literal : clauses_[i]) {
            entries.emplace_back(static_cast<std::uint32_t>(literal.atom),
                                 static_cast<ClauseIndex>(i));
        }
    }
    clausesOf_ = ListSequence<ClauseIndex>::grouped(atoms_.size(), entries);
}

// Spans into the lists stay good: there is room for all that can be added.
void Plant::addChanges()
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> leaving;
    std::size_t guards = 0;
    for (std::uint32_t i = 0; i < model_.transitionCount(); ++i) {
        const auto precondition = model_.signedPreconditionOf(i);
        leaving.emplace_back(indexOf_[precondition.front() / 2], i);
        guards += precondition.size() - 1;
    }
    const auto transitions = ListSequence<std::uint32_t>::grouped(atoms_.size(), leaving);
    changesFrom_.reserve(atoms_.size(), leaving.size());
    alternatives_.reserve(leaving.size());
    guards_.reserve(guards);
    for (std::size_t from = 0; from < atoms_.size(); ++from) {
        std::size_t last = model_.transitionCount();
        for (const std::uint32_t transition : transitions[from]) {
            if (addChange(transition, model_.changeOf(transition) != last)) {
                last = model_.changeOf(transition);
            }
        }
        changesFrom_.end();
    }
    changesFrom_.shrink();
}

// A transition is an alternative of the change before it, or begins a new one. False where it can never happen.
bool Plant::addChange(std::size_t transition, bool isNew)
{
    const GivenTransition& given = model_.transition(transition);
    const auto precondition = model_.signedPreconditionOf(transition);
    const std::uint32_t from = precondition.front() / 2;
    if (given.to == from || given.probability <= 0.0) {
        return false;
    }
    const std::size_t begin = guards_.size();
    for (const SignedNumber literal : precondition.subspan(1)) {
        const bool holds = (literal & 1U) != 0;
        const AtomIndex atom = indexOf_[literal / 2];
        if (variableOf(atom) != variableOf(indexOf_[from])) {
            guards_.push_back({atom, !holds});
        } else if (holds != (literal / 2 == from)) {
            guards_.resize(begin);
            return false;
        }
    }
    if (isNew) {
        // As for the engine, the name tells.
        const bool isNominal = given.kind != TransitionKind::idle &&
                               nameOf(given.kind, *model_.atoms()[given.to]) == "Nominal";
        changesFrom_.push({indexOf_[given.to],
                           given.probability,
                           isNominal,
                           given.kind == TransitionKind::repair,
                           {alternatives_.data() + alternatives_.size(), 0}});
    }
    alternatives_.push_back({{guards_.data() + begin, guards_.size() - begin}});
    PlantChange& change = changesFrom_.last();
    change.alternatives = {change.alternatives.data(), change.alternatives.size() + 1};
    return true;
}

void Plant::addModes()
{
    modePlaces_.resize(variables_.size());
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        modesOfWhole_ += variables_[i].isMode ? 1 : 0;
        commandCount_ += variables_[i].isCommand && !variables_[i].values.empty() ? 1 : 0;
        if (variables_[i].isMode && !variables_[i].values.empty()) {
            modePlaces_[i] = static_cast<std::uint32_t>(modes_.size());
            modes_.push_back(static_cast<VariableIndex>(i));
        }
    }
}

void Plant::addReaders()
{
    std::vector<std::pair<std::uint32_t, VariableIndex>> readers; // by rising mode
    std::vector<VariableIndex> lastReader(atoms_.size(), -1);
    for (const VariableIndex mode : modes_) {
        for (const AtomIndex value : variable(mode).values) {
            for (const PlantChange& change : changesFrom(value)) {
                for (const PlantChange::Alternative& alternative : change.alternatives) {
                    for (const PlantLiteral& literal : alternative.literals) {
                        const auto atom = static_cast<std::size_t>(literal.atom);
                        if (std::exchange(lastReader[atom], mode) != mode) {
                            readers.emplace_back(static_cast<std::uint32_t>(atom), mode);
                        }
                    }
                }
            }
        }
    }
    modesReading_ = ListSequence<VariableIndex>::grouped(atoms_.size(), readers);
}

const Clause* Plant::modelClause(ClauseIndex index) const
{
    assert(numbers_.empty());
    if (isLaw(index)) return model_.laws()[lawOf(index)];
    // The clauses of a variable follow one another.
    const auto variableOfClause = [&](ClauseIndex clause) {
        return variableOf(this->clause(clause).front().atom);
    };
    const VariableIndex owner = variableOfClause(index);
    ClauseIndex first = index;
    while (first > 0 && variableOfClause(first - 1) == owner) {
        --first;
    }
    model_.makeEngineObjects();
    return (*variable(owner).variable->clauses)[static_cast<std::size_t>(index - first)];
}

} // namespace plant
