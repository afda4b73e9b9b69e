// The file of prime implicates beside a model, checked before the engine reads it.
//
//     valve.position=closed:valve.request=none tank.level=low,sun.light=off
//
// For the atom before the colon, the sets of atoms that together imply it; commas divide the sets, single blanks the atoms of
// a set. The engine stops at the first atom that it does not know; this reader names them all, with their places.
#pragma once

#include "plant/Model.h"
#include "text/Diagnostic.h"

#include <cstddef>
#include <string>
#include <vector>

namespace plant {

struct ImplicateFile {
    std::string path;
    bool found = false;    ///< there is such a file
    std::size_t heads = 0; ///< lines that give an atom implicates
    std::string digest;    ///< of what is in it
    std::vector<text::Diagnostic> errors;
    std::vector<text::Diagnostic> warnings;
};

/// Checks the file BASE.pi of the model, BASE being its name; a model without such a file is fine. Linear in the file and the model.
/// Ensures: a hundred errors at most.
ImplicateFile checkImplicates(const Model& model);

} // namespace plant
