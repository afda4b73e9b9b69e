// Times and durations as people write them.
#pragma once

#include <string>

namespace report {

/// Whether the times of a run are seconds since the beginning of 1970, or seconds since anything.
enum class Clock { seconds, wall };

/// A time: `2024-05-01T12:00:00Z` (WallClock.h), or a number of seconds. A time that no calendar has is a number, too.
std::string moment(double t, Clock clock);
/// "35 s", "7.5 min", "2 h 10 min", "3 days 4 h". Requires: 0 or more.
std::string duration(double seconds);

} // namespace report
