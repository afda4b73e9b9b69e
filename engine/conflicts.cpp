// Conflicts: clauses that the labels violate, looked for around the elements that changed.
//
// (a | !b) is violated when a is "false" and b is "true". With one unknown literal it is open: the focused checks
// leave it alone, and the full scan lists it. A variable's own clauses (exactly one value holds) contribute at
// most one conflict per check: the last. No label is changed here.
//
// Cost: linear in the clauses around the focus; the full scan is linear in the model.
#include "engine/itms.h"
#include "model/trace.h"

#include <unordered_set>

bool itms::violated(Clause* clause, State* state, Trajectory* traj, const int& rank)
{
    return !testClause(clause, state, traj, rank) && !getUnknown(clause, state, traj, rank);
}

Clause* itms::checkForInternalConflicts(TrajEl* el, State* state, Trajectory* traj, const int& rank)
{
    Clause* last = nullptr;
    for (Clause* clause : *el->getStateVar()->clauses) {
        if (violated(clause, state, traj, rank)) {
            last = clause;
        }
    }
    return last;
}

void itms::checkForFocusedInternalConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                            Trajectory* traj, const int& rank)
{
    std::unordered_set<const StateVar*> visited;
    for (const auto& [id, el] : *focus) {
        if (!visited.insert(el->getStateVar()).second) {
            continue;
        }
        if (overspent(el->getStateVar()->clauses->size())) {
            return;
        }
        if (Clause* conflict = checkForInternalConflicts(el, state, traj, rank)) {
            out->push(conflict);
        }
    }
}

void itms::checkForFocusedConflicts(ElMap* focus, std::queue<Clause*>* out, State* state,
                                    Trajectory* traj, const int& rank)
{
    for (const auto& [id, el] : *focus) {
        for (Clause* clause : *el->atom->clauses) {
            clause->showClause(false);
            if (overspent(clause->literals->size())) {
                return;
            }
            if (violated(clause, state, traj, rank)) {
                out->push(clause);
            }
        }
    }
}

void itms::checkForConflicts(std::vector<Clause*>* out, State* state, Trajectory* traj,
                             const int& rank)
{
    std::vector<Clause*> own;
    if (!out) {
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
