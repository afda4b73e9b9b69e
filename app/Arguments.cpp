#include "app/Arguments.h"

#include "app/Output.h"
#include "report/Text.h"
#include "text/Diagnostic.h"
#include "text/NearestName.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <optional>

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

CLI::Validator validator(std::function<std::string(std::string&)> check)
{
    return {std::move(check), "", ""};
}

} // namespace

std::string didYouMean(std::string_view word, const std::vector<std::string>& known)
{
    const std::string nearest =
        text::nearestName(word, std::vector<std::string_view>(known.begin(), known.end()));
    return nearest.empty() ? "" : fmt::format("; did you mean '{}'?", nearest);
}

CLI::Validator wholeNumber(std::uint64_t least, std::uint64_t most)
{
    return validator([=](const std::string& text) {
        const auto value = parsed<std::uint64_t>(text);
        if (value && *value >= least && *value <= most) return std::string();
        return fmt::format("found {}; expected a whole number from {} to {}", text::quoted(text),
                           least, most);
    });
}

CLI::Validator number(double least, double most, bool open)
{
    return validator([=](const std::string& text) {
        const auto value = parsed<double>(text);
        const bool inside =
            value && (open ? *value > least && *value < most : *value >= least && *value <= most);
        if (inside) return std::string();
        const std::string range = std::isinf(most) ? fmt::format("{} or more", least)
                                  : open ? fmt::format("more than {} and less than {}", least, most)
                                         : fmt::format("from {} to {}", least, most);
        return fmt::format("found {}; expected a number, {}", text::quoted(text), range);
    });
}

CLI::Validator oneOf(std::vector<std::string> words)
{
    return validator([words = std::move(words)](const std::string& text) {
        if (std::find(words.begin(), words.end(), text) != words.end()) return std::string();
        std::string known;
        for (std::size_t i = 0; i < words.size(); ++i) {
            known += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
        }
        return fmt::format("found {}; expected {}{}", text::quoted(text), known,
                           didYouMean(text, words));
    });
}

void refuseUnknown(const CLI::App& verb)
{
    const std::vector<std::string> unknown = verb.remaining();
    if (unknown.empty()) return;
    const std::string& word = unknown.front();
    if (word.size() < 2 || word.front() != '-') {
        throw Failure(fmt::format("unexpected argument {}\n", text::quoted(word)));
    }
    std::vector<std::string> known;
    for (const CLI::Option* option : verb.get_options()) {
        for (const std::string& longName : option->get_lnames()) {
            known.push_back("--" + longName);
        }
    }
    const std::string name = word.substr(0, word.find('='));
    throw Failure(fmt::format("unknown option {}{}\n", text::quoted(name),
                              name.size() > 2 ? didYouMean(name, known) : ""));
}

} // namespace app
