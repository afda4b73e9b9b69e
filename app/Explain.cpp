// The verb `explain`: why a step's candidates are believed, with the conflicts and laws that they rest on.
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/TrackRun.h"
#include "app/Verbs.h"

namespace app {

namespace {

struct ExplainOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::optional<std::uint64_t> step;
    std::uint64_t shown = 5;
    double mass = 0.99;
    bool all = false;
};

session::Settings explainSettings(const ExplainOptions& options)
{
    session::Settings settings = settingsOf(options.track);
    settings.history = options.all ? session::Settings::wholeHistory : 10;
    return settings;
}

ExitStatus explain(const ExplainOptions& options)
{
    catchInterruptions();
    TrackRun track("explain", options.track, explainSettings(options));
    {
        Pace pace(options.track.quiet);
        track.takeUntil(options.step,
                        {.beforeLast = {},
                         .after = [&] { pace.step(track.feed().reader().doneShare()); },
                         .wanted = "one at least, to be explained"});
    }
    if (interruption()) return ExitStatus::interrupted;
    const session::Session& session = track.session();
    monitor::Meter meter(session.settings().limits, session.settings().work);
    report::StepExplanation explanation =
        report::explainStep({session.plant(), session.read(), session.history(), session.answer()},
                            {options.shown, options.mass});
    explanation.report.time = timeOf(track.step());
    writersOf(options.answer, print).explanation()->step(explanation);
    return track.status();
}

} // namespace

Verb explainVerb()
{
    const auto options = std::make_shared<ExplainOptions>();
    return {
        "explain",
        "tells why a step's candidates are believed: conflicts and laws",
        "itms explain MODEL TELEMETRY [MORE...] [options]",
        "Tells why the candidates of a step are believed: the conflicts between what was read and "
        "what was expected, each with the modes, readings and laws that it rests on; which of them "
        "a candidate resolves; and what it does not explain. Every conflict is confirmed by a "
        "separate check.",
        {{"", trackRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to explain",
          {stepRow(options->step, "the step, from 1 (default: the last one)"),
           shownRow(options->shown, "of the N most probable candidates"),
           massRow(options->mass),
           {"--all",
            "",
            "conflicts of all steps up to then; else of the last 10\nthat had any",
            &options->all,
            {}},
           formatRow(options->answer, {"text", "json"},
                     "text: for people, the default on a terminal; json: one\nobject, default "
                     "otherwise"),
           colourRow(options->answer, "text"),
           quietRow(options->track.quiet, "no progress, no warnings")}}},
        "",
        stepExitStatus,
        "explain examples/water/station.itms examples/water/stuck-valve.jsonl \\\n    --step 13",
        [options] { return explain(*options); }};
}

} // namespace app
