// The verb `advise`: which variable to measure next.
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/TrackRun.h"
#include "app/Verbs.h"

namespace app {

namespace {

struct AdviseOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::optional<std::uint64_t> step;
    bool modes = false;
    bool all = false;
    std::uint64_t shown = 5;
};

ExitStatus advise(const AdviseOptions& options)
{
    catchInterruptions();
    TrackRun track("advise", options.track, settingsOf(options.track));
    track.takeUntil(options.step);
    if (interruption()) return ExitStatus::interrupted;
    const session::Session& session = track.session();
    const monitor::Advice advice =
        session.advise({options.modes, options.all ? std::vector<bool>() : session.measurable()});
    report::AdviceReport report =
        report::adviceReport(session.plant(), session.bindings(), session.answer(), advice);
    report.step.time = timeOf(track.step());
    writersOf(options.answer, print).advice(options.shown)->step(report);
    return advice.limit == SearchLimit::none ? track.status() : ExitStatus::unexplained;
}

} // namespace

Verb adviseVerb()
{
    const auto options = std::make_shared<AdviseOptions>();
    return {
        "advise",
        "tells which variable to measure next",
        "itms advise MODEL TELEMETRY [MORE...] [--step N] [options]",
        "Tells which variable to measure next to tell the explanations of a step apart: those that "
        "leave the least doubt on average first, each with what its outcomes would mean.",
        {{"", trackRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to ask",
          {stepRow(options->step, "after step N (default: the last one)"),
           {"--modes", "", "modes can be looked at, too, not only conditions", &options->modes, {}},
           {"--all",
            "",
            "everything can be measured, not only what has a channel or\nis declared measurable",
            &options->all,
            {}}}},
         {"What to print",
          {shownRow(options->shown, "the N best measurements"),
           formatRow(options->answer, {"table", "jsonl", "json"},
                     "table: for people, the default on a terminal; jsonl and json: one JSON "
                     "record, default otherwise"),
           colourRow(options->answer), quietRow(options->track.quiet, "no warnings")}}},
        "Doubt is the entropy of the explanations, in bits: 1 bit for two that are "
        "equally\nprobable.",
        stepExitStatus,
        "advise examples/water/station.itms examples/water/stuck-valve.jsonl",
        [options] { return advise(*options); }};
}

} // namespace app
