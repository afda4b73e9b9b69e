#include "language/meaning/Report.h"

#include <utility>

namespace language {

namespace {

std::string keyOf(const text::Range& at, const std::string& message)
{
    return std::to_string(at.file) + ":" + std::to_string(at.line) + ":" +
           std::to_string(at.column) + ":" + message;
}

text::Range rangeOf(const plant::PlaceKey& key)
{
    return {key[0], key[1], key[2], key[3]};
}

std::vector<text::Diagnostic> listed(
    std::multimap<std::tuple<std::uint32_t, std::size_t, std::size_t>, text::Diagnostic>& byPlace)
{
    std::vector<text::Diagnostic> list;
    for (auto& [place, error] : byPlace) {
        list.push_back(std::move(error));
    }
    byPlace.clear();
    return list;
}

} // namespace

void Report::error(const text::Range& at, std::string message, std::string expected,
                   std::string hint)
{
    // One mistake at one place is one error, whatever instance it was found in.
    if (!told_.insert(keyOf(at, "")).second) return;
    take(at.file,
         sources_[at.file]->error(at, std::move(message), std::move(expected), std::move(hint)));
}

void Report::warning(const text::Range& at, std::string message, std::string hint)
{
    if (!told_.insert(keyOf(at, message)).second) return;
    warnings_.insert({Key{at.file, at.line, at.column},
                      sources_[at.file]->error(at, std::move(message), {}, std::move(hint))});
}

void Report::take(std::uint32_t file, text::Diagnostic error)
{
    if (++errorCount_ > limit_) return;
    const Key key{file, error.place.line, error.place.column};
    errors_.insert({key, std::move(error)});
}

void Report::report(const plant::PlaceKey& at, text::Message what)
{
    error(rangeOf(at), std::move(what.message), std::move(what.expected), std::move(what.hint));
}

std::string Report::reference(const plant::PlaceKey& to, const plant::PlaceKey& from) const
{
    return where(rangeOf(to), rangeOf(from));
}

const plant::Words& Report::words() const
{
    static const plant::Words words{
        .fullNames = false,
        .at = "at ",
        .law = "the law at ",
        .laws = "the laws at ",
        .lastLaw = " and ",
        .guardThatHolds = "a formula that can hold",
        .hysteresis = "'within'",
        .unsatisfiable = {"no assignment satisfies this law", "a formula that can hold", ""},
        .commandObserved = {"", "a cond or a mode", "write 'command' in place of 'observe'"},
        .conditionCommanded = {"", "a command", "write 'observe' in place of 'command'"}};
    return words;
}

std::string Report::where(const text::Range& range, const text::Range& seenFrom) const
{
    const std::string line = std::to_string(range.line);
    if (range.file == seenFrom.file) return "line " + line;
    return sources_[range.file]->name() + ":" + line;
}

std::vector<text::Diagnostic> Report::errors()
{
    std::vector<text::Diagnostic> list = listed(errors_);
    if (errorCount_ > limit_) {
        text::Diagnostic& rest = list.emplace_back();
        rest.file = sources_.empty() ? "" : sources_.front()->name();
        rest.message = std::to_string(errorCount_ - limit_) + " more errors are not shown";
    }
    return list;
}

std::vector<text::Diagnostic> Report::warnings()
{
    return listed(warnings_);
}

} // namespace language
