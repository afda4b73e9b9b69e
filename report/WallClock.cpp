#include "report/WallClock.h"

#include <chrono>
#include <cmath>
#include <fmt/format.h>

namespace report {

std::optional<std::string> wallClock(double seconds)
{
    constexpr double beginOfYear0 = -62167219200;
    constexpr double beginOfYear10000 = 253402300800;
    const double rounded = std::round(seconds * 1e6) / 1e6;
    if (!(rounded >= beginOfYear0 && rounded < beginOfYear10000)) return std::nullopt;
    const auto whole = static_cast<std::int64_t>(std::floor(rounded));
    const auto micro = static_cast<int>(std::lround((rounded - static_cast<double>(whole)) * 1e6));
    const std::chrono::sys_seconds time{std::chrono::seconds(whole)};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::string fraction = micro > 0 ? fmt::format(".{:06}", micro) : "";
    while (fraction.ends_with('0')) {
        fraction.pop_back();
    }
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                       clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                       fraction);
}

std::string shownTime(double seconds, const std::optional<std::string>& time)
{
    return time.value_or(fmt::format("{:.10g}", seconds));
}

std::string dateOf(const std::string& time)
{
    return time.substr(0, time.find('T'));
}

std::string timeOfDay(const std::string& time)
{
    const std::size_t begin = time.find('T') + 1;
    return time.substr(begin, time.find('Z') - begin);
}

} // namespace report
