// Run-time set-up: what the engine derives from the model before the first observation.
//
// Transitions are numbered through all components, in the order of the registry's hash map. The active atoms
// become exactly those that occur in some clause: for the clauses (a | b) and (!b), with c in none, the active
// atoms are a and b, and c is reached only through its component and variable. Linear in the model.
#include "engine/itms.h"

void itms::rtInit()
{
    int transitionCounter = 0;
    if (stateVars) {
        earlierStateVars_.emplace_back(stateVars);
    }
    stateVars = new std::vector<StateVar*>;
    for (const auto& [name, comp] : *active_comps) {
        const std::vector<StateVar*>& variables = *comp->getStateVariables();
        stateVars->insert(stateVars->end(), variables.begin(), variables.end());
        idTransitions(comp, transitionCounter);
    }
    replaceActiveAtoms(std::unique_ptr<AtomMap>(loadAtoms(cls)));
    for (const auto& [name, comp] : *active_comps) {
        comp->atoms->clear();
        for (const StateVar* variable : *comp->getStateVariables()) {
            for (Atom* atom : *variable->atomLinks) {
                (*comp->atoms)[atom->getId()] = atom;
                (*atom->comps)[comp->name.c_str()] = comp;
                deadEndAtom(atom);
            }
        }
    }
    initialize();
}

void itms::initialize()
{
    for (const auto& [id, atom] : *active_atoms) {
        compileTransitionsProb(atom);
        if (!atom->evalAtom()) {
            continue;
        }
        atom->set();
        for (Atom* other : *atom->stateVar->atomLinks) {
            if (other != atom) {
                other->setLabel("false");
            }
        }
        atom->initTrue = 1;
    }
}

namespace {

void addAtomsOf(const std::vector<Clause*>& clauses, AtomMap& atoms)
{
    for (const Clause* clause : clauses) {
        for (const auto& [negated, atom] : *clause->literals) {
            atoms.insert({atom->getId(), atom});
        }
    }
}

} // namespace

AtomMap* itms::loadAtoms(std::vector<Clause*>* clauses)
{
    auto* atoms = new AtomMap;
    addAtomsOf(*clauses, *atoms);
    if (stateVars) {
        for (const StateVar* variable : *stateVars) {
            addAtomsOf(*variable->clauses, *atoms);
        }
    }
    return atoms;
}

void itms::deadEndAtom(Atom* atom)
{
    for (const Transition* transition : *atom->outTransitions) {
        if (transition->name == "Nominal" && !transition->idle) {
            return;
        }
    }
    atom->deadEnd = true;
}

void itms::initPb(State* state)
{
    initStateProbas(state);
}

bool itms::intersectClauses(std::vector<Clause*>* a, std::vector<Clause*>* b)
{
    AtomMap ofA;
    AtomMap ofB;
    addAtomsOf(*a, ofA);
    addAtomsOf(*b, ofB);
    for (const auto& [id, atom] : ofA) {
        if (ofB.count(id) != 0) {
            return false;
        }
    }
    return true;
}

bool itms::intersectClauses(Atom* x, std::vector<Atom*>* ys)
{
    for (const Atom* y : *ys) {
        if (!intersectClauses(x->clauses, y->clauses)) {
            return false;
        }
    }
    return true;
}
