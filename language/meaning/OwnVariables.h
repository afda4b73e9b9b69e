// What a component says of nothing but its own variables is the same in all of its instances, up to the numbers of the atoms: those of an
// instance follow one another, in the order of its type.
//
// So it is worked out for the first instance of an array, and taken over for the others.
#pragma once

#include "language/meaning/Elaboration.h"

#include <cstdint>

namespace language {

/// Whether every variable in the formula goes by its mere name. Linear in the formula.
bool speaksOfOwnVariables(const syntax::Formula& formula);

/// The number of the first atom of an instance. Requires: it has a variable.
std::uint32_t firstAtom(const Instance& instance);

} // namespace language
