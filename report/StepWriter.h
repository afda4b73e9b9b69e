// The seam between answers and how they are written: whoever steps through something gives a writer one report after the
// other, and need not know whether that becomes a table, JSON Lines, or a format of somebody else's.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace report {

/// Takes what is written, piece by piece; each is to be written at once. A piece may be empty.
using Sink = std::function<void(std::string_view)>;

/// What a writer knows of the steps before. A run that is resumed from a checkpoint gives it to the writer that goes on.
struct WriterMemory {
    std::size_t steps = 0; ///< that were written

    /// Of a table; every other writer leaves it as it is.
    struct Table {
        std::string last; ///< what the last step's lines say, without numbers that may change a little
        std::string date; ///< of the last step that has lines, by the clock
        std::size_t total = 0;
        std::size_t incomplete = 0;
        std::size_t dropped = 0;                   ///< steps at which hypotheses were dropped
        std::map<std::string, std::size_t> counts; ///< steps by the name of their status
    };
    Table table;

    /// Of a writer of events (report/Events.h); every other one has none.
    struct Events {
        /// One that has begun, and not ended.
        struct Open {
            std::size_t number = 0; ///< of the event, from 1
            std::string what;       ///< VARIABLE=VALUE, or a word
            double most = 0.0;      ///< the greatest probability so far
            std::size_t since = 0;  ///< the step at which it began, by what is believed
            double t = 0.0;         ///< at which it began to show, in seconds
        };
        double threshold = 0.5;
        std::size_t steps = 0;
        std::size_t records = 0; ///< that were written
        std::size_t events = 0;  ///< that began
        double t = 0.0;          ///< of the last step, in seconds
        double seconds = 0.0;    ///< during which something was wrong
        std::vector<Open> open;  ///< in the order of their numbers
    };
    std::optional<Events> events;
};

/// Writes the reports of one run to a sink. Call `begin` once, or `resume` where an earlier run did; then `step` for each
/// report; then `end`, once. Nothing is kept back: after each call, what it writes is in the sink. An exception of the sink
/// goes through to the caller.
template <typename Report> class StepWriter {
public:
    StepWriter() = default;
    virtual ~StepWriter() = default;
    StepWriter(const StepWriter&) = delete;
    StepWriter& operator=(const StepWriter&) = delete;

    /// What stands before the first step.
    virtual void begin() {}
    virtual void step(const Report& report) = 0;
    /// What stands after the last one; so many lines of the input were in error and left out.
    virtual void end(std::size_t /*linesLeftOut*/) {}

    /// What `resume` needs for the rest to be as if there had been one run.
    virtual WriterMemory memory() const { return memory_; }
    /// In the place of `begin`: goes on after the steps that the memory knows.
    virtual void resume(const WriterMemory& memory) { memory_ = memory; }

protected:
    /// For writers that need one; the others need not look at it.
    WriterMemory memory_;
};

} // namespace report
