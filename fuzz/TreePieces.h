// The pieces of a model file that can stand in for one another: what a syntax tree has of each kind, with its bytes.
#pragma once

#include "language/syntax/Parser.h"

#include <cstddef>
#include <vector>

/// A piece of a kind is a piece of that kind in any other place, too, as far as syntax goes.
enum class PieceKind { declaration, member, looped, formula, number, computed, path, name, value };

struct Piece {
    PieceKind kind;
    std::size_t begin; ///< in the text
    std::size_t length;
};

/// In the order of the tree. Empty for a text that is no model file.
std::vector<Piece> piecesOf(const text::SourceText& source);
