#include "tests/reference/PlainEngine.h"

#include <iostream>

namespace {

void viewAtom(Atom* atom)
{
    atom->showAtom(true);
    std::cout << "support : \n";
    if (atom->support != nullptr) {
        atom->support->showClause(false);
    }
}

} // namespace

bool PlainEngine::evalStateFormula(StateFormula* formula, Trajectory* trajectory, int step)
{
    if (formula->op != "and" && !formula->op.empty() && formula->op != "or") {
        return false;
    }
    if (formula->atoms == nullptr) {
        return false;
    }
    const bool conjunction = formula->op != "or";
    bool result = conjunction;
    for (auto& entry : *formula->atoms) {
        bool v = trajectory->getElt(entry.second->getId(), step, 0)->evalTrajEl();
        if (!entry.first) {
            v = !v;
        }
        result = conjunction ? (result && v) : (result || v);
    }
    return result;
}

void PlainEngine::viewAtomVector(std::vector<Atom*>* atoms)
{
    for (Atom* atom : *atoms) {
        viewAtom(atom);
    }
    std::cout << std::endl;
}

void PlainEngine::viewAtomVectorId(std::vector<Atom*>* atoms)
{
    for (Atom* atom : *atoms) {
        std::cout << atom->getId() << std::endl;
    }
}

void PlainEngine::viewClauseVector(std::vector<Clause*>* clauses)
{
    for (Clause* clause : *clauses) {
        clause->showClause(false);
    }
    std::cout << std::endl;
}

void PlainEngine::viewMultimapAtom(std::multimap<std::string, Atom*, eqstring>* atoms)
{
    for (auto& entry : *atoms) {
        viewAtom(entry.second);
    }
    std::cout << std::endl;
}

void PlainEngine::viewHashMapAtom(AtomMap* atoms)
{
    for (auto& entry : *atoms) {
        viewAtom(entry.second);
    }
}

void PlainEngine::viewTrajectoryConflicts(NumberMap<std::vector<Clause*>*>* conflicts)
{
    for (auto& entry : *conflicts) {
        if (entry.second != nullptr) {
            std::cout << "conflict's timestep : " << entry.first << std::endl;
            viewClauseVector(entry.second);
        }
    }
}
