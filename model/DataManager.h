// The registry of the active model, shared by everything in the process. Others may take turns with it: Registry.h.
#pragma once

#include "model/Atom.h"
#include "model/PiTable.h"
#include "model/SearchLimits.h"
#include "model/keys.h"

#include <memory>

/// One benchmark entry: what a call of itms::addPropositions took, found and was given.
struct ItmsBmkEntry {
    double seconds = 0.0;         ///< processor time, in seconds
    unsigned int count = 0;       ///< candidates in the result
    std::vector<std::string> ids; ///< identifiers of the propositions, in their order
};

/// The active model and what belongs to the process as a whole: the contents of the registry that is in use.
/// The objects in it belong to whoever loaded them, and must stay alive until reset(). Single-threaded, as is
/// all of the library.
class DataManager {
public:
    static std::string model_name;      ///< base name; `model_name`.pi holds prime implicates
    static AtomMap* active_atoms;       ///< atoms that occur in a clause; set-up replaces the map
    static CompMap* active_comps;       ///< components by name
    static TransitionMap* active_trans; ///< transitions by identifier, filled by set-up
    static std::vector<Clause*>* cls;   ///< the model-wide clauses
    static std::vector<ItmsBmkEntry> itmsBmkEntries; ///< the entries filed so far, in order
    static SearchLimits searchLimits;                ///< bounds every search; unlimited by default
    static SearchWork searchWork;                    ///< what the latest search did

    /// Same as findAtom.
    Atom* getAtom(const char* id) { return findAtom(id); }
    /// The atom with that identifier, or null. Finds every atom of the model: an active one in constant
    /// time, any other (an atom of an active component that stands in no clause) in time linear in the
    /// atoms of all components. The characters of `id` need not be the atom's own.
    static Atom* findAtom(const char* id);

    /// Appends an entry to `itmsBmkEntries`; copies the identifiers.
    /// Requires: `ids` is not null.
    static void addItmsBmkEntry(double seconds, unsigned int count, std::vector<const char*>* ids);

    /// Ensures: `atoms` is the map of active atoms, and stays allocated until reset(), since callers may hold
    /// it. The map that it replaces is not released either: one that was made here lives until reset(), any
    /// other stays with its maker.
    static void replaceActiveAtoms(std::unique_ptr<AtomMap> atoms);
    /// A new, empty table.
    /// Ensures: it lives until reset(), longer than any engine that uses it; the caller never releases it.
    static PiTable* newPiTable();

    /// Unloads the model of the registry in use.
    /// Ensures: every container is an empty one of the registry's own again; the maps and tables kept so far
    /// are released, so pointers to them (`itms::piTable` among them) are not valid any more; entries are
    /// dropped, limits lifted, and what was noted of the latest search is cleared. The model's objects are
    /// left to their owner.
    static void reset();
};
