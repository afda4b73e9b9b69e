// The words of the language, and its units of time.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace language {

/// `mode`, `law`, `any`, ...: none of them can be a name.
const std::vector<std::string_view>& reservedWords();

/// `input`, `repair`, `varies`, ...: words where a statement begins or a binding may go on, and names elsewhere.
const std::vector<std::string_view>& softWords();

/// What is computed from channels. Names elsewhere.
struct ChannelFunction {
    enum class Over {
        never, ///< it is of one step
        may,   ///< of one step and several arguments, or over some time and of one
        always ///< over some time
    };
    std::string_view name;
    Over over;
};
/// `abs`, `min`, `max`, `mean`, `spread`, `rate`.
const std::vector<ChannelFunction>& channelFunctions();
/// Null when there is none of that name. It lives as long as the program.
const ChannelFunction* channelFunction(std::string_view name);

/// `ms`, `s`, `second`, `seconds`, `min`, `minute`, `minutes`, `h`, `hour`, `hours`, `d`, `day`, `days`, `week`, `weeks`, `month`, `months`
/// (30 days), `year`, `years` (365 days).
const std::vector<std::string_view>& timeUnits();
/// The seconds of a unit of time; nothing for any other word.
std::optional<double> secondsOf(std::string_view unit);

} // namespace language
