#include "text/Diagnostics.h"

#include <algorithm>
#include <utility>

namespace text {

void Diagnostics::error(std::uint32_t file, Diagnostic error)
{
    if (!errorsAdded_.emplace(file, error.place, error.message).second) return;
    if (++errorCount_ > limit_) return;
    const Position position = positionOf(file, error.place);
    errors_.push_back({position, std::move(error)});
}

void Diagnostics::warning(std::uint32_t file, Diagnostic warning)
{
    if (!warningsAdded_.emplace(file, warning.place, warning.message).second) return;
    const Position position = positionOf(file, warning.place);
    warnings_.push_back({position, std::move(warning)});
}

bool Diagnostics::isFirstAt(std::uint32_t file, Place place)
{
    return placesAskedFor_.emplace(file, place).second;
}

Diagnostics::Position Diagnostics::positionOf(std::uint32_t file, Place place) const
{
    return {file, wholeFile_ == WholeFile::last && place.line == 0, place};
}

std::vector<Diagnostic> Diagnostics::inOrder(std::vector<Entry>& entries)
{
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.position < b.position; });
    std::vector<Diagnostic> list;
    list.reserve(entries.size());
    for (Entry& entry : entries) {
        list.push_back(std::move(entry.diagnostic));
    }
    entries.clear();
    return list;
}

std::vector<Diagnostic> Diagnostics::takeErrors()
{
    return inOrder(errors_);
}

std::vector<Diagnostic> Diagnostics::takeWarnings()
{
    return inOrder(warnings_);
}

} // namespace text
