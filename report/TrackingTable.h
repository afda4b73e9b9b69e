// The steps of a tracked plant for people: what changed, when, since when, and how sure that is.
#pragma once

#include "report/Text.h"
#include "report/Tracking.h"

#include <map>

namespace report {

/// Renders one run, step after step. A step at which nothing changed has no lines, unless all are wanted.
class TrackingTable {
public:
    TrackingTable(Colours colours, Shown shown, bool everyStep)
        : colours_(colours), shown_(shown), everyStep_(everyStep)
    {
    }

    /// What the table remembers of the steps before.
    struct Memory {
        std::string last; ///< what the last step's lines say, without numbers that may change a little
        std::size_t total = 0;
        std::size_t incomplete = 0;
        std::size_t dropped = 0;                   ///< steps at which hypotheses were dropped
        std::map<std::string, std::size_t> counts; ///< steps by the name of their status
    };
    const Memory& memory() const { return memory_; }
    void restore(Memory memory) { memory_ = std::move(memory); }

    std::string heading() const;
    /// The step's lines; empty where status and explanations are those of the step before.
    std::string rows(const StepReport& report);
    /// How many steps there were, and what they were like.
    std::string summary(std::size_t linesLeftOut) const;

private:
    std::string status(monitor::TrackStatus status) const;
    std::string row(const std::string& head, const TrackedExplanation& explanation) const;

    Colours colours_;
    Shown shown_;
    bool everyStep_;
    Memory memory_;
};

} // namespace report
