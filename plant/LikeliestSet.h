// Which changes of a mode can happen at once, and how probable they are together.
#pragma once

#include "model/Atom.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace plant {

/// How far probabilities may be above 1 together.
constexpr double probabilityTolerance = 1e-9;

/// Whether some assignment makes all of these hold: atoms with key true, and not those with key false. Costs n log n.
inline bool canHold(std::vector<std::pair<bool, Atom*>> guard)
{
    // Those of one variable together, and of these the atoms that must hold first.
    const auto key = [](const auto& literal) {
        return std::tuple(literal.second->stateVar, !literal.first, literal.second);
    };
    std::sort(guard.begin(), guard.end(),
              [&](const auto& a, const auto& b) { return key(a) < key(b); });
    guard.erase(std::unique(guard.begin(), guard.end()), guard.end());
    for (std::size_t begin = 0, end = 0; begin < guard.size(); begin = end) {
        const StateVar* variable = guard[begin].second->stateVar;
        while (end < guard.size() && guard[end].second->stateVar == variable) {
            ++end;
        }
        if (!guard[begin].first) {
            if (end - begin == variable->atomLinks->size()) return false;
            continue;
        }
        for (std::size_t i = begin + 1; i < end; ++i) {
            if (guard[i].first || guard[i].second == guard[begin].second) return false;
        }
    }
    return true;
}

/// The most probable of the sets of changes that are possible at once, as far as the guards tell: a branch for each
/// change and each alternative of its guard. The search has a budget; what it has found then is returned. A `Change` has
/// `alternatives`, a `probability`, and `always()` tells whether no guard stands in its way.
template <typename Change> class LikeliestSet {
public:
    explicit LikeliestSet(std::vector<Change*> changes) : changes_(std::move(changes)) {}

    std::vector<Change*> find()
    {
        choose(0, 0);
        return best_;
    }

private:
    using Literals = std::vector<std::pair<bool, Atom*>>;
    static constexpr std::size_t mostWork = 20000;

    void choose(std::size_t next, double sum)
    {
        if (sum > bestSum_ + probabilityTolerance) {
            bestSum_ = sum;
            best_ = chosen_;
        }
        work_ += 1 + guard_.size() / 32;
        if (next == changes_.size() || work_ > mostWork) return;
        Change* change = changes_[next];
        for (const Literals& alternative : change->alternatives) {
            const std::size_t size = guard_.size();
            guard_.insert(guard_.end(), alternative.begin(), alternative.end());
            if (canHold(guard_)) {
                chosen_.push_back(change);
                choose(next + 1, sum + *change->probability);
                chosen_.pop_back();
            }
            guard_.resize(size);
        }
        if (!change->always()) choose(next + 1, sum);
    }

    std::vector<Change*> changes_;
    std::vector<Change*> chosen_;
    std::vector<Change*> best_;
    Literals guard_;
    double bestSum_ = 0;
    std::size_t work_ = 0;
};

} // namespace plant
