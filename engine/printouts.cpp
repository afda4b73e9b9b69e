// Printouts of the engine's containers, for inspection.
//
// An atom is printed with its own label and, when it has one, its support clause. The printout of the hash map,
// unlike those of the vector and of the multimap, does not end with an empty line.
#include "engine/itms.h"
#include "model/trace.h"

namespace {

void viewAtom(const Atom& atom)
{
    atom.showAtom(true);
    std::cout << "support : \n";
    if (atom.support) {
        atom.support->showClause(false);
    }
}

} // namespace

void itms::viewAtomVector(std::vector<Atom*>* atoms)
{
    if (!tracing()) {
        return;
    }
    for (const Atom* atom : *atoms) {
        viewAtom(*atom);
    }
    std::cout << std::endl;
}

void itms::viewAtomVectorId(std::vector<Atom*>* atoms)
{
    if (!tracing()) {
        return;
    }
    for (const Atom* atom : *atoms) {
        std::cout << atom->getId() << std::endl;
    }
}

void itms::viewClauseVector(std::vector<Clause*>* clauses)
{
    if (!tracing()) {
        return;
    }
    for (const Clause* clause : *clauses) {
        clause->showClause(false);
    }
    std::cout << std::endl;
}

void itms::viewMultimapAtom(std::multimap<std::string, Atom*, eqstring>* atoms)
{
    if (!tracing()) {
        return;
    }
    for (const auto& [name, atom] : *atoms) {
        viewAtom(*atom);
    }
    std::cout << std::endl;
}

void itms::viewHashMapAtom(AtomMap* atoms)
{
    if (!tracing()) {
        return;
    }
    for (const auto& [id, atom] : *atoms) {
        viewAtom(*atom);
    }
}

void itms::viewTrajectoryConflicts(NumberMap<std::vector<Clause*>*>* conflicts)
{
    if (!tracing()) {
        return;
    }
    for (const auto& [step, clauses] : *conflicts) {
        if (clauses) {
            std::cout << "conflict's timestep : " << step << std::endl;
            viewClauseVector(clauses);
        }
    }
}
