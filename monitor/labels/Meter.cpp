// The clock is read every so much work, and the system is asked for the memory more seldom still. What was freed may stay with the
// process: before a step is cut for memory, and where one begins with little left, it is given back.
#include "monitor/labels/Meter.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <malloc.h>
#include <unistd.h>

namespace monitor {

namespace {

/// A label of the engine is found by its name, and takes so much longer than one of ours.
constexpr std::uint64_t engineFactor = 10;
constexpr std::uint64_t workPerLook = std::uint64_t{1} << 16U;
constexpr std::uint64_t workPerMemory = std::uint64_t{1} << 20U;

// Of the process, in bytes; 0 where the system does not tell.
std::uint64_t memoryUsed()
{
    std::ifstream file("/proc/self/statm");
    std::uint64_t pages = 0;
    std::uint64_t resident = 0;
    if (!(file >> pages >> resident)) return 0;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::uint64_t part(std::uint64_t limit, double share)
{
    if (limit == SearchLimits::unlimited) return limit;
    return static_cast<std::uint64_t>(static_cast<double>(limit) * share);
}

} // namespace

thread_local Meter* Meter::current_ = nullptr;

Meter::Meter(const SearchLimits& limits, const WorkLimits& work)
    : before_(current_), limits_(limits), work_(work)
{
    current_ = this;
    next_ = workPerLook; // a step that is no work is not cut
    lookBeforeTheLimit();
}

Meter::~Meter()
{
    current_ = before_;
}

void Meter::lookBeforeTheLimit()
{
    const std::uint64_t most = part(work_.maxWork, share());
    if (most == SearchLimits::unlimited) return;
    next_ = std::min(next_, ticks_ + (most - std::min(most, spent())));
}

bool Meter::tooMuchMemory()
{
    if (work_.maxBytes == SearchLimits::unlimited || ticks_ < nextMemory_) return false;
    nextMemory_ = ticks_ + workPerMemory;
    const std::uint64_t most = part(work_.maxBytes, share());
    if (memoryUsed() <= most) return false;
    malloc_trim(0);
    if (memoryUsed() <= most) return false;
    nextMemory_ = ticks_;
    return true;
}

bool Meter::isStopped()
{
    if (!limits_.stop || !*limits_.stop) return false;
    if (!finishing_) return true;
    const auto now = std::chrono::steady_clock::now();
    if (!stopped_) stopped_ = now;
    return now - *stopped_ >= patience;
}

SearchLimit Meter::look()
{
    const std::uint64_t most = part(work_.maxWork, share());
    const std::uint64_t counted = counting_ ? spent() : 0;
    const bool timed = limits_.maxSeconds != std::numeric_limits<double>::infinity();
    const std::chrono::duration<double> elapsed =
        timed ? std::chrono::steady_clock::now() - start_ : std::chrono::duration<double>();
    SearchLimit met = SearchLimit::none;
    if (counted >= most && counting_) {
        met = SearchLimit::work;
    } else if (isStopped()) {
        met = SearchLimit::stopped;
    } else if (timed && elapsed.count() >= limits_.maxSeconds * share()) {
        met = SearchLimit::seconds;
    } else if (tooMuchMemory()) {
        met = SearchLimit::memory;
    }
    next_ = met != SearchLimit::none
                ? ticks_
                : ticks_ + std::min(workPerLook, std::max<std::uint64_t>(most - counted, 1));
    if (met != SearchLimit::none) met_ = met;
    return met;
}

void Meter::lookOrThrow()
{
    const SearchLimit met = look();
    if (met != SearchLimit::none) throw Cut{met};
}

SearchLimit Meter::take(std::uint64_t work)
{
    ticks_ += work * engineFactor;
    return ticks_ >= next_ ? look() : SearchLimit::none;
}

} // namespace monitor
