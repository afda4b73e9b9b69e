// Bookkeeping of work that is done in several searches under common limits.
#pragma once

#include "model/SearchLimits.h"

#include <chrono>

namespace monitor {

/// What is left of limits after some work and since a point in time.
SearchLimits remaining(SearchLimits limits, const SearchWork& work,
                       std::chrono::steady_clock::time_point start);

/// Adds work to a sum.
void add(SearchWork& sum, const SearchWork& work);

} // namespace monitor
