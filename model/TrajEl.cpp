#include "model/TrajEl.h"

#include "model/trace.h"

void TrajEl::showAtom(const bool& full) const
{
    if (!tracing()) {
        return;
    }
    std::cout << atom->id << " : " << label;
    if (full) {
        std::cout << " (depth " << propagationNumber << ", lock " << lock << ')';
    }
    std::cout << '\n';
}
