// Which modes and readings may have to do with a contradiction.
#pragma once

#include "monitor/track/Successors.h"

namespace monitor {

/// By variable: the modes, and the readings, on which it rests that the step contradicts these hypotheses, directly or through what
/// the transitions of the step and of earlier ones depended on, of which `earlier` are the hypotheses. Costs a prediction for each
/// hypothesis, and more where guards read conditions.
std::vector<bool> variablesAgainst(const Successors& successors, const Plant& plant,
                                   const std::vector<const Hypothesis*>& contradicted,
                                   const std::vector<const Hypothesis*>& earlier,
                                   const TrackInput& present);

} // namespace monitor
