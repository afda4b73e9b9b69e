#include "model/Atom.h"

#include "model/trace.h"

#include <algorithm>

Atom::Atom()
    : outTransitions(new std::vector<Transition*>), transitions(new std::vector<Transition*>),
      clauses(new std::vector<Clause*>), comps(new CompMap), label("unknown")
{
}

Atom::Atom(WithoutContainers)
    : outTransitions(nullptr), transitions(nullptr), clauses(nullptr), comps(nullptr),
      label("unknown")
{
}

Atom::~Atom()
{
    delete outTransitions;
    delete transitions;
    delete clauses;
    delete comps;
}

bool Atom::evalAtom() const
{
    return stateVar && stateVar->initial == this;
}

void Atom::set()
{
    label = "true";
}

void Atom::setLabel(const std::string& newLabel)
{
    label = newLabel;
}

void Atom::addRefTransPre(Transition* transition)
{
    if (std::find(outTransitions->begin(), outTransitions->end(), transition) ==
        outTransitions->end()) {
        outTransitions->push_back(transition);
    }
}

void Atom::showAtom(bool full) const
{
    if (!tracing()) {
        return;
    }
    std::cout << id;
    if (full) {
        std::cout << " : " << label;
    }
    std::cout << '\n';
}
