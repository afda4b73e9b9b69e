// A run told by what begins and what ends, in place of its steps.
//
// An event is something that is probably wrong: a mode with the value that it should not have. It begins at the step after which that is as
// probable as the threshold, and ends at the first one after which it is less than half as probable, so that a probability that
// wavers is one event. Where a fault is as probable and no value is, that is an event, too, and so are steps that nothing explains.
#pragma once

#include "report/Moment.h"
#include "report/Tracking.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace report {

struct EventReport {
    enum class Phase { begins, ends, summary };
    enum class Kind {
        fault,       ///< a mode has a value
        ambiguous,   ///< something is wrong, and nothing that is probable by itself
        inconsistent ///< nothing explains what is observed
    };

    Phase phase = Phase::begins;
    Kind kind = Kind::fault;
    std::size_t number = 0;    ///< of the event, from 1
    std::string variable = {}; ///< of a fault: COMPONENT.VARIABLE
    std::string value = {};
    std::vector<std::pair<std::string, double>> among =
        {};         ///< at the beginning of an ambiguous one: VARIABLE=VALUE, most probable first
    double p = 0.0; ///< at its beginning; at its end, the greatest
    std::size_t since =
        0; ///< the step at which it began, by what was believed when it began to show
    std::size_t step = 0; ///< at which it begins, or ends
    double t = 0.0;       ///< of that step, in seconds
    double start = 0.0;   ///< when it began to show, in seconds
    Clock clock = Clock::seconds;

    /// Of all of them, in the summary.
    struct All {
        std::size_t steps = 0;
        std::size_t events = 0; ///< that began
        double seconds = 0.0;   ///< during which there was one at least
        std::vector<std::pair<std::size_t, std::string>> open =
            {}; ///< number and name of those that have not ended
        std::size_t linesLeftOut = 0;
    };
    std::optional<All> all = {};
};

/// Finds the events of a run.
class EventDetector {
public:
    /// `threshold` is above 0 and at most 1.
    explicit EventDetector(double threshold) { memory_.threshold = threshold; }

    /// What begins and ends at the next step, in this order: ends, then beginnings. Linear in the modes that deviate.
    std::vector<EventReport> take(const StepReport& report);
    EventReport summary() const;

    const WriterMemory::Events& memory() const { return memory_; }
    void restore(WriterMemory::Events memory) { memory_ = std::move(memory); }
    void countRecord() { ++memory_.records; }

private:
    using Found = std::vector<std::pair<std::string, double>>;

    void end(const StepReport& report, const Found& found, std::vector<EventReport>& reports);
    void begin(const StepReport& report, const Found& found, std::vector<EventReport>& reports);
    bool isOpen(const std::string& what) const;

    WriterMemory::Events memory_;
};

/// What an event is called: `valve.position = stuckClosed`, or that one of several things is wrong.
std::string nameOf(const EventReport& event);

/// The record of an event, or the summary, ended by a newline. docs/output.md documents the fields.
std::string eventJson(const EventReport& event);

/// Events for people.
class EventTable {
public:
    explicit EventTable(Colours colours) : colours_(colours) {}

    std::string heading() const;
    std::string rows(const EventReport& event) const;
    /// The summary is an event report of its own.
    std::string summary(std::size_t /*linesLeftOut*/) const { return ""; }

private:
    Colours colours_;
};

/// Turns steps into events, which another writer writes.
class EventWriter : public StepWriter<StepReport> {
public:
    using ClockOf = std::function<Clock()>;

    EventWriter(std::unique_ptr<StepWriter<EventReport>> writer, double threshold, ClockOf clock)
        : writer_(std::move(writer)), detector_(threshold), clock_(std::move(clock))
    {
    }

    void begin() override { writer_->begin(); }
    void step(const StepReport& report) override;
    void end(std::size_t linesLeftOut) override;
    WriterMemory memory() const override;
    void resume(const WriterMemory& memory) override;

private:
    std::unique_ptr<StepWriter<EventReport>> writer_;
    EventDetector detector_;
    ClockOf clock_;
};

} // namespace report
