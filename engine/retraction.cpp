// Retraction and resupport: what happens around a label that changed.
//
// With e supported by (!a | e), and f by (!e | f), retracting e when a changes sets e to "unknown"; (!e | f) has
// no true literal then, unless f's own, so f is looked at next, and so on down the dependents. The walk keeps
// its own stack: a chain may be as long as memory allows. Resupport is the other way round: a satisfied clause
// around a changed element becomes the support of the unknown elements in it.
//
// Invariant: a retracted element has no support and no dependents. Cost: linear in what is visited.
//
// Source: retraction along recorded supports is the method of truth-maintenance systems ("A truth maintenance
// system", Artificial Intelligence 12, 1979).
#include "engine/itms.h"
#include "model/trace.h"

namespace {

void showRetraction(const TrajEl& el)
{
    if (!tracing()) {
        return;
    }
    std::cout << "[deleteClause] --> delete clause :\n"
              << el.getId() << " -- " << el.label << " -- " << el.lock << std::endl;
    if (el.support) {
        std::cout << "support : ";
        el.support->showClause(false);
    }
    std::cout << std::endl;
}

} // namespace

bool itms::isResupportable(TrajEl* el, Clause* clause, const bool& sign, State* state,
                           Trajectory* traj, const int& rank)
{
    for (const auto& [negated, atom] : *clause->literals) {
        const TrajEl* other = getElt(atom->getId(), state, traj, rank);
        if (other == el) {
            if (negated != sign) {
                return false;
            }
            continue;
        }
        // The depth is compared with what set-up noted of the atom, not with the other element's depth.
        if (el->propagationNumber > atom->initTrue || other->label == "true") {
            return false;
        }
    }
    return true;
}

void itms::resupportDependence(TrajEl* el, ElMap* focus, State* state, Trajectory* traj,
                               const int& rank)
{
    for (Clause* clause : *el->atom->clauses) {
        clause->showClause(false);
        if (!testClause(clause, state, traj, rank)) {
            continue;
        }
        const std::unique_ptr<SignedEls> unknown(getNotUnknown(clause, state, traj, rank));
        for (const auto& [sign, other] : *unknown) {
            if (!isResupportable(other, clause, sign, state, traj, rank) || other == el) {
                continue;
            }
            std::cout << "[resupportDependency] --> resupporting :\n";
            other->showAtom(false);
            if (other->support) {
                for (const auto& [negated, atom] : *other->support->literals) {
                    removeDependent(getElt(atom->getId(), state, traj, rank), other);
                }
            }
            // Unlike setSupport, this enters no dependents at the new support's elements.
            other->support = clause;
            other->propagationNumber = maxPropagationNumber(clause, other, state, traj, rank) + 1;
            focus->insert({other->getId(), other});
        }
    }
}

std::vector<TrajEl*>* itms::deleteClause(TrajEl* el, std::vector<TrajEl*>* out, State* state,
                                         Trajectory* traj, const int& rank)
{
    struct Frame {
        TrajEl* el;
        std::size_t next;
    };
    std::vector<Frame> open;
    const auto retract = [&](TrajEl* target) {
        showRetraction(*target);
        target->label = "unknown";
        target->support = nullptr;
        target->propagationNumber = 0;
        out->push_back(target);
        open.push_back({target, 0});
    };
    retract(el);
    while (!open.empty()) {
        Frame& frame = open.back();
        std::vector<TrajEl*>& dependents = *frame.el->dependents;
        if (frame.next < dependents.size()) {
            TrajEl* dependent = dependents[frame.next++];
            if (dependent->support && !testClause(dependent->support, state, traj, rank)) {
                retract(dependent);
            }
            continue;
        }
        if (tracing()) {
            std::cout << dependents.size() << std::endl << frame.el->dependents << std::endl;
        }
        dependents.clear();
        open.pop_back();
    }
    return out;
}
