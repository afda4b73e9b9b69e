// A network of cells, simulated in 64 lanes at once: each lane has the same sources and its own faulty cells.
//
// A faulty cell shows the opposite of what it should. One that shows what it should need not be called faulty, so that a
// set of faulty cells none of which can be left out explains what is observed when flipping them all does.
#pragma once

#include "monitor/step/CellNetwork.h"

namespace monitor {

/// One bit for each lane.
using Lanes = std::uint64_t;
constexpr std::size_t laneCount = 64;
constexpr Lanes allLanes = ~Lanes{0};

/// A cell that is faulty in some lanes.
struct Flip {
    CellNumber cell;
    Lanes lanes;
};

class CellLanes {
public:
    /// Nothing is flipped. Requires: the value of every source. The network outlives this.
    CellLanes(const CellNetwork& network, const std::vector<bool>& sources);

    /// Simulates with these cells flipped and no others; a cell may be named several times. Costs the cells after the first that is
    /// flipped, or was at the time before.
    void flip(const std::vector<Flip>& flips);
    /// The lanes in which a signal is 1.
    Lanes ones(SignalNumber signal) const { return values_[signal]; }

    /// For every signal, the lanes in which the value of `signal` rests on it, among `lanes`: as long as the cells of these signals
    /// are flipped or not as they are, `signal` keeps its value. Costs the cells up to that of the signal.
    const std::vector<Lanes>& grounds(SignalNumber signal, Lanes lanes);
    /// The same for several signals, each in its own lane, the first one in the lowest. At most 64.
    const std::vector<Lanes>& groundsOfEach(const std::vector<SignalNumber>& signals);

private:
    Lanes simulate(const Cell& cell) const;
    Lanes holds(const CellTerm& term) const;
    void walkBack(SignalNumber from);
    void ground(const Cell& cell, int side, Lanes lanes);

    const CellNetwork& network_;
    std::vector<std::uint8_t> shorter_; ///< by cell: the side of it that has fewer literals
    std::vector<Lanes> unflipped_;      ///< by signal
    std::vector<Lanes> values_;         ///< by signal
    std::vector<Lanes> flipped_;        ///< by cell
    std::vector<Lanes> grounds_;        ///< by signal
    CellNumber firstChanged_;           ///< cells before it are as they are without a flip
};

} // namespace monitor
