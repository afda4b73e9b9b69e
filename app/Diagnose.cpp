#include "app/Diagnose.h"

#include "app/Arguments.h"
#include "app/CircuitSolver.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/ProblemReader.h"
#include "netlist/BenchReader.h"
#include "report/Diagnosis.h"
#include "telemetry/LineReader.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

constexpr const char* helpText =
    R"(Usage: itms diagnose CIRCUIT --inputs A=0,B=1,... --outputs Y=1,... [options]
       itms diagnose CIRCUIT --problems FILE.jsonl [options]

Finds the faulty gates of a circuit: the sets of gates that, if they do not do
what they should, explain the outputs, most probable first.

  CIRCUIT                   a gate-level circuit, a .bench file

What was seen:
  --inputs A=0,B=1,...      the value of every input
  --outputs Y=1,...         the values of the observed outputs, one at least
  --problems FILE           many of both, one JSON object a line (- for standard
                            input): {"id": "p1", "inputs": {"A": 0, "B": 1},
                            "observed": {"Y": 1}}
  --skip-bad                report lines that are in error, and go on

How to search:
  --max-rank N              explanations of up to N faults. Without it, of 1
                            fault, then 2, ..., until there is one
  --up-to N                 ... but of no more than N faults (default 3)
  --max-records N           stop after so many search records a problem (default
                            0: no limit)
  --max-seconds S           stop after so many seconds a problem (default 60;
                            0: no limit)
  --fault-probability P     that a gate is faulty (default 0.01)

What to print:
  -n N                      show the N most probable explanations (default 5;
                            0: all)
  --format table|jsonl      table: for people, the default on a terminal;
                            jsonl: a JSON record a problem, default otherwise
  --color always|never|auto colours in the table (default auto: as NO_COLOR,
                            CLICOLOR_FORCE, CLICOLOR say, else on a terminal)
  --trace                   print the engine's trace instead of the diagnosis
  -q, --quiet               no progress on standard error
  --fail-on fault           end with status 1 when there is a fault
  -h, --help                print this

Exit status: 0 done; 1 a fault was found, with --fail-on fault; 2 an error in
the command line, the circuit or the problems; 3 nothing explains the outputs of
a problem, or a limit cut its search short; 130 interrupted.

Example:
  itms diagnose examples/circuits/c17.bench \
      --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 \
      --outputs G22gat=1,G23gat=1
)";

constexpr std::uint64_t mostFaults = 1000;

SearchLimits limitsOf(const DiagnoseOptions& options)
{
    SearchLimits limits;
    if (options.maxRecords > 0) limits.maxRecords = options.maxRecords;
    if (options.maxSeconds > 0.0) limits.maxSeconds = options.maxSeconds;
    limits.stop = &interruption();
    return limits;
}

bool wantsTable(const DiagnoseOptions& options)
{
    return options.format ? *options.format == "table" : outputIsTerminal();
}

ColourChoice colourChoice(const DiagnoseOptions& options)
{
    if (options.colour == "always") return ColourChoice::always;
    return options.colour == "never" ? ColourChoice::never : ColourChoice::automatic;
}

void checkUsage(const DiagnoseOptions& options)
{
    const bool readings = !options.inputs.empty() || !options.outputs.empty();
    const auto refuse = [](const std::string& message) {
        throw Failure(message + "\n  hint: itms diagnose --help shows an example\n");
    };
    if (options.circuit.empty())
        refuse("no circuit is given\n  expected: the name of a .bench file");
    if (options.problems && readings)
        refuse("--problems brings its own inputs and outputs: leave out --inputs and --outputs");
    if (!options.problems && options.inputs.empty() && options.outputs.empty()) {
        refuse("nothing was observed\n  expected: --inputs and --outputs, or --problems");
    }
    if (!options.problems && options.outputs.empty())
        refuse("no outputs are given: --outputs is missing");
    if (!options.problems && options.inputs.empty())
        refuse("no inputs are given: --inputs is missing");
    if (options.maxRank && options.upTo) refuse("--max-rank and --up-to exclude each other");
    if (options.skipBad && !options.problems) refuse("--skip-bad goes with --problems only");
}

netlist::Circuit readCircuit(const std::string& path)
{
    netlist::BenchResult read = netlist::readBenchFile(path);
    if (!read.circuit) {
        constexpr std::size_t shown = 20;
        std::string text;
        for (std::size_t i = 0; i < std::min(shown, read.errors.size()); ++i) {
            text += read.errors[i].format();
        }
        if (read.errors.size() > shown) {
            text += fmt::format("{}: {} more\n", path,
                                text::counted(read.errors.size() - shown, "error"));
        }
        throw FileFailure(text);
    }
    return std::move(*read.circuit);
}

Failure argumentError(const std::string& option, const Complaint& complaint)
{
    std::string text = option + ": " + complaint.message + "\n";
    if (!complaint.expected.empty()) text += "  expected: " + complaint.expected + "\n";
    if (!complaint.hint.empty()) text += "  hint: " + complaint.hint + "\n";
    return Failure(text);
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// The readings of --inputs or --outputs: SIGNAL=BIT, separated by commas.
void addReadings(ProblemBuilder& builder, Side side, const std::string& option,
                 std::string_view text)
{
    while (true) {
        const std::size_t comma = text.find(',');
        const std::string_view item = trimmed(text.substr(0, comma));
        const std::size_t equals = item.find('=');
        const std::string_view signal = trimmed(item.substr(0, equals));
        if (equals == std::string_view::npos || signal.empty()) {
            throw argumentError(option,
                                {item.empty() ? "a signal is missing between commas, or at the end"
                                              : "found " + text::quoted(item),
                                 "SIGNAL=0 or SIGNAL=1, separated by commas", ""});
        }
        const std::string_view value = trimmed(item.substr(equals + 1));
        if (value != "0" && value != "1") {
            throw argumentError(
                option,
                {fmt::format("the value of {} is {}", text::quoted(signal), text::quoted(value)),
                 "0 or 1",
                 side == Side::output ? "an output that was not observed is left out" : ""});
        }
        if (const auto complaint = builder.add(side, signal, value == "1"))
            throw argumentError(option, *complaint);
        if (comma == std::string_view::npos) return;
        text.remove_prefix(comma + 1);
    }
}

Problem problemOfOptions(const DiagnoseOptions& options, const netlist::Circuit& circuit)
{
    ProblemBuilder builder(circuit);
    for (const std::string& text : options.inputs) {
        addReadings(builder, Side::input, "--inputs", text);
    }
    for (const std::string& text : options.outputs) {
        addReadings(builder, Side::output, "--outputs", text);
    }
    if (const auto complaint = builder.missing(Side::input))
        throw argumentError("--inputs", *complaint);
    if (const auto complaint = builder.missing(Side::output))
        throw argumentError("--outputs", *complaint);
    return builder.finish();
}

// Solves problems one after the other, prints each answer as soon as it is there, and remembers what the exit
// status depends on.
class Run {
public:
    Run(const DiagnoseOptions& options, const netlist::Circuit& circuit)
        : options_(options),
          asTable_(wantsTable(options)), settings_{options.maxRank, options.upTo.value_or(3),
                                                   limitsOf(options)},
          solver_(circuit, options.faultProbability),
          table_(circuit, options.problems ? report::Layout::many : report::Layout::single,
                 report::Colours(wantsColour(colourChoice(options))), options.shown),
          progress_(!options.quiet)
    {
        if (asTable_) answer(table_.heading());
    }

    void solve(const Problem& problem)
    {
        ++count_;
        const report::Diagnosis diagnosis = solver_.solve(problem, settings_, [&](int bound) {
            const std::string name = problem.id.value_or(fmt::format("problem {}", count_));
            progress_.show(fmt::format("{}: searching for up to {} ...", text::quoted(name),
                                       text::counted(static_cast<std::uint64_t>(bound), "fault")));
        });
        progress_.clear();
        answer(asTable_ ? table_.rows(diagnosis) : report::diagnosisJson(diagnosis, options_.shown));
        const bool nominal = diagnosis.status == monitor::StepStatus::nominal;
        unexplained_ = unexplained_ || !diagnosis.complete || diagnosis.explanations.empty();
        faultFound_ = faultFound_ || (!nominal && !diagnosis.explanations.empty());
    }

    // All problems of a file; a line in error ends the run, or is left out.
    void solveAll(telemetry::LineReader& reader, const netlist::Circuit& circuit)
    {
        std::string_view line;
        while (!interruption() && reader.next(line)) {
            if (trimmed(line).empty()) continue;
            auto read = readProblem(line, circuit);
            if (const auto* problem = std::get_if<Problem>(&read)) {
                solve(*problem);
                continue;
            }
            auto& error = std::get<text::Diagnostic>(read);
            error.file = reader.name();
            error.place.line = reader.lineNumber();
            if (!options_.skipBad) throw FileFailure(error.format());
            complain(error.format());
            ++leftOut_;
        }
    }

    ExitStatus finish()
    {
        if (asTable_) answer(table_.summary(leftOut_));
        if (interruption()) return ExitStatus::interrupted;
        if (leftOut_ > 0 && !options_.quiet) {
            complain(
                fmt::format("itms diagnose: {} left out\n", text::counted(leftOut_, "bad line")));
        }
        if (unexplained_) return ExitStatus::unexplained;
        return faultFound_ && options_.failOn ? ExitStatus::faultFound : ExitStatus::done;
    }

private:
    // With a trace, standard output is the trace's.
    void answer(std::string_view text)
    {
        if (!options_.trace && !text.empty()) print(text);
    }

    const DiagnoseOptions& options_;
    bool asTable_;
    SolverSettings settings_;
    CircuitSolver solver_;
    report::DiagnosisTable table_;
    Progress progress_;
    std::size_t count_ = 0;
    std::size_t leftOut_ = 0;
    bool unexplained_ = false;
    bool faultFound_ = false;
};

} // namespace

CLI::App* addDiagnose(CLI::App& program, DiagnoseOptions& options)
{
    CLI::App* verb = program.add_subcommand("diagnose");
    verb->allow_extras();
    verb->formatter_fn(
        [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return helpText; });
    const auto takeAll = CLI::MultiOptionPolicy::TakeAll;
    verb->add_option("circuit", options.circuit);
    verb->add_option("--inputs", options.inputs)->expected(1)->multi_option_policy(takeAll);
    verb->add_option("--outputs", options.outputs)->expected(1)->multi_option_policy(takeAll);
    verb->add_option("--problems", options.problems);
    verb->add_flag("--skip-bad", options.skipBad);
    verb->add_option("--max-rank", options.maxRank)->check(wholeNumber(0, mostFaults));
    verb->add_option("--up-to", options.upTo)->check(wholeNumber(1, mostFaults));
    verb->add_option("--max-records", options.maxRecords)
        ->check(wholeNumber(0, std::numeric_limits<std::uint64_t>::max()));
    verb->add_option("--max-seconds", options.maxSeconds)
        ->check(number(0.0, std::numeric_limits<double>::infinity(), false));
    verb->add_option("--fault-probability", options.faultProbability)->check(number(0.0, 1.0, true));
    verb->add_option("-n", options.shown)
        ->check(wholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
    verb->add_option("--format", options.format)->check(oneOf({"table", "jsonl"}));
    verb->add_option("--color", options.colour)->check(oneOf({"always", "never", "auto"}));
    verb->add_option("--fail-on", options.failOn)->check(oneOf({"fault"}));
    verb->add_flag("--trace", options.trace);
    verb->add_flag("-q,--quiet", options.quiet);
    return verb;
}

ExitStatus diagnose(const DiagnoseOptions& options)
{
    checkUsage(options);
    const netlist::Circuit circuit = readCircuit(options.circuit);
    if (!options.trace) muteTrace();
    catchInterruptions();
    if (options.problems) {
        telemetry::LineReader reader(*options.problems);
        Run run(options, circuit);
        run.solveAll(reader, circuit);
        return run.finish();
    }
    const Problem problem = problemOfOptions(options, circuit);
    Run run(options, circuit);
    run.solve(problem);
    return run.finish();
}

} // namespace app
