// Elements on demand, and the value of literals and clauses over their labels.
//
// In the clause (a | !b) with a "unknown" and b "false" the literal !b holds, so testClause is true; unitClause
// still reports a, for only a positive literal that holds stops its scan. With several unknown literals
// unitClause gives the last, getUnknown the first.
//
// Every look at a clause instantiates the components of the atoms that it reaches, so a state grows around what
// is looked at, and never shrinks. Cost: each function is linear in the clauses that it walks.
#include "engine/itms.h"

TrajEl* itms::getElt(const char* id, State* state, Trajectory* traj, const int& rank,
                     const bool& addFlag)
{
    if (TrajEl* present = (*state->elements)[id]) {
        return present;
    }
    Comp* comp = traj->getElt(id, rank, -1)->atom->getVarComp();
    traj->addComp(comp, state, rank, addFlag, addingPropositions);
    ++searchWork.components;
    return (*state->elements)[id];
}

TrajEl* itms::getElt(const char* id, State* state, Trajectory* traj, const int& rank)
{
    return getElt(id, state, traj, rank, true);
}

ElMap* itms::copyState(ElMap* from, State* state)
{
    auto* copy = new ElMap;
    for (const auto& [key, el] : *from) {
        const char* id = el->getId();
        (*copy)[id] = (*state->elements)[id];
    }
    return copy;
}

namespace {

const char* valueOf(bool negated, const std::string& label)
{
    if (label == "true") {
        return negated ? "false" : "true";
    }
    if (label == "false") {
        return negated ? "true" : "false";
    }
    return label == "unknown" ? "unknown" : "";
}

} // namespace

std::string itms::evalAtomOnLabels(SignedAtoms::iterator literal, State* state, Trajectory* traj,
                                   const int& rank)
{
    return valueOf(literal->first, getElt(literal->second->getId(), state, traj, rank)->label);
}

bool itms::testClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    for (const auto& [negated, atom] : *clause->literals) {
        const std::string& label = getElt(atom->getId(), state, traj, rank)->label;
        if (label == (negated ? "false" : "true")) {
            return true;
        }
    }
    return false;
}

TrajEl* itms::unitClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    TrajEl* lastUnknown = nullptr;
    for (const auto& [negated, atom] : *clause->literals) {
        TrajEl* el = getElt(atom->getId(), state, traj, rank);
        if (!negated && el->label == "true") {
            return nullptr;
        }
        if (el->label == "unknown") {
            lastUnknown = el;
        }
    }
    return lastUnknown;
}

Clause* itms::getFirstUnitClause(Atom* atom, State* state, Trajectory* traj, const int& rank)
{
    for (Clause* clause : *atom->clauses) {
        clause->showClause(false);
        if (overspent(clause->literals->size())) {
            return nullptr;
        }
        if (unitClause(clause, state, traj, rank)) {
            return clause;
        }
    }
    return nullptr;
}

Clause* itms::getFirstUnitClause(State* state, Trajectory* traj, const int& rank)
{
    for (Clause* clause : *cls) {
        clause->showClause(false);
        if (unitClause(clause, state, traj, rank)) {
            clause->showClause(false);
            return clause;
        }
    }
    return nullptr;
}

Clause* itms::getFirstUnitClause(std::vector<TrajEl*>* els, State* state, Trajectory* traj,
                                 const int& rank)
{
    for (const TrajEl* el : *els) {
        if (Clause* unit = getFirstUnitClause(el->atom, state, traj, rank)) {
            unit->showClause(false);
            return unit;
        }
    }
    return nullptr;
}

TrajEl* itms::getUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    for (const auto& [negated, atom] : *clause->literals) {
        TrajEl* el = getElt(atom->getId(), state, traj, rank);
        if (el->label == "unknown") {
            return el;
        }
    }
    return nullptr;
}

SignedEls* itms::getNotUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    auto* unknown = new SignedEls;
    for (const auto& [negated, atom] : *clause->literals) {
        TrajEl* el = getElt(atom->getId(), state, traj, rank);
        if (el && el->label == "unknown") {
            unknown->insert({negated, el});
        }
    }
    return unknown;
}

StateVarMap* itms::getStateVars(std::vector<TrajEl*>* els)
{
    auto* variables = new StateVarMap;
    for (const TrajEl* el : *els) {
        StateVar*& slot = (*variables)[el->getStateVar()->getCharName()];
        if (!slot) {
            slot = el->getStateVar();
        }
    }
    return variables;
}

namespace {

template <class Item> bool contains(Item* item, const std::vector<Item*>& items)
{
    for (const Item* candidate : items) {
        if (candidate == item) {
            return true;
        }
    }
    return false;
}

} // namespace

bool itms::inVector(Atom* atom, std::vector<Atom*>* atoms)
{
    return contains(atom, *atoms);
}

bool itms::inVector(const char* text, std::vector<const char*>* texts)
{
    for (const char* candidate : *texts) {
        if (eqstr()(candidate, text)) {
            return true;
        }
    }
    return false;
}

bool itms::inVector(TrajEl* el, std::vector<TrajEl*>* els)
{
    return contains(el, *els);
}

bool itms::inVector(Transition* transition, std::vector<Transition*>* transitions)
{
    return contains(transition, *transitions);
}

bool itms::inVectorStateVar(StateVar* variable, std::vector<StateVar*>* variables)
{
    return contains(variable, *variables);
}

bool itms::inVectorClause(Clause* clause, std::vector<Clause*>* clauses)
{
    return contains(clause, *clauses);
}

bool itms::inMultimap(Atom* atom, SignedAtoms* atoms)
{
    for (const auto& [sign, candidate] : *atoms) {
        if (candidate == atom) {
            return true;
        }
    }
    return false;
}
