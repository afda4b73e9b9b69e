// "Did you mean ...?": the known name that is nearest to one that is not known.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// The edit distance: the least number of insertions, deletions, replacements and swaps of neighbouring bytes that turn `b` into
/// `a`. Letter case does not count.
/// Ensures: a distance above `limit` is given as `limit + 1`. Costs the product of the lengths at most.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit);

/// Of `known`, the name nearest to `name` by edit distance, and the first of equally near ones.
/// Ensures: it is not `name` itself, and not farther than a third of its length, at least 1 (for a single letter, 0). Empty when
/// there is none, or when `name` has more than 64 bytes.
std::string nearestName(std::string_view name, const std::vector<std::string_view>& known);

/// The hint `did you mean 'NAME'?` with the nearest of `known`; empty when there is none.
std::string didYouMean(std::string_view name, const std::vector<std::string_view>& known);

} // namespace text
