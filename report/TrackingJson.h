// A step of a tracked plant for programs: one line of JSON.
#pragma once

#include "report/Tracking.h"

#include <nlohmann/json_fwd.hpp>

namespace report {

/// An explanation as it stands among a record's candidates.
nlohmann::ordered_json explanationJson(const TrackedExplanation& explanation);

/// The record of the step, ended by a newline. docs/output.md documents every field, docs/step.schema.json its shape.
std::string stepJson(const StepReport& report, const Shown& shown);

} // namespace report
