#include "language/meaning/PlantMemory.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <limits>
#include <sys/resource.h>
#include <unistd.h>

namespace language {

namespace {

// Measured with plants of 50,000 and 100,000 parts: what a component, one of its values, and two values that exclude one another take.
constexpr std::uint64_t perPart = 2500;
constexpr std::uint64_t perValue = 2000;
constexpr std::uint64_t perPair = 400;

// Memory and swap that the system could give, in bytes.
std::uint64_t availableBytes()
{
    std::ifstream file("/proc/meminfo");
    std::uint64_t kibibytes = 0;
    for (std::string name; file >> name;) {
        std::uint64_t number = 0;
        if (name == "MemAvailable:" || name == "SwapFree:") {
            if (file >> number) kibibytes += number;
        }
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return kibibytes == 0 ? std::numeric_limits<std::uint64_t>::max() : kibibytes << 10U;
}

std::uint64_t addressBytes()
{
    std::ifstream file("/proc/self/statm");
    std::uint64_t pages = 0;
    file >> pages;
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

std::uint64_t bytesOf(const ComponentType& type)
{
    std::uint64_t bytes = perPart;
    for (const VariableType& variable : type.variables) {
        const std::uint64_t values = variable.values.size();
        bytes += values * perValue +
                 values * (values - std::min<std::uint64_t>(values, 1)) / 2 * perPair;
    }
    return bytes;
}

std::uint64_t freeBytes()
{
    std::uint64_t bytes = availableBytes();
    struct rlimit limit = {};
    if (getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
        const std::uint64_t most = limit.rlim_cur;
        bytes = std::min(bytes, most - std::min(most, addressBytes()));
    }
    return bytes;
}

std::string inBytes(std::uint64_t bytes)
{
    const double mebibytes = static_cast<double>(bytes) / (1024.0 * 1024.0);
    return mebibytes < 1000.0 ? fmt::format("{:.0f} MiB", mebibytes)
                              : fmt::format("{:.1f} GiB", mebibytes / 1024.0);
}

} // namespace language
