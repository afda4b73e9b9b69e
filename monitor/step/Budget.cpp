#include "monitor/step/Budget.h"

#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

SearchLimits Budget::remaining() const
{
    SearchLimits left = limits_;
    const auto take = [](std::uint64_t& from, std::uint64_t used) {
        if (from != SearchLimits::unlimited) {
            from -= std::min(from, used);
        }
    };
    take(left.maxRecords, work_.records);
    take(left.maxCandidates, work_.candidates);
    if (left.maxSeconds != std::numeric_limits<double>::infinity()) {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
        left.maxSeconds = std::max(0.0, left.maxSeconds - elapsed.count());
    }
    return left;
}

void Budget::spend(const SearchWork& work)
{
    work_.records += work.records;
    work_.flips += work.flips;
    work_.components += work.components;
    work_.candidates += work.candidates;
}

void Budget::meet(SearchLimit limit)
{
    if (limit != SearchLimit::none) {
        limit_ = limit;
    }
}

// In the order in which the engine looks at its limits.
bool Budget::exhausted()
{
    const SearchLimits left = remaining();
    if (const Meter* meter = Meter::current(); meter && meter->limit() != SearchLimit::none) {
        meet(meter->limit());
    }
    if (left.maxRecords == 0) {
        meet(SearchLimit::records);
    } else if (left.maxCandidates == 0) {
        meet(SearchLimit::candidates);
    } else if (left.stop && *left.stop) {
        meet(SearchLimit::stopped);
    } else if (left.maxSeconds <= 0.0) {
        meet(SearchLimit::seconds);
    }
    return limit_ != SearchLimit::none;
}

} // namespace monitor
