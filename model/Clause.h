// A disjunction of signed atoms, one law of the model in normal form.
#pragma once

#include "model/keys.h"

/// A clause. An entry of `literals` with key true stands for the negated atom, with key false for the
/// atom itself: {(true, a), (false, b)} reads "not a, or b".
class Clause {
public:
    SignedAtoms* literals; ///< owned map; the atoms are the model's

    /// Ensures: the clause is empty, which is false.
    Clause() : literals(new SignedAtoms) {}
    /// Releases the map, not the atoms.
    ~Clause() { delete literals; }
    Clause(const Clause&) = delete;
    Clause& operator=(const Clause&) = delete;

    /// Prints the literals to std::cout in iteration order, joined by ` | `, a negated one as `!ID`; with
    /// `labels` true each is followed by its atom's own label, `!ID [LABEL]`. The empty clause is `false`.
    /// A newline ends the line.
    void showClause(bool labels) const;

    /// The atoms whose literals have the sign opposite to that of `atom`'s first literal, in iteration
    /// order, each once; empty when the clause does not mention `atom`. Quadratic in the clause at most.
    /// Ensures: the vector is new, and the caller's.
    std::vector<Atom*>* getOpposites(Atom* atom) const;
};
