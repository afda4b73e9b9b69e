// Times of day and date, for people and for programs that know no other times.
#pragma once

#include <optional>
#include <string>

namespace report {

/// `2024-05-01T10:00:00Z`, or with up to six digits of a second, of seconds since the beginning of 1970 in UTC; none outside the years
/// 0 to 9999.
std::optional<std::string> wallClock(double seconds);
/// The time by the clock where there is one, else the seconds.
std::string shownTime(double seconds, const std::optional<std::string>& time);
/// The date of such a text: `2024-05-01`.
std::string dateOf(const std::string& time);
/// The rest, without the zone: `10:00:00`.
std::string timeOfDay(const std::string& time);

} // namespace report
