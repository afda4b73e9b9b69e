// Prime implicates: for an atom, the sets of atoms that together imply it.
#pragma once

#include "model/keys.h"

#include <memory>
#include <unordered_map>

/// A table from an atom to its list of implicate sets. Atoms are compared by pointer.
class PiTable {
public:
    using Implicates = std::vector<std::vector<Atom*>*>;

    /// Ensures: the table is empty.
    PiTable();
    /// Releases every list and every set, not the atoms.
    ~PiTable();
    PiTable(const PiTable&) = delete;
    PiTable& operator=(const PiTable&) = delete;

    /// Adds an entry. An atom that has an entry already keeps the first one as its answer; a further one is
    /// only printed.
    /// Requires: neither is null; `implicates` and its sets were made with `new` and stand in no table.
    /// Ensures: the table owns the list and every set in it.
    void addPIAtom(Atom* atom, Implicates* implicates);
    /// The atom's list, or null when it has none. Constant time on average. The table keeps the list, which
    /// is valid while the table lives.
    Implicates* getPIs(Atom* atom) const;
    /// Prints a line `HEAD: A B, C` to std::cout for every entry, in the order in which they were added.
    void showAllPI() const;

private:
    struct Entry {
        Atom* head;
        Implicates* implicates;
    };
    std::vector<Entry> entries_;
    std::unordered_map<const Atom*, Implicates*> firstOf_;
};
