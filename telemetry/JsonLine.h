// One step from one line of JSON:
//
//     {"t": 12.5, "commands": {"XV-A": "open"}, "observations": {"FT-101": 0.02, "valveB.outflow": "zero"}}
//
// Every key may be missing. Without `t`, a step comes one step length of the model after the one before; the first one is at 0.
#pragma once

#include "telemetry/StepBuilder.h"
#include "text/Diagnostic.h"

#include <string_view>
#include <variant>
#include <vector>

namespace telemetry {

class JsonLineParser {
public:
    /// Requires: the builder outlives this.
    explicit JsonLineParser(StepBuilder& builder);

    /// The step of a line, or the first error in it, in which the name of the file is left to the caller. Linear in the line.
    /// Ensures: after an error the builder remembers nothing of the line.
    std::variant<Step, text::Diagnostic> parse(std::string_view line, std::size_t lineNumber);

private:
    StepBuilder& builder_;
    std::size_t lines_ = 0;
    std::vector<std::size_t> seen_[2]; // by side and name: the line that had it as a key
};

} // namespace telemetry
