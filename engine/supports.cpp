// Supports: which clause justifies a label, and who depends on whom.
//
// An element e with support (a | b | e) stands in the dependents of a and of b, never in its own. The depth of
// a newly supported element is one more than the largest among the elements of its clause, its own included.
// Unit propagation sets labels and records no support.
//
// Cost: linear in the clause and its elements' dependents.
#include "engine/itms.h"
#include "model/trace.h"

#include <algorithm>

void itms::setSupport(Clause* clause, TrajEl* el, State* state, Trajectory* traj, const int& rank)
{
    if (el->support) {
        for (const auto& [negated, atom] : *el->support->literals) {
            TrajEl* other = getElt(atom->getId(), state, traj, rank);
            if (other != el) {
                removeDependent(other, el);
            }
        }
    }
    el->support = clause;
    for (const auto& [negated, atom] : *clause->literals) {
        TrajEl* other = (*state->elements)[atom->getId()];
        if (other && other != el) {
            other->dependents->push_back(el);
        }
    }
}

void itms::removeDependent(TrajEl* from, const TrajEl* dependent)
{
    const auto entry = std::find(from->dependents->begin(), from->dependents->end(), dependent);
    if (entry != from->dependents->end()) {
        from->dependents->erase(entry);
    }
}

void itms::propagateClause(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    TrajEl* el = getUnknown(clause, state, traj, rank);
    std::cout << "[propagateClause] --> propagating (setting to true) :\n";
    el->showAtom(true);
    el->setLabel("true");
}

int itms::maxPropagationNumber(Clause* clause, TrajEl* /*el*/, State* state, Trajectory* traj,
                               const int& rank)
{
    int largest = 0;
    for (const auto& [negated, atom] : *clause->literals) {
        largest = std::max(largest, getElt(atom->getId(), state, traj, rank)->propagationNumber);
    }
    return largest;
}
