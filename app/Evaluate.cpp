// The verb `evaluate`: how good a monitor is, held against what is known to have been wrong.
#include "app/Interruption.h"
#include "app/LabelFile.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/Verbs.h"
#include "assess/Evaluator.h"
#include "report/Evaluation.h"

#include <limits>

namespace app {

namespace {

struct EvaluateOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::optional<std::string> labels;
    double alarm = 0.5;
    double grace = 0;
    std::uint64_t shown = 5;
    double mass = 0.99;
};

FileRoles evaluatedFiles(const EvaluateOptions& options)
{
    FileRoles files = TrackRun::printing();
    files.reads(*options.labels, "the labels");
    return files;
}

std::vector<std::size_t> emptyLabels(const assess::Evaluation& evaluation)
{
    std::vector<std::size_t> lines;
    for (const assess::EventScore& event : evaluation.events) {
        if (event.steps == 0) lines.push_back(event.label.line);
    }
    return lines;
}

ExitStatus evaluate(const EvaluateOptions& options)
{
    if (!options.labels) {
        throw Failure("no labels are given\n  expected: --labels FILE, a table with start, end and "
                      "what\n  hint: itms evaluate --help shows an example\n");
    }
    catchInterruptions();
    TrackRun track("evaluate", options.track, settingsOf(options.track), evaluatedFiles(options));
    assess::Evaluator evaluator(track.session().plant(), readLabelFile(*options.labels, track),
                                {options.alarm, options.grace, track.session().bindings().stepSeconds,
                                 options.shown, options.mass});
    {
        Pace pace(options.track.quiet);
        const auto take = [&] {
            evaluator.take(track.step(), track.answer());
            pace.step(track.feed().reader().doneShare());
        };
        track.takeUntil({}, {.beforeLast = {}, .after = take});
    }
    if (interruption()) return ExitStatus::interrupted;
    const assess::Evaluation evaluation = evaluator.evaluation();
    writersOf(options.answer, print)
        .evaluation()
        ->step({evaluation, track.feed().reader().isWallClock() ? report::Clock::wall
                                                                : report::Clock::seconds});
    if (!options.track.quiet) {
        tellEmptyLabels(*options.labels, emptyLabels(evaluation));
        track.feed().reportPassedOver("evaluate");
    }
    return evaluation.incomplete > 0 || evaluation.inconsistent > 0 ? ExitStatus::unexplained
                                                                    : ExitStatus::done;
}

} // namespace

Verb evaluateVerb()
{
    const auto options = std::make_shared<EvaluateOptions>();
    return {
        "evaluate",
        "how good a monitor is, held against known faults",
        "itms evaluate MODEL TELEMETRY [MORE...] --labels LABELS.csv [options]",
        "Steps through telemetry as itms run does, and holds what is believed against labels, "
        "which say what was wrong and when: how many of the faults are detected and isolated, "
        "after how "
        "long, and how often there is an alarm while nothing is wrong.",
        {{"", trackRows(options->track)},
         {"What is known",
          {{"--labels", "FILE",
            "a table with the columns start, end and what: a component,\nCOMPONENT.MODE, "
            "COMPONENT.MODE = VALUE, or the word fault",
            &options->labels, fileName()},
           {"--grace", "S",
            "after the end of a fault its alarm may last S seconds\nlonger (default {default})",
            &options->grace, number(0.0, std::numeric_limits<double>::max())},
           {"--alarm", "P",
            "an alarm is a step after which a fault is at least so\nprobable (default {default})",
            &options->alarm, number(0.000001, 1.0)}}},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to print",
          {shownRow(options->shown, "what is shown: the N most probable explanations"),
           massRow(options->mass),
           formatRow(options->answer, {"table", "jsonl", "json"},
                     "table: for people, the default on a terminal; jsonl and json: one JSON "
                     "record, default otherwise"),
           colourRow(options->answer), quietRow(options->track.quiet, "no progress, no warnings")}}},
        "Times of labels are those of the telemetry: seconds, or ISO 8601. A label without an end "
        "lasts to the end of the telemetry.",
        "0 done; 2 an error in the command line, the model, the labels or the telemetry; 3 nothing "
        "explains the observations of some step, or a limit cut a search short; 130 interrupted.",
        "evaluate examples/water/station.itms examples/water/stuck-valve.jsonl \\\n    --labels "
        "examples/water/labels.csv",
        [options] { return evaluate(*options); }};
}

} // namespace app
