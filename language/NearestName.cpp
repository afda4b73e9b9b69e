#include "language/NearestName.h"

#include <algorithm>

namespace language {

namespace {

char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

} // namespace

// Dynamic programming over prefixes, three rows kept: distances of a's prefix of length i to every prefix of b.
// The values of a row bound all later ones from below, so the search ends when a row and the one before exceed
// the limit.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit)
{
    const std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
    if (difference > limit) return limit + 1;
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0U : 1U)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                lower(a[i - 2]) == lower(b[j - 1])) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        if (*std::min_element(row.begin(), row.end()) > limit &&
            *std::min_element(last.begin(), last.end()) > limit) {
            return limit + 1;
        }
    }
    return std::min(row[b.size()], limit + 1);
}

std::string nearestName(std::string_view name, const std::vector<std::string_view>& known)
{
    constexpr std::size_t longest = 64;
    if (name.size() > longest) return {};
    // Of a single letter nothing would be left: there only its case may differ.
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

} // namespace language
