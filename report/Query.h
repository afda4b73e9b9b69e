// What a step says of a formula, and how programs and people read it.
#pragma once

#include "monitor/why/StateQuery.h"
#include "report/Text.h"

#include <map>
#include <string>

namespace report {

struct QueryReport {
    std::size_t step = 0;
    double t = 0.0; ///< seconds
    monitor::QueryAnswer answer;
    monitor::TrackStatus status = monitor::TrackStatus::nominal;
    bool complete = true;
    SearchLimit limit = SearchLimit::none;
    std::optional<std::string> time = {}; ///< by the clock, where the telemetry has dates (WallClock.h)
};

/// The report of a step.
/// Requires: the formula was asked of this step's answer.
QueryReport queryReport(const monitor::TrackAnswer& step, const monitor::QueryAnswer& answer);

/// The record of the step, ended by a newline; docs/output.md describes its fields.
std::string queryJson(const QueryReport& report);

/// The steps of one run for people. A step that says what the one before said has no line, unless all are wanted.
class QueryTable {
public:
    QueryTable(Colours colours, bool everyStep) : colours_(colours), everyStep_(everyStep) {}

    std::string heading() const;
    /// The step's line; empty where nothing changed.
    std::string rows(const QueryReport& report);
    /// At how many steps the formula was true, false or neither.
    std::string summary(std::size_t linesLeftOut) const;

private:
    std::string truth(monitor::Truth truth) const;

    Colours colours_;
    bool everyStep_;
    std::string last_; ///< what the last step said
    std::string date_; ///< of the last step that has a line, by the clock
    std::size_t total_ = 0;
    std::size_t incomplete_ = 0;
    std::map<monitor::Truth, std::size_t> counts_;
};

} // namespace report
