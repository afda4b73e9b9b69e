#include "text/ErrorList.h"

#include <algorithm>
#include <utility>

namespace text {

void ErrorList::add(Place place, std::size_t length, std::string message, std::string expected,
                    std::string hint)
{
    Diagnostic& error = errors_.emplace_back();
    error.file = file_;
    error.place = place;
    error.message = std::move(message);
    error.expected = std::move(expected);
    error.hint = std::move(hint);
    if (place.line > 0) error.quote(lines_[place.line - 1], length);
}

std::vector<Diagnostic> ErrorList::take()
{
    std::stable_sort(errors_.begin(), errors_.end(), [](const Diagnostic& a, const Diagnostic& b) {
        const bool whole = a.place.line == 0;
        const bool otherWhole = b.place.line == 0;
        return whole != otherWhole ? otherWhole : a.place < b.place;
    });
    return std::exchange(errors_, {});
}

} // namespace text
