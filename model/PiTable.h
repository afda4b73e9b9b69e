// Prime implicates: for an atom, the sets of atoms that together imply it.
#pragma once

#include "model/keys.h"

#include <memory>
#include <unordered_map>

/// A table from an atom to its list of implicate sets. Atoms are compared by pointer.
class PiTable {
public:
    using Implicates = std::vector<std::vector<Atom*>*>;

    PiTable();
    ~PiTable();
    PiTable(const PiTable&) = delete;
    PiTable& operator=(const PiTable&) = delete;

    /// Adds an entry and takes ownership of the list and of every set in it. An atom that has an entry
    /// already keeps the first one as its answer; the further one is only printed.
    void addPIAtom(Atom* atom, Implicates* implicates);
    /// The atom's list, or null when it has none. The table keeps it; valid while the table lives.
    Implicates* getPIs(Atom* atom) const;
    /// Prints a line `HEAD: A B, C` for every entry, in the order in which they were added.
    void showAllPI() const;

private:
    struct Entry {
        Atom* head;
        Implicates* implicates;
    };
    std::vector<Entry> entries_;
    std::unordered_map<const Atom*, Implicates*> firstOf_;
};
