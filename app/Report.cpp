// The verb `report`: a run as one page, to be opened in a browser.
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/ReportFile.h"
#include "app/Verbs.h"

namespace app {

namespace {

struct ReportOptions {
    TrackOptions track;
    std::optional<std::string> output; ///< a file, or `-`
    std::uint64_t shown = 5;
    double mass = 0.99;
};

FileRoles filesOf(const ReportOptions& options)
{
    FileRoles files;
    if (options.output == "-") {
        files.writesStandardOutput();
    } else {
        files.writes(options.output, "the report", "-o");
    }
    return files;
}

ExitStatus report(const ReportOptions& options)
{
    if (!options.output) {
        throw Failure("where does the page go?\n  expected: -o FILE, or -o - for standard output\n"
                      "  hint: itms report --help shows an example\n");
    }
    catchInterruptions();
    TrackRun track("report", options.track, settingsOf(options.track), filesOf(options));
    ReportFile page(*options.output, options.track, track, {options.shown, options.mass});
    bool explained = true;
    {
        Pace pace(options.track.quiet);
        const auto take = [&] {
            page.step(reportForPeople(track));
            explained = explained && track.status() == ExitStatus::done;
            pace.step(track.feed().reader().doneShare());
        };
        track.takeUntil({}, {.beforeLast = {}, .after = take});
    }
    if (interruption() && track.step().number == 0) return ExitStatus::interrupted;
    page.write();
    if (!options.track.quiet) track.feed().reportPassedOver("report");
    if (interruption()) return ExitStatus::interrupted;
    return explained ? ExitStatus::done : ExitStatus::unexplained;
}

} // namespace

Verb reportVerb()
{
    const auto options = std::make_shared<ReportOptions>();
    return {
        "report",
        "a run as one page: what is wrong, since when, and why",
        "itms report MODEL TELEMETRY [MORE...] -o FILE.html [options]",
        "Steps through telemetry as itms run does, and writes one page that needs nothing beside "
        "it: the status over time, explanations and their probabilities, the conflicts behind "
        "them with the laws, channels, the plant, and modes. Of a long run the page shows one step "
        "of so many, the worst, and says so.",
        {{"", trackRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to write",
          {{"-o,--output", "FILE", "the page; - for standard output", &options->output,
            fileName(true)},
           shownRow(options->shown, "show the N most probable explanations"),
           massRow(options->mass),
           quietRow(options->track.quiet, "no progress, no warnings")}}},
        "",
        "0 done; 2 an error in the command line, the model or the telemetry, or the page cannot "
        "be written; 3 nothing explains the observations of some step, or a limit cut a search "
        "short; 130 interrupted: the page has the steps until then.",
        "report examples/water/station.itms examples/water/stuck-valve.jsonl \\\n    -o "
        "report.html",
        [options] { return report(*options); }};
}

} // namespace app
