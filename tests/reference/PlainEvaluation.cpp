#include "tests/reference/PlainEngine.h"

TrajEl* PlainEngine::getElt(const char* id, State* state, Trajectory* traj, const int& rank,
                            const bool& addFlag)
{
    TrajEl* el = (*state->elements)[id];
    if (el != nullptr) {
        return el;
    }
    Comp* comp = traj->getElt(id, rank, -1)->atom->getVarComp();
    traj->addComp(comp, state, rank, addFlag, addingPropositions);
    ++searchWork.components;
    return (*state->elements)[id];
}

TrajEl* PlainEngine::getElt(const char* id, State* state, Trajectory* traj, const int& rank)
{
    return getElt(id, state, traj, rank, true);
}

ElMap* PlainEngine::copyState(ElMap* from, State* state)
{
    auto* copy = new ElMap;
    for (auto& entry : *from) {
        const char* id = entry.second->getId();
        (*copy)[id] = (*state->elements)[id];
    }
    return copy;
}

std::string PlainEngine::evalAtomOnLabels(SignedAtoms::iterator literal, State* state,
                                          Trajectory* traj, const int& rank)
{
    TrajEl* el = getElt(literal->second->getId(), state, traj, rank);
    const std::string label = el->getLabel();
    if (literal->first && label == "true") {
        return "false";
    }
    if (literal->first && label == "false") {
        return "true";
    }
    if (label == "true" || label == "false" || label == "unknown") {
        return label;
    }
    return "";
}

bool PlainEngine::testClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    for (auto& literal : *clause->literals) {
        const std::string label = getElt(literal.second->getId(), state, traj, rank)->getLabel();
        if (!literal.first && label == "true") {
            return true;
        }
        if (literal.first && label == "false") {
            return true;
        }
    }
    return false;
}

TrajEl* PlainEngine::unitClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    int unknowns = 0;
    TrajEl* last = nullptr;
    for (auto literal = clause->literals->begin(); literal != clause->literals->end(); ++literal) {
        TrajEl* el = getElt(literal->second->getId(), state, traj, rank);
        const std::string value = evalAtomOnLabels(literal, state, traj, rank);
        if (value == "true" && !literal->first) {
            return nullptr;
        }
        if (value == "unknown") {
            ++unknowns;
            last = el;
        }
    }
    return unknowns >= 1 ? last : nullptr;
}

Clause* PlainEngine::getFirstUnitClause(Atom* atom, State* state, Trajectory* traj, const int& rank)
{
    for (Clause* clause : *atom->clauses) {
        clause->showClause(false);
        if (unitClause(clause, state, traj, rank) != nullptr) {
            return clause;
        }
    }
    return nullptr;
}

Clause* PlainEngine::getFirstUnitClause(State* state, Trajectory* traj, const int& rank)
{
    for (Clause* clause : *cls) {
        clause->showClause(false);
        if (unitClause(clause, state, traj, rank) != nullptr) {
            clause->showClause(false);
            return clause;
        }
    }
    return nullptr;
}

Clause* PlainEngine::getFirstUnitClause(std::vector<TrajEl*>* els, State* state, Trajectory* traj,
                                        const int& rank)
{
    for (TrajEl* el : *els) {
        for (Clause* clause : *el->atom->clauses) {
            clause->showClause(false);
            if (unitClause(clause, state, traj, rank) != nullptr) {
                clause->showClause(false);
                return clause;
            }
        }
    }
    return nullptr;
}

TrajEl* PlainEngine::getUnknown(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    for (auto& literal : *clause->literals) {
        TrajEl* el = getElt(literal.second->getId(), state, traj, rank);
        if (el->getLabel() == "unknown") {
            return el;
        }
    }
    return nullptr;
}

SignedEls* PlainEngine::getNotUnknown(Clause* clause, State* state, Trajectory* traj,
                                      const int& rank)
{
    auto* map = new SignedEls;
    for (auto& literal : *clause->literals) {
        TrajEl* el = getElt(literal.second->getId(), state, traj, rank);
        if (el != nullptr && el->getLabel() == "unknown") {
            map->insert(std::make_pair(literal.first, el));
        }
    }
    return map;
}

StateVarMap* PlainEngine::getStateVars(std::vector<TrajEl*>* els)
{
    auto* map = new StateVarMap;
    for (TrajEl* el : *els) {
        const char* name = el->getStateVar()->getCharName();
        if ((*map)[name] == nullptr) {
            (*map)[name] = el->getStateVar();
        }
    }
    return map;
}

bool PlainEngine::inVector(Atom* atom, std::vector<Atom*>* atoms)
{
    for (Atom* each : *atoms) {
        if (each == atom) return true;
    }
    return false;
}

bool PlainEngine::inVector(const char* text, std::vector<const char*>* texts)
{
    for (const char* each : *texts) {
        if (std::strcmp(each, text) == 0) return true;
    }
    return false;
}

bool PlainEngine::inVector(TrajEl* el, std::vector<TrajEl*>* els)
{
    for (TrajEl* each : *els) {
        if (each == el) return true;
    }
    return false;
}

bool PlainEngine::inVector(Transition* transition, std::vector<Transition*>* transitions)
{
    for (Transition* each : *transitions) {
        if (each == transition) return true;
    }
    return false;
}

bool PlainEngine::inVectorStateVar(StateVar* variable, std::vector<StateVar*>* variables)
{
    for (StateVar* each : *variables) {
        if (each == variable) return true;
    }
    return false;
}

bool PlainEngine::inVectorClause(Clause* clause, std::vector<Clause*>* clauses)
{
    for (Clause* each : *clauses) {
        if (each == clause) return true;
    }
    return false;
}

bool PlainEngine::inMultimap(Atom* atom, SignedAtoms* atoms)
{
    for (auto& entry : *atoms) {
        if (entry.second == atom) return true;
    }
    return false;
}
