#include "tests/reference/PlainEngine.h"

#include <iostream>

PlainEngine::~PlainEngine()
{
    delete stateVars;
}

void PlainEngine::rtInit()
{
    int transCounter = 0;
    earlierStateVars_.emplace_back(stateVars);
    stateVars = new std::vector<StateVar*>;
    for (auto& entry : *active_comps) {
        Comp* comp = entry.second;
        for (StateVar* variable : *comp->getStateVariables()) {
            stateVars->push_back(variable);
        }
        idTransitions(comp, transCounter);
    }
    replaceActiveAtoms(std::unique_ptr<AtomMap>(loadAtoms(cls)));
    for (auto& entry : *active_comps) {
        Comp* comp = entry.second;
        comp->atoms->clear();
        for (StateVar* variable : *comp->getStateVariables()) {
            for (Atom* atom : *variable->atomLinks) {
                (*comp->atoms)[atom->getId()] = atom;
                (*atom->comps)[comp->name.c_str()] = comp;
                deadEndAtom(atom);
            }
        }
    }
    initialize();
}

void PlainEngine::initialize()
{
    for (auto& entry : *active_atoms) {
        Atom* atom = entry.second;
        compileTransitionsProb(atom);
        if (atom->evalAtom()) {
            atom->set();
            for (Atom* other : *atom->stateVar->atomLinks) {
                if (other != atom) {
                    other->setLabel("false");
                }
            }
            atom->initTrue = 1;
        }
    }
}

void PlainEngine::addAtomsOf(Clause* clause, AtomMap* map)
{
    for (auto& literal : *clause->literals) {
        Atom* atom = literal.second;
        if (map->count(atom->getId()) == 0) {
            (*map)[atom->getId()] = atom;
        }
    }
}

AtomMap* PlainEngine::loadAtoms(std::vector<Clause*>* clauses)
{
    auto* map = new AtomMap;
    for (Clause* clause : *clauses) {
        addAtomsOf(clause, map);
    }
    for (StateVar* variable : *stateVars) {
        for (Clause* clause : *variable->clauses) {
            addAtomsOf(clause, map);
        }
    }
    return map;
}

void PlainEngine::deadEndAtom(Atom* atom)
{
    for (Transition* transition : *atom->outTransitions) {
        if (transition->name == "Nominal" && !transition->idle) {
            return;
        }
    }
    atom->deadEnd = true;
}

void PlainEngine::initPb(State* state)
{
    initStateProbas(state);
}

bool PlainEngine::intersectClauses(std::vector<Clause*>* a, std::vector<Clause*>* b)
{
    AtomMap mapA;
    AtomMap mapB;
    for (Clause* clause : *a) {
        for (auto& literal : *clause->literals) {
            mapA[literal.second->getId()] = literal.second;
        }
    }
    for (Clause* clause : *b) {
        for (auto& literal : *clause->literals) {
            mapB[literal.second->getId()] = literal.second;
        }
    }
    for (auto& entry : mapA) {
        if (mapB[entry.first] != nullptr) {
            return false;
        }
    }
    return true;
}

bool PlainEngine::intersectClauses(Atom* x, std::vector<Atom*>* ys)
{
    for (Atom* y : *ys) {
        if (!intersectClauses(x->clauses, y->clauses)) {
            return false;
        }
    }
    return true;
}

void PlainEngine::idTransitions(Comp* comp, int& counter)
{
    const auto n = static_cast<double>(comp->transitions->size());
    for (Transition* t : *comp->transitions) {
        t->id = counter;
        t->showTransition();
        (*active_trans)[counter] = t;
        t->weight = t->proba / n;
        std::cout << "weight : " << t->weight << std::endl;
        ++counter;
        const bool failure = t->getType() == "Fail";
        if (!t->idle && !failure) {
            continue;
        }
        bool command = false;
        SignedAtoms* atoms = t->guard->getAllSignedAtoms();
        for (auto& entry : *atoms) {
            if (entry.second->getVarType() == "Command") {
                command = true;
                break;
            }
        }
        delete atoms;
        if (command) {
            continue;
        }
        t->commanded = false;
        if (comp->commandVars == nullptr) {
            continue;
        }
        for (CommandVar* variable : *comp->commandVars) {
            for (Atom* a : *variable->atomLinks) {
                a->addRefTransPre(t);
                std::cout << "adding idle trans reference :\n";
                std::cout << a->getId() << std::endl;
                t->showTransition();
            }
        }
    }
    comp->getTransitionsGuards();
    for (Transition* t : *comp->transitions) {
        std::cout << "guards number of " << t->atom->getId() << " : " << t->atom->guardsNumber
                  << std::endl;
        std::cout << "guards number of " << t->stateVar->name << " : " << t->stateVar->guardsNumber
                  << std::endl;
        t->guardProba = t->proba / static_cast<double>(t->stateVar->guardsNumber);
        std::cout << "guard proba : " << t->guardProba << std::endl;
    }
}

void PlainEngine::compileTransitionsProb(Atom* atom)
{
    double sum = 0.0;
    int count = 0;
    for (Transition* transition : *atom->transitions) {
        sum += transition->proba;
        ++count;
    }
    if (count == 0) {
        return;
    }
    atom->compiledProba = sum / static_cast<double>(count);
    std::cout << "compiled probability : " << atom->getId() << " -- " << atom->compiledProba
              << std::endl;
}
