// The verb `trace`: what the engine prints while the monitor searches a step.
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/TrackRun.h"
#include "app/Verbs.h"

#include <fmt/format.h>
#include <iostream>
#include <streambuf>

namespace app {

namespace {

struct TraceOptions {
    TrackOptions track;
    std::optional<std::uint64_t> step; ///< has to be given
    bool setup = false;                ///< what the engine prints when it is set up, too
};

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

ExitStatus trace(const TraceOptions& options)
{
    if (!options.step) {
        throw Failure("no step is given\n  expected: --step N\n"
                      "  hint: itms run shows at which steps something was found\n");
    }
    catchInterruptions();
    if (!options.setup) muteTrace();
    TrackRun track("trace", options.track, settingsOf(options.track), TrackRun::printing(), true);
    if (options.setup) checkTrace();
    muteTrace();
    TraceBuffer buffer;
    track.takeUntil(
        options.step,
        {.beforeLast = [&buffer] { buffer.open(); }, .after = {}, .wanted = "one at least"});
    if (interruption()) return ExitStatus::interrupted;
    checkTrace();
    const monitor::TrackAnswer& answer = track.answer();
    const ExitStatus status = track.status();
    if (buffer.empty() && !options.track.quiet) {
        const bool expected = answer.work.records == 0 && status == ExitStatus::done;
        complain(fmt::format("itms trace: the engine did not search step {}{}\n", answer.step,
                             expected ? ": it is as expected" : ""));
    }
    return status;
}

} // namespace

Verb traceVerb()
{
    const auto options = std::make_shared<TraceOptions>();
    return {
        "trace",
        "prints the engine's own trace of a step",
        "itms trace MODEL TELEMETRY [MORE...] --step N [options]",
        "Prints the engine's own trace of a step, byte for byte: the conflicts that it meets, the "
        "candidates that it makes of them, and what follows from each. A step that is as expected "
        "is not searched, and has no trace. Addresses in it differ from run to run.",
        {{"", trackRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to print",
          {stepRow(options->step, "the trace of step N; has to be given"),
           {"--setup", "", "before it, the trace of the engine's set-up", &options->setup, {}},
           quietRow(options->track.quiet, "no warnings and notes")}}},
        "",
        stepExitStatus,
        "trace examples/water/station.itms examples/water/stuck-valve.jsonl --step 11",
        [options] { return trace(*options); }};
}

} // namespace app
