// One step from one line of JSON:
//
//     {"t": 12.5, "commands": {"XV-A": "open"}, "observations": {"FT-101": 0.02, "valveB.outflow": "zero"}}
//
// Every key may be missing, and the one of the time may have another name. Without `t`, a step comes one step length of the model
// after the one before; the first one is at 0.
#pragma once

#include "telemetry/StepBuilder.h"
#include "telemetry/TimeFormat.h"
#include "text/Diagnostic.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace telemetry {

class JsonLineParser {
public:
    /// Requires: the builder and the format of the times outlive this.
    JsonLineParser(StepBuilder& builder, TimeFormat& time, const ReadSettings& settings);

    /// The step of a line, or the first error in it, in which the name of the file is left to the caller. Linear in the line.
    /// Ensures: after an error the builder remembers nothing of the line.
    std::variant<Step, text::Diagnostic> parse(std::string_view line, std::size_t lineNumber);

private:
    StepBuilder& builder_;
    TimeFormat& time_;
    std::string timeKey_;
    bool knownNamesOnly_;
    std::size_t lines_ = 0;
    std::vector<std::size_t> seen_[2]; // by side and name: the line that had it as a key
};

} // namespace telemetry
