// An explained step as one JSON object. docs/output.md has its fields.
#pragma once

#include "report/StepExplanation.h"

namespace report {

/// Ended by a newline.
std::string explanationJson(const StepExplanation& explanation);

} // namespace report
