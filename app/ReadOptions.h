// The options that say how telemetry is written, and what to do about what is not as it should be.
#pragma once

#include "app/CommandLine.h"
#include "telemetry/ReadSettings.h"

#include <map>
#include <optional>
#include <string>

namespace app {

/// None where the command line does not say: then the plant's file does, or what is usual holds.
struct ReadOptions {
    std::optional<std::string> unknownColumns; ///< ignore
    std::optional<std::string> badReadings;    ///< missing
    std::optional<std::string> timeColumn;
    std::optional<std::string> timeFormat;
    std::optional<std::string> separator; ///< `,`, `;` or `tab`
    std::optional<std::string> decimal;   ///< .
    std::optional<std::string> gap;       ///< step lengths, 3
    std::optional<std::string> rename;    ///< a file
    std::optional<std::string> plantFile; ///< in place of the one beside the model; `none`: none
};

/// "How the telemetry is written". The options that a plant's file may give as well are named as its keys are.
Section readSection(ReadOptions& options);

/// How telemetry is read after all.
struct Reading {
    telemetry::ReadSettings settings;
    /// What was said, by name, as text: a run that is resumed has the same.
    std::map<std::string, std::string> texts;
};

/// What the options say. Throws Failure for those that do not go together.
Reading readingOf(const ReadOptions& options);

} // namespace app
