#include "app/Query.h"

#include "app/Arguments.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "language/meaning/FormulaReader.h"
#include "report/Query.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

namespace {

constexpr const char* usage = R"(Usage: itms query MODEL TELEMETRY FORMULA [options]

Tells at which steps a formula holds: in the most probable explanation, and with
which probability over all that are kept.

  FORMULA                   'valve.position = stuckClosed & valve.outflow != zero';
                            with =, !=, in {...}, !, &, |, ->, <->, parentheses,
                            between variables, too. Paths are as seen from the
                            system: valve.position, branch.valve.x, cell[3].x
)";

constexpr const char* ownOptions = R"(
What to print:
  --format table|jsonl|json table: for people, the default on a terminal: the
                            steps at which something changed; jsonl: a JSON
                            record a step, default otherwise; json: one array
  --every-step              in the table, steps without a change as well
  --color always|never|auto colours in the table (default auto: as NO_COLOR,
                            CLICOLOR_FORCE, CLICOLOR say, else on a terminal)
  -q, --quiet               no warnings on standard error
  -h, --help                print this

The answer is true, false, or unknown where an explanation leaves open what the
formula speaks of.

Exit status: 0 done; 2 an error in the command line, the formula, the model or
the telemetry; 3 nothing explains the observations of some step, or a limit cut
a search short; 130 interrupted.

Example:
  itms query examples/water/station.itms examples/water/stuck-valve.jsonl \
      'branchB.valve.position = stuckClosed'
)";

bool wantsTable(const QueryOptions& options)
{
    return options.format ? *options.format == "table" : outputIsTerminal();
}

ColourChoice colourChoice(const QueryOptions& options)
{
    if (options.colour == "always") return ColourChoice::always;
    return options.colour == "never" ? ColourChoice::never : ColourChoice::automatic;
}

// All that is wrong with the formula is told.
language::FormulaClauses clausesOf(const std::string& formula, const language::ReadResult& model)
{
    language::ReadFormula read = language::readFormula(formula, *model.model, model.system);
    if (read.formula) return std::move(*read.formula);
    std::string text;
    for (const text::Diagnostic& error : read.errors) {
        text += error.format();
    }
    throw FileFailure(text);
}

class Query {
public:
    explicit Query(const QueryOptions& options)
        : options_(options), track_("query", options.track),
          query_(track_.plant(), clausesOf(options.formula, track_.model().read())),
          asTable_(wantsTable(options)),
          table_(report::Colours(wantsColour(colourChoice(options))), options.everyStep)
    {
    }

    ExitStatus run()
    {
        if (asTable_) print(table_.heading());
        while (track_.next()) {
            take();
        }
        finish();
        if (interruption()) return ExitStatus::interrupted;
        return unexplained_ ? ExitStatus::unexplained : ExitStatus::done;
    }

private:
    void take()
    {
        const monitor::TrackAnswer& answer = track_.answer();
        unexplained_ =
            unexplained_ || !answer.complete || answer.status == monitor::TrackStatus::inconsistent;
        const report::QueryReport report = report::queryReport(answer, query_.evaluate(answer));
        if (asTable_) {
            print(table_.rows(report));
        } else if (options_.format == "json") {
            std::string record = report::queryJson(report);
            record.pop_back();
            print((steps_ == 0 ? "[\n" : ",\n") + record);
        } else {
            print(report::queryJson(report));
        }
        ++steps_;
    }

    void finish()
    {
        if (asTable_) {
            print(table_.summary(track_.linesLeftOut()));
        } else if (options_.format == "json") {
            print(steps_ == 0 ? "[]\n" : "\n]\n");
        }
        if (track_.linesLeftOut() > 0 && !options_.track.quiet) {
            complain(fmt::format("itms query: {} left out\n",
                                 text::counted(track_.linesLeftOut(), "bad line")));
        }
    }

    const QueryOptions& options_;
    TrackRun track_;
    monitor::StateQuery query_;
    bool asTable_;
    report::QueryTable table_;
    std::size_t steps_ = 0;
    bool unexplained_ = false;
};

} // namespace

CLI::App* addQuery(CLI::App& program, QueryOptions& options)
{
    CLI::App* verb = program.add_subcommand("query");
    verb->allow_extras();
    verb->formatter_fn([](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return std::string(usage) + trackHelp + ownOptions;
    });
    addTrackOptions(*verb, options.track);
    verb->add_option("formula", options.formula);
    verb->add_option("--format", options.format)->check(oneOf({"table", "jsonl", "json"}));
    verb->add_flag("--every-step", options.everyStep);
    verb->add_option("--color", options.colour)->check(oneOf({"always", "never", "auto"}));
    return verb;
}

ExitStatus query(const QueryOptions& options)
{
    if (options.formula.empty() && !options.track.telemetry.empty()) {
        throw Failure("no formula is given\n  expected: a formula in quotes, such as "
                      "'valve.position = open'\n  hint: itms query --help shows an example\n");
    }
    catchInterruptions();
    return Query(options).run();
}

} // namespace app
