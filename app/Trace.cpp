#include "app/Trace.h"

#include "app/Interruption.h"
#include "app/Output.h"

#include <fmt/format.h>

namespace app {

namespace {

constexpr const char* usage = R"(Usage: itms trace MODEL TELEMETRY --step N [options]

Prints the engine's own trace of a step, byte for byte: the conflicts that it
meets, the candidates that it makes of them, and what follows from each. A step
that is as expected is not searched, and has no trace. Addresses in it differ
from run to run.

)";

constexpr const char* ownOptions = R"(
What to print:
  --step N                  the trace of step N; has to be given
  --setup                   before it, the trace of the engine's set-up
  -q, --quiet               no warnings and notes on standard error
  -h, --help                print this

Exit status: 0 done; 2 an error in the command line, the model or the telemetry;
3 nothing explains the observations of the step, or a limit cut its search short;
130 interrupted.

Example:
  itms trace examples/water/station.itms examples/water/stuck-valve.jsonl --step 3
)";

// Counts on what a failed stream does not do: to write.
void unmuteTrace()
{
    std::cout.clear();
}

void checkWritten()
{
    std::cout.flush();
    if (!std::cout.good()) throw Failure("cannot write to standard output\n");
}

} // namespace

CLI::App* addTrace(CLI::App& program, TraceOptions& options)
{
    CLI::App* verb = program.add_subcommand("trace");
    verb->allow_extras();
    verb->formatter_fn([](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return std::string(usage) + trackHelp + ownOptions;
    });
    addTrackOptions(*verb, options.track);
    addStepOption(*verb, options.step);
    verb->add_flag("--setup", options.setup);
    return verb;
}

ExitStatus trace(const TraceOptions& options)
{
    if (!options.step) {
        throw Failure("no step is given\n  expected: --step N\n"
                      "  hint: itms run shows at which steps something was found\n");
    }
    catchInterruptions();
    TrackRun track("trace", options.track, options.setup);
    if (options.setup) checkWritten();
    muteTrace();
    track.takeUntil(options.step, unmuteTrace);
    if (interruption()) return ExitStatus::interrupted;
    checkWritten();
    const monitor::TrackAnswer& answer = track.answer();
    const bool explained = answer.complete && answer.status != monitor::TrackStatus::inconsistent;
    if (answer.work.records == 0 && !options.track.quiet) {
        complain(fmt::format("itms trace: step {} was not searched{}\n", answer.step,
                             explained ? ": it is as expected" : ""));
    }
    return explained ? ExitStatus::done : ExitStatus::unexplained;
}

} // namespace app
