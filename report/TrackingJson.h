// A step of a tracked plant for programs: one line of JSON.
#pragma once

#include "report/Tracking.h"

namespace report {

/// The record of the step, ended by a newline. docs/output.md documents every field, docs/step.schema.json its shape.
std::string stepJson(const StepReport& report, const Shown& shown);

} // namespace report
