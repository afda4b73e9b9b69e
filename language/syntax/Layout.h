// Lines of a formatted file: cells that are aligned with those of the neighbouring lines, and comments behind them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace language {

/// What a line is, as far as alignment goes: lines of different kinds are not aligned with each other.
enum class LineKind { other, constant, variable, value, law, transition, part, initial, binding };

struct Line {
    LineKind kind = LineKind::other;
    std::size_t depth = 0; ///< of the blocks around it
    bool blankBefore = false;
    std::size_t shape =
        0; ///< lines of one kind are aligned from the third cell on if they have the same shape
    std::vector<std::string> cells; ///< separated by a blank at least; of a line of kind `other` just one
    std::string comment;            ///< behind it
};

/// Puts the lines together, four blanks for a level of depth.
std::string layOut(const std::vector<Line>& lines);

} // namespace language
