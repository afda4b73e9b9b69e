#include "app/Explain.h"

#include "app/Arguments.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "report/StepExplanation.h"
#include "text/Wording.h"

#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

constexpr const char* usage = R"(Usage: itms explain MODEL TELEMETRY [options]

Tells why the candidates of a step are believed: the conflicts between what was
read and what was expected, each with the modes, readings and laws that it rests
on; which of them a candidate resolves; and what it does not explain. Every
conflict is confirmed by a separate check.

)";

constexpr const char* ownOptions = R"(
What to explain:
  --step N                  the step, from 1 (default: the last one)
  -n N                      of the N most probable candidates (default 5; 0: all)
  --mass P                  ... but no more than have P of the probability
                            together (default 0.99)
  --all                     conflicts of all steps up to then; else of the last 10
                            that had any
  --format text|json        text: for people, the default on a terminal; json: one
                            object, default otherwise
  --color always|never|auto colours in the text (default auto: as NO_COLOR,
                            CLICOLOR_FORCE, CLICOLOR say, else on a terminal)
  -q, --quiet               no progress, no warnings on standard error
  -h, --help                print this

Exit status: 0 done; 2 an error in the command line, the model or the telemetry;
3 nothing explains the observations of the step, or a limit cut its search short;
130 interrupted.

Example:
  itms explain examples/water/station.itms examples/water/stuck-valve.jsonl \
      --step 13
)";

constexpr std::size_t stepsRemembered = 10;
constexpr std::uint64_t mostSteps = std::uint64_t{1} << 53;

bool wantsText(const ExplainOptions& options)
{
    return options.format ? *options.format == "text" : outputIsTerminal();
}

ColourChoice colourChoice(const ExplainOptions& options)
{
    if (options.colour == "always") return ColourChoice::always;
    return options.colour == "never" ? ColourChoice::never : ColourChoice::automatic;
}

[[noreturn]] void refuseStep(std::optional<std::size_t> wanted, std::size_t steps)
{
    if (steps == 0) {
        throw Failure("the telemetry has no steps\n  expected: one at least, to be explained\n");
    }
    throw Failure(fmt::format("there is no step {}: the telemetry has {}\n"
                              "  expected: --step 1 to --step {}\n",
                              wanted.value_or(0), text::counted(steps, "step"), steps));
}

} // namespace

CLI::App* addExplain(CLI::App& program, ExplainOptions& options)
{
    CLI::App* verb = program.add_subcommand("explain");
    verb->allow_extras();
    verb->formatter_fn([](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return std::string(usage) + trackHelp + ownOptions;
    });
    addTrackOptions(*verb, options.track);
    verb->add_option("--step", options.step)->check(wholeNumber(1, mostSteps));
    verb->add_option("-n", options.shown)
        ->check(wholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
    verb->add_option("--mass", options.mass)->check(number(0.0, 1.0, false));
    verb->add_flag("--all", options.all);
    verb->add_option("--format", options.format)->check(oneOf({"text", "json"}));
    verb->add_option("--color", options.colour)->check(oneOf({"always", "never", "auto"}));
    return verb;
}

ExitStatus explain(const ExplainOptions& options)
{
    catchInterruptions();
    TrackRun track("explain", options.track);
    monitor::ConflictHistory history(options.all ? 0 : stepsRemembered);
    Pace pace(options.track.quiet);
    std::size_t steps = 0;
    while (steps < options.step.value_or(mostSteps) && track.next()) {
        ++steps;
        history.add(track.input(), track.answer());
        pace.step(track.reader().doneShare());
    }
    pace.clear();
    if (interruption()) return ExitStatus::interrupted;
    if (steps == 0 || steps < options.step.value_or(0)) refuseStep(options.step, steps);

    const report::StepExplanation explanation =
        report::explainStep({track.plant(), track.model().read(), history, track.answer()},
                            {options.shown, options.mass});
    const report::Colours colours(wantsColour(colourChoice(options)));
    print(wantsText(options) ? explanationText(explanation, colours) : explanationJson(explanation));
    const bool explained = explanation.report.status != monitor::TrackStatus::inconsistent;
    return explained && explanation.report.complete ? ExitStatus::done : ExitStatus::unexplained;
}

} // namespace app
