// The options that several verbs have: one place for their names, texts, checks and defaults.
#pragma once

#include "app/CommandLine.h"
#include "app/Output.h"
#include "app/ReadOptions.h"
#include "report/Tracking.h"
#include "report/Writers.h"
#include "session/Session.h"

namespace app {

/// Limits of a step: millions of literals, and mebibytes. 0: no limit.
inline constexpr std::uint64_t usualMaxWork = session::Settings::usualWork.maxWork / 1'000'000;
inline constexpr std::uint64_t usualMaxMemory = session::Settings::usualWork.maxBytes >> 20U;

/// What the command line says about the model.
struct ModelOptions {
    std::string path;
    std::vector<std::string> importFolders;
    bool importsAnywhere = false;
};

/// What it says about model, telemetry and how to search.
struct TrackOptions {
    ModelOptions model;
    std::string telemetry;
    std::vector<std::string> moreTelemetry; ///< further files
    bool skipBad = false;
    ReadOptions reading;
    bool mayGrow = false; ///< what is not complete at the end of the telemetry is not taken

    int maxRank = 3;
    std::uint64_t keep = 8;
    std::uint64_t lookBack = 10;
    double follow = 0.05;
    std::uint64_t maxRecords = 100000; ///< of a step; 0: no limit
    double maxSeconds = 0.0;           ///< of a step; 0: no limit
    std::uint64_t maxWork = usualMaxWork;
    std::uint64_t maxMemory = usualMaxMemory;
    bool quiet = false;
};

/// What it says about how the answer is printed.
struct AnswerOptions {
    std::optional<std::string> format; ///< none: for people on a terminal, else JSON
    std::string colour = "auto";
    std::optional<std::string> output; ///< a file; none: standard output
};

/// The exit status, in the help of a verb that is about one step.
inline constexpr const char* stepExitStatus =
    "0 done; 2 an error in the command line, the model or the telemetry;\n"
    "3 nothing explains the observations of the step, or a limit cut its search short;\n"
    "130 interrupted.";

/// A number of steps that no run reaches.
inline constexpr std::uint64_t mostSteps = std::uint64_t{1} << 53;
/// A number of faults, of one explanation, that is out of reach.
inline constexpr std::uint64_t mostFaults = 1000;

Row modelRow(std::string& path, const std::string& help);
/// -I, --import; `help` may add to what it says.
Row importRow(std::vector<std::string>& folders, const std::string& help);
/// --allow-imports-anywhere.
Row importsAnywhereRow(bool& anywhere);
/// --skip-bad.
Row skipBadRow(bool& skipBad);
/// -q, --quiet; `kept` names what is not printed then.
Row quietRow(bool& quiet, const std::string& kept);
/// --step.
Row stepRow(std::optional<std::uint64_t>& step, const std::string& help);
/// -n; `help` says N of what.
Row shownRow(std::uint64_t& shown, const std::string& help);
/// --mass.
Row massRow(double& mass);
/// --format with these words; the first one is what is for people.
Row formatRow(AnswerOptions& answer, const std::vector<std::string>& words, const std::string& help);
/// --color; `where` names what is coloured.
Row colourRow(AnswerOptions& answer, const std::string& where = "table");
/// --max-seconds, of a step.
Row maxSecondsRow(double& seconds, const std::string& help);
/// --max-work, of a step, in millions; `help` begins with what is done then.
Row maxWorkRow(std::uint64_t& millions, const std::string& help);
/// --max-memory.
Row maxMemoryRow(std::uint64_t& mebibytes);
/// What these options say.
monitor::WorkLimits workLimits(std::uint64_t maxWork, std::uint64_t maxMemory);
/// --fail-on; `help` says when.
Row failOnRow(std::optional<std::string>& failOn, const std::string& help);

/// The rows of MODEL, TELEMETRY and how they are read.
std::vector<Row> telemetryRows(TrackOptions& track);
/// The same with further files of telemetry, for a verb that takes no other argument.
std::vector<Row> trackRows(TrackOptions& track);
/// "How to search".
Section searchSection(TrackOptions& track);

/// The writers that the options ask for.
report::Writers writersOf(const AnswerOptions& answer, report::Sink sink);

} // namespace app
