// A plant that is a network of cells: every condition is given, or follows from others by the laws of one cell, and each mode leaves
// the condition of its cell open once it is a fault. Gate-level circuits are such plants.
//
//     mode=faulty | !a=0 | out=1          the output of the cell follows from a and b, whatever these are,
//     mode=faulty | !b=0 | out=1          while the mode is not faulty
//     mode=faulty | !a=1 | !b=1 | out=0
//
// Under given modes and sources nothing stays open but what a faulty cell shows, so that simulating takes the place of
// propagating, and 64 ways for the cells to be faulty are simulated at once (monitor/step/CellLanes.h).
#pragma once

#include "monitor/labels/Numbering.h"

#include <optional>

namespace monitor {

/// A condition with two values, "0" and "1", which are the first and the second one of its variable. Sources come first, then the
/// output of every cell in the order of the cells.
using SignalNumber = std::uint32_t;
using CellNumber = std::uint32_t;

/// A signal that has a value.
struct SignalValue {
    SignalNumber signal;
    bool value;
};

/// Values that together give a cell's output its value: literals from `begin` up to `end`.
struct CellTerm {
    std::uint32_t begin;
    std::uint32_t end;
};

struct Cell {
    /// What makes it faulty: the mode variable, in the network that a plant is; else whatever number its maker gave it. -1: nothing.
    std::int32_t mode;
    AtomIndex fault; ///< in the network that a plant is, the mode's value that leaves the output open
    /// The terms that give 0, and those that give 1: from `begin` up to `end`. For all values of the inputs, some term of exactly one
    /// of these two holds.
    std::uint32_t begin[2];
    std::uint32_t end[2];
};

/// Terms that give a cell's output one value.
using CellTerms = std::vector<std::vector<SignalValue>>;

class CellNetwork {
public:
    /// Nothing yet: for whoever makes a network without a plant. All sources are added before the first cell.
    CellNetwork() = default;
    SignalNumber addSource() { return sources_++; }
    /// Adds a cell; its output is the next signal. Requires: of the terms for 0 and those for 1, some of exactly one hold, whatever
    /// the inputs are, and these are there already.
    SignalNumber addCell(std::int32_t mode, AtomIndex fault, const CellTerms& zero,
                         const CellTerms& one);

    /// The network that a plant is, or nothing. Linear in the plant, but for cells whose laws need many cases to be seen to leave
    /// nothing open; these are not taken for cells when there are too many cases.
    static std::optional<CellNetwork> of(const Plant& plant);

    /// Each cell after those on which its inputs depend.
    const std::vector<Cell>& cells() const { return cells_; }
    const CellTerm& term(std::uint32_t index) const { return terms_[index]; }
    const SignalValue& literal(std::uint32_t index) const { return literals_[index]; }

    std::size_t signals() const { return sources_ + cells_.size(); }
    std::size_t sources() const { return sources_; }
    SignalNumber outputOf(CellNumber cell) const { return sources_ + cell; }
    /// The signal of a value's variable, having that value. Requires: the network that the plant is; no mode.
    SignalValue valueOf(const Plant& plant, AtomIndex value) const;

private:
    friend class CellRecognition;

    std::vector<Cell> cells_;
    std::vector<CellTerm> terms_;
    std::vector<SignalValue> literals_;
    SignalNumber sources_ = 0;
    std::vector<SignalNumber> signalOf_; ///< by variable of the plant
};

} // namespace monitor
