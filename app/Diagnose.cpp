// The verb `diagnose`: which gates of a circuit are faulty, given its inputs and what its outputs show.
#include "app/FileRoles.h"
#include "app/Interruption.h"
#include "app/Options.h"
#include "app/Output.h"
#include "app/Verbs.h"
#include "netlist/BenchReader.h"
#include "session/CircuitProblemReader.h"
#include "session/CircuitSession.h"
#include "telemetry/LineReader.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <memory>

namespace app {

namespace {

struct DiagnoseOptions {
    std::string circuit;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::optional<std::string> problems;
    bool skipBad = false;

    std::optional<int> maxRank;
    std::optional<int> upTo;
    bool allMinimal = false;
    std::uint64_t maxRecords = 0; ///< 0: no limit
    double maxSeconds = 60.0;     ///< 0: no limit
    std::uint64_t maxMemory = usualMaxMemory;
    double faultProbability = 0.01;
    std::optional<std::string> search;

    std::uint64_t shown = 5; ///< 0: all
    AnswerOptions answer;
    std::optional<std::string> failOn;
    bool trace = false;
    bool quiet = false;
};

SearchLimits limitsOf(const DiagnoseOptions& options)
{
    SearchLimits limits;
    if (options.maxRecords > 0) limits.maxRecords = options.maxRecords;
    if (options.maxSeconds > 0.0) limits.maxSeconds = options.maxSeconds;
    limits.stop = &interruption();
    return limits;
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
    if (options.maxRank && options.allMinimal) {
        refuse("--max-rank finds all minimal explanations already: leave out --all-minimal, or "
               "say how many faults with --up-to");
    }
    if (options.trace && options.search == "conflicts")
        refuse("--trace is the engine's: leave out --search conflicts");
    if (options.skipBad && !options.problems) refuse("--skip-bad goes with --problems only");
}

session::CircuitSearch searchOf(const DiagnoseOptions& options)
{
    return options.trace || options.search == "engine" ? session::CircuitSearch::engine
                                                       : session::CircuitSearch::conflicts;
}

session::CircuitSettings settingsOf(const DiagnoseOptions& options)
{
    session::CircuitSettings settings{options.maxRank, options.upTo.value_or(3), limitsOf(options),
                                      workLimits(0, options.maxMemory)};
    if (options.allMinimal) settings.maxRank = settings.upTo;
    return settings;
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
            text += fmt::format("{}: {} more\n", text::shownName(path),
                                text::counted(read.errors.size() - shown, "error"));
        }
        throw FileFailure(text);
    }
    return std::move(*read.circuit);
}

Failure argumentError(const std::string& option, const text::Message& message)
{
    return Failure(option + ": " + message.format());
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// The readings of --inputs or --outputs: SIGNAL=BIT, separated by commas.
void addReadings(session::CircuitProblemBuilder& builder, session::Side side,
                 const std::string& option, std::string_view text)
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
                 side == session::Side::output ? "an output that was not observed is left out" : ""});
        }
        if (const auto complaint = builder.add(side, signal, value == "1"))
            throw argumentError(option, *complaint);
        if (comma == std::string_view::npos) return;
        text.remove_prefix(comma + 1);
    }
}

session::CircuitProblem problemOfOptions(const DiagnoseOptions& options,
                                         const netlist::Circuit& circuit)
{
    session::CircuitProblemBuilder builder(circuit);
    for (const std::string& text : options.inputs) {
        addReadings(builder, session::Side::input, "--inputs", text);
    }
    for (const std::string& text : options.outputs) {
        addReadings(builder, session::Side::output, "--outputs", text);
    }
    if (const auto complaint = builder.missing(session::Side::input))
        throw argumentError("--inputs", *complaint);
    if (const auto complaint = builder.missing(session::Side::output))
        throw argumentError("--outputs", *complaint);
    return builder.finish();
}

// Solves problems one after the other, prints each answer as soon as it is there, and remembers what the exit
// status depends on.
class DiagnoseRun {
public:
    DiagnoseRun(const DiagnoseOptions& options, const netlist::Circuit& circuit)
        : options_(options), settings_(settingsOf(options)),
          session_(circuit, options.faultProbability, searchOf(options)),
          writer_(writersOf(options.answer,
                            // With a trace, standard output is the trace's.
                            [this](std::string_view text) {
                                if (!options_.trace && !text.empty()) print(text);
                            })
                      .diagnoses(circuit,
                                 options.problems ? report::Layout::many : report::Layout::single,
                                 options.shown)),
          progress_(!options.quiet)
    {
        writer_->begin();
    }

    void solve(const session::CircuitProblem& problem)
    {
        ++count_;
        const session::CircuitAnswer answer = session_.solve(problem, settings_, [&](int bound) {
            const std::string name = problem.id.value_or(fmt::format("problem {}", count_));
            progress_.show(fmt::format("{}: searching for up to {} ...", text::quoted(name),
                                       text::counted(static_cast<std::uint64_t>(bound), "fault")));
        });
        progress_.clear();
        const report::Diagnosis diagnosis = report::diagnosis(session_, problem, answer);
        writer_->step(diagnosis);
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
            auto read = session::readProblem(line, circuit);
            if (const auto* problem = std::get_if<session::CircuitProblem>(&read)) {
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
        writer_->end(leftOut_);
        if (options_.trace) checkTrace();
        if (interruption()) return ExitStatus::interrupted;
        if (leftOut_ > 0 && !options_.quiet) {
            complain(
                fmt::format("itms diagnose: {} left out\n", text::counted(leftOut_, "bad line")));
        }
        if (unexplained_) return ExitStatus::unexplained;
        return faultFound_ && options_.failOn ? ExitStatus::faultFound : ExitStatus::done;
    }

private:
    const DiagnoseOptions& options_;
    session::CircuitSettings settings_;
    session::CircuitSession session_;
    std::unique_ptr<report::StepWriter<report::Diagnosis>> writer_;
    Progress progress_;
    std::size_t count_ = 0;
    std::size_t leftOut_ = 0;
    bool unexplained_ = false;
    bool faultFound_ = false;
};

ExitStatus diagnose(const DiagnoseOptions& options)
{
    checkUsage(options);
    FileRoles files;
    files.writesStandardOutput();
    files.reads(options.circuit, "the circuit");
    if (options.problems) files.reads(*options.problems, "the problems");
    const netlist::Circuit circuit = readCircuit(options.circuit);
    if (!options.trace) muteTrace();
    catchInterruptions();
    if (options.problems) {
        telemetry::LineReader reader(*options.problems);
        DiagnoseRun run(options, circuit);
        run.solveAll(reader, circuit);
        return run.finish();
    }
    const session::CircuitProblem problem = problemOfOptions(options, circuit);
    DiagnoseRun run(options, circuit);
    run.solve(problem);
    return run.finish();
}

std::vector<Section> sections(DiagnoseOptions& options)
{
    return {
        {"", {{"CIRCUIT", "", "a gate-level circuit, a .bench file", &options.circuit, {}, 1}}},
        {"What was seen",
         {{"--inputs", "A=0,B=1,...", "the value of every input", &options.inputs, {}},
          {"--outputs",
           "Y=1,...",
           "the values of the observed outputs, one at least",
           &options.outputs,
           {}},
          {"--problems",
           "FILE",
           "many of both, one JSON object a line (- for standard input): "
           R"({"id": "p1", "inputs": {"A": 0, "B": 1}, "observed": {"Y": 1}})",
           &options.problems,
           {}},
          skipBadRow(options.skipBad)}},
        {"How to search",
         {{"--max-rank",
           "N", "explanations of up to N faults. Without it, of 1 fault, then 2, ..., until there is one",
           &options.maxRank, wholeNumber(0, mostFaults)},
          {"--up-to", "N", "... but of no more than N faults (default 3)", &options.upTo,
           wholeNumber(1, mostFaults)},
          {"--all-minimal",
           "",
           "all explanations of up to so many faults (--up-to) that\ncontain no other one, not "
           "only "
           "those of the least size",
           &options.allMinimal,
           {}},
          {"--search", "HOW",
           "conflicts: take apart what contradicts the outputs, the default;\nengine: let "
           "the engine search, as the other verbs do",
           &options.search, oneOf({"conflicts", "engine"})},
          {"--max-records", "N",
           "stop after so many search records a problem (default {default}: no limit)",
           &options.maxRecords, wholeNumber(0)},
          {"--max-seconds", "S",
           "stop after so many seconds a problem (default {default};\n0: no limit)",
           &options.maxSeconds, number(0.0, std::numeric_limits<double>::infinity())},
          maxMemoryRow(options.maxMemory),
          {"--fault-probability", "P", "that a gate is faulty (default {default})",
           &options.faultProbability, numberBetween(0.0, 1.0)}}},
        {"What to print",
         {shownRow(options.shown, "show the N most probable explanations"),
          formatRow(
              options.answer, {"table", "jsonl"},
              "table: for people, the default on a terminal;\njsonl: a JSON record a problem, "
              "default otherwise"),
          colourRow(options.answer),
          {"--trace", "", "print the engine's trace instead of the diagnosis", &options.trace, {}},
          quietRow(options.quiet, "no progress"),
          failOnRow(options.failOn, "there is a fault")}}};
}

} // namespace

Verb diagnoseVerb()
{
    const auto options = std::make_shared<DiagnoseOptions>();
    return {
        "diagnose",
        "finds the faulty gates of a circuit from its inputs and outputs",
        "itms diagnose CIRCUIT --inputs A=0,B=1,... --outputs Y=1,... [options]\n"
        "itms diagnose CIRCUIT --problems FILE.jsonl [options]",
        "Finds the faulty gates of a circuit: the sets of gates that, if they do not do what they "
        "should, explain the outputs, most probable first.",
        sections(*options),
        "",
        "0 done; 1 a fault was found, with --fail-on fault; 2 an error in the command line, the "
        "circuit or the problems; 3 nothing explains the outputs of a problem, or a limit cut its "
        "search short; 130 interrupted.",
        "diagnose examples/circuits/c17.bench \\\n"
        "    --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 \\\n"
        "    --outputs G22gat=1,G23gat=1",
        [options] { return diagnose(*options); }};
}

} // namespace app
