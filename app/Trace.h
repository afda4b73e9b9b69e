// The verb `trace`: what the engine prints while the monitor searches a step.
#pragma once

#include "app/ExitStatus.h"
#include "app/TrackRun.h"

#include <optional>

namespace app {

/// What the command line asks for.
struct TraceOptions {
    TrackOptions track;
    std::optional<std::size_t> step; ///< has to be given
    bool setup = false;              ///< what the engine prints when it is set up, too
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addTrace(CLI::App& program, TraceOptions& options);

/// Does it. Throws Failure.
ExitStatus trace(const TraceOptions& options);

} // namespace app
