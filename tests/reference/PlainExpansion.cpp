#include "tests/reference/PlainEngine.h"

#include <iostream>

bool PlainEngine::rankTest(State* state, const double& maxRank, Trajectory* traj)
{
    return traj->currentRank - traj->getStateRank(state) + state->wkstRank + 1.0 <= maxRank;
}

bool PlainEngine::flippable(TrajEl* el, ElMap* changed)
{
    if (changed->count(el->getId()) != 0) {
        return false;
    }
    if (el->getLabel() == "false") {
        return el->lock != 1 && el->lock != 4;
    }
    if (el->getLabel() == "true") {
        return el->lock != 0 && el->lock != 3;
    }
    return false;
}

void PlainEngine::showCandidate(Atom* atom, TrajEl* el, ItmsRes* res, bool passed)
{
    std::cout << "fail : " << atom->fail << "\n";
    std::cout << "rank_test : " << passed << "\n";
    std::cout << "wkst rank : " << res->state->wkstRank << "\n";
    std::cout << "curr_el : " << el->getId() << "\n";
    std::cout << "curr_el label : " << el->getLabel() << "\n";
    std::cout << "curr_el lock : " << el->lock << "\n";
    std::cout << "curr_el support: " << static_cast<const void*>(el->support) << "\n";
    if (el->support != nullptr) {
        el->support->showClause(true);
        std::cout << "\n";
    }
    std::cout << "count : " << res->already_changed->count(atom->getId()) << "\n";
    if (el->transition != nullptr) {
        el->transition->showTransition();
    }
}

bool PlainEngine::keptWithTypeRules(Atom* atom, TrajEl* el)
{
    const std::string type = atom->getVarType();
    if (type == "Cond" && el->getLabel() == "false") {
        return false;
    }
    if (type == "Mode" && el->transition != nullptr) {
        return false;
    }
    std::cout << atom->getId() << "\n";
    std::cout << type << "\n";
    if (el->transition != nullptr) {
        el->transition->showTransition();
    }
    return true;
}

bool PlainEngine::keptWithoutTypeRules(Atom* atom, TrajEl* el)
{
    std::cout << "adding to not_unknown : " << el->getId() << "\n";
    if (el->getVarType() != "Command") {
        return true;
    }
    return (atom->value == "none" && el->getLabel() == "false") || el->getLabel() == "true";
}

// Enters the members of the set in the child; false when the set is rejected.
bool PlainEngine::adopt(const std::vector<Atom*>& implicate, TrajEl* target, ItmsRes* child,
                        ItmsRes* res, const double& maxRank, Trajectory* traj, const int& rank)
{
    for (Atom* atom : implicate) {
        TrajEl* x = getElt(atom->getId(), child->state, traj, rank);
        if (x->atom->fail && x->getLabel() == "false") {
            if (!rankTest(res->state, maxRank, traj) || !flippable(x, child->already_changed)) {
                return false;
            }
        }
        if (x != target) {
            if (x->getLabel() == "false") {
                x->setLabel("true");
            }
            (*child->already_changed)[x->getId()] = x;
        }
    }
    return true;
}

void PlainEngine::flip(Clause* conflict, TrajEl* el, TrajEl* target, ItmsRes* child,
                       Trajectory* traj, const int& rank)
{
    State* state = child->state;
    if (target->getVarType() == "Mode" && target->atom->value == "unknown" &&
        target->getLabel() == "true") {
        state->setUnknown();
    }
    if (target->atom->fail) {
        state->wkstRank += 1.0;
    }
    setSupport(conflict, target, state, traj, rank);
    target->propagationNumber = maxPropagationNumber(conflict, el, state, traj, rank) + 1;
    std::cout << "[propagateThroughConflict] --> clause to be added :\n";
    target->showAtom(false);
    const std::string label = target->getLabel() == "false" ? "true" : "false";
    std::cout << "\n[propagateThroughConflict] --> adding a new clause. " << label << "\n";
    (*child->already_changed)[target->getId()] = target;
    target->showAtom(false);
    target->setLabel(label);
    ++searchWork.flips;

    delete state->postProbs;
    state->postProbs = new ProbMap(*(*state->condProbs)[target->getId()]);

    auto* focus = new ElMap(*child->already_changed);
    resupportDependence(target, focus, state, traj, rank);
    auto* retracted = new std::vector<TrajEl*>;
    for (std::size_t k = 0; k < target->dependents->size(); ++k) {
        TrajEl* d = (*target->dependents)[k];
        if (d->support == nullptr || !testClause(d->support, state, traj, rank)) {
            deleteClause(d, retracted, state, traj, rank);
        }
    }
    delete child->focus;
    child->focus = focus;
    delete child->retracted;
    child->retracted = retracted;
}

ItmsRes* PlainEngine::propagateThroughConflict(Clause* conflict, ItmsRes* res,
                                               std::stack<ItmsRes*>* agenda, const bool& typeRules,
                                               const double& maxRank, Trajectory* traj,
                                               const int& rank)
{
    if (++searchWork.records > maxRecords) {
        throw SearchTooLarge{};
    }
    ItmsRes* result = nullptr;
    unsigned int children = 0;
    std::cout << "[propagateThroughConflict] --> beginning\n";
    std::cout << "curr_conf :\n";
    conflict->showClause(false);
    std::cout << "entering constraints size : " << res->constraints->size() << "\n";

    std::multimap<double, TrajEl*> not_unknown;
    for (auto& literal : *conflict->literals) {
        Atom* a = literal.second;
        TrajEl* el = getElt(a->getId(), res->state, traj, rank);
        bool passed = true;
        if (a->fail && el->getLabel() == "false") {
            passed = rankTest(res->state, maxRank, traj);
        }
        showCandidate(a, el, res, passed);
        if (!passed || !flippable(el, res->already_changed)) {
            continue;
        }
        if (typeRules ? keptWithTypeRules(a, el) : keptWithoutTypeRules(a, el)) {
            const double key = entropy(a->getStateVar(), res->state, res->already_changed);
            not_unknown.insert(std::make_pair(key, el));
        }
    }

    std::cout << "not_unknown's size : " << not_unknown.size() << "\n";
    if (not_unknown.empty()) {
        release(res);
        return nullptr;
    }
    for (auto& entry : not_unknown) {
        std::cout << entry.first << " -- " << entry.second->getId() << "\n";
    }
    std::cout << "[propagateThroughConflict] --> beginning propagation\n";

    for (auto& entry : not_unknown) {
        TrajEl* el = entry.second;
        std::vector<Atom*> alone{el->atom};
        PiTable::Implicates singleton{&alone};
        PiTable::Implicates* sets = nullptr;
        if (piTable != nullptr && el->getLabel() == "false" && el->getVarType() != "Command") {
            sets = piTable->getPIs(el->atom);
        }
        if (sets == nullptr) {
            sets = &singleton;
        }
        for (std::vector<Atom*>* implicate : *sets) {
            ++children;
            auto* child = new ItmsRes(res->state, res->constraints);
            live_.insert(child);
            child->already_changed = copyState(res->already_changed, child->state);
            TrajEl* target = getElt(el->getId(), child->state, traj, rank);
            if (!adopt(*implicate, target, child, res, maxRank, traj, rank)) {
                release(child);
                continue;
            }
            flip(conflict, el, target, child, traj, rank);
            if (children == 1) {
                result = child;
            } else {
                agenda->push(child);
            }
        }
    }
    release(res);
    return result;
}
