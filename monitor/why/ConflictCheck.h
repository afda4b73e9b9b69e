// Confirms that values and clauses cannot hold together, without anything that conflicts are derived with.
//
// It knows the model's objects only: it looks at the clauses again and again until none of them gives another literal
// (unit resolution), and where that is not enough it tries both signs of a literal ("A machine program for
// theorem-proving", Communications of the ACM 5, 1962). Plain, so that it shares no error with what it confirms.
#pragma once

#include "model/Atom.h"
#include "model/Clause.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace monitor {

/// What is claimed not to hold together.
struct ConflictClaim {
    /// The variable of each has this value and no other. Modes, commands and readings.
    std::vector<const Atom*> values;
    std::vector<const Clause*> clauses;
};

enum class ConflictCheck {
    confirmed, ///< they cannot hold together
    refuted,   ///< they can
    unsettled  ///< neither was found within the bound
};

/// The name of an outcome: "confirmed", "refuted", "unsettled".
const char* name(ConflictCheck outcome);

/// Literals that are looked at, at most, before the answer is "unsettled": some seconds.
constexpr std::uint64_t mostLiterals = 100'000'000;

/// Costs the literals of all clauses times the longest chain of clauses that are not in order, for each literal tried.
ConflictCheck checkConflict(const ConflictClaim& claim, std::uint64_t literals = mostLiterals);

/// Whether the claim is no conflict any more when any one of the values is left out. Requires: the claim is confirmed.
/// Returns nothing when that is not settled within so many literals. One check for each value.
std::optional<bool> everyValueCounts(const ConflictClaim& claim,
                                     std::uint64_t literals = mostLiterals / 10);

} // namespace monitor
