// The verb `run`: the diagnosis of a plant, step by step, from a file of telemetry or live.
#pragma once

#include "app/ExitStatus.h"
#include "app/TrackRun.h"

#include <optional>

namespace app {

/// What the command line asks for.
struct RunOptions {
    TrackOptions track;

    std::size_t shown = 5; ///< 0: all
    double mass = 0.99;
    std::optional<std::string> format;
    std::string colour = "auto";
    bool everyStep = false;
    std::optional<std::string> failOn;
    std::optional<std::string> output;

    std::optional<std::string> checkpoint;
    std::size_t checkpointEvery = 1000; ///< steps
    bool resume = false;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addRun(CLI::App& program, RunOptions& options);

/// Does it. Throws Failure.
ExitStatus run(const RunOptions& options);

} // namespace app
