#include "tests/reference/PlainEngine.h"

#include <cmath>
#include <iostream>

void PlainEngine::initStateProbas(State* state)
{
    for (auto& entry : *state->comps) {
        for (Transition* transition : *entry.second->transitions) {
            (*state->postProbs)[transition->id] = transition->proba;
        }
    }
}

void PlainEngine::sortPostProbs(State* state)
{
    state->sortedPostProbs->clear();
    for (auto& entry : *state->postProbs) {
        state->sortedPostProbs->insert(std::make_pair(entry.second, entry.first));
    }
}

double PlainEngine::computeCondProbRough(TrajEl* el, Transition* transition, State* /*state*/,
                                         ElMap* /*elements*/)
{
    SignedAtoms* formulaAtoms = transition->formula->getAtoms();
    if (piTable != nullptr && piTable->getPIs(el->atom) != nullptr) {
        std::cout << "rough proba computation - strange end\n";
        return 0.0;
    }
    const bool opposite = checkInOpposites(el->atom, formulaAtoms);
    const bool reached = checkInImportedComps(el->atom, formulaAtoms);
    if (reached && opposite) {
        return 1.0;
    }
    if (reached) {
        return 0.0;
    }
    return 1.0 / static_cast<double>(el->getStateVar()->getAtomLinks()->size());
}

bool PlainEngine::checkInOpposites(Atom* atom, SignedAtoms* formulaAtoms)
{
    for (auto& entry : *formulaAtoms) {
        Atom* b = entry.second;
        for (Clause* clause : *b->clauses) {
            const std::unique_ptr<std::vector<Atom*>> opposites(clause->getOpposites(b));
            if (inVector(atom, opposites.get())) {
                return true;
            }
        }
    }
    return false;
}

bool PlainEngine::checkInImportedComps(Atom* atom, SignedAtoms* formulaAtoms)
{
    for (auto& entry : *formulaAtoms) {
        Comp* comp = entry.second->getVarComp();
        if (inVectorStateVar(atom->getStateVar(), comp->stateVars)) {
            return true;
        }
        for (Comp* imported : *comp->importedComps) {
            if (inVectorStateVar(atom->getStateVar(), imported->stateVars)) {
                return true;
            }
        }
    }
    return false;
}

// An entry that is null, as look-ups leave them, is no element.
void PlainEngine::computeObsCondRough(State* state)
{
    state->obsCondProba = 1.0;
    for (auto& observed : *state->elements) {
        TrajEl* e = observed.second;
        if (e == nullptr || (e->lock != 0 && e->lock != 3)) {
            continue;
        }
        double sum = 0.0;
        for (auto& entry : *state->elements) {
            TrajEl* m = entry.second;
            if (m == nullptr || m->getVarType() != "Mode" || m->getLabel() != "true") {
                continue;
            }
            for (Transition* t : *m->atom->transitions) {
                sum += computeCondProbRough(e, t, state, nullptr);
            }
        }
        state->obsCondProba *= sum;
    }
}

double PlainEngine::entropy(StateVar* variable, State* state, ElMap* elements)
{
    double H = 0.0;
    for (Atom* a : *variable->atomLinks) {
        double Z = 0.0;
        state->renewDistribution(a->getId());
        for (auto& entry : *state->comps) {
            for (Transition* t : *entry.second->transitions) {
                if ((*state->postProbs)[t->id] == 0.0) {
                    continue;
                }
                TrajEl* e = (*state->elements)[a->getId()];
                const double c = computeCondProbRough(e, t, state, elements);
                (*(*state->condProbs)[a->getId()])[t->id] = (*state->postProbs)[t->id] * c;
                Z += (*(*state->condProbs)[a->getId()])[t->id];
            }
        }
        for (auto& entry : *(*state->condProbs)[a->getId()]) {
            entry.second /= Z;
        }
        double h = 0.0;
        for (auto& entry : *state->comps) {
            for (Transition* t : *entry.second->transitions) {
                if ((*state->postProbs)[t->id] == 0.0) {
                    continue;
                }
                const double p = (*(*state->condProbs)[a->getId()])[t->id];
                if (p != 0.0) {
                    h += std::log(p) * p;
                }
            }
        }
        H = H - Z * h;
    }
    return H;
}

double PlainEngine::entropy(Atom* atom, State* state, ElMap* /*elements*/)
{
    double Z = 0.0;
    double H = 0.0;
    for (auto& entry : *state->comps) {
        for (Transition* t : *entry.second->transitions) {
            if ((*state->postProbs)[t->id] == 0.0) {
                continue;
            }
            (*(*state->condProbs)[atom->getId()])[t->id] = (*state->postProbs)[t->id] * 1.0;
            Z += (*(*state->condProbs)[atom->getId()])[t->id];
        }
    }
    for (auto& entry : *(*state->condProbs)[atom->getId()]) {
        entry.second /= Z;
    }
    for (auto& entry : *state->comps) {
        for (Transition* t : *entry.second->transitions) {
            if ((*state->postProbs)[t->id] == 0.0) {
                continue;
            }
            const double p = (*(*state->condProbs)[atom->getId()])[t->id];
            if (p != 0.0) {
                H += std::log(p) * p;
            }
        }
    }
    return -H;
}

std::vector<Atom*>* PlainEngine::predictedAtoms(Atom* atom, std::vector<Atom*>* accumulator)
{
    if (accumulator == nullptr) {
        accumulator = new std::vector<Atom*>;
    }
    for (Clause* clause : *atom->clauses) {
        const std::unique_ptr<std::vector<Atom*>> opposites(clause->getOpposites(atom));
        for (Atom* each : *opposites) {
            if (!inVector(each, accumulator)) {
                accumulator->push_back(each);
            }
        }
    }
    if (!inVector(atom, accumulator)) {
        accumulator->push_back(atom);
    }
    return accumulator;
}

double PlainEngine::probaCondObsAtom(Atom* atom, std::vector<Atom*>* observed)
{
    int count = 0;
    const std::unique_ptr<std::vector<Atom*>> predicted(predictedAtoms(atom, nullptr));
    for (Atom* each : *predicted) {
        if (inVector(each, observed)) {
            ++count;
        }
    }
    return static_cast<double>(count) / static_cast<double>(observed->size());
}
