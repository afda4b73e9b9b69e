#include "app/Run.h"

#include "app/AnswerFile.h"
#include "app/Arguments.h"
#include "app/Checkpoint.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/RunMemory.h"
#include "plant/Fingerprint.h"
#include "report/Tracking.h"
#include "session/MemoryJson.h"
#include "text/Wording.h"

#include <fmt/format.h>
#include <limits>
#include <unistd.h>

namespace app {

namespace {

constexpr const char* usage = R"(Usage: itms run MODEL TELEMETRY [options]

Steps through telemetry and prints the diagnosis of every step: the most
plausible explanations of everything seen so far, as soon as the step is there.

)";

constexpr const char* ownOptions = R"(
What to print:
  -n N                      show the N most probable explanations (default 5;
                            0: all)
  --mass P                  ... but no more than have P of the probability
                            together (default 0.99)
  --format table|jsonl|json table: for people, the default on a terminal: the
                            steps at which something changed; jsonl: a JSON
                            record a step, default otherwise; json: one array
  --every-step              in the table, steps without a change as well
  -o, --output FILE         print to a file
  --color always|never|auto colours in the table (default auto: as NO_COLOR,
                            CLICOLOR_FORCE, CLICOLOR say, else on a terminal)
  -q, --quiet               no progress, no warnings on standard error
  --fail-on fault           end with status 1 when there was a fault

To go on after a crash:
  --checkpoint FILE         save the run's memory in FILE every so many steps, and
                            at the end
  --checkpoint-every N      ... every N steps (default 1000)
  --resume                  go on from FILE, if it is there. The telemetry is the
                            same file; from standard input, what comes after. An
                            --output file is cut to what it had at the checkpoint,
                            and continued
  -h, --help                print this

Exit status: 0 done; 1 there was a fault, with --fail-on fault; 2 an error in
the command line, the model or the telemetry; 3 nothing explains the
observations of some step, or a limit cut a search short; 130 interrupted.

Example:
  itms run examples/water/station.itms examples/water/stuck-valve.jsonl
)";

constexpr std::uint64_t mostSteps = std::uint64_t{1} << 53;

bool wantsTable(const RunOptions& options)
{
    if (options.format) return *options.format == "table";
    return !options.output && outputIsTerminal();
}

ColourChoice colourChoice(const RunOptions& options)
{
    if (options.colour == "always") return ColourChoice::always;
    if (options.colour == "never" || options.output) return ColourChoice::never;
    return ColourChoice::automatic;
}

void checkUsage(const RunOptions& options)
{
    if (options.resume && !options.checkpoint) {
        throw Failure("--resume needs the checkpoint\n  expected: --checkpoint FILE --resume\n"
                      "  hint: itms run --help shows an example\n");
    }
}

// What has to be the same for a run to go on as if it had never stopped.
nlohmann::json settingsJson(const RunOptions& options)
{
    return {{"max-rank", options.track.maxRank},       {"keep", options.track.keep},
            {"look-back", options.track.lookBack},     {"max-records", options.track.maxRecords},
            {"max-seconds", options.track.maxSeconds}, {"skip-bad", options.track.skipBad}};
}

class Run {
public:
    explicit Run(const RunOptions& options)
        : options_(options), track_("run", options.track),
          fingerprint_(plant::fingerprint(track_.plant(), track_.model().bindings())),
          asTable_(wantsTable(options)), shown_{options.shown, options.mass},
          table_(report::Colours(wantsColour(colourChoice(options))), shown_, options.everyStep),
          pace_(options.track.quiet)
    {
    }

    ExitStatus run()
    {
        const std::optional<std::uint64_t> continued = resume();
        answer_.emplace(options_.output, continued);
        if (!continued && asTable_) answer_->write(table_.heading());
        while (track_.next()) {
            take();
            if (options_.checkpoint && memory_.steps % options_.checkpointEvery == 0) save();
        }
        pace_.clear();
        if (options_.checkpoint) save();
        finish();
        return status();
    }

private:
    // The bytes of output that stand from the run before; nothing for a run from the begin.
    std::optional<std::uint64_t> resume()
    {
        if (!options_.resume || access(options_.checkpoint->c_str(), F_OK) != 0) return {};
        const nlohmann::json content = readCheckpoint(*options_.checkpoint);
        try {
            checkSame(content);
            track_.reader().restore(session::readerFromJson(content.at("reader")),
                                    options_.track.telemetry == "-"
                                        ? telemetry::StepReader::Input::continuation
                                        : telemetry::StepReader::Input::same);
            track_.tracker().restore(session::memoryFromJson(content.at("tracker"), track_.plant()));
            memory_ = runMemoryFromJson(content.at("run"));
            table_.restore(memory_.table);
            track_.setLinesLeftOut(memory_.linesLeftOut);
            return content.at("output").get<std::uint64_t>();
        } catch (const nlohmann::json::exception& error) {
            damaged(error.what());
        } catch (const std::out_of_range& error) {
            damaged(error.what());
        } catch (const std::invalid_argument& error) {
            damaged(error.what());
        }
    }

    void checkSame(const nlohmann::json& content) const
    {
        if (content.at("model") != fingerprint_) {
            throw FileFailure(fmt::format("{}: was made with another model\n  expected: {}\n"
                                          "  hint: the file is left as it is; without --resume the "
                                          "run begins anew\n",
                                          *options_.checkpoint, track_.model().path()));
        }
        const nlohmann::json now = settingsJson(options_);
        for (const auto& [name, value] : now.items()) {
            const nlohmann::json& then = content.at("settings").at(name);
            if (then != value) {
                throw FileFailure(fmt::format("{}: was made with {} {}\n  expected: the options "
                                              "of the run that is resumed; here it is {}\n",
                                              *options_.checkpoint,
                                              name.size() == 1 ? "-" + name : "--" + name,
                                              then.dump(), value.dump()));
            }
        }
    }

    [[noreturn]] void damaged(const char* why) const
    {
        throw FileFailure(fmt::format("{}: is damaged: {}\n  hint: the file is left as it is; "
                                      "without --resume the run begins anew\n",
                                      *options_.checkpoint, why));
    }

    void take()
    {
        ++memory_.steps;
        report::StepReport report = report::stepReport(track_.plant(), track_.answer());
        report.gap = track_.step().gap;
        for (const telemetry::Observation& observation : track_.step().observations) {
            if (observation.held) report.held.push_back(observation.value->id);
        }
        const bool explained = report.status != monitor::TrackStatus::inconsistent;
        memory_.unexplained = memory_.unexplained || !report.complete || !explained;
        memory_.faultFound =
            memory_.faultFound || (explained && track_.answer().hypotheses.front()->differs());
        if (asTable_) {
            const std::string rows = table_.rows(report);
            if (!rows.empty()) pace_.clear();
            answer_->write(rows);
        } else if (options_.format == "json") {
            answer_->write((memory_.steps == 1 ? "[\n" : ",\n") + stepText(report));
        } else {
            answer_->write(report::stepJson(report, shown_));
        }
        pace_.step(track_.reader().doneShare());
    }

    // Without its newline, after which a comma may have to follow.
    std::string stepText(const report::StepReport& report) const
    {
        std::string text = report::stepJson(report, shown_);
        text.pop_back();
        return text;
    }

    // What the checkpoint counts on is on the disk before it is.
    void save()
    {
        answer_->sync();
        memory_.linesLeftOut = track_.linesLeftOut();
        memory_.table = table_.memory();
        writeCheckpoint(*options_.checkpoint,
                        {{"model", fingerprint_},
                         {"settings", settingsJson(options_)},
                         {"reader", session::readerJson(track_.reader().state())},
                         {"tracker", session::memoryJson(track_.tracker().memory(), track_.plant())},
                         {"run", runMemoryJson(memory_)},
                         {"output", answer_->bytes()}});
    }

    void finish()
    {
        if (asTable_) {
            answer_->write(table_.summary(track_.linesLeftOut()));
        } else if (options_.format == "json") {
            answer_->write(memory_.steps == 0 ? "[]\n" : "\n]\n");
        }
        if (track_.linesLeftOut() > 0 && !options_.track.quiet) {
            complain(fmt::format("itms run: {} left out\n",
                                 text::counted(track_.linesLeftOut(), "bad line")));
        }
    }

    ExitStatus status() const
    {
        if (interruption()) return ExitStatus::interrupted;
        if (memory_.unexplained) return ExitStatus::unexplained;
        return memory_.faultFound && options_.failOn ? ExitStatus::faultFound : ExitStatus::done;
    }

    const RunOptions& options_;
    TrackRun track_;
    std::string fingerprint_;
    bool asTable_;
    report::Shown shown_;
    report::TrackingTable table_;
    Pace pace_;
    std::optional<AnswerFile> answer_;
    RunMemory memory_;
};

} // namespace

CLI::App* addRun(CLI::App& program, RunOptions& options)
{
    CLI::App* verb = program.add_subcommand("run");
    verb->allow_extras();
    verb->formatter_fn([](const CLI::App*, const std::string&, CLI::AppFormatMode) {
        return std::string(usage) + trackHelp + ownOptions;
    });
    addTrackOptions(*verb, options.track);
    verb->add_option("-n", options.shown)
        ->check(wholeNumber(0, std::numeric_limits<std::uint32_t>::max()));
    verb->add_option("--mass", options.mass)->check(number(0.0, 1.0, false));
    verb->add_option("--format", options.format)->check(oneOf({"table", "jsonl", "json"}));
    verb->add_flag("--every-step", options.everyStep);
    verb->add_option("-o,--output", options.output);
    verb->add_option("--color", options.colour)->check(oneOf({"always", "never", "auto"}));
    verb->add_option("--fail-on", options.failOn)->check(oneOf({"fault"}));
    verb->add_option("--checkpoint", options.checkpoint);
    verb->add_option("--checkpoint-every", options.checkpointEvery)->check(wholeNumber(1, mostSteps));
    verb->add_flag("--resume", options.resume);
    return verb;
}

ExitStatus run(const RunOptions& options)
{
    checkUsage(options);
    catchInterruptions();
    return Run(options).run();
}

} // namespace app
