// Values that a command line gives to variables at steps: `valve.position=stuckClosed@7`.
#pragma once

#include "telemetry/Names.h"
#include "text/Diagnostic.h"

#include <string>
#include <vector>

namespace app {

/// A variable's value from the command line.
struct StepValue {
    std::string text; ///< as it was given
    Atom* value = nullptr;
    std::size_t step = 1; ///< from 1
};

enum class Expected { mode, input };

/// Reads VARIABLE=VALUE@STEP, the value of `option`; for an input, @STEP may be left out and is 1. A mode is given by its
/// own name, an input by that or by its channel. Throws Failure with what is wrong and the nearest right name.
StepValue readStepValue(const std::string& option, Expected expected, const std::string& text,
                        const telemetry::Names& names);

/// The same for all values of an option, by rising step. Throws Failure when two of them are for the same variable and step.
std::vector<StepValue> readStepValues(const std::string& option, Expected expected,
                                      const std::vector<std::string>& texts,
                                      const telemetry::Names& names);

/// A failure in the value of an option, as the verbs report it.
[[noreturn]] void refuseValue(const std::string& option, const text::Message& what);

} // namespace app
