#include "monitor/step/FlipSearch.h"

#include "monitor/labels/Meter.h"

#include <algorithm>
#include <bit>

namespace monitor {

FlipSearch::FlipSearch(const CellNetwork& network, const NetworkQuestion& question,
                       const SearchLimits& limits)
    : network_(network), question_(question), budget_(limits), lanes_(network, question.sources),
      mayJoin_(question.mayFail), tried_(network.cells().size(), false)
{
}

void FlipSearch::run(int faultBudget)
{
    try {
        runSizeBySize(faultBudget);
    } catch (const Meter::Cut& cut) {
        budget_.meet(cut.limit);
        complete_ = false;
    }
}

void FlipSearch::runSizeBySize(int faultBudget)
{
    if (exhausted()) return;
    if (conflicts().count == 0) {
        found_.insert(FaultyCells());
        budget_.spendCandidate();
        return;
    }
    for (int size = 1; size <= faultBudget; ++size) {
        FaultyCells none;
        extend(none, size);
        tryProposed();
        if (size == 1) {
            for (const FaultyCells& alone : found_) mayJoin_[alone.front()] = false;
        }
        smaller_ = found_.size();
    }
}

std::vector<std::size_t> FlipSearch::differing() const
{
    const CellLanes working(network_, question_.sources);
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < question_.seen.size(); ++i) {
        const SignalValue& seen = question_.seen[i];
        if ((working.ones(seen.signal) != 0) != seen.value) places.push_back(i);
    }
    return places;
}

// Looks for the sets of these cells and exactly so many more that may join them.
void FlipSearch::extend(FaultyCells& flipped, int left)
{
    if (exhausted()) return;
    flipInAllLanes(flipped);
    const Conflicts conflicts = this->conflicts();
    if (conflicts.count == 0) return; // found when sets of this size were looked for
    if (left == 1) {
        budget_.spendRecord();
        tryLast(flipped, conflicts);
        return;
    }
    const std::vector<CellNumber> branches = this->branches(conflicts, left);
    if (left == 2) {
        branchTogether(flipped, conflicts, branches);
    } else {
        branchOneByOne(flipped, branches, left);
    }
}

void FlipSearch::flipInAllLanes(const FaultyCells& flipped)
{
    std::vector<Flip> flips;
    for (const CellNumber cell : flipped) flips.push_back({cell, allLanes});
    lanes_.flip(flips);
}

// Requires that all lanes are the same.
FlipSearch::Conflicts FlipSearch::conflicts()
{
    std::vector<SignalNumber> wrong;
    for (const SignalValue& seen : question_.seen) {
        const bool differs = ((lanes_.ones(seen.signal) & 1) != 0) != seen.value;
        if (differs && wrong.size() < laneCount) wrong.push_back(seen.signal);
    }
    Conflicts result;
    result.count = wrong.size();
    if (wrong.empty()) return result;
    const std::vector<Lanes>& grounds = lanes_.groundsOfEach(wrong);
    result.of.assign(grounds.begin() + static_cast<std::ptrdiff_t>(network_.sources()),
                     grounds.end());
    for (std::size_t cell = 0; cell < result.of.size(); ++cell) {
        if (!mayJoin_[cell]) result.of[cell] = 0;
    }
    return result;
}

// The cells of the smallest conflict, without those that leave more than the others can resolve.
std::vector<CellNumber> FlipSearch::branches(const Conflicts& conflicts, int left)
{
    std::vector<std::size_t> sizes(conflicts.count, 0);
    std::set<Lanes> kinds;
    for (const Lanes of : conflicts.of) {
        if (of == 0) continue;
        kinds.insert(of);
        for (Lanes rest = of; rest != 0; rest &= rest - 1) {
            ++sizes[static_cast<std::size_t>(std::countr_zero(rest))];
        }
    }
    const auto smallest = std::min_element(sizes.begin(), sizes.end()) - sizes.begin();
    const Lanes all = conflicts.all();
    const auto resolvable = [&](Lanes hit) {
        return left > 2 || std::any_of(kinds.begin(), kinds.end(),
                                       [&](Lanes kind) { return (hit | kind) == all; });
    };
    std::vector<CellNumber> result;
    for (std::size_t cell = 0; cell < conflicts.of.size(); ++cell) {
        const Lanes of = conflicts.of[cell];
        if ((of >> smallest & 1) != 0 && resolvable(of)) {
            result.push_back(static_cast<CellNumber>(cell));
        }
    }
    return result;
}

void FlipSearch::tryLast(const FaultyCells& flipped, const Conflicts& conflicts)
{
    for (std::size_t cell = 0; cell < conflicts.of.size(); ++cell) {
        if (conflicts.of[cell] != conflicts.all()) continue;
        FaultyCells set = flipped;
        set.push_back(static_cast<CellNumber>(cell));
        propose(std::move(set));
    }
}

void FlipSearch::branchOneByOne(FaultyCells& flipped, const std::vector<CellNumber>& branches,
                                int left)
{
    for (const CellNumber cell : branches) {
        if (exhausted()) break;
        budget_.spendRecord();
        mayJoin_[cell] = false;
        flipped.push_back(cell);
        extend(flipped, left - 1);
        flipped.pop_back();
    }
    for (const CellNumber cell : branches) mayJoin_[cell] = true;
}

void FlipSearch::branchTogether(const FaultyCells& flipped, const Conflicts& conflicts,
                                const std::vector<CellNumber>& branches)
{
    for (std::size_t done = 0; done < branches.size() && !exhausted();) {
        const std::uint64_t records = budget_.remaining().maxRecords;
        const std::size_t count = static_cast<std::size_t>(
            std::min<std::uint64_t>({laneCount, branches.size() - done, records}));
        for (std::size_t i = 0; i < count; ++i) budget_.spendRecord();
        lastOfEach(flipped, conflicts, branches.data() + done, count);
        for (std::size_t i = 0; i < count; ++i) mayJoin_[branches[done + i]] = false;
        done += count;
    }
    for (const CellNumber cell : branches) mayJoin_[cell] = true;
}

// One lane for each branch: the cells that all conflicts of a lane have in common may be the last ones of its sets.
void FlipSearch::lastOfEach(const FaultyCells& flipped, const Conflicts& conflicts,
                            const CellNumber* branches, std::size_t count)
{
    std::vector<Flip> flips;
    std::vector<std::size_t> placeOf(network_.cells().size(), count);
    for (const CellNumber cell : flipped) flips.push_back({cell, allLanes});
    for (std::size_t i = 0; i < count; ++i) {
        flips.push_back({branches[i], Lanes{1} << i});
        placeOf[branches[i]] = i;
    }
    lanes_.flip(flips);
    const Lanes lanes = count == laneCount ? allLanes : (Lanes{1} << count) - 1;

    std::vector<std::pair<CellNumber, Lanes>> last;
    for (std::size_t cell = 0; cell < conflicts.of.size(); ++cell) {
        if (!mayJoin_[cell]) continue;
        // A branch before it in their order has its sets with this cell already.
        const std::size_t place = placeOf[cell];
        const Lanes before = place == laneCount ? allLanes : (Lanes{1} << place) - 1;
        last.emplace_back(static_cast<CellNumber>(cell), lanes & before);
    }
    Lanes wrong = 0;
    for (const SignalValue& seen : question_.seen) {
        const Lanes ones = lanes_.ones(seen.signal);
        const Lanes differs = lanes & (seen.value ? ~ones : ones);
        if (differs == 0) continue;
        wrong |= differs;
        const std::vector<Lanes>& grounds = lanes_.grounds(seen.signal, differs);
        for (auto& [cell, common] : last) common &= grounds[network_.outputOf(cell)] | ~differs;
        std::erase_if(last, [](const auto& one) { return one.second == 0; });
        Meter::spend(last.size());
    }
    // Where nothing is wrong any more, the set is complete without a last one.
    for (const auto& [cell, common] : last) {
        for (Lanes rest = common & wrong; rest != 0; rest &= rest - 1) {
            const CellNumber branch = branches[std::countr_zero(rest)];
            if ((conflicts.of[branch] | conflicts.of[cell]) != conflicts.all()) continue;
            FaultyCells set = flipped;
            set.push_back(branch);
            set.push_back(cell);
            propose(std::move(set));
        }
    }
}

// Tried as soon as there is one for each lane. Ends with other cells flipped.
void FlipSearch::propose(FaultyCells set)
{
    std::sort(set.begin(), set.end());
    if (containsFound(set)) return;
    proposed_.push_back(std::move(set));
    if (proposed_.size() == laneCount) tryProposed();
}

void FlipSearch::tryProposed()
{
    std::vector<Flip> flips;
    SearchWork work;
    for (std::size_t i = 0; i < proposed_.size(); ++i) {
        for (const CellNumber cell : proposed_[i]) {
            flips.push_back({cell, Lanes{1} << i});
            work.components += tried_[cell] ? 0 : 1;
            tried_[cell] = true;
        }
    }
    lanes_.flip(flips);
    Lanes right = allLanes;
    for (const SignalValue& seen : question_.seen) {
        right &= seen.value ? lanes_.ones(seen.signal) : ~lanes_.ones(seen.signal);
    }
    work.flips = flips.size();
    budget_.spend(work);
    for (std::size_t i = 0; i < proposed_.size(); ++i) {
        if ((right >> i & 1) != 0) {
            found_.insert(std::move(proposed_[i]));
            budget_.spendCandidate();
        }
    }
    proposed_.clear();
}

// There are few subsets, and there may be many sets that were found.
bool FlipSearch::containsFound(const FaultyCells& set) const
{
    constexpr std::size_t fewMembers = 10;
    if (smaller_ == 0) return false;
    if (set.size() > fewMembers) {
        return std::any_of(found_.begin(), found_.end(), [&](const FaultyCells& smaller) {
            return std::includes(set.begin(), set.end(), smaller.begin(), smaller.end());
        });
    }
    FaultyCells subset;
    for (unsigned chosen = 1; chosen + 1 < 1U << set.size(); ++chosen) {
        subset.clear();
        for (std::size_t i = 0; i < set.size(); ++i) {
            if ((chosen >> i & 1) != 0) subset.push_back(set[i]);
        }
        if (found_.count(subset) != 0) return true;
    }
    return false;
}

bool FlipSearch::exhausted()
{
    if (!budget_.exhausted()) return false;
    complete_ = false;
    return true;
}

namespace {

// The word with every lane moved to the one whose number differs from its own by the bits of `distance`.
Lanes exchanged(Lanes word, unsigned distance)
{
    constexpr Lanes low[6] = {0x5555555555555555, 0x3333333333333333, 0x0f0f0f0f0f0f0f0f,
                              0x00ff00ff00ff00ff, 0x0000ffff0000ffff, 0x00000000ffffffff};
    for (unsigned bit = 0; bit < 6; ++bit) {
        if ((distance >> bit & 1) == 0) continue;
        const unsigned by = 1U << bit;
        word = (word & low[bit]) << by | (word >> by & low[bit]);
    }
    return word;
}

// For sets of equal size, no more than there are groups of 2^size lanes.
std::vector<int> outcomes(CellLanes& lanes, const std::vector<SignalValue>& seen,
                          const std::vector<const FaultyCells*>& sets)
{
    const std::size_t group = std::size_t{1} << sets.front()->size();
    std::vector<Flip> flips;
    for (std::size_t i = 0; i < sets.size() * group; ++i) {
        const FaultyCells& set = *sets[i / group];
        for (std::size_t member = 0; member < set.size(); ++member) {
            if ((i >> member & 1) != 0) flips.push_back({set[member], Lanes{1} << i});
        }
    }
    lanes.flip(flips);
    // A lane counts unless one before it in its group shows the same.
    std::vector<Lanes> differ(group, 0);
    for (const SignalValue& one : seen) {
        const Lanes word = lanes.ones(one.signal);
        if (word == 0 || word == allLanes) continue;
        for (unsigned distance = 1; distance < group; ++distance) {
            differ[distance] |= word ^ exchanged(word, distance);
        }
    }
    Meter::spend(seen.size() * group);
    std::vector<int> counts(sets.size(), 0);
    for (std::size_t i = 0; i < sets.size() * group; ++i) {
        bool first = true;
        for (std::size_t distance = 1; distance < group; ++distance) {
            if ((i ^ distance) < i && (differ[distance] >> i & 1) == 0) first = false;
        }
        counts[i / group] += first ? 1 : 0;
    }
    return counts;
}

} // namespace

void countOutcomes(const CellNetwork& network, const NetworkQuestion& question,
                   const std::set<FaultyCells>& sets,
                   const std::function<void(const FaultyCells&, int)>& counted)
{
    CellLanes lanes(network, question.sources);
    std::vector<std::vector<const FaultyCells*>> waiting(mostCountedCells + 1);
    const auto count = [&](std::vector<const FaultyCells*>& some) {
        const std::vector<int> numbers = outcomes(lanes, question.seen, some);
        for (std::size_t i = 0; i < some.size(); ++i) counted(*some[i], numbers[i]);
        some.clear();
    };
    for (const FaultyCells& cells : sets) {
        if (cells.size() > mostCountedCells) continue;
        std::vector<const FaultyCells*>& some = waiting[cells.size()];
        some.push_back(&cells);
        if (some.size() == laneCount >> cells.size()) count(some);
    }
    for (auto& some : waiting) {
        if (!some.empty()) count(some);
    }
}

} // namespace monitor
