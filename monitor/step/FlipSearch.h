// The smallest sets of faulty cells that explain what a network shows, by growing size.
//
// What an observation that differs rests on is a conflict: one more of these cells is faulty. Each in turn is flipped, the ones before it
// left out from then on, so that no set is looked for twice and none is missed ("A theory of diagnosis from first principles",
// Artificial Intelligence 32, 1987). The last two members of a set are found in 64 lanes: one for each way to choose the last but one,
// in which the conflicts that are left have the last one in common; then one for each pair.
#pragma once

#include "monitor/step/Budget.h"
#include "monitor/step/CellLanes.h"

#include <functional>
#include <set>

namespace monitor {

/// Faulty cells, by rising number.
using FaultyCells = std::vector<CellNumber>;

/// What is asked of a network.
struct NetworkQuestion {
    std::vector<bool> sources;     ///< the values of the sources
    std::vector<SignalValue> seen; ///< observed values
    std::vector<bool> mayFail;     ///< by cell
};

class FlipSearch {
public:
    /// Network and question outlive the search. A record is a set of conflicts that is taken apart: those under one choice of flips.
    FlipSearch(const CellNetwork& network, const NetworkQuestion& question,
               const SearchLimits& limits);

    /// Looks for the sets of at most `faultBudget` cells.
    void run(int faultBudget);

    /// Which of the values that were seen are not what cells that all work show: their places in the question, rising.
    std::vector<std::size_t> differing() const;
    /// The sets that explain what was seen and contain no other one that does. The empty set: every cell works.
    const std::set<FaultyCells>& found() const { return found_; }
    /// Every set within the bound that explains what was seen contains one of those found.
    bool complete() const { return complete_; }
    /// The limit that cut the search, if one did.
    SearchLimit limit() const { return budget_.limit(); }
    const SearchWork& work() const { return budget_.work(); }

private:
    // What is seen to be wrong under some flips, 64 observations at most, and the cells that each of them rests on.
    struct Conflicts {
        std::size_t count = 0;
        std::vector<Lanes> of; ///< by cell: the conflicts that it is in
        Lanes all() const { return count == laneCount ? allLanes : (Lanes{1} << count) - 1; }
    };

    void runSizeBySize(int faultBudget);
    void extend(FaultyCells& flipped, int left);
    void flipInAllLanes(const FaultyCells& flipped);
    Conflicts conflicts();
    std::vector<CellNumber> branches(const Conflicts& conflicts, int left);
    void tryLast(const FaultyCells& flipped, const Conflicts& conflicts);
    void branchOneByOne(FaultyCells& flipped, const std::vector<CellNumber>& branches, int left);
    void branchTogether(const FaultyCells& flipped, const Conflicts& conflicts,
                        const std::vector<CellNumber>& branches);
    void lastOfEach(const FaultyCells& flipped, const Conflicts& conflicts,
                    const CellNumber* branches, std::size_t count);
    void propose(FaultyCells set);
    void tryProposed();
    bool containsFound(const FaultyCells& set) const;
    bool exhausted();

    const CellNetwork& network_;
    const NetworkQuestion& question_;
    Budget budget_;
    CellLanes lanes_;
    std::vector<bool> mayJoin_; ///< by cell: not left out
    std::vector<bool> tried_;   ///< by cell: was in a set that was tried
    std::vector<FaultyCells> proposed_;
    std::set<FaultyCells> found_;
    std::size_t smaller_ = 0; ///< so many of them have fewer members than those that are looked for
    bool complete_ = true;
};

/// Sets of more cells have more outcomes than there are lanes.
constexpr std::size_t mostCountedCells = 6;

/// Hands out, for each of the sets with at most mostCountedCells, how many different values the observed signals can have together,
/// whatever its cells show. What was handed out when a Meter cuts it stands.
void countOutcomes(const CellNetwork& network, const NetworkQuestion& question,
                   const std::set<FaultyCells>& sets,
                   const std::function<void(const FaultyCells&, int)>& counted);

} // namespace monitor
