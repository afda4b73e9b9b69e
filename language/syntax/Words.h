// The words of the language, and its units of time.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace language {

/// `mode`, `law`, `any`, ...: none of them can be a name.
const std::vector<std::string_view>& reservedWords();

/// `ms`, `s`, `second`, `seconds`, `min`, `minute`, `minutes`, `h`, `hour`, `hours`, `d`, `day`, `days`.
const std::vector<std::string_view>& timeUnits();
/// The seconds of a unit of time; nothing for any other word.
std::optional<double> secondsOf(std::string_view unit);

} // namespace language
