// Other forms of a law or a guard that say the same.
#pragma once

#include "tests/support/PlantText.h"

namespace written {

/// Literals of which one holds; each is `is` or `isNot`.
using Clause = std::vector<Formula>;

/// Of a path as seen from a body. Requires: there is one.
const Variable& variableOf(const PlantText& plant, const Body& body, const std::string& path);

/// The formula with every part that has none itself replaced by what `rewrite` makes of it.
template <class Rewrite> Formula withAtoms(Formula formula, const Rewrite& rewrite)
{
    if (formula.parts.empty()) {
        return rewrite(formula);
    }
    for (Formula& part : formula.parts) {
        part = withAtoms(part, rewrite);
    }
    return formula;
}

/// The laws into which a law can be taken apart without turning it round.
std::vector<Formula> splitUp(const Formula& law);

/// The clauses of a formula, or, with `holds` false, of what it denies.
std::vector<Clause> clausesOf(const Formula& formula, bool holds = true);

/// What follows from two clauses of which one has a value and the other denies it; nothing where there is no such value, or more than
/// one.
std::optional<Clause> resolved(const Clause& one, const Clause& other);

/// An atom about the values that a variable has as one about those that it does not have (`to` is isNot), or the other way round (in).
/// Others stay as they are.
Formula turned(const PlantText& plant, const Body& body, const Formula& atom, Formula::Kind to);

} // namespace written
