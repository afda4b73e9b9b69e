// The order in which a map of signed literals lists what was inserted one after the other.
//
// It depends on nothing but the signs (model/keys.h), so it can be had without making the map.
#pragma once

#include <cstdint>
#include <vector>

namespace plant {

/// An atom's number, doubled, plus 1 where its key in a map of signed literals is true.
using SignedNumber = std::uint32_t;

inline SignedNumber signedNumber(std::uint32_t atom, bool key)
{
    return 2 * atom + (key ? 1U : 0U);
}

/// Brings literals from the order of their insertion into that in which a SignedAtoms lists them. Linear for a few literals and
/// for many of one sign, n log n otherwise.
void sortAsListed(std::vector<SignedNumber>& literals);

} // namespace plant
