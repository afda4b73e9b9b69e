// Reads problems of a circuit from JSON Lines, one at a time, as they come.
//
//     {"id": "p1", "inputs": {"a": 0, "b": 1}, "observed": {"y": 1}}
//
// `id` is a text and may be missing; `inputs` has every input of the circuit and `observed` one output at least; further keys
// are passed over, and so are blank lines. Order of keys and signals does not matter.
#pragma once

#include "session/CircuitProblem.h"
#include "text/Diagnostic.h"

#include <string_view>
#include <variant>

namespace session {

/// Reads one line. `place.line` of the error is left to the caller; the error has the line's text and a column.
std::variant<CircuitProblem, text::Diagnostic> readProblem(std::string_view line,
                                                           const netlist::Circuit& circuit);

} // namespace session
