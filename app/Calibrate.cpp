// The verb `calibrate`: what channels read while nothing is wrong, and which laws that contradicts.
#include "app/Interruption.h"
#include "app/LabelFile.h"
#include "app/Output.h"
#include "app/Pace.h"
#include "app/Verbs.h"
#include "assess/ChannelStatistics.h"
#include "assess/LawViolations.h"
#include "monitor/labels/Meter.h"
#include "report/Calibration.h"

#include <algorithm>
#include <limits>

namespace app {

namespace {

struct CalibrateOptions {
    TrackOptions track;
    AnswerOptions answer;
    std::optional<std::string> labels;
    double grace = 0;
};

FileRoles calibratedFiles(const CalibrateOptions& options)
{
    FileRoles files = TrackRun::printing();
    if (options.labels) files.reads(*options.labels, "the labels");
    return files;
}

// Follows the plant as if nothing could fail: what contradicts that is found at each step, and does not change what is expected at
// the next one.
session::Settings faultlessSettings(const TrackOptions& track)
{
    session::Settings settings = settingsOf(track);
    settings.maxRank = 0;
    settings.history = 1;
    return settings;
}

class Calibration {
public:
    explicit Calibration(const CalibrateOptions& options)
        : options_(options), track_("calibrate", options.track, faultlessSettings(options.track),
                                    calibratedFiles(options)),
          statistics_(track_.session().bindings()), violations_(track_.session().plant())
    {
        if (options.labels) labels_ = readLabelFile(*options.labels, track_);
    }

    ExitStatus run()
    {
        {
            Pace pace(options_.track.quiet);
            const auto take = [&] {
                this->take();
                pace.step(track_.feed().reader().doneShare());
            };
            track_.takeUntil({}, {.beforeLast = {}, .after = take});
        }
        if (interruption()) return ExitStatus::interrupted;
        writersOf(options_.answer, print).calibration()->step(report());
        if (!options_.track.quiet) {
            tellEmptyLabels(options_.labels.value_or(""), emptyLabels());
            track_.feed().reportPassedOver("calibrate");
        }
        return ExitStatus::done;
    }

private:
    void take()
    {
        ++steps_;
        bool isFree = true;
        labelled_.resize(labels_.size());
        for (std::size_t i = 0; i < labels_.size(); ++i) {
            const double t = track_.step().t;
            labelled_[i] = labelled_[i] || labels_[i].contains(t);
            isFree = isFree && !(t >= labels_[i].start && t < labels_[i].end + options_.grace);
        }
        if (!isFree) {
            statistics_.passOver();
            return;
        }
        statistics_.take(track_.step());
        const auto& history = track_.session().history().ofBest();
        if (history.empty() || history.back().input.step != track_.step().number) return;
        const session::Settings& settings = track_.session().settings();
        const monitor::Meter meter(settings.limits, settings.work);
        violations_.take(history.back(),
                         monitor::conflictsOf(track_.session().plant(), history.back()),
                         [this](std::size_t law) { return statement(law); });
    }

    // Laws of one statement, in all instances of its component, are one.
    std::size_t statement(std::size_t law)
    {
        const language::ReadResult& read = track_.session().read();
        if (law >= read.lawPlaces.size() || read.lawPlaces[law].line == 0) return law;
        const language::LawPlace& place = read.lawPlaces[law];
        const auto same = firstAt_.try_emplace({place.file, place.line, place.column}, law);
        return same.first->second;
    }

    std::vector<std::size_t> emptyLabels() const
    {
        std::vector<std::size_t> lines;
        for (std::size_t i = 0; i < labelled_.size(); ++i) {
            if (!labelled_[i]) lines.push_back(labels_[i].line);
        }
        return lines;
    }

    report::CalibrationReport report() const
    {
        report::CalibrationReport report{
            statistics_,
            steps_,
            violations_.steps(),
            {},
            track_.feed().reader().isWallClock() ? report::Clock::wall : report::Clock::seconds};
        const report::ModelNames names(track_.session().read());
        for (const auto& [law, count] : violations_.laws()) {
            report::ViolatedLaw& one = report.laws.emplace_back(report::ViolatedLaw{
                names.law(law), count.steps, count.firstStep, count.firstTime, {}});
            for (const auto& [value, steps] : count.observed) {
                one.observed.emplace(track_.session().plant().atom(value)->id, steps);
            }
        }
        std::stable_sort(report.laws.begin(), report.laws.end(),
                         [](const auto& a, const auto& b) { return a.steps > b.steps; });
        return report;
    }

    const CalibrateOptions& options_;
    TrackRun track_;
    std::vector<assess::Label> labels_;
    std::vector<bool> labelled_; ///< that a step lies in the time of each
    assess::ChannelStatistics statistics_;
    assess::LawViolations violations_;
    std::size_t steps_ = 0;
    std::map<std::array<std::uint32_t, 3>, std::size_t> firstAt_;
};

} // namespace

Verb calibrateVerb()
{
    const auto options = std::make_shared<CalibrateOptions>();
    return {
        "calibrate",
        "what channels read while nothing is wrong, and which limits fit",
        "itms calibrate MODEL TELEMETRY [MORE...] [--labels LABELS.csv] [options]",
        "Tells how the readings of each channel are distributed while nothing is wrong, which "
        "limits would fit them, and which laws they contradict: how often, and when first.",
        {{"", trackRows(options->track)},
         {"What is known",
          {{"--labels", "FILE",
            "what was wrong, and when, as for itms evaluate: these steps\nare left out. Without "
            "it, nothing was",
            &options->labels, fileName()},
           {"--grace", "S", "... and those of S seconds after (default {default})", &options->grace,
            number(0.0, std::numeric_limits<double>::max())}}},
         readSection(options->track.reading),
         {"What to print",
          {formatRow(options->answer, {"table", "jsonl", "json"},
                     "table: for people, the default on a terminal; jsonl and json: one JSON "
                     "record, default otherwise"),
           colourRow(options->answer), quietRow(options->track.quiet, "no progress, no warnings")}}},
        "Readings that do not count yet (for) are in, those of channels that have not settled are "
        "not.",
        "0 done; 2 an error in the command line, the model, the labels or the telemetry; 130 "
        "interrupted.",
        "calibrate examples/water/station.itms examples/water/stuck-valve.jsonl \\\n    --labels "
        "examples/water/labels.csv --format table",
        [options] {
            catchInterruptions();
            return Calibration(*options).run();
        }};
}

} // namespace app
