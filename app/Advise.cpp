#include "app/Advise.h"

#include "app/Arguments.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "report/Advice.h"

#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

constexpr const char* usage = R"(Usage: itms advise MODEL TELEMETRY [--step N] [options]

Tells which variable to measure next to tell the explanations of a step apart:
those that leave the least doubt on average first, each with what its outcomes
would mean.

)";

constexpr const char* ownOptions = R"(
What to ask:
  --step N                  after step N (default: the last one)
  --modes                   modes can be looked at, too, not only conditions

What to print:
  -n N                      the N best measurements (default 5; 0: all)
  --format table|jsonl|json table: for people, the default on a terminal; jsonl
                            and json: one JSON record, default otherwise
  --color always|never|auto colours in the table (default auto: as NO_COLOR,
                            CLICOLOR_FORCE, CLICOLOR say, else on a terminal)
  -q, --quiet               no warnings on standard error
  -h, --help                print this

Doubt is the entropy of the explanations, in bits: 1 bit for two that are equally
probable.

Exit status: 0 done; 2 an error in the command line, the model or the telemetry;
3 nothing explains the observations of the step, or a limit cut its search short;
130 interrupted.

Example:
  itms advise examples/water/station.itms examples/water/stuck-valve.jsonl
)";

bool wantsTable(const AdviseOptions& options)
{
    return options.format ? *options.format == "table" : outputIsTerminal();
}

ColourChoice colourChoice(const AdviseOptions& options)
{
    if (options.colour == "always") return ColourChoice::always;
    return options.colour == "never" ? ColourChoice::never : ColourChoice::automatic;
}

} // namespace

CLI::App* addAdvise(CLI::App& program, AdviseOptions& options)
{
    CLI::App* verb = program.add_subcommand("advise");
    verb->allow_extras();
    verb->formatter_fn([](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return std::string(usage) + trackHelp + ownOptions;
    });
    addTrackOptions(*verb, options.track);
    addStepOption(*verb, options.step);
    verb->add_flag("--modes", options.modes);
    verb->add_option("-n", options.shown)
        ->check(wholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
    verb->add_option("--format", options.format)->check(oneOf({"table", "jsonl", "json"}));
    verb->add_option("--color", options.colour)->check(oneOf({"always", "never", "auto"}));
    return verb;
}

ExitStatus advise(const AdviseOptions& options)
{
    catchInterruptions();
    TrackRun track("advise", options.track);
    track.takeUntil(options.step);
    if (interruption()) return ExitStatus::interrupted;
    const monitor::TrackAnswer& answer = track.answer();
    const monitor::Advice advice =
        monitor::advise(track.plant(), answer, track.input().values.observations, {options.modes});
    const report::AdviceReport report =
        report::adviceReport(track.plant(), track.model().bindings(), answer, advice);
    print(wantsTable(options)
              ? report::adviceText(report, options.shown,
                                   report::Colours(wantsColour(colourChoice(options))))
              : report::adviceJson(report, options.shown));
    const bool explained = answer.complete && answer.status != monitor::TrackStatus::inconsistent;
    return explained ? ExitStatus::done : ExitStatus::unexplained;
}

} // namespace app
