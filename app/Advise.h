// The verb `advise`: which variable to measure next.
#pragma once

#include "app/ExitStatus.h"
#include "app/TrackRun.h"

#include <optional>

namespace app {

/// What the command line asks for.
struct AdviseOptions {
    TrackOptions track;
    std::optional<std::size_t> step; ///< the last one where none is given
    bool modes = false;

    std::size_t shown = 5; ///< 0: all
    std::optional<std::string> format;
    std::string colour = "auto";
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addAdvise(CLI::App& program, AdviseOptions& options);

/// Does it. Throws Failure.
ExitStatus advise(const AdviseOptions& options);

} // namespace app
