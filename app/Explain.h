// The verb `explain`: why a step's candidates are believed, with the conflicts and laws that they rest on.
#pragma once

#include "app/ExitStatus.h"
#include "app/TrackRun.h"

#include <optional>

namespace app {

/// What the command line asks for.
struct ExplainOptions {
    TrackOptions track;

    std::optional<std::size_t> step; ///< the last one when not given
    std::size_t shown = 5;           ///< 0: all
    double mass = 0.99;
    bool all = false; ///< conflicts of all steps, not of the last ones only
    std::optional<std::string> format;
    std::string colour = "auto";
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addExplain(CLI::App& program, ExplainOptions& options);

/// Does it. Throws Failure.
ExitStatus explain(const ExplainOptions& options);

} // namespace app
