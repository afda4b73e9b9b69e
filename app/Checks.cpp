#include "app/CommandLine.h"
#include "text/Diagnostic.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace app {

Check wholeNumber(std::uint64_t least, std::uint64_t most)
{
    return [=](const std::string& text) {
        const auto value = parsedNumber<std::uint64_t>(text);
        if (value && *value >= least && *value <= most) return std::string();
        return fmt::format("found {}; expected a whole number from {} to {}", text::quoted(text),
                           least, most);
    };
}

Check number(double least, double most)
{
    return [=](const std::string& text) {
        const auto value = parsedNumber<double>(text);
        if (value && std::isfinite(*value) && *value >= least && *value <= most)
            return std::string();
        const std::string range = std::isinf(most) ? fmt::format("{} or more", least)
                                                   : fmt::format("from {} to {}", least, most);
        return fmt::format("found {}; expected a number, {}", text::quoted(text), range);
    };
}

Check numberBetween(double least, double most)
{
    return [=](const std::string& text) {
        const auto value = parsedNumber<double>(text);
        if (value && *value > least && *value < most) return std::string();
        return fmt::format("found {}; expected a number, more than {} and less than {}",
                           text::quoted(text), least, most);
    };
}

std::string orDidYouMean(std::string_view word, const std::vector<std::string>& known)
{
    const std::string hint =
        text::didYouMean(word, std::vector<std::string_view>(known.begin(), known.end()));
    return hint.empty() ? "" : "; " + hint;
}

Check oneOf(std::vector<std::string> words)
{
    return [words = std::move(words)](const std::string& value) {
        if (std::find(words.begin(), words.end(), value) != words.end()) return std::string();
        return fmt::format("found {}; expected {}{}", text::quoted(value),
                           text::alternatives(words), orDidYouMean(value, words));
    };
}

Check fileName(bool mayBeStandardOutput)
{
    return [=](const std::string& text) {
        if (!text.empty() && (text != "-" || mayBeStandardOutput)) return std::string();
        return fmt::format("found {}; expected the name of a file{}", text::quoted(text),
                           mayBeStandardOutput ? ", or - for standard output" : "");
    };
}

} // namespace app
