#include "language/meaning/Report.h"

#include <utility>

namespace language {

namespace {

text::Range rangeOf(const plant::PlaceKey& key)
{
    return {key[0], key[1], key[2], key[3]};
}

} // namespace

void Report::error(const text::Range& at, std::string message, std::string expected,
                   std::string hint)
{
    // One mistake at one place is one error, whatever instance it was found in.
    if (!gathered_.isFirstAt(at.file, {at.line, at.column})) return;
    gathered_.error(at.file, sources_[at.file]->error(at, std::move(message), std::move(expected),
                                                      std::move(hint)));
}

void Report::warning(const text::Range& at, std::string message, std::string hint)
{
    gathered_.warning(at.file,
                      sources_[at.file]->error(at, std::move(message), {}, std::move(hint)));
}

void Report::report(const plant::PlaceKey& at, text::Message what)
{
    error(rangeOf(at), std::move(what.message), std::move(what.expected), std::move(what.hint));
}

std::string Report::reference(const plant::PlaceKey& to, const plant::PlaceKey& from) const
{
    const std::string line = std::to_string(to[1]);
    if (to[0] == from[0]) return "line " + line;
    return sources_[to[0]]->name() + ":" + line;
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
        .commandAsInput = {"", "a cond or a mode", "write 'command' in place of 'input'"},
        .conditionCommanded = {"", "a command", "write 'observe' in place of 'command'"}};
    return words;
}

std::vector<text::Diagnostic> Report::errors()
{
    std::vector<text::Diagnostic> list = gathered_.takeErrors();
    if (gathered_.notShown() > 0) {
        text::Diagnostic& rest = list.emplace_back();
        rest.file = sources_.empty() ? "" : sources_.front()->name();
        rest.message = std::to_string(gathered_.notShown()) + " more errors are not shown";
    }
    return list;
}

} // namespace language
