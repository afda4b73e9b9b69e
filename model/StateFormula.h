// A flat formula over atoms: a guard, the effect of a transition, or a query.
#pragma once

#include "model/keys.h"

/// A conjunction ("and", or empty) or a disjunction ("or") of signed atoms. Here, other than in a clause,
/// key true means that the atom must hold, and key false that it must not.
class StateFormula {
public:
    std::string op;
    SignedAtoms* atoms = nullptr; ///< owned; null when the formula has no atoms

    StateFormula() = default;
    ~StateFormula() { delete atoms; }
    StateFormula(const StateFormula&) = delete;
    StateFormula& operator=(const StateFormula&) = delete;

    /// A copy of `atoms` with the same iteration order, empty when `atoms` is null; the caller deletes it.
    SignedAtoms* getAllSignedAtoms() const
    {
        return atoms ? new SignedAtoms(*atoms) : new SignedAtoms;
    }
    /// `atoms` itself, which stays the formula's.
    SignedAtoms* getAtoms() const { return atoms; }
};
