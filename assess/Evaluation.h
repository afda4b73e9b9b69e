// How good a monitor is, held against what is known to have been wrong. docs/output.md defines each number.
#pragma once

#include "assess/Labels.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace assess {

/// What the monitor said of one label.
struct EventScore {
    Label label;
    std::size_t steps = 0;      ///< of the telemetry in its time
    std::size_t alarmSteps = 0; ///< of these, with an alarm
    /// Seconds from the start to the first alarm; none: it was not detected.
    std::optional<double> detectedAfter;
    bool wasOnBefore = false; ///< the step before had an alarm already
    /// The same of the first alarm in which what is labelled was more probable than anything else; none of a label that says no more
    /// than that there was a fault.
    std::optional<double> isolatedAfter;
    std::size_t isolatedSteps = 0;    ///< steps with such an alarm
    std::optional<double> namedAfter; ///< the same of the first alarm that showed it at all
    std::string mostProbable;         ///< at the last alarm, COMPONENT.MODE = VALUE; empty: nothing
};

/// Of values that are there for some of the events.
struct Summary {
    std::size_t count = 0;
    double mean = 0;
    double median = 0;
    double most = 0;
};

struct Evaluation {
    double threshold = 0.5;
    double grace = 0;
    std::vector<EventScore> events; ///< in the order of the labels

    std::size_t steps = 0;
    std::size_t labelled = 0;     ///< events that have a step
    std::size_t detected = 0;     ///< of these
    std::size_t isolable = 0;     ///< of these that name a part
    std::size_t isolated = 0;     ///< of the isolable ones
    std::size_t named = 0;        ///< of the isolable ones
    Summary detectionDelay;       ///< seconds
    Summary isolationDelay;       ///< seconds
    std::size_t faultySteps = 0;  ///< in the time of some label
    std::size_t faultyAlarms = 0; ///< of these, with an alarm
    std::size_t freeSteps = 0;    ///< neither in the time of a label nor in its grace
    std::size_t freeAlarms = 0;   ///< of these, with an alarm
    std::size_t falseAlarms = 0;  ///< stretches of such steps
    std::size_t lingering = 0;    ///< of these, that began before a label's grace was over
    double freeSeconds = 0;       ///< fault-free time
    std::size_t inconsistent = 0; ///< steps that nothing explains
    std::size_t incomplete = 0;   ///< steps whose search was cut, or left something open
};

} // namespace assess
