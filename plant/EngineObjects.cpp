// The lists are in the order in which a model is written: of an atom first the clauses of its variable, then the laws.
#include "plant/EngineObjects.h"

#include <array>

namespace plant {

EngineObjects::EngineObjects(const Model& model) : model_(model)
{
    makeContainers();
    for (const Comp* component : model_.components()) {
        for (StateVar* variable : *component->stateVars) {
            addDomainClauses(*variable);
        }
    }
    for (std::size_t law = 0; law < model_.lawCount(); ++law) {
        laws_.push_back(addClause(model_.signedLiteralsOf(law)));
    }
    for (std::size_t i = 0; i < model_.transitionCount(); ++i) {
        addTransition(i);
    }
}

void EngineObjects::makeContainers()
{
    for (Comp* component : model_.components()) {
        component->transitions = new std::vector<Transition*>;
        component->atoms = new AtomMap;
    }
    for (Atom* atom : model_.atoms()) {
        atom->outTransitions = new std::vector<Transition*>;
        atom->transitions = new std::vector<Transition*>;
        atom->clauses = new std::vector<Clause*>;
        // Set-up enters one component. A hundred buckets for it would be half of what a large plant takes.
        atom->comps = new CompMap(1);
        (*atom->getVarComp()->atoms)[atom->getId()] = atom;
    }
}

// (v1 | v2 | ...) and (!vi | !vj) for each pair.
void EngineObjects::addDomainClauses(StateVar& variable)
{
    variable.clauses = new std::vector<Clause*>;
    std::vector<SignedNumber> someValue;
    for (const Atom* atom : *variable.atomLinks) {
        someValue.push_back(signedNumber(atom->number, false));
    }
    variable.clauses->push_back(addClause(someValue));
    for (std::size_t i = 0; i < someValue.size(); ++i) {
        for (std::size_t j = i + 1; j < someValue.size(); ++j) {
            variable.clauses->push_back(addClause(std::array{someValue[i] | 1U, someValue[j] | 1U}));
        }
    }
}

Clause* EngineObjects::addClause(std::span<const SignedNumber> literals)
{
    Clause* clause = clauses_.make();
    for (const SignedNumber literal : literals) {
        Atom* atom = model_.atoms()[literal / 2];
        clause->literals->insert({(literal & 1U) != 0, atom});
        atom->clauses->push_back(clause);
    }
    return clause;
}

StateFormula* EngineObjects::formula(std::span<const SignedNumber> atoms)
{
    StateFormula* made = formulas_.make();
    made->op = "and";
    made->atoms = new SignedAtoms;
    for (const SignedNumber atom : atoms) {
        made->atoms->insert({(atom & 1U) != 0, model_.atoms()[atom / 2]});
    }
    return made;
}

// The guard holds the mode value that is left, too: together they are the transition's precondition.
void EngineObjects::addTransition(std::size_t number)
{
    const GivenTransition& given = model_.transition(number);
    Transition* made = transitions_.make();
    transitionList_.push_back(made);
    Atom* to = model_.atoms()[given.to];
    made->name = nameOf(given.kind, *to);
    made->type = typeOf(given.kind);
    made->idle = given.kind == TransitionKind::idle;
    made->stateVar = to->stateVar;
    made->atom = to;
    made->proba = given.probability;
    const auto precondition = model_.signedPreconditionOf(number);
    made->guard = formula(precondition);
    made->formula = formula(std::array{signedNumber(to->number, true)});
    for (const SignedNumber literal : precondition) {
        model_.atoms()[literal / 2]->addRefTransPre(made);
    }
    to->transitions->push_back(made);
    to->stateVar->comp->transitions->push_back(made);
}

} // namespace plant
