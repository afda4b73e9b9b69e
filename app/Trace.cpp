#include "app/Trace.h"

#include "app/Interruption.h"
#include "app/Output.h"

#include <fmt/format.h>
#include <iostream>
#include <streambuf>

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
  itms trace examples/water/station.itms examples/water/stuck-valve.jsonl --step 11
)";

// Hands on what the engine writes, and knows whether that was anything. While it lives, std::cout writes here.
class TraceBuffer : public std::streambuf {
public:
    TraceBuffer() : target_(std::cout.rdbuf()) {}
    ~TraceBuffer() override { std::cout.rdbuf(target_); }
    TraceBuffer(const TraceBuffer&) = delete;
    TraceBuffer& operator=(const TraceBuffer&) = delete;

    // Also ends the failed state in which the trace is muted.
    void open() { std::cout.rdbuf(this); }
    bool empty() const { return empty_; }

protected:
    int_type overflow(int_type character) override
    {
        if (traits_type::eq_int_type(character, traits_type::eof())) return target_->pubsync();
        empty_ = false;
        return target_->sputc(traits_type::to_char_type(character));
    }
    std::streamsize xsputn(const char* text, std::streamsize count) override
    {
        empty_ = empty_ && count == 0;
        return target_->sputn(text, count);
    }
    int sync() override { return target_->pubsync(); }

private:
    std::streambuf* target_;
    bool empty_ = true;
};

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
    TraceBuffer buffer;
    track.takeUntil(options.step, [&buffer] { buffer.open(); });
    if (interruption()) return ExitStatus::interrupted;
    checkWritten();
    const monitor::TrackAnswer& answer = track.answer();
    const bool explained = answer.complete && answer.status != monitor::TrackStatus::inconsistent;
    if (buffer.empty() && !options.track.quiet) {
        complain(fmt::format("itms trace: the engine did not search step {}{}\n", answer.step,
                             answer.work.records == 0 && explained ? ": it is as expected" : ""));
    }
    return explained ? ExitStatus::done : ExitStatus::unexplained;
}

} // namespace app
