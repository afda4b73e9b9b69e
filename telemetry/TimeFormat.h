// Times as loggers write them: numbers of seconds or milliseconds, ISO 8601, or dates and times by a pattern.
#pragma once

#include "text/Diagnostic.h"

#include <optional>
#include <string>
#include <string_view>

namespace telemetry {

/// Makes seconds of times, those of dates from the beginning of 1970 in UTC. A time without a zone is taken as UTC.
class TimeFormat {
public:
    /// `seconds`, `milliseconds`, `iso8601`, or a pattern of strptime() such as `%m/%d/%Y %H:%M:%S`, where `%S` has the fraction
    /// of a second, too. Empty: what the first time is, a number of seconds or ISO 8601; a whole number from 1e11 on is one of
    /// milliseconds where `mayBeMilliseconds`.
    /// Requires: mistakeIn() has nothing to say about it.
    explicit TimeFormat(std::string format, bool mayBeMilliseconds = false);

    /// What is wrong with a format; nothing when it is one.
    static std::optional<text::Message> mistakeIn(const std::string& format);

    /// The time in seconds; none when the text is no time of this format. It may be infinite.
    std::optional<double> read(std::string_view text, char decimal = '.');
    /// The same of a number.
    std::optional<double> read(double number);
    /// Whether the format is known, or was found out.
    bool isKnown() const { return kind_ != Kind::unknown; }
    /// Whether the seconds are those since the beginning of 1970.
    bool isWallClock() const { return isKnown() && kind_ != Kind::seconds; }
    /// Whether dates may be read: a text may be a time where numbers are not texts.
    bool readsDates() const { return kind_ != Kind::seconds && kind_ != Kind::milliseconds; }

    /// What a time is, for messages: "a finite number of seconds".
    std::string expected() const;
    /// What to do about a text that is no time; may be empty.
    std::string hint(std::string_view text) const;
    /// What was found out of the format, once: it is not said again. None for seconds.
    std::optional<std::string> takeFinding();

private:
    enum class Kind { unknown, seconds, milliseconds, iso, pattern };

    void findOut(std::string_view text, char decimal);

    Kind kind_;
    std::string pattern_;
    bool mayBeMilliseconds_;
    bool withoutZone_ = false; // the ISO time read last
    std::optional<std::string> finding_;
};

} // namespace telemetry
