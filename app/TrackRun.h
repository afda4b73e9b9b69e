// A plant followed through its telemetry: what the verbs run, explain, query, advise and trace have in common.
#pragma once

#include "app/ExitStatus.h"
#include "app/OpenModel.h"
#include "app/StepFeed.h"
#include "session/Session.h"

#include <functional>
#include <optional>

namespace app {

/// What happens on the way to a step.
struct OnTheWay {
    std::function<void()> beforeLast;    ///< called before the wanted step is taken
    std::function<void()> after;         ///< called after each step
    std::string wanted = "one at least"; ///< in the message that there is no step: what is expected
};

/// A session and the telemetry that it takes its steps from.
class TrackRun {
public:
    /// Throws Failure when model or telemetry is not named, and FileFailure when one of them cannot be read.
    /// `files` are those that the verb writes; those that are read are added.
    TrackRun(const std::string& verb, const TrackOptions& options,
             const session::Settings& settings, FileRoles files = printing(), bool trace = false);

    /// The files of a verb that prints its answer.
    static FileRoles printing();

    /// Takes the next step of the telemetry. False at its end, and when a signal has come. A bad line ends the run with
    /// telemetry::BadInput; with `skipBad` it is reported on standard error, counted and passed over.
    bool next();

    /// From here on a step that a signal cut is put back: next() returns false then, and what is believed, and the reader's state, are
    /// as after the last whole step.
    void keepWholeSteps() { keepsWhole_ = true; }
    /// Where the reader was after the last whole step, and the lines that it had left out then.
    telemetry::ReaderState readerState() const;
    std::size_t linesLeftOut() const;

    /// Takes steps up to that one, or up to the last. Throws Failure when the telemetry has no such step, or none at all, unless
    /// a signal has come.
    void takeUntil(std::optional<std::uint64_t> wanted, const OnTheWay& onTheWay = {});

    /// Whether the last step was explained within all limits, as an exit status.
    ExitStatus status() const;

    /// The step that was taken last.
    const telemetry::Step& step() const { return step_; }
    /// What is believed after it.
    const monitor::TrackAnswer& answer() const { return session_.answer(); }

    session::Session& session() { return session_; }
    const session::Session& session() const { return session_; }
    /// How the telemetry is read.
    const Reading& reading() const { return reading_; }
    StepFeed& feed() { return feed_; }
    const StepFeed& feed() const { return feed_; }

private:
    session::Session session_;
    Reading reading_;
    StepFeed feed_;
    telemetry::Step step_;

    struct Whole {
        telemetry::ReaderState reader;
        std::size_t leftOut;
        monitor::TrackMemory memory;
        session::ReadingChanges changes;
    };
    Whole now() const;

    bool keepsWhole_ = false;
    std::optional<Whole> putBack_; ///< what there was before a step that was cut
};

/// The time of a step by the clock, where the telemetry has dates.
std::optional<std::string> timeOf(const telemetry::Step& step);
/// The report of the step that was taken last, with time by the clock, its gap and its held readings.
report::StepReport reportOf(const TrackRun& track);
/// The same, with explanations compared that cannot be told apart (report/Alike.h).
report::StepReport reportForPeople(const TrackRun& track);

} // namespace app
