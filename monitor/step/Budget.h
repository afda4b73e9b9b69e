// What work under limits may still cost, and which limit it met.
//
//     Budget budget(limits);                                  // the clock starts
//     while (more && !budget.exhausted()) {
//         const Explanations part = search.search(frame, faults, budget.remaining());
//         budget.spend(part.work);
//         budget.meet(part.limit);
//     }
//     if (budget.limit() != SearchLimit::none) ...            // something was left undone
#pragma once

#include "model/SearchLimits.h"

#include <chrono>

namespace monitor {

class Budget {
public:
    /// Seconds count from now.
    explicit Budget(const SearchLimits& limits) : limits_(limits) {}

    /// What is left of the limits: those of a part of the work. Limits that are none stay so.
    SearchLimits remaining() const;

    void spend(const SearchWork& work);
    void spendRecord() { ++work_.records; }
    void spendCandidate() { ++work_.candidates; }
    /// The sum of what was spent.
    const SearchWork& work() const { return work_; }

    /// Takes note of the limit that a part of the work met; nothing for none.
    void meet(SearchLimit limit);
    /// Whether the work has to end: nothing is left of some limit, or a part of it met one.
    bool exhausted();
    /// The limit that was met, the latest if there were several.
    SearchLimit limit() const { return limit_; }

private:
    SearchLimits limits_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    SearchWork work_;
    SearchLimit limit_ = SearchLimit::none;
};

} // namespace monitor
