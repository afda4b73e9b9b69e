// An atom at one time step: its label, and why it has that label.
#pragma once

#include "model/Atom.h"
#include "model/keys.h"

/// A labelled instance of an atom in a State, which owns it. All calls require that `atom` is set.
class TrajEl {
public:
    Atom* atom = nullptr;             ///< the atom that this instantiates; not owned
    Transition* transition = nullptr; ///< the transition that produced it, or null; not owned
    std::string label = "unknown";    ///< "true", "false" or "unknown"
    Clause* support = nullptr;        ///< the clause that justifies the label, or null; not owned
    /// Elements whose support mentions this one. Owned vector; the elements are their state's.
    std::vector<TrajEl*>* dependents;
    int propagationNumber = 0; ///< depth of propagation, >= 0; 0: nothing propagated it

    /// What the search may do with the label:
    ///   0  keep while "true": observed to hold          1  keep while "false": observed not to hold
    ///   2  free: may be flipped either way (default)
    ///   3  keep while "true": commanded or assumed      4  keep while "false": commanded not to hold, or
    ///                                                      not reachable at this step
    int lock = 2;

    /// Ensures: an element without atom, labelled "unknown", with no dependents.
    TrajEl() : dependents(new std::vector<TrajEl*>) {}
    /// Releases the vector of dependents, not the elements in it.
    ~TrajEl() { delete dependents; }
    TrajEl(const TrajEl&) = delete;
    TrajEl& operator=(const TrajEl&) = delete;

    /// The atom's identifier; valid as long as Atom::getId says.
    const char* getId() const { return atom->getId(); }
    /// The atom's variable, which stays the model's.
    StateVar* getStateVar() const { return atom->getStateVar(); }
    /// A copy of the variable's type: "Mode", "Command" or "Cond".
    std::string getVarType() const { return atom->getVarType(); }
    /// A copy of the label.
    std::string getLabel() const { return label; }
    /// Ensures: the label is `newLabel`, which is not checked; support, dependents and lock stay.
    void setLabel(const std::string& newLabel) { label = newLabel; }
    /// True when the label is "true".
    bool evalTrajEl() const { return label == "true"; }
    /// Prints `ID : LABEL`, or `ID : LABEL (depth N, lock L)` when `full` is true, and a newline to std::cout.
    void showAtom(const bool& full) const;
};
