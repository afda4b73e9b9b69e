// An atom at one time step: its label, and why it has that label.
#pragma once

#include "model/Atom.h"
#include "model/keys.h"

/// A labelled instance of an atom in a State, which owns it.
class TrajEl {
public:
    Atom* atom = nullptr;             ///< the atom this instantiates
    Transition* transition = nullptr; ///< the transition that produced it, or null
    std::string label = "unknown";    ///< "true", "false" or "unknown"
    Clause* support = nullptr;        ///< the clause that justifies the label, or null
    std::vector<TrajEl*>* dependents; ///< elements whose support mentions this one; owned vector
    int propagationNumber = 0;        ///< depth of propagation; 0: nothing propagated it

    /// What the search may do with the label:
    ///   0  keep while "true": observed to hold          1  keep while "false": observed not to hold
    ///   2  free: may be flipped either way (default)
    ///   3  keep while "true": commanded or assumed      4  keep while "false": commanded not to hold, or
    ///                                                      not reachable at this step
    int lock = 2;

    TrajEl() : dependents(new std::vector<TrajEl*>) {}
    /// Releases the vector of dependents, not the elements in it.
    ~TrajEl() { delete dependents; }
    TrajEl(const TrajEl&) = delete;
    TrajEl& operator=(const TrajEl&) = delete;

    const char* getId() const { return atom->getId(); }
    StateVar* getStateVar() const { return atom->getStateVar(); }
    std::string getVarType() const { return atom->getVarType(); }
    std::string getLabel() const { return label; }
    void setLabel(const std::string& newLabel) { label = newLabel; }
    /// True when the label is "true".
    bool evalTrajEl() const { return label == "true"; }
    /// Prints `ID : LABEL`, or `ID : LABEL (depth N, lock L)` when `full` is true, and a newline.
    void showAtom(const bool& full) const;
};
