// A flat formula over atoms: a guard, the effect of a transition, or a query.
#pragma once

#include "model/keys.h"

/// A conjunction ("and", or empty) or a disjunction ("or") of signed atoms. Unlike in a clause, key true
/// means here that the atom must hold, and key false that it must not.
class StateFormula {
public:
    std::string op; ///< "and", "" (the same) or "or"; any other makes the formula false
    SignedAtoms* atoms = nullptr; ///< owned map; null when the formula has no atoms

    /// Ensures: a formula without atoms and with the connective "".
    StateFormula() = default;
    /// Releases the map, not the atoms.
    ~StateFormula() { delete atoms; }
    StateFormula(const StateFormula&) = delete;
    StateFormula& operator=(const StateFormula&) = delete;

    /// A copy of `atoms` with the same iteration order, empty when `atoms` is null. Linear.
    /// Ensures: the map is the caller's.
    SignedAtoms* getAllSignedAtoms() const
    {
        return atoms ? new SignedAtoms(*atoms) : new SignedAtoms;
    }
    /// `atoms` itself, which stays the formula's; may be null.
    SignedAtoms* getAtoms() const { return atoms; }
};
