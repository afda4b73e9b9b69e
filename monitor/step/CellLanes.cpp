#include "monitor/step/CellLanes.h"

#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

namespace {

std::uint32_t literalsOf(const CellNetwork& network, const Cell& cell, int side)
{
    std::uint32_t sum = 0;
    for (std::uint32_t i = cell.begin[side]; i < cell.end[side]; ++i) {
        sum += network.term(i).end - network.term(i).begin;
    }
    return sum;
}

} // namespace

CellLanes::CellLanes(const CellNetwork& network, const std::vector<bool>& sources)
    : network_(network), unflipped_(network.signals()), values_(network.signals()),
      flipped_(network.cells().size(), 0), grounds_(network.signals(), 0),
      firstChanged_(static_cast<CellNumber>(network.cells().size()))
{
    for (const Cell& cell : network.cells()) {
        shorter_.push_back(literalsOf(network, cell, 1) < literalsOf(network, cell, 0) ? 1 : 0);
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        values_[i] = sources[i] ? allLanes : 0;
    }
    for (CellNumber cell = 0; cell < firstChanged_; ++cell) {
        values_[network.outputOf(cell)] = simulate(network.cells()[cell]);
    }
    unflipped_ = values_;
}

void CellLanes::flip(const std::vector<Flip>& flips)
{
    const auto count = static_cast<CellNumber>(network_.cells().size());
    std::fill(flipped_.begin(), flipped_.end(), 0);
    CellNumber first = count;
    for (const Flip& flip : flips) {
        flipped_[flip.cell] |= flip.lanes;
        first = std::min(first, flip.cell);
    }
    for (CellNumber cell = firstChanged_; cell < first; ++cell) {
        values_[network_.outputOf(cell)] = unflipped_[network_.outputOf(cell)];
    }
    for (CellNumber cell = first; cell < count; ++cell) {
        values_[network_.outputOf(cell)] = simulate(network_.cells()[cell]) ^ flipped_[cell];
    }
    firstChanged_ = first;
    Meter::spend(1 + (count - first) / 4);
}

Lanes CellLanes::simulate(const Cell& cell) const
{
    const int side = shorter_[static_cast<std::size_t>(&cell - network_.cells().data())];
    Lanes any = 0;
    for (std::uint32_t term = cell.begin[side]; term < cell.end[side]; ++term) {
        any |= holds(network_.term(term));
    }
    return side == 1 ? any : ~any;
}

Lanes CellLanes::holds(const CellTerm& term) const
{
    Lanes all = allLanes;
    for (std::uint32_t i = term.begin; i < term.end; ++i) {
        const SignalValue& literal = network_.literal(i);
        all &= literal.value ? values_[literal.signal] : ~values_[literal.signal];
    }
    return all;
}

const std::vector<Lanes>& CellLanes::grounds(SignalNumber signal, Lanes lanes)
{
    std::fill(grounds_.begin(), grounds_.end(), 0);
    grounds_[signal] = lanes;
    walkBack(signal);
    return grounds_;
}

const std::vector<Lanes>& CellLanes::groundsOfEach(const std::vector<SignalNumber>& signals)
{
    std::fill(grounds_.begin(), grounds_.end(), 0);
    SignalNumber last = 0;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        grounds_[signals[i]] |= Lanes{1} << i;
        last = std::max(last, signals[i]);
    }
    walkBack(last);
    return grounds_;
}

// Every cell comes after those of its inputs, so one pass down from the signal is enough.
void CellLanes::walkBack(SignalNumber from)
{
    const auto sources = static_cast<SignalNumber>(network_.sources());
    for (SignalNumber signal = from + 1; signal-- > sources;) {
        const Lanes lanes = grounds_[signal];
        if (lanes == 0) continue;
        const CellNumber cell = signal - sources;
        const Lanes should = values_[signal] ^ flipped_[cell];
        ground(network_.cells()[cell], 1, lanes & should);
        ground(network_.cells()[cell], 0, lanes & ~should);
    }
    Meter::spend(1 + from / 4);
}

void CellLanes::ground(const Cell& cell, int side, Lanes lanes)
{
    for (std::uint32_t term = cell.begin[side]; lanes != 0 && term < cell.end[side]; ++term) {
        const Lanes taken = lanes & holds(network_.term(term));
        if (taken == 0) continue;
        for (std::uint32_t i = network_.term(term).begin; i < network_.term(term).end; ++i) {
            grounds_[network_.literal(i).signal] |= taken;
        }
        lanes &= ~taken;
    }
}

} // namespace monitor
