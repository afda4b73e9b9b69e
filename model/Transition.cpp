#include "model/Transition.h"

#include "model/StateVar.h"
#include "model/trace.h"

void Transition::showTransition() const
{
    if (!tracing()) {
        return;
    }
    std::cout << "transition " << id << ' ' << (stateVar ? stateVar->name : std::string()) << ": "
              << name << " (" << proba << ")\n";
}
