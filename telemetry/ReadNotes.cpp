#include "telemetry/ReadNotes.h"

#include "telemetry/Reading.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <fmt/format.h>
#include <unordered_set>
#include <utility>

namespace telemetry {

namespace {

constexpr std::size_t mostShown = 8;

std::string shownNames(const std::vector<std::string_view>& names)
{
    std::vector<std::string> shown;
    for (const std::string_view name : names) {
        shown.push_back(text::quoted(name));
    }
    return text::enumerated({shown.begin(), shown.end()}, mostShown, text::Rest::more);
}

text::Diagnostic note(std::string message, std::string hint = {})
{
    text::Diagnostic made;
    made.message = std::move(message);
    made.hint = std::move(hint);
    return made;
}

} // namespace

void ReadNotes::say(std::string message)
{
    found_.push_back(note(std::move(message)));
}

void ReadNotes::passOverColumns(const std::vector<std::string_view>& unknown,
                                const std::vector<std::string_view>& header, const Names& names)
{
    if (unknown.empty()) return;
    const std::unordered_set<std::string_view> there(header.begin(), header.end());
    std::vector<std::string_view> missing;
    const std::vector<std::string> known = names.texts();
    for (const std::string_view name : known) {
        if (!there.contains(name)) missing.push_back(name);
    }
    for (const std::string_view name : unknown) {
        const std::string hint = text::didYouMean(name, missing);
        if (!hint.empty())
            found_.push_back(note(fmt::format("column {} is not known", text::quoted(name)), hint));
    }
    found_.push_back(note(fmt::format("{} {} not known to the model, and {} passed over: {}",
                                      text::counted(unknown.size(), "column"),
                                      unknown.size() == 1 ? "is" : "are",
                                      unknown.size() == 1 ? "is" : "are", shownNames(unknown))));
}

void ReadNotes::passOverKey(std::string_view key, const Names& names)
{
    if (keys_.contains(key)) return;
    if (keys_.size() == mostKeys) {
        moreKeys_ = true;
        return;
    }
    keys_.emplace(key);
    const std::vector<std::string> known = names.texts();
    const std::string hint = text::didYouMean(key, {known.begin(), known.end()});
    if (!hint.empty())
        found_.push_back(note(fmt::format("{} is not known", text::quoted(key)), hint));
}

void ReadNotes::passOverReading(std::uint32_t name, std::string_view called,
                                std::string_view reading)
{
    const auto [known, isNew] = unreadableAt_.try_emplace(name, unreadable_.size());
    if (isNew) unreadable_.push_back({std::string(called), std::string(reading), 0});
    ++unreadable_[known->second].count;
}

void ReadNotes::passOverHeader(std::size_t line)
{
    if (headers_++ == 0) firstHeader_ = line;
}

void ReadNotes::contradict(const std::string& variable, const std::string& first,
                           const std::string& second)
{
    const auto [entry, isNew] =
        contradictions_.try_emplace(variable, Contradiction{first, second, 0});
    ++entry->second.steps;
}

std::vector<text::Diagnostic> ReadNotes::take()
{
    return std::exchange(found_, {});
}

std::vector<text::Diagnostic> ReadNotes::summary() const
{
    std::vector<text::Diagnostic> all;
    if (!keys_.empty()) {
        const std::vector<std::string_view> keys(keys_.begin(), keys_.end());
        all.push_back(note(fmt::format(
            "{}{} {} not known to the model, and {} passed over: {}", moreKeys_ ? "more than " : "",
            text::counted(keys.size(), "name"), keys.size() == 1 ? "is" : "are",
            keys.size() == 1 ? "is" : "are", shownNames(keys))));
    }
    for (const Unreadable& one : unreadable_) {
        const bool comma =
            one.first.find(',') != std::string::npos && parseNumber(one.first, ',').has_value();
        all.push_back(
            note(fmt::format("{} of {} {} no number, and {} as not observed; the first is {}",
                             text::counted(one.count, "reading"), text::quoted(one.name),
                             one.count == 1 ? "is" : "are", one.count == 1 ? "counts" : "count",
                             text::quoted(one.first)),
                 comma ? "with --decimal , it is one" : ""));
    }
    if (headers_ > 0) {
        all.push_back(note(fmt::format("the header is there {} more, and is passed over; first in "
                                       "line {}",
                                       headers_ == 1 ? "once" : fmt::format("{} times", headers_),
                                       firstHeader_)));
    }
    for (const auto& [variable, one] : contradictions_) {
        all.push_back(note(fmt::format("the channels of {} say different things in {}, and it "
                                       "counts as not observed there; at "
                                       "first they are {} and {}",
                                       text::quoted(variable), text::counted(one.steps, "step"),
                                       one.first, one.second)));
    }
    return all;
}

} // namespace telemetry
