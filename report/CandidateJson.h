// A tracked explanation as it stands in records: the same in every record that has one.
#pragma once

#include "report/Tracking.h"

#include <nlohmann/json_fwd.hpp>

namespace report {

/// `p`, `rank`, `modes`, `since`, `lost`, `misread` where there is any, `unexplained`.
nlohmann::ordered_json candidateJson(const TrackedExplanation& explanation);

/// `modes`: the values by variable; `since`: the steps.
nlohmann::ordered_json deviatingJson(const std::vector<DeviatingMode>& modes);

} // namespace report
