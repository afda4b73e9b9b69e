#include "app/CommandLine.h"
#include "text/Diagnostic.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>

namespace app {

namespace {

// The whole text as a number, or nothing.
template <typename Number> std::optional<Number> parsed(const std::string& text)
{
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

} // namespace

Check wholeNumber(std::uint64_t least, std::uint64_t most)
{
    return [=](const std::string& text) {
        const auto value = parsed<std::uint64_t>(text);
        if (value && *value >= least && *value <= most) return std::string();
        return fmt::format("found {}; expected a whole number from {} to {}", text::quoted(text),
                           least, most);
    };
}

Check number(double least, double most)
{
    return [=](const std::string& text) {
        const auto value = parsed<double>(text);
        if (value && *value >= least && *value <= most) return std::string();
        const std::string range = std::isinf(most) ? fmt::format("{} or more", least)
                                                   : fmt::format("from {} to {}", least, most);
        return fmt::format("found {}; expected a number, {}", text::quoted(text), range);
    };
}

Check numberBetween(double least, double most)
{
    return [=](const std::string& text) {
        const auto value = parsed<double>(text);
        if (value && *value > least && *value < most) return std::string();
        return fmt::format("found {}; expected a number, more than {} and less than {}",
                           text::quoted(text), least, most);
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
