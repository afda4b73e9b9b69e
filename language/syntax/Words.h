// The words of the language, and its units of time.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace language {

/// `mode`, `law`, `any`, ...: none of them can be a name.
const std::vector<std::string_view>& reservedWords();

/// `input`, `repair`, `varies`: words where a statement begins or a binding may go on, and names elsewhere.
const std::vector<std::string_view>& softWords();

/// `ms`, `s`, `second`, `seconds`, `min`, `minute`, `minutes`, `h`, `hour`, `hours`, `d`, `day`, `days`.
const std::vector<std::string_view>& timeUnits();
/// The seconds of a unit of time; nothing for any other word.
std::optional<double> secondsOf(std::string_view unit);

} // namespace language
