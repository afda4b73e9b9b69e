// The options that say how telemetry is written, and what to do about what is not as it should be.
#pragma once

#include "app/CommandLine.h"
#include "telemetry/ReadSettings.h"

#include <map>
#include <string>

namespace app {

struct ReadOptions {
    std::string unknownColumns = "ignore";
    std::string badReadings = "missing";
    std::string timeColumn;
    std::string timeFormat;
    std::string separator; ///< `,`, `;`, `tab`, or empty: found out
    std::string decimal = ".";
    double gap = 1.5; ///< step lengths
};

/// "How the telemetry is written".
Section readSection(ReadOptions& options);
/// What the options say. Throws Failure for those that do not go together.
telemetry::ReadSettings readSettings(const ReadOptions& options);
/// The options by name, as text: a run that is resumed has the same.
std::map<std::string, std::string> textsOf(const ReadOptions& options);

} // namespace app
