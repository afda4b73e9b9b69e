#include "model/Clause.h"

#include "model/Atom.h"
#include "model/trace.h"

#include <algorithm>

void Clause::showClause(bool labels) const
{
    if (!tracing()) {
        return;
    }
    if (literals->empty()) {
        std::cout << "false\n";
        return;
    }
    const char* separator = "";
    for (const auto& [negated, atom] : *literals) {
        std::cout << separator << (negated ? "!" : "") << atom->id;
        if (labels) {
            std::cout << " [" << atom->label << ']';
        }
        separator = " | ";
    }
    std::cout << '\n';
}

std::vector<Atom*>* Clause::getOpposites(Atom* atom) const
{
    auto* opposites = new std::vector<Atom*>;
    const auto own = std::find_if(literals->begin(), literals->end(),
                                  [atom](const auto& literal) { return literal.second == atom; });
    if (own == literals->end()) {
        return opposites;
    }
    for (const auto& [negated, other] : *literals) {
        if (negated != own->first &&
            std::find(opposites->begin(), opposites->end(), other) == opposites->end()) {
            opposites->push_back(other);
        }
    }
    return opposites;
}
