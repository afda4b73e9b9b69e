// A plant as a drawing needs it: its components, the laws that somebody wrote, and which components a law ties together.
//
//     law tank.level = level.level        ties tank and level
//     law header = high <-> a.flow = high | b.flow = high        ties three
//
// A law of a loop, or of a component of which there are several, is one statement and ties many groups of components.
#pragma once

#include "language/Reader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace report {

/// A law as it was written.
struct LawStatement {
    std::string file;     ///< empty where its place is not known
    std::size_t line = 0; ///< from 1, as is the column
    std::size_t column = 0;
    std::string text; ///< the statement in one line; a clause where that is not known
    std::vector<std::uint32_t> components; ///< that it mentions anywhere, by index, rising
};

/// Components that stand together in a law.
struct Connection {
    std::vector<std::uint32_t> components; ///< two or more, by index, rising
    std::vector<std::uint32_t> laws;       ///< indices of statements, rising
};

struct PlantOutline {
    std::vector<std::string> components; ///< names, in the model's order
    std::vector<LawStatement> laws;      ///< in the order of their first clauses
    /// Each set of components once, by the order of the laws. A set that is part of another one of the same law is left out.
    std::vector<Connection> connections;
};

/// Requires: a model was read. Linear in the literals of its laws, apart from looking components up.
PlantOutline outlineOf(const language::ReadResult& model);

} // namespace report
