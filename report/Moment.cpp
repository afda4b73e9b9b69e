#include "report/Moment.h"

#include "report/WallClock.h"

#include <cmath>
#include <fmt/format.h>

namespace report {

namespace {

constexpr double minute = 60;
constexpr double hour = 60 * minute;
constexpr double day = 24 * hour;

// "2 h 10 min", the second one left out where it is 0.
std::string twoUnits(double seconds, double large, const char* largeName, double small,
                     const char* smallName)
{
    auto inSmall = static_cast<long long>(std::llround(seconds / small));
    const auto perLarge = static_cast<long long>(large / small);
    const long long whole = inSmall / perLarge;
    inSmall %= perLarge;
    const std::string name = largeName == std::string_view("day") && whole > 1 ? "days" : largeName;
    if (inSmall == 0) return fmt::format("{} {}", whole, name);
    return fmt::format("{} {} {} {}", whole, name, inSmall, smallName);
}

} // namespace

std::string moment(double t, Clock clock)
{
    return shownTime(t, clock == Clock::wall ? wallClock(t) : std::nullopt);
}

std::string duration(double seconds)
{
    if (seconds < minute) return fmt::format("{:.3g} s", seconds);
    if (seconds < hour - minute / 2) return fmt::format("{:.3g} min", seconds / minute);
    if (seconds < day - minute / 2) return twoUnits(seconds, hour, "h", minute, "min");
    return twoUnits(seconds, day, "day", hour, "h");
}

} // namespace report
