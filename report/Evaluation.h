// What came of holding a monitor against labels, for people and for programs.
#pragma once

#include "assess/Evaluation.h"
#include "report/Moment.h"
#include "report/Text.h"

#include <string>

namespace report {

struct EvaluationReport {
    assess::Evaluation evaluation;
    Clock clock = Clock::seconds;
};

/// One line of JSON; docs/output.md documents the fields, docs/evaluation.schema.json the shape.
std::string evaluationJson(const EvaluationReport& report);

/// A line for each event, and what came of all of them, in lines ended by newlines.
std::string evaluationTable(const EvaluationReport& report, const Colours& colours);

} // namespace report
