// What is believed of a plant after a step, and how programs and people read it.
#pragma once

#include "monitor/track/Tracker.h"
#include "report/StepWriter.h"
#include "report/Text.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace report {

/// A mode variable that is not as it would be had nothing gone wrong, or a fault: `valveB.position`, `stuckClosed`.
struct DeviatingMode {
    std::string variable;
    std::string value;
    std::size_t since = 0; ///< the step at which it began to differ; 0: from the beginning
};

/// One of the kept hypotheses.
struct TrackedExplanation {
    double probability = 0.0; ///< over the kept hypotheses, 0..1
    /// That are there, or began within the look-back; a lost command counts as one.
    int faults = 0;
    std::vector<DeviatingMode> modes; ///< by name of the variable
    std::vector<std::string> lost;    ///< commands of this step that did not arrive, VARIABLE=VALUE
    std::vector<std::string> unexplained;  ///< observations of this step, VARIABLE=VALUE
    std::vector<std::string> misread = {}; ///< readings of this step that are wrong, VARIABLE=VALUE
    /// The same number where what was read so far looks the same, if that was compared (report/Alike.h).
    std::optional<std::size_t> appearance = {};
};

/// For each variable that deviates in a hypothesis, the probability of each value with which it does.
using Marginals = std::map<std::string, std::map<std::string, double>>;

struct StepReport {
    std::size_t step = 0;
    double t = 0.0; ///< seconds
    std::optional<std::string> time =
        {}; ///< the same by the clock, where the telemetry has dates (WallClock.h)
    std::optional<double> gap; ///< seconds since the step before, where that is longer than usual
    monitor::TrackStatus status = monitor::TrackStatus::nominal;
    bool complete = true;
    SearchLimit limit = SearchLimit::none;
    bool approximate = false; ///< the likelihood of an explanation had to be estimated
    std::vector<TrackedExplanation> explanations; ///< most probable first
    std::size_t dropped = 0;                      ///< hypotheses beyond those that are kept
    double missing = 0.0; ///< upper bound of the probability of what was given up, 0..1
    double silent = 0.0;  ///< the same of a fault of the last steps that has not shown, 0..1
    bool wentBack = false;
    Marginals marginals;
    double fault = 0.0;                       ///< probability that some mode deviates, 0..1
    std::map<std::string, double> components; ///< of those with a deviating mode: that one of theirs does
    std::vector<std::string> held;            ///< observations that stand in for missing readings
    SearchWork work;
};

/// What of an answer is shown.
struct Shown {
    std::size_t most = 5; ///< explanations, or groups of them in a table; 0: all
    double mass = 0.99; ///< no more than those that have so much of the probability together, 0..1
};

/// What deviates in a hypothesis, by name of the variable.
std::vector<DeviatingMode> deviatingModes(const plant::Plant& plant,
                                          const monitor::Hypothesis& hypothesis);

/// The report of an answer; time by the clock, gap and held readings, which the answer does not know, are left to the caller.
StepReport stepReport(const plant::Plant& plant, const monitor::TrackAnswer& answer);

/// "valveB.position = stuckClosed since step 3; ...", or "nothing is wrong". Where no line is to be broken there are
/// unbreakable spaces (report/Text.h). Something else may be said first.
std::string inWords(const TrackedExplanation& explanation, const std::string& first = "");

/// "since step 3", or "from the beginning" for step 0.
std::string sinceInWords(std::size_t step);

/// How many of the explanations are shown.
std::size_t shownCount(const StepReport& report, const Shown& shown);

/// The record of the step, ended by a newline. docs/output.md documents every field, docs/step.schema.json its shape.
std::string stepJson(const StepReport& report, const Shown& shown);

/// The steps of one run for people: what changed, when, since when, and how sure that is. A step at which nothing changed
/// has no lines, unless all are wanted.
class TrackingTable {
public:
    TrackingTable(Colours colours, Shown shown, bool everyStep)
        : colours_(colours), shown_(shown), everyStep_(everyStep)
    {
    }

    /// What the table remembers of the steps before.
    const WriterMemory::Table& memory() const { return memory_; }
    void restore(WriterMemory::Table memory) { memory_ = std::move(memory); }

    std::string heading() const;
    /// The step's lines; empty where status and explanations are those of the step before.
    std::string rows(const StepReport& report);
    /// How many steps there were, and what they were like.
    std::string summary(std::size_t linesLeftOut) const;

private:
    std::string status(monitor::TrackStatus status) const;
    std::string row(const std::string& head, double probability, const std::string& words) const;

    Colours colours_;
    Shown shown_;
    bool everyStep_;
    WriterMemory::Table memory_;
};

} // namespace report
