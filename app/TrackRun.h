// A plant followed through its telemetry: what the verbs run, explain, query and advise have in common.
#pragma once

#include "app/ModelFile.h"
#include "monitor/track/Tracker.h"
#include "telemetry/StepReader.h"

#include <functional>
#include <optional>

namespace app {

/// What the command line says about model, telemetry and how to search.
struct TrackOptions {
    ModelOptions model;
    std::string telemetry;
    bool skipBad = false;

    int maxRank = 3;
    std::size_t keep = 8;
    std::size_t lookBack = 10;
    std::uint64_t maxRecords = 100000; ///< of a step; 0: no limit
    double maxSeconds = 0.0;           ///< of a step; 0: no limit
    bool quiet = false;
};

/// Enters the arguments `model` and `telemetry` and the options that all these verbs have.
void addTrackOptions(CLI::App& verb, TrackOptions& options);

/// Enters --step, for the verbs that are about one step.
void addStepOption(CLI::App& verb, std::optional<std::size_t>& step);

/// The lines of the verbs' help about them.
extern const char* const trackHelp;

/// Steps through telemetry. One at a time, as there is one active model.
class TrackRun {
public:
    /// Throws Failure when model or telemetry is not named, and FileFailure when one of them cannot be read.
    TrackRun(const std::string& verb, const TrackOptions& options, bool trace = false);

    /// Takes the next step of the telemetry. False at its end, and when a signal has come. A bad line ends the run with FileFailure;
    /// with `skipBad` it is reported on standard error, counted and passed over.
    bool next();

    /// Takes steps up to that one, or up to the last. `before` is called before it is taken. Throws Failure when the telemetry
    /// has no such step, or none at all, unless a signal has come.
    void takeUntil(std::optional<std::size_t> wanted, const std::function<void()>& before = {});

    /// The step that was taken last, and what is believed after it.
    const telemetry::Step& step() const { return step_; }
    const monitor::TrackInput& input() const { return input_; }
    const monitor::TrackAnswer& answer() const { return tracker_.answer(); }

    const ModelFile& model() const { return model_; }
    itms& engine() { return model_.engine(); }
    const plant::Plant& plant() const { return model_.plant(); }
    monitor::Tracker& tracker() { return tracker_; }
    telemetry::StepReader& reader() { return reader_; }
    std::size_t linesLeftOut() const { return linesLeftOut_; }
    void setLinesLeftOut(std::size_t count) { linesLeftOut_ = count; }

private:
    ModelFile model_;
    bool skipBad_;
    telemetry::StepReader reader_;
    monitor::Tracker tracker_;
    telemetry::Step step_;
    monitor::TrackInput input_;
    std::size_t linesLeftOut_ = 0;
};

} // namespace app
