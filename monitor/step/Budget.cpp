#include "monitor/step/Budget.h"

#include <algorithm>

namespace monitor {

SearchLimits remaining(SearchLimits limits, const SearchWork& work,
                       std::chrono::steady_clock::time_point start)
{
    if (limits.maxRecords != SearchLimits::unlimited) {
        limits.maxRecords -= std::min(limits.maxRecords, work.records);
    }
    if (limits.maxCandidates != SearchLimits::unlimited) {
        limits.maxCandidates -= std::min(limits.maxCandidates, work.candidates);
    }
    if (limits.maxSeconds != std::numeric_limits<double>::infinity()) {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        limits.maxSeconds = std::max(0.0, limits.maxSeconds - elapsed.count());
    }
    return limits;
}

void add(SearchWork& sum, const SearchWork& work)
{
    sum.records += work.records;
    sum.flips += work.flips;
    sum.components += work.components;
    sum.candidates += work.candidates;
}

} // namespace monitor
