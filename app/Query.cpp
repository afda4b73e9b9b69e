// The verb `query`: at which steps a formula holds.
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/TrackRun.h"
#include "app/Verbs.h"

namespace app {

namespace {

struct QueryOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::string formula;
    bool everyStep = false;
};

monitor::StateQuery readFormula(const session::Session& session, const std::string& formula)
{
    try {
        return session.formula(formula);
    } catch (const session::FormulaErrors& errors) {
        throw FileFailure(errors.what());
    }
}

ExitStatus query(const QueryOptions& options)
{
    if (options.formula.empty() && !options.track.telemetry.empty()) {
        throw Failure("no formula is given\n  expected: a formula in quotes, such as "
                      "'valve.position = open'\n  hint: itms query --help shows an example\n");
    }
    catchInterruptions();
    TrackRun track("query", options.track, settingsOf(options.track));
    const monitor::StateQuery formula = readFormula(track.session(), options.formula);
    const auto writer = writersOf(options.answer, print).query(options.everyStep);
    ExitStatus status = ExitStatus::done;
    writer->begin();
    while (track.next()) {
        report::QueryReport report =
            report::queryReport(track.answer(), formula.evaluate(track.answer()));
        report.time = timeOf(track.step());
        writer->step(report);
        if (track.status() != ExitStatus::done) status = track.status();
    }
    writer->end(track.feed().linesLeftOut());
    if (!options.track.quiet) track.feed().reportPassedOver("query");
    return interruption() ? ExitStatus::interrupted : status;
}

} // namespace

Verb queryVerb()
{
    const auto options = std::make_shared<QueryOptions>();
    std::vector<Row> arguments{
        {"FORMULA",
         "",
         "'valve.position = stuckClosed & valve.outflow != zero';\n"
         "with =, !=, in {...}, !, &, |, ->, <->, parentheses,\nbetween variables, too. Paths are "
         "as seen from the\nsystem: valve.position, branch.valve.x, cell[3].x",
         &options->formula,
         {},
         3}};
    for (Row& row : telemetryRows(options->track)) {
        arguments.push_back(std::move(row));
    }
    return {
        "query",
        "tells at which steps a formula holds",
        "itms query MODEL TELEMETRY FORMULA [options]",
        "Tells at which steps a formula holds: in the most probable explanation, and with which "
        "probability over all that are kept.",
        {{"", std::move(arguments)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to print",
          {formatRow(options->answer, {"table", "jsonl", "json"},
                     "table: for people, the default on a terminal: the steps at which something "
                     "changed; jsonl: a JSON record a step, default otherwise; json: one array"),
           {"--every-step", "", "in the table, steps without a change as well", &options->everyStep, {}},
           colourRow(options->answer),
           quietRow(options->track.quiet, "no warnings")}}},
        "The answer is true, false, or unknown where an explanation leaves open what the formula "
        "speaks of.",
        "0 done; 2 an error in the command line, the formula, the model or the telemetry; 3 "
        "nothing explains the observations of some step, or a limit cut a search short; 130 "
        "interrupted.",
        "query examples/water/station.itms examples/water/stuck-valve.jsonl \\\n"
        "    'branchB.valve.position = stuckClosed'",
        [options] { return query(*options); }};
}

} // namespace app
