#include "tests/reference/RandomState.h"

#include <algorithm>

namespace {

// The state's elements for the clause's atoms, each once; empty when one is missing.
std::vector<TrajEl*> elementsOf(const Clause* clause, State* state)
{
    std::vector<TrajEl*> els;
    for (const auto& [negated, atom] : *clause->literals) {
        const auto found = state->elements->find(atom->getId());
        if (found == state->elements->end() || found->second == nullptr) {
            return {};
        }
        if (std::find(els.begin(), els.end(), found->second) == els.end()) {
            els.push_back(found->second);
        }
    }
    return els;
}

void supportSome(RandomModel& model, State* state)
{
    const int percent = model.random.pick(std::vector<int>{0, 20, 60, 100});
    for (Clause* clause : model.clauses) {
        if (!model.random.chance(percent)) {
            continue;
        }
        const std::vector<TrajEl*> els = elementsOf(clause, state);
        if (els.empty()) {
            continue;
        }
        TrajEl* supported = model.random.pick(els);
        if (supported->support != nullptr) {
            continue;
        }
        supported->support = clause;
        for (const auto& [negated, atom] : *clause->literals) {
            TrajEl* other = (*state->elements)[atom->getId()];
            supported->propagationNumber =
                std::max(supported->propagationNumber, other->propagationNumber + 1);
            if (other != supported) {
                other->dependents->push_back(supported);
            }
        }
    }
}

} // namespace

State* randomState(RandomModel& model, int time)
{
    Random& random = model.random;
    auto* state = new State;
    const bool relabel = !model.sound && random.chance(30);
    const int present = random.pick(std::vector<int>{30, 60, 100, 100});
    for (Comp* comp : model.comps) {
        if (random.chance(present)) {
            model.trajectory->addComp(comp, state, time, random.chance(90), false);
        }
    }
    for (Atom* atom : model.atoms) {
        const auto found = state->elements->find(atom->getId());
        if (found == state->elements->end()) {
            continue;
        }
        if (relabel) {
            found->second->label = model.label(atom);
            found->second->lock = model.lock();
        }
        if (random.chance(10) && !model.transitions.empty()) {
            found->second->transition = random.pick(model.transitions);
        }
    }
    supportSome(model, state);
    state->computeProbas = random.chance(40);
    state->wkstRank = random.chance(15) ? 1.0 : 0.0;
    state->rank = random.chance(15) ? 1.0 : 0.0;
    state->unknown = random.chance(5);
    return state;
}

void disturb(RandomModel& model, State* state)
{
    Random& random = model.random;
    std::vector<TrajEl*> els;
    for (Atom* atom : model.atoms) {
        const auto found = state->elements->find(atom->getId());
        if (found != state->elements->end() && found->second != nullptr) {
            els.push_back(found->second);
        } else if (random.chance(10)) {
            (*state->elements)[atom->getId()] = nullptr;
        }
    }
    for (TrajEl* el : els) {
        el->propagationNumber = random.chance(30) ? random.between(-1, 3) : el->propagationNumber;
        if (!model.clauses.empty() && random.chance(30)) {
            el->support = random.pick(model.clauses);
        }
        for (int i = random.chance(30) ? random.between(1, 4) : 0; i > 0; --i) {
            el->dependents->push_back(random.pick(els));
        }
    }
    for (Atom* atom : model.atoms) {
        if (random.chance(10)) {
            ProbMap* distribution = state->renewDistribution(atom->getId());
            for (int i = random.between(0, 3); i > 0; --i) {
                (*distribution)[random.between(0, 8)] = 0.25 * random.between(0, 4);
            }
        } else if (random.chance(5)) {
            (*state->condProbs)[atom->getId()];
        }
    }
    for (int i = random.between(0, 4); i > 0; --i) {
        (*state->postProbs)[random.between(0, 150)] = 0.25 * random.between(0, 4);
    }
    if (random.chance(30)) {
        state->sortedPostProbs->insert({0.5, 1});
    }
}

SignedEls randomPropositions(RandomModel& model, State* state)
{
    Random& random = model.random;
    SignedEls props;
    const int percent =
        random.pick(model.wide ? std::vector<int>{10, 20, 40} : std::vector<int>{5, 10, 25});
    for (Atom* atom : model.atoms) {
        const auto found = state->elements->find(atom->getId());
        if (found == state->elements->end() || found->second == nullptr) {
            continue;
        }
        TrajEl* el = found->second;
        const int wanted = atom->stateVar->type == "Cond" ? 3 * percent : percent;
        if (!random.chance(wanted) || props.size() >= 6) {
            continue;
        }
        const bool opposite = random.chance(model.wide ? 90 : 70);
        const bool value = opposite != (el->label == "true");
        if (random.chance(70)) {
            el->lock = random.chance(70) ? (value ? 0 : 1) : (value ? 3 : 4);
        }
        props.insert({value, el});
        if (random.chance(3)) {
            props.insert({!value, el});
        }
    }
    return props;
}

TrajEl* randomElement(RandomModel& model, State* state)
{
    std::vector<TrajEl*> els;
    for (Atom* atom : model.atoms) {
        const auto found = state->elements->find(atom->getId());
        if (found != state->elements->end() && found->second != nullptr) {
            els.push_back(found->second);
        }
    }
    return els.empty() ? nullptr : model.random.pick(els);
}
