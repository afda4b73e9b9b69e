#include "model/PiTable.h"

#include "model/Atom.h"
#include "model/trace.h"

PiTable::PiTable() = default;

PiTable::~PiTable()
{
    for (const Entry& entry : entries_) {
        for (const std::vector<Atom*>* implicate : *entry.implicates) {
            delete implicate;
        }
        delete entry.implicates;
    }
}

void PiTable::addPIAtom(Atom* atom, Implicates* implicates)
{
    entries_.push_back({atom, implicates});
    firstOf_.emplace(atom, implicates);
}

PiTable::Implicates* PiTable::getPIs(Atom* atom) const
{
    const auto found = firstOf_.find(atom);
    return found == firstOf_.end() ? nullptr : found->second;
}

void PiTable::showAllPI() const
{
    if (!tracing()) {
        return;
    }
    for (const Entry& entry : entries_) {
        std::cout << entry.head->id << ": ";
        const char* setSeparator = "";
        for (const std::vector<Atom*>* implicate : *entry.implicates) {
            std::cout << setSeparator;
            const char* atomSeparator = "";
            for (const Atom* atom : *implicate) {
                std::cout << atomSeparator << atom->id;
                atomSeparator = " ";
            }
            setSeparator = ", ";
        }
        std::cout << '\n';
    }
}
