// Propagation through a conflict: the branching step of the search.
//
// The violated clause (!ok | !a | y) with ok and a "true" and y "false" can be made to hold in three ways: by
// flipping ok, a or y. Those that may be flipped (lock, fault bound, not decided before) are ordered by the
// expected entropy of their variables, and each gives one child record for every prime implicate of its atom,
// or one for the atom alone. A child starts from a copy of the state: the flip, the conflict as its support, the
// retraction of dependents that lost theirs, and the distribution given the flipped atom are made at once.
//
// Invariant: an element that was decided on the way to a record is no candidate below it, so every way down ends.
//
// Cost: one copy of the state for each child but the last, one rating for each element that may be flipped.
//
// Source: branching over the members of a conflict, "A theory of diagnosis from first principles", Artificial
// Intelligence 32 (1987); the order of the branches, see entropy.cpp.
#include "engine/itms.h"
#include "model/trace.h"

namespace {

bool withinRank(Trajectory* traj, State* state, double maxRank)
{
    return traj->currentRank - traj->getStateRank(state) + state->wkstRank + 1.0 <= maxRank;
}

bool flippable(const TrajEl& el, const ElMap& changed)
{
    if (changed.count(el.getId()) != 0) {
        return false;
    }
    if (el.label == "false") {
        return el.lock != 1 && el.lock != 4;
    }
    return el.label == "true" && el.lock != 0 && el.lock != 3;
}

// In labels: an element that is copied costs as much as some labels that are looked at.
std::uint64_t copyingCost(const ItmsRes& record)
{
    return 4 * (record.state->elements->size() + record.state->condProbs->size() +
                record.already_changed->size());
}

void showTransitionOf(const TrajEl& el)
{
    if (el.transition) {
        el.transition->showTransition();
    }
}

void showElement(const Atom& atom, const TrajEl& el, bool rankTest, const ItmsRes& parent)
{
    if (!tracing()) {
        return;
    }
    std::cout << "fail : " << atom.fail << '\n'
              << "rank_test : " << rankTest << '\n'
              << "wkst rank : " << parent.state->wkstRank << '\n'
              << "curr_el : " << el.getId() << '\n'
              << "curr_el label : " << el.label << '\n'
              << "curr_el lock : " << el.lock << '\n'
              << "curr_el support: " << el.support << '\n';
    if (el.support) {
        el.support->showClause(true);
        std::cout << '\n';
    }
    std::cout << "count : " << parent.already_changed->count(atom.getId()) << '\n';
    showTransitionOf(el);
}

} // namespace

ItmsRes* itms::propagateThroughConflict(Clause* conflict, ItmsRes* res,
                                        std::stack<ItmsRes*>* agenda, const bool& typeRules,
                                        const double& maxRank, Trajectory* traj, const int& rank)
{
    Expansion expansion{conflict, res, typeRules, maxRank, traj, rank};
    expand(expansion);
    if (expansion.first) {
        expansion.first->state->detach();
    }
    for (ItmsRes* other : expansion.others) {
        other->state->detach();
        agenda->push(other);
    }
    return expansion.first;
}

void itms::expand(Expansion& expansion)
{
    ++searchWork.records;
    if (tracing()) {
        std::cout << "[propagateThroughConflict] --> beginning\n"
                  << "curr_conf :\n";
        expansion.conflict->showClause(false);
        std::cout << "entering constraints size : " << expansion.parent->constraints->size() << '\n';
    }
    collectCandidates(expansion);
    if (tracing()) {
        std::cout << "not_unknown's size : " << expansion.candidates.size() << '\n';
        if (!expansion.candidates.empty()) {
            for (const auto& [rating, el] : expansion.candidates) {
                std::cout << rating << " -- " << el->getId() << '\n';
            }
            std::cout << "[propagateThroughConflict] --> beginning propagation\n";
        }
    }
    const std::vector<Branch> branches = planBranches(expansion);
    for (const Branch& branch : branches) {
        if (overspent(copyingCost(*expansion.parent))) {
            break;
        }
        makeChild(expansion, branch, &branch == &branches.back());
    }
    if (searchWork.partial) {
        giveUp(expansion);
    }
    if (expansion.parent->state) {
        expansion.parent->clear();
    }
    delete expansion.parent;
}

// The children that were made already: without the others they are not all that resolves the conflict.
void itms::giveUp(Expansion& expansion)
{
    if (expansion.first) {
        release(expansion.first);
        expansion.first = nullptr;
    }
    for (ItmsRes* other : expansion.others) {
        release(other);
    }
    expansion.others.clear();
}

void itms::collectCandidates(Expansion& expansion)
{
    ItmsRes& parent = *expansion.parent;
    for (const auto& [negated, atom] : *expansion.conflict->literals) {
        TrajEl* el = getElt(atom->getId(), parent.state, expansion.traj, expansion.rank);
        const bool rankTest = !(atom->fail && el->label == "false") ||
                              withinRank(expansion.traj, parent.state, expansion.maxRank);
        showElement(*atom, *el, rankTest, parent);
        if (rankTest && flippable(*el, *parent.already_changed)) {
            // Each value of the variable gets a distribution over the transitions.
            if (overspent(el->getStateVar()->atomLinks->size() *
                          (1 + parent.state->postProbs->size()))) {
                return;
            }
            considerCandidate(expansion, atom, el);
        }
    }
}

// With type rules conditions may only be switched off, and modes that a transition produced stay. Without them a
// command may only be switched off, except that the command "none" may also be switched on.
void itms::considerCandidate(Expansion& expansion, Atom* atom, TrajEl* el)
{
    if (expansion.typeRules) {
        const std::string& type = atom->stateVar->type;
        if ((type == "Cond" && el->label == "false") || (type == "Mode" && el->transition)) {
            return;
        }
        if (tracing()) {
            std::cout << atom->getId() << '\n' << type << '\n';
            showTransitionOf(*el);
        }
    } else {
        if (tracing()) {
            std::cout << "adding to not_unknown : " << el->getId() << '\n';
        }
        if (el->getStateVar()->type == "Command" &&
            !(atom->value == "none" && el->label == "false") && el->label != "true") {
            return;
        }
    }
    const ItmsRes& parent = *expansion.parent;
    expansion.candidates.insert(
        {entropy(atom->getStateVar(), parent.state, parent.already_changed), el});
}

// The children to be made, in their order: candidates by rating, each with its implicates as the table has them.
std::vector<itms::Branch> itms::planBranches(const Expansion& expansion) const
{
    std::vector<Branch> branches;
    for (const auto& [rating, el] : expansion.candidates) {
        const PiTable::Implicates* implicates = nullptr;
        if (piTable && el->label == "false" && el->getStateVar()->type != "Command") {
            implicates = piTable->getPIs(el->atom);
        }
        if (!implicates) {
            branches.push_back({el, {el->atom}});
            continue;
        }
        for (const std::vector<Atom*>* implicate : *implicates) {
            branches.push_back({el, *implicate});
        }
    }
    return branches;
}

// The parent is released right after its last child: that child takes over its state instead of a copy.
void itms::makeChild(Expansion& expansion, const Branch& branch, bool last)
{
    ++expansion.attempts;
    ItmsRes& parent = *expansion.parent;
    ItmsRes* child = last ? ItmsRes::inherit(parent) : ItmsRes::branch(parent);
    child->already_changed = copyState(parent.already_changed, child->state);
    TrajEl* target = getElt(branch.el->getId(), child->state, expansion.traj, expansion.rank);
    if (!adopt(expansion, *child, target, branch.implicate)) {
        release(child);
        return;
    }
    flip(expansion, *child, branch.el, target);
    if (expansion.attempts == 1) {
        expansion.first = child;
    } else {
        expansion.others.push_back(child);
    }
}

// Takes over the members of an implicate. False when one of them is a fault that may not be flipped. Until the
// target is flipped the child's rank is the parent's.
bool itms::adopt(const Expansion& expansion, ItmsRes& child, const TrajEl* target,
                 const std::vector<Atom*>& implicate)
{
    for (const Atom* member : implicate) {
        TrajEl* el = getElt(member->getId(), child.state, expansion.traj, expansion.rank);
        if (el->atom->fail && el->label == "false" &&
            (!withinRank(expansion.traj, child.state, expansion.maxRank) ||
             !flippable(*el, *child.already_changed))) {
            return false;
        }
        if (el == target) {
            continue;
        }
        if (el->label == "false") {
            el->setLabel("true");
        }
        (*child.already_changed)[el->getId()] = el;
    }
    return true;
}

void itms::flip(const Expansion& expansion, ItmsRes& child, TrajEl* el, TrajEl* target)
{
    ++searchWork.flips;
    State* state = child.state;
    Trajectory* traj = expansion.traj;
    const int& rank = expansion.rank;
    if (target->getStateVar()->type == "Mode" && target->atom->value == "unknown" &&
        target->label == "true") {
        state->setUnknown();
    }
    if (target->atom->fail) {
        state->wkstRank += 1.0;
    }
    setSupport(expansion.conflict, target, state, traj, rank);
    target->propagationNumber = maxPropagationNumber(expansion.conflict, el, state, traj, rank) + 1;
    const std::string flipped = target->label == "false" ? "true" : "false";
    if (tracing()) {
        std::cout << "[propagateThroughConflict] --> clause to be added :\n";
        target->showAtom(false);
        std::cout << "\n[propagateThroughConflict] --> adding a new clause. " << flipped << '\n';
        target->showAtom(false);
    }
    (*child.already_changed)[target->getId()] = target;
    target->setLabel(flipped);
    condition(state, target->getId());

    auto focus = std::make_unique<ElMap>(*child.already_changed);
    resupportDependence(target, focus.get(), state, traj, rank);
    auto retracted = std::make_unique<std::vector<TrajEl*>>();
    for (std::size_t k = 0; k < target->dependents->size(); ++k) {
        TrajEl* dependent = (*target->dependents)[k];
        if (!dependent->support || !testClause(dependent->support, state, traj, rank)) {
            deleteClause(dependent, retracted.get(), state, traj, rank);
        }
    }
    delete child.focus;
    child.focus = focus.release();
    delete child.retracted;
    child.retracted = retracted.release();
}

// Replaces the state's distribution by the one given the decided atom, which its rating left in the state.
void itms::condition(State* state, const char* id)
{
    const ProbMap* given = (*state->condProbs)[id];
    delete state->postProbs;
    state->postProbs = given ? new ProbMap(*given) : new ProbMap;
}
