// "Did you mean ...?": the known name that is nearest to one that is not known.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace text {

/// The least number of characters to insert, delete, replace, or swap with their neighbour that makes `a` of
/// `b`; letter case does not count. Where it is more than `limit`, `limit + 1`. Costs the product of the
/// lengths (bytes) at most.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit);

/// Of `known`, the name nearest to `name`, the first of equally near ones: not `name` itself, and not farther
/// than a third of its length, at least 1 (for a single letter, 0). Empty when there is none, or when `name`
/// has more than 64 bytes.
std::string nearestName(std::string_view name, const std::vector<std::string_view>& known);

/// The hint `did you mean 'NAME'?` with the nearest of `known`; empty when there is none.
std::string didYouMean(std::string_view name, const std::vector<std::string_view>& known);

} // namespace text
