// The verb `run`: the diagnosis of a plant, step by step, from a file of telemetry or live.
#include "app/AnswerFile.h"
#include "app/Interruption.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/ReportFile.h"
#include "app/RunCheckpoint.h"
#include "app/Verbs.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace app {

namespace {

struct RunOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::uint64_t shown = 5;
    double mass = 0.99;
    bool everyStep = false;
    bool events = false;
    double alarm = 0.5;
    std::optional<std::string> failOn;
    std::optional<std::string> report; ///< a page

    std::optional<std::string> checkpoint;
    std::uint64_t checkpointEvery = 1000; ///< steps
    bool resume = false;
    bool adoptModel = false; ///< where its probabilities are others by now
    bool final = false;
};

// What is written.
FileRoles filesOf(const RunOptions& options)
{
    FileRoles files;
    if (!options.answer.output) files.writesStandardOutput();
    files.writes(options.answer.output, "the answer", "-o");
    files.writes(options.report, "the report", "--report");
    files.writes(options.checkpoint, "the checkpoint", "--checkpoint");
    if (options.checkpoint) {
        files.writes(RunCheckpoint::lockOf(*options.checkpoint), "the lock of the checkpoint",
                     "--checkpoint");
    }
    return files;
}

class Run {
public:
    explicit Run(const RunOptions& options)
        : options_(options),
          track_("run", options.track, settingsOf(options.track), filesOf(options)),
          pace_(options.track.quiet),
          writers_(writersOf(options.answer, [this](std::string_view text) { write(text); })),
          writer_(writer())
    {
    }

    ExitStatus run()
    {
        const std::optional<RunState> before = open();
        // What is in the files stays until the telemetry was accepted as far as its first step.
        bool more = track_.next();
        if (!more && interruption()) return status();
        answer_->begin();
        if (before) {
            writer_->resume(before->writer);
        } else {
            writer_->begin();
        }
        for (; more; more = track_.next()) {
            take();
            if (checkpoint_ && memory_.steps % options_.checkpointEvery == 0) save();
        }
        pace_.clear();
        if (checkpoint_) save();
        if (report_) report_->write();
        writer_->end(track_.feed().linesLeftOut());
        answer_->end();
        if (!options_.track.quiet) {
            track_.feed().reportPassedOver("run");
            reportCut();
        }
        return status();
    }

private:
    std::unique_ptr<report::StepWriter<report::StepReport>> writer()
    {
        if (!options_.events)
            return writers_.tracking({options_.shown, options_.mass}, options_.everyStep);
        return writers_.events(options_.alarm, [this] {
            return track_.feed().reader().isWallClock() ? report::Clock::wall
                                                        : report::Clock::seconds;
        });
    }

    // Takes all files, and says where the run stood that is resumed.
    std::optional<RunState> open()
    {
        if (options_.checkpoint) {
            checkpoint_.emplace(*options_.checkpoint, options_.track, track_);
            if (!options_.resume) checkpoint_->refuseOtherFile();
            track_.keepWholeSteps();
        }
        answer_.emplace(options_.answer.output);
        if (options_.report) {
            report_.emplace(*options_.report, options_.track, track_,
                            report::Shown{options_.shown, options_.mass});
        }
        if (!options_.resume) return {};
        std::optional<RunState> before = checkpoint_->resume(options_.adoptModel);
        if (!before) return {};
        checkSameAnswer(before->writer);
        if (checkpoint_->adopted() && !options_.track.quiet) {
            complain(fmt::format(
                "{}: was made with other probabilities; the run goes on with those "
                "of {}\n",
                text::shownName(*options_.checkpoint), text::shownName(options_.track.model.path)));
        }
        memory_ = before->memory;
        if (before->memory.steps > 0) answer_->resume(before->output);
        return before;
    }

    // What was printed before goes on as it began.
    void checkSameAnswer(const report::WriterMemory& before) const
    {
        const auto refuse = [this](const std::string& then, const std::string& now) {
            throw FileFailure(
                fmt::format("{}: was made {}\n  expected: the options of the run that is "
                            "resumed; here it is {}\n",
                            text::shownName(*options_.checkpoint), then, now));
        };
        if (before.events.has_value() != options_.events)
            refuse(options_.events ? "without --events" : "with --events",
                   options_.events ? "with it" : "without it");
        if (options_.events && before.events->threshold != options_.alarm)
            refuse(fmt::format("with --alarm {}", before.events->threshold),
                   fmt::format("{}", options_.alarm));
    }

    void write(std::string_view text)
    {
        // A table is on the terminal, too; where most steps have no lines, progress may stay.
        if (writers_.format() == report::Format::people && !text.empty()) pace_.clear();
        answer_->write(text);
    }

    void take()
    {
        ++memory_.steps;
        const bool forPeople = report_ || writers_.format() == report::Format::people;
        const report::StepReport report = forPeople ? reportForPeople(track_) : reportOf(track_);
        const monitor::Hypothesis& first = *track_.answer().hypotheses.front();
        const bool explained = first.unexplained.empty();
        memory_.unexplained = memory_.unexplained || !report.complete || !explained;
        memory_.faultFound =
            memory_.faultFound || (explained && first.differs(track_.session().plant()));
        writer_->step(report);
        if (report_) report_->step(report);
        pace_.step(track_.feed().reader().doneShare());
    }

    void reportCut() const
    {
        const telemetry::StepFiles& reader = track_.feed().reader();
        if (interruption() || !reader.cutAt()) return;
        complain(
            fmt::format("{}:{}: from here on the telemetry may not be complete, and is left for "
                        "--resume\n  hint: with --final it is taken as it is\n",
                        reader.name(), *reader.cutAt()));
    }

    // What the checkpoint counts on is on the disk before it is.
    void save()
    {
        answer_->sync();
        memory_.linesLeftOut = track_.linesLeftOut();
        checkpoint_->save({memory_, writer_->memory(), answer_->written()});
    }

    ExitStatus status() const
    {
        if (interruption()) return ExitStatus::interrupted;
        if (memory_.unexplained) return ExitStatus::unexplained;
        return memory_.faultFound && options_.failOn ? ExitStatus::faultFound : ExitStatus::done;
    }

    const RunOptions& options_;
    TrackRun track_;
    Pace pace_;
    report::Writers writers_;
    std::unique_ptr<report::StepWriter<report::StepReport>> writer_;
    std::optional<RunCheckpoint> checkpoint_;
    std::optional<AnswerFile> answer_;
    std::optional<ReportFile> report_;
    RunMemory memory_;
};

ExitStatus run(const RunOptions& options)
{
    if (options.resume && !options.checkpoint) {
        throw Failure("--resume needs the checkpoint\n  expected: --checkpoint FILE --resume\n"
                      "  hint: itms run --help shows an example\n");
    }
    if (options.adoptModel && !options.resume) {
        throw Failure("--adopt-model is about a run that is resumed\n"
                      "  expected: --checkpoint FILE --resume --adopt-model\n");
    }
    if (options.resume && options.report) {
        throw Failure("--report does not go with --resume: a report begins with the first step\n"
                      "  hint: itms report makes one of the whole telemetry\n");
    }
    if (options.events && options.everyStep) {
        throw Failure(
            "--every-step does not go with --events\n  hint: events are printed in place of "
            "steps\n");
    }
    catchInterruptions();
    return Run(options).run();
}

// What follows from several options together.
RunOptions settled(RunOptions options)
{
    if (options.answer.output == "-") options.answer.output.reset();
    std::error_code error;
    const auto isFile = [&error](const std::string& path) {
        return std::filesystem::is_regular_file(path, error);
    };
    const std::vector<std::string>& more = options.track.moreTelemetry;
    options.track.mayGrow = options.checkpoint && !options.final &&
                            isFile(options.track.telemetry) &&
                            std::all_of(more.begin(), more.end(), isFile);
    return options;
}

Section checkpointSection(RunOptions& options)
{
    return {"To go on after a crash",
            {{"--checkpoint", "FILE",
              "save the run's memory in FILE every so many steps, and\nat the end",
              &options.checkpoint, fileName()},
             {"--checkpoint-every", "N", "... every N steps (default {default})",
              &options.checkpointEvery, wholeNumber(1, mostSteps)},
             {"--resume",
              "",
              "go on from FILE, if it is there. The telemetry is the\nsame file; from standard "
              "input, what comes after. An\n--output file is cut to what it had at the "
              "checkpoint,\nand continued",
              &options.resume,
              {}},
             {"--adopt-model",
              "",
              "... though probabilities or rates of the model are others\nthan they were; nothing "
              "else may be",
              &options.adoptModel,
              {}},
             {"--final",
              "",
              "the telemetry is complete. Otherwise the file may grow:\na last line without its "
              "end, and the last step of a\nlong table, are left for --resume",
              &options.final,
              {}}}};
}

} // namespace

Verb runVerb()
{
    const auto options = std::make_shared<RunOptions>();
    return {
        "run",
        "the diagnosis of a plant step by step, from its telemetry",
        "itms run MODEL TELEMETRY [MORE...] [options]",
        "Steps through telemetry and prints the diagnosis of every step: the most plausible "
        "explanations of everything seen so far, as soon as the step is there.",
        {{"", trackRows(options->track)},
         readSection(options->track.reading),
         searchSection(options->track),
         {"What to print",
          {shownRow(options->shown, "show the N most probable explanations"),
           massRow(options->mass),
           formatRow(options->answer, {"table", "jsonl", "json"},
                     "table: for people, the default on a terminal: the steps at which something "
                     "changed; jsonl: a JSON record a step, default otherwise; json: one array"),
           {"--every-step", "", "in the table, steps without a change as well", &options->everyStep, {}},
           {"--events",
            "",
            "print what begins and what ends to be wrong, in place of\nsteps",
            &options->events,
            {}},
           {"--alarm", "P",
            "... once it is at least so probable, and until it is less\nthan half as probable "
            "(default {default})",
            &options->alarm, number(0.000001, 1.0)},
           {"-o,--output", "FILE", "print to a file", &options->answer.output, fileName(true)},
           {"--report", "FILE", "write the run as a page, too: see itms report", &options->report,
            fileName()},
           colourRow(options->answer),
           quietRow(options->track.quiet, "no progress, no warnings"),
           failOnRow(options->failOn, "there was a fault")}},
         checkpointSection(*options)},
        "",
        "0 done; 1 there was a fault, with --fail-on fault; 2 an error in the command line, the "
        "model or the telemetry; 3 nothing explains the observations of some step, or a limit cut "
        "a search short; 130 interrupted.",
        "run examples/water/station.itms examples/water/stuck-valve.jsonl",
        [options] { return run(settled(*options)); }};
}

} // namespace app
