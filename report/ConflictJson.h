// A conflict as it stands in records: the same in every record that has one.
#pragma once

#include "report/ConflictReport.h"

#include <nlohmann/json_fwd.hpp>

namespace report {

/// `conflict`, `step`, `t`, `believed`, `observed`, `expected`, `modes`, `commands`, `readings`, `laws`, `cases`, `verified`,
/// `minimal`; docs/output.md has their meaning.
nlohmann::ordered_json conflictJson(const ExplainedConflict& conflict);

} // namespace report
