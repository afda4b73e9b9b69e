// Laws as clauses: the conjunctive normal form of a formula over a plant's atoms.
//
//     position in {open, stuckOpen} -> outflow = inflow      (both variables: zero, positive)
//
// becomes, value by value,
//
//     !position=open      | !outflow=zero     | inflow=zero
//     !position=open      | outflow=zero      | !inflow=zero
//     ...and six more.
//
// Negations go down to the atoms, then disjunctions are distributed over conjunctions; literals stand in the order in
// which they were written. That every variable has exactly one of its values is known: a clause that has all values of
// a variable, or denies two of them, says nothing and is left out; next to !x=a a literal x=b says nothing either. A
// clause that contains another one of the same law is left out. How many clauses distribution would make is counted
// before any is made.
#pragma once

#include "plant/ModelBuilder.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace plant {

/// A formula over atoms.
struct LawFormula {
    enum class Kind {
        atom,        ///< `atom` holds
        negation,    ///< one operand, as it says
        conjunction, ///< any number of operands; none: true
        disjunction, ///< any number of operands; none: false
        implication, ///< two operands
        equivalence  ///< two operands
    };

    Kind kind = Kind::conjunction;
    Atom* atom = nullptr;
    std::vector<LawFormula> operands;

    static LawFormula of(Atom* atom) { return {Kind::atom, atom, {}}; }
    static LawFormula make(Kind kind, std::vector<LawFormula> operands)
    {
        return {kind, nullptr, std::move(operands)};
    }
};

using ClauseLiterals = std::vector<Literal>;

/// `left` and `right` have the same value: for each value of `left`, in its order, that either both have it or neither.
/// Requires the same value texts in both, in any order.
LawFormula sameValue(const StateVar* left, const StateVar* right);

/// How many clauses distribution makes of the formula, at most 2^62. Linear in the formula, twice that for each equivalence
/// within an equivalence.
std::uint64_t countClauses(const LawFormula& formula);

/// The clauses of the formula, in the order of its parts; an empty one when it cannot hold. Nothing when countClauses()
/// exceeds `limit`.
std::optional<std::vector<ClauseLiterals>> normalForm(const LawFormula& formula,
                                                      std::uint64_t limit);

} // namespace plant
