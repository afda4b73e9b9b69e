#include "model/Comp.h"

#include "model/Atom.h"
#include "model/StateFormula.h"
#include "model/Transition.h"

#include <algorithm>

namespace {

void clearCounts(const Transition& transition)
{
    if (transition.stateVar) {
        transition.stateVar->guardsNumber = 0;
    }
    if (transition.atom) {
        transition.atom->guardsNumber = 0;
    }
    if (transition.guard && transition.guard->atoms) {
        for (const auto& [sign, atom] : *transition.guard->atoms) {
            atom->guardsNumber = 0;
        }
    }
}

void countGuard(const Transition& transition)
{
    if (transition.stateVar) {
        ++transition.stateVar->guardsNumber;
    }
    if (!transition.guard->atoms) {
        return;
    }
    std::vector<Atom*> mentioned;
    for (const auto& [sign, atom] : *transition.guard->atoms) {
        mentioned.push_back(atom);
    }
    std::sort(mentioned.begin(), mentioned.end());
    mentioned.erase(std::unique(mentioned.begin(), mentioned.end()), mentioned.end());
    for (Atom* atom : mentioned) {
        ++atom->guardsNumber;
    }
}

} // namespace

Comp::Comp()
    : stateVars(new std::vector<StateVar*>), transitions(new std::vector<Transition*>),
      importedComps(new std::vector<Comp*>), atoms(new AtomMap)
{
}

Comp::Comp(WithoutContainers)
    : stateVars(new std::vector<StateVar*>), transitions(nullptr),
      importedComps(new std::vector<Comp*>), atoms(nullptr)
{
}

Comp::~Comp()
{
    delete commandVars;
    delete stateVars;
    delete transitions;
    delete importedComps;
    delete atoms;
}

int Comp::getTransitionsGuards()
{
    for (const Transition* transition : *transitions) {
        clearCounts(*transition);
    }
    int guards = 0;
    for (const Transition* transition : *transitions) {
        if (transition->guard) {
            countGuard(*transition);
            ++guards;
        }
    }
    return guards;
}
