#include "text/NearestName.h"

#include "text/Diagnostic.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace text {

namespace {

char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

} // namespace

// Dynamic programming over prefixes. A row has the distances of one prefix of a to the prefixes of b; only those prefixes count
// whose lengths differ by no more than the limit. Three rows are kept, since a swap looks two rows back. The values of two
// neighbouring rows bound all later ones from below, so the search ends when both exceed the limit.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit)
{
    const std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
    if (difference > limit) return limit + 1;
    limit = std::min(limit, std::max(a.size(), b.size()));
    std::vector<std::size_t> rows(3 * (b.size() + 1), limit + 1);
    std::size_t* beforeLast = rows.data();
    std::size_t* last = beforeLast + b.size() + 1;
    std::size_t* row = last + b.size() + 1;
    std::iota(row, row + std::min(b.size(), limit) + 1, std::size_t{0});
    std::size_t leastOfLast = 0;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        const std::size_t first = i > limit ? i - limit : 1;
        const std::size_t end = std::min(b.size(), i + limit);
        row[first - 1] = first == 1 ? i : limit + 1;
        std::size_t least = row[first - 1];
        for (std::size_t j = first; j <= end; ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0U : 1U)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                lower(a[i - 2]) == lower(b[j - 1])) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
            least = std::min(least, row[j]);
        }
        if (end < b.size()) row[end + 1] = limit + 1;
        if (least > limit && leastOfLast > limit) return limit + 1;
        leastOfLast = least;
    }
    return std::min(row[b.size()], limit + 1);
}

std::string nearestName(std::string_view name, const std::vector<std::string_view>& known)
{
    constexpr std::size_t longest = 64;
    if (name.size() > longest) return {};
    // Nothing would be left of a single letter: only its case may differ.
    std::size_t limit = name.size() < 2 ? 0 : std::max<std::size_t>(name.size() / 3, 1);
    std::string_view best;
    for (const std::string_view candidate : known) {
        if (candidate == name) continue;
        const std::size_t distance = editDistance(name, candidate, limit);
        if (distance > limit) continue;
        best = candidate;
        if (distance == 0) break;
        limit = distance - 1;
    }
    return std::string(best);
}

std::string didYouMean(std::string_view name, const std::vector<std::string_view>& known)
{
    const std::string nearest = nearestName(name, known);
    return nearest.empty() ? "" : "did you mean " + text::quoted(nearest) + "?";
}

} // namespace text
