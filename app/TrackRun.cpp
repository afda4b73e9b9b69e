#include "app/TrackRun.h"

#include "app/Arguments.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "report/Text.h"
#include "session/StepInput.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

constexpr std::uint64_t mostFaults = 1000;
constexpr std::uint64_t mostSteps = 100000;
constexpr std::uint64_t mostStepNumber = std::uint64_t{1} << 53;

const std::string& telemetryOf(const std::string& verb, const TrackOptions& options)
{
    if (options.telemetry.empty()) {
        throw Failure(fmt::format("no telemetry is given\n"
                                  "  expected: the name of a file, or - for standard input\n"
                                  "  hint: itms {} --help shows an example\n",
                                  verb));
    }
    return options.telemetry;
}

monitor::TrackSettings settingsOf(const TrackOptions& options)
{
    monitor::TrackSettings settings;
    settings.maxFaults = options.maxRank;
    settings.keep = options.keep;
    settings.lookBack = options.lookBack;
    if (options.maxRecords > 0) settings.limits.maxRecords = options.maxRecords;
    if (options.maxSeconds > 0.0) settings.limits.maxSeconds = options.maxSeconds;
    return settings;
}

} // namespace

const char* const trackHelp =
    R"(  MODEL                     a model file, .itms, or one that itms export wrote
  TELEMETRY                 commands and observations: JSON Lines or CSV; - for
                            standard input
  -I, --import FOLDER       look for imported model files there, too
  --skip-bad                report lines that are in error, and go on

How to search:
  --max-rank N              up to N faults along the whole way (default 3)
  --keep N                  keep the N most probable hypotheses (default 8)
  --look-back N             go back up to N steps for faults that show late
                            (default 10)
  --max-records N           stop searching a step after so many records
                            (default 100000; 0: no limit)
  --max-seconds S           ... after so many seconds (default 0: no limit)
)";

void addTrackOptions(CLI::App& verb, TrackOptions& options)
{
    addModelOptions(verb, options.model);
    verb.add_option("telemetry", options.telemetry);
    verb.add_flag("--skip-bad", options.skipBad);
    verb.add_option("--max-rank", options.maxRank)->check(wholeNumber(0, mostFaults));
    verb.add_option("--keep", options.keep)->check(wholeNumber(1, mostSteps));
    verb.add_option("--look-back", options.lookBack)->check(wholeNumber(0, mostSteps));
    verb.add_option("--max-records", options.maxRecords)
        ->check(wholeNumber(0, std::numeric_limits<std::uint64_t>::max()));
    verb.add_option("--max-seconds", options.maxSeconds)
        ->check(number(0.0, std::numeric_limits<double>::infinity(), false));
    verb.add_flag("-q,--quiet", options.quiet);
}

void addStepOption(CLI::App& verb, std::optional<std::size_t>& step)
{
    verb.add_option("--step", step)->check(wholeNumber(1, mostStepNumber));
}

TrackRun::TrackRun(const std::string& verb, const TrackOptions& options, bool trace)
    : model_(verb, options.model, options.quiet, trace), skipBad_(options.skipBad),
      reader_(telemetryOf(verb, options), *model_.read().model, model_.bindings(),
              {.skipBad = options.skipBad}),
      tracker_(model_.engine(), model_.plant(), settingsOf(options))
{
}

bool TrackRun::next()
{
    while (!interruption()) {
        auto next = reader_.next();
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            if (!skipBad_ || mistake->endsReading) throw FileFailure(mistake->error.format());
            complain(mistake->error.format());
            ++linesLeftOut_;
            continue;
        }
        auto* step = std::get_if<telemetry::Step>(&next);
        if (!step) return false;
        step_ = std::move(*step);
        input_ = session::trackInput(model_.plant(), model_.bindings(), step_);
        tracker_.advance(input_);
        return true;
    }
    return false;
}

void TrackRun::takeUntil(std::optional<std::size_t> wanted, const std::function<void()>& before)
{
    std::size_t taken = 0;
    while (!wanted || taken < *wanted) {
        if (wanted && taken + 1 == *wanted && before) before();
        if (!next()) break;
        taken = step_.number;
    }
    if (interruption() || (taken > 0 && (!wanted || taken == *wanted))) return;
    if (taken == 0) throw Failure("the telemetry has no steps\n  expected: one at least\n");
    throw Failure(fmt::format("there is no step {}: the telemetry has {}\n"
                              "  expected: --step 1 to --step {}\n",
                              *wanted, text::counted(taken, "step"), taken));
}

} // namespace app
