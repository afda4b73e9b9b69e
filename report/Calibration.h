// What a plant reads while nothing is wrong, beside what its model says, for people and for programs.
#pragma once

#include "assess/ChannelStatistics.h"
#include "assess/LawViolations.h"
#include "report/ConflictReport.h"
#include "report/Moment.h"
#include "report/Text.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace report {

/// A law that what is read contradicts, together with others.
struct ViolatedLaw {
    AppliedLaw law; ///< its place and text
    std::size_t steps = 0;
    std::size_t firstStep = 0;
    double firstTime = 0; ///< seconds
    std::map<std::string, std::size_t> observed =
        {}; ///< VARIABLE=VALUE, which should not have been, by steps
};

struct CalibrationReport {
    const assess::ChannelStatistics& statistics;
    std::size_t steps = 0; ///< of the telemetry; those of the statistics are the fault-free ones
    std::size_t contradicted = 0;  ///< fault-free steps that contradict the plant without faults
    std::vector<ViolatedLaw> laws; ///< most frequent first
    Clock clock = Clock::seconds;
};

/// One line of JSON; docs/output.md documents the fields.
std::string calibrationJson(const CalibrationReport& report);

/// The same for people, in lines ended by newlines.
std::string calibrationTable(const CalibrationReport& report, const Colours& colours);

/// The commands of a state that are not the same in all states of the channel, `fan.command = on`; empty when all are.
std::string differingCommands(const assess::ChannelReadings& channel,
                              const assess::ChannelReadings::State& state);

} // namespace report
