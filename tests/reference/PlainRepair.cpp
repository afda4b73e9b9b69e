#include "tests/reference/PlainEngine.h"

#include <iostream>

namespace {

void eraseFirst(std::vector<TrajEl*>* els, TrajEl* el)
{
    for (std::size_t i = 0; i < els->size(); ++i) {
        if ((*els)[i] == el) {
            els->erase(els->begin() + static_cast<std::ptrdiff_t>(i));
            return;
        }
    }
}

} // namespace

void PlainEngine::setSupport(Clause* clause, TrajEl* el, State* state, Trajectory* traj,
                             const int& rank)
{
    if (el->support != nullptr) {
        for (auto& literal : *el->support->literals) {
            TrajEl* f = getElt(literal.second->getId(), state, traj, rank);
            if (f != el) {
                eraseFirst(f->dependents, el);
            }
        }
    }
    el->support = clause;
    for (auto& literal : *clause->literals) {
        TrajEl* f = (*state->elements)[literal.second->getId()];
        if (f != el) {
            f->dependents->push_back(el);
        }
    }
}

void PlainEngine::propagateClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    TrajEl* el = getUnknown(clause, state, traj, rank);
    std::cout << "[propagateClause] --> propagating (setting to true) :\n";
    el->showAtom(true);
    el->setLabel("true");
}

int PlainEngine::maxPropagationNumber(Clause* clause, TrajEl* /*el*/, State* state,
                                      Trajectory* traj, const int& rank)
{
    int largest = 0;
    for (auto& literal : *clause->literals) {
        TrajEl* f = getElt(literal.second->getId(), state, traj, rank);
        if (f->propagationNumber > largest) {
            largest = f->propagationNumber;
        }
    }
    return largest;
}

Clause* PlainEngine::checkForInternalConflicts(TrajEl* el, State* state, Trajectory* traj,
                                               const int& rank)
{
    Clause* last = nullptr;
    for (Clause* clause : *el->getStateVar()->clauses) {
        if (!testClause(clause, state, traj, rank) &&
            getUnknown(clause, state, traj, rank) == nullptr) {
            last = clause;
        }
    }
    return last;
}

void PlainEngine::checkForFocusedInternalConflicts(ElMap* focus, std::queue<Clause*>* out,
                                                   State* state, Trajectory* traj, const int& rank)
{
    std::vector<StateVar*> visited;
    for (auto& entry : *focus) {
        TrajEl* el = entry.second;
        if (inVectorStateVar(el->getStateVar(), &visited)) {
            continue;
        }
        Clause* found = checkForInternalConflicts(el, state, traj, rank);
        visited.push_back(el->getStateVar());
        if (found != nullptr) {
            out->push(found);
        }
    }
}

void PlainEngine::checkForFocusedConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                           Trajectory* traj, const int& rank)
{
    for (auto& entry : *focus) {
        for (Clause* clause : *entry.second->atom->clauses) {
            clause->showClause(false);
            if (!testClause(clause, state, traj, rank) &&
                getUnknown(clause, state, traj, rank) == nullptr) {
                out->push(clause);
            }
        }
    }
}

void PlainEngine::checkForConflicts(std::vector<Clause*>* out, State* state, Trajectory* traj,
                                    const int& rank)
{
    std::vector<Clause*> own;
    if (out == nullptr) {
        out = &own;
    }
    for (Clause* clause : *cls) {
        if (!testClause(clause, state, traj, rank)) {
            out->push_back(clause);
        }
    }
    std::cout << "*** detected conflicts ***\n";
    viewClauseVector(out);
}

bool PlainEngine::isResupportable(TrajEl* el, Clause* clause, const bool& sign, State* state,
                                  Trajectory* traj, const int& rank)
{
    for (auto literal = clause->literals->begin(); literal != clause->literals->end(); ++literal) {
        TrajEl* f = getElt(literal->second->getId(), state, traj, rank);
        if (f == el) {
            if (literal->first != sign) return false;
            continue;
        }
        if (el->propagationNumber > literal->second->initTrue) {
            return false;
        }
        const std::string value = evalAtomOnLabels(literal, state, traj, rank);
        if (!literal->first && value == "true") return false;
        if (literal->first && value == "false") return false;
    }
    return true;
}

void PlainEngine::resupportDependence(TrajEl* el, ElMap* focus, State* state, Trajectory* traj,
                                      const int& rank)
{
    for (Clause* c : *el->atom->clauses) {
        c->showClause(false);
        if (!testClause(c, state, traj, rank)) {
            continue;
        }
        SignedEls* unknowns = getNotUnknown(c, state, traj, rank);
        for (auto& entry : *unknowns) {
            TrajEl* u = entry.second;
            const bool may = isResupportable(u, c, entry.first, state, traj, rank);
            if (u == el || !may) {
                continue;
            }
            std::cout << "[resupportDependency] --> resupporting :\n";
            u->showAtom(false);
            if (u->support != nullptr) {
                for (auto& literal : *u->support->literals) {
                    eraseFirst(getElt(literal.second->getId(), state, traj, rank)->dependents, u);
                }
            }
            u->support = c;
            u->propagationNumber = maxPropagationNumber(c, u, state, traj, rank) + 1;
            focus->insert(std::make_pair(u->getId(), u));
        }
        delete unknowns;
    }
}

std::vector<TrajEl*>* PlainEngine::deleteClause(TrajEl* el, std::vector<TrajEl*>* out, State* state,
                                                Trajectory* traj, const int& rank)
{
    std::cout << "[deleteClause] --> delete clause :\n";
    std::cout << el->getId() << " -- " << el->getLabel() << " -- " << el->lock << std::endl;
    if (el->support != nullptr) {
        std::cout << "support : ";
        el->support->showClause(false);
    }
    std::cout << std::endl;
    el->setLabel("unknown");
    el->support = nullptr;
    el->propagationNumber = 0;
    out->push_back(el);
    for (std::size_t i = 0; i < el->dependents->size(); ++i) {
        TrajEl* d = (*el->dependents)[i];
        if (d->support != nullptr && !testClause(d->support, state, traj, rank)) {
            deleteClause(d, out, state, traj, rank); // what it retracted is in `out` already
        }
    }
    std::cout << el->dependents->size() << std::endl;
    std::cout << static_cast<const void*>(el->dependents) << std::endl;
    el->dependents->clear();
    return out;
}
