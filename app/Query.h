// The verb `query`: at which steps a formula holds.
#pragma once

#include "app/ExitStatus.h"
#include "app/TrackRun.h"

#include <optional>

namespace app {

/// What the command line asks for.
struct QueryOptions {
    TrackOptions track;
    std::string formula;

    std::optional<std::string> format;
    std::string colour = "auto";
    bool everyStep = false;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addQuery(CLI::App& program, QueryOptions& options);

/// Does it. Throws Failure.
ExitStatus query(const QueryOptions& options);

} // namespace app
