// The verb `graph`: components and what connects them, as a picture for other programs.
#include "app/Graphviz.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/TrackRun.h"
#include "app/Verbs.h"
#include "report/PlantGraph.h"
#include "text/NearestName.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

namespace {

struct GraphOptions {
    TrackOptions track;
    std::string format = "dot";
    std::optional<std::uint64_t> step;
    std::optional<std::string> around;
    std::uint64_t hops = 1;
};

// Throws Failure when the plant has no such component.
void choose(report::PlantGraph& graph, const GraphOptions& options)
{
    if (!options.around || report::showAround(graph, *options.around, options.hops)) return;
    const std::vector<std::string>& names = graph.outline.components;
    const std::string hint =
        text::didYouMean(*options.around, std::vector<std::string_view>(names.begin(), names.end()));
    throw Failure(fmt::format("--around: {} is not a component of this plant\n"
                              "  expected: a name such as {}\n{}",
                              text::quoted(*options.around), text::quoted(names.front()),
                              hint.empty() ? "" : "  hint: " + hint + "\n"));
}

void draw(const report::PlantGraph& graph, const std::string& format)
{
    if (format == "json") {
        print(report::graphJson(graph));
    } else if (format == "dot") {
        print(report::graphDot(graph));
    } else {
        drawSvg(report::graphDot(graph));
    }
}

ExitStatus graphOfModel(const GraphOptions& options)
{
    if (options.step) {
        throw Failure(
            "--step needs the telemetry\n  expected: itms graph MODEL TELEMETRY --step N\n");
    }
    FileRoles files = TrackRun::printing();
    const session::Session session =
        openModel("graph", options.track.model, files, options.track.quiet);
    report::PlantGraph graph = report::graphOf(session.read());
    choose(graph, options);
    draw(graph, options.format);
    return ExitStatus::done;
}

ExitStatus graphOfStep(const GraphOptions& options)
{
    catchInterruptions();
    TrackRun track("graph", options.track, settingsOf(options.track));
    report::PlantGraph graph = report::graphOf(track.session().read());
    choose(graph, options);
    {
        Pace pace(options.track.quiet);
        track.takeUntil(options.step,
                        {.beforeLast = {},
                         .after = [&] { pace.step(track.feed().reader().doneShare()); },
                         .wanted = "one at least, to be drawn"});
    }
    if (interruption()) return ExitStatus::interrupted;
    graph.step = report::graphStep(track.session().plant(), reportOf(track), track.answer());
    draw(graph, options.format);
    return track.status();
}

std::vector<Row> inputRows(TrackOptions& track)
{
    std::vector<Row> rows = telemetryRows(track);
    rows[1].help = "commands and observations, for the modes at a step; - for standard input";
    return rows;
}

} // namespace

Verb graphVerb()
{
    const auto options = std::make_shared<GraphOptions>();
    return {
        "graph",
        "draws the components of a plant and the laws that connect them",
        "itms graph MODEL [TELEMETRY [--step N]] [options]",
        "Draws a plant: a node for each component, a box around the parts of a part, an edge for "
        "a law that connects two of them, and a point for one that connects more. With telemetry, "
        "the modes in the most probable explanation, and how probable it is that a component is "
        "not as it should be.",
        {{"", inputRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to draw",
          {stepRow(options->step, "the step, from 1 (default: the last one)"),
           {"--around",
            "COMPONENT",
            "only this component, its parts, and what is near",
            &options->around,
            {}},
           {"--hops", "N", "... as far as N laws lead (default {default})", &options->hops,
            wholeNumber(0, 1000)},
           {"--format", "dot|svg|json",
            "dot: for Graphviz (default); svg: a picture, which\nGraphviz draws; json: one object",
            &options->format, oneOf({"dot", "svg", "json"})},
           quietRow(options->track.quiet, "no progress, no warnings")}}},
        "",
        stepExitStatus,
        "graph examples/water/station.itms examples/water/stuck-valve.jsonl \\\n"
        "    --step 13 --around branchB/valve --format svg > valve.svg",
        [options] {
            return options->track.telemetry.empty() ? graphOfModel(*options) : graphOfStep(*options);
        }};
}

} // namespace app
