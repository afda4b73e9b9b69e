// Judging candidates: what their modes predict, and how probable they are.
#pragma once

#include "monitor/Step.h"

#include <set>

namespace monitor {

/// The candidates among `found` that contradict no observation and contain no other candidate, with their
/// probabilities, most probable first. Each is predicted anew from its modes.
std::vector<Candidate> judge(const StepFrame& frame, const std::set<Deviations>& found);

} // namespace monitor
