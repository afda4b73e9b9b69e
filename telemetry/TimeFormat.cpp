#include "telemetry/TimeFormat.h"

#include "telemetry/Reading.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <fmt/format.h>

namespace telemetry {

namespace {

constexpr double msPerSecond = 1000;
constexpr double leastMilliseconds = 1e11; // as seconds this would be in the year 5138

// A date and time as far as it was read.
struct DateTime {
    std::tm parts = {};
    double fraction = 0;
};

DateTime noDate()
{
    DateTime made;
    made.parts.tm_year = 70;
    made.parts.tm_mday = 1;
    return made;
}

// Reads as the pattern says, and returns what comes after it; null when the text is not as it says.
const char* readParts(const char* text, const std::string& pattern, DateTime& made)
{
    return text ? strptime(text, pattern.c_str(), &made.parts) : nullptr;
}

const char* readFraction(const char* text, DateTime& made)
{
    if (!text || (*text != '.' && *text != ',')) return text;
    double place = 1;
    const char* at = text + 1;
    while (*at >= '0' && *at <= '9') {
        place /= 10;
        made.fraction += place * (*at++ - '0');
    }
    return at == text + 1 ? text : at;
}

// None for a day that its month does not have.
std::optional<double> secondsOf(const DateTime& made)
{
    using namespace std::chrono;
    const std::tm& parts = made.parts;
    const year_month_day day{year{parts.tm_year + 1900},
                             month{static_cast<unsigned>(parts.tm_mon + 1)},
                             std::chrono::day{static_cast<unsigned>(parts.tm_mday)}};
    if (!day.ok()) return std::nullopt;
    const auto whole = sys_days(day).time_since_epoch() + hours{parts.tm_hour} +
                       minutes{parts.tm_min} + seconds{parts.tm_sec} - seconds{parts.tm_gmtoff};
    return static_cast<double>(duration_cast<seconds>(whole).count()) + made.fraction;
}

// 2024-05-01T12:30:00.5+02:00; `T` may be a blank, and the seconds, the time and the zone may be missing.
std::optional<double> readIso(const std::string& text, bool& withoutZone)
{
    DateTime made = noDate();
    const char* at = readParts(text.c_str(), "%Y-%m-%d", made);
    if (!at) return std::nullopt;
    if (*at == 'T' || *at == 't' || *at == ' ') {
        at = readParts(at + 1, "%H:%M", made);
        if (at && *at == ':') at = readFraction(readParts(at, ":%S", made), made);
    }
    withoutZone = at && *at == '\0';
    if (at && !withoutZone) at = readParts(at, *at == 'z' ? "z" : "%z", made);
    return at && *at == '\0' ? secondsOf(made) : std::nullopt;
}

// Up to the seconds, %S alone or in %T; nothing where there are none.
std::string upToSeconds(const std::string& pattern)
{
    for (std::size_t i = 0; i + 1 < pattern.size(); ++i) {
        if (pattern[i] != '%') continue;
        ++i;
        if (pattern[i] == 'S' || pattern[i] == 'T') return pattern.substr(0, i + 1);
    }
    return {};
}

// strptime() knows no fractions of a second, and has to see the whole text at once: it is read without them.
std::optional<double> readPattern(std::string text, const std::string& pattern)
{
    DateTime made = noDate();
    if (const std::string before = upToSeconds(pattern); !before.empty()) {
        DateTime scratch = noDate();
        const char* end = readParts(text.c_str(), before, scratch);
        if (!end) return std::nullopt;
        const auto begin = static_cast<std::size_t>(end - text.c_str());
        const auto length = static_cast<std::size_t>(readFraction(end, made) - end);
        text.erase(begin, length);
    }
    const char* at = readParts(text.c_str(), pattern, made);
    return at && *at == '\0' ? secondsOf(made) : std::nullopt;
}

} // namespace

TimeFormat::TimeFormat(std::string format, bool mayBeMilliseconds)
    : kind_(format.empty()             ? Kind::unknown
            : format == "seconds"      ? Kind::seconds
            : format == "milliseconds" ? Kind::milliseconds
            : format == "iso8601"      ? Kind::iso
                                       : Kind::pattern),
      pattern_(std::move(format)), mayBeMilliseconds_(mayBeMilliseconds)
{
}

std::optional<text::Message> TimeFormat::mistakeIn(const std::string& format)
{
    constexpr std::string_view known = "%YmdHMSTFDRyjbBhepIzn";
    if (format.empty() || format == "seconds" || format == "milliseconds" || format == "iso8601")
        return std::nullopt;
    bool anything = false;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') continue;
        const char next = ++i < format.size() ? format[i] : '\0';
        if (next == '\0' || known.find(next) == std::string_view::npos) {
            const std::string_view from = std::string_view(format).substr(i - 1);
            // The whole of a character that is several bytes.
            const std::size_t length =
                from.size() == 1 ? 1
                                 : 1 + std::max<std::size_t>(1, text::utf8Length(from.substr(1)));
            return text::Message{text::quoted(from.substr(0, length)) + " in a pattern of times",
                                 "%Y %m %d %H %M %S, and %y %b %j %I %p %z %T %F %D %R", ""};
        }
        anything = true;
    }
    if (anything) return std::nullopt;
    return text::Message{fmt::format("{} is no format of times", text::quoted(format)),
                         "seconds, milliseconds, iso8601, or a pattern such as '%m/%d/%Y %H:%M:%S'",
                         ""};
}

void TimeFormat::findOut(std::string_view text, char decimal)
{
    if (const auto number = parseNumber(text, decimal)) {
        const bool large = std::isfinite(*number) && *number >= leastMilliseconds &&
                           *number == std::floor(*number);
        kind_ = large && mayBeMilliseconds_ ? Kind::milliseconds : Kind::seconds;
        if (kind_ == Kind::milliseconds) finding_ = "the times are read as milliseconds";
    } else if (readIso(std::string(text), withoutZone_)) {
        kind_ = Kind::iso;
        finding_ = std::string("the times are read as ISO 8601") +
                   (withoutZone_ ? ", and as UTC where they name no zone" : "");
    }
}

std::optional<double> TimeFormat::read(std::string_view text, char decimal)
{
    if (kind_ == Kind::unknown) findOut(text, decimal);
    switch (kind_) {
    case Kind::unknown: return std::nullopt;
    case Kind::seconds:
    case Kind::milliseconds: {
        const auto number = parseNumber(text, decimal);
        return number ? read(*number) : std::nullopt;
    }
    case Kind::iso: return readIso(std::string(text), withoutZone_);
    case Kind::pattern: return readPattern(std::string(text), pattern_);
    }
    return std::nullopt;
}

std::optional<double> TimeFormat::read(double number)
{
    if (kind_ == Kind::unknown) kind_ = Kind::seconds;
    if (kind_ == Kind::seconds) return number;
    if (kind_ == Kind::milliseconds) return number / msPerSecond;
    return std::nullopt;
}

std::string TimeFormat::expected() const
{
    switch (kind_) {
    case Kind::unknown:
    case Kind::seconds: return "a finite number of seconds";
    case Kind::milliseconds: return "a finite number of milliseconds";
    case Kind::iso: return "a date and time such as 2024-05-01T12:30:00Z";
    case Kind::pattern: break;
    }
    return fmt::format("a date and time as '{}' says", pattern_);
}

std::string TimeFormat::hint(std::string_view text) const
{
    if (kind_ != Kind::unknown) return {};
    const auto looksLike = [&](const char* pattern) {
        return readPattern(std::string(text), pattern).has_value();
    };
    constexpr const char* monthFirst = "%m/%d/%Y %H:%M:%S";
    constexpr const char* dayFirst = "%d/%m/%Y %H:%M:%S";
    constexpr const char* dots = "%d.%m.%Y %H:%M:%S";
    if (looksLike(monthFirst) && looksLike(dayFirst))
        return fmt::format("--time-format '{}', or '{}'", monthFirst, dayFirst);
    for (const char* pattern : {monthFirst, dayFirst, dots}) {
        if (looksLike(pattern)) return fmt::format("--time-format '{}'", pattern);
    }
    return {};
}

std::optional<std::string> TimeFormat::takeFinding()
{
    return std::exchange(finding_, std::nullopt);
}

} // namespace telemetry
