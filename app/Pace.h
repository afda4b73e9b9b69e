// How fast a long run goes, for whoever watches a terminal.
#pragma once

#include "app/Output.h"

#include <chrono>
#include <cstddef>

namespace app {

/// Shows steps per second and the time left, twice a second at most.
class Pace {
public:
    explicit Pace(bool quiet) : progress_(!quiet) {}

    /// Counts a step; `doneShare` of the input is read, 0 where that is not known.
    void step(double doneShare);
    /// Takes the line off the terminal, before something else is printed there.
    void clear() { progress_.clear(); }

private:
    Progress progress_;
    std::size_t steps_ = 0;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point nextShow_ = start_;
};

} // namespace app
