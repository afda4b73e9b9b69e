// Which laws stand behind what a plant without faults is expected to show, and does not.
#pragma once

#include "monitor/why/ConflictHistory.h"
#include "plant/Plant.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

namespace assess {

/// Counts conflicts by the laws that they rest on.
class LawViolations {
public:
    /// Requires: the plant outlives this.
    explicit LawViolations(const plant::Plant& plant) : plant_(plant) {}

    /// Of one law.
    struct Count {
        std::size_t steps = 0; ///< with a conflict that rests on it
        std::size_t firstStep = 0;
        double firstTime = 0;
        std::map<plant::AtomIndex, std::size_t> observed; ///< steps by what was observed instead
    };

    /// Takes the conflicts of a step that contradicts what was believed. Laws are taken apart by `lawOf`, which gives a law the
    /// number of the statement that it comes from.
    template <typename LawOf>
    void take(const monitor::Contradiction& contradiction,
              const std::vector<monitor::CheckedConflict>& conflicts, const LawOf& lawOf)
    {
        std::map<std::size_t, std::set<plant::AtomIndex>> seen;
        for (const monitor::CheckedConflict& one : conflicts) {
            for (const monitor::Inference& inference : one.conflict.inferences) {
                if (!plant_.isLaw(inference.clause)) continue;
                std::set<plant::AtomIndex>& observed = seen[lawOf(plant_.lawOf(inference.clause))];
                if (one.conflict.observed) observed.insert(*one.conflict.observed);
            }
        }
        count(contradiction, seen);
    }

    std::size_t steps() const { return steps_; } ///< that contradict what was believed
    const std::map<std::size_t, Count>& laws() const { return laws_; }

private:
    void count(const monitor::Contradiction& contradiction,
               const std::map<std::size_t, std::set<plant::AtomIndex>>& seen);

    const plant::Plant& plant_;
    std::size_t steps_ = 0;
    std::map<std::size_t, Count> laws_;
};

} // namespace assess
