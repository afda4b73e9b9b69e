// A step of telemetry as the tracker takes it.
#pragma once

#include "monitor/track/Hypothesis.h"
#include "plant/Bindings.h"
#include "telemetry/Step.h"

namespace session {

/// Requires that the step's atoms are the plant's. Linear in the commands and the observations.
monitor::TrackInput trackInput(const plant::Plant& plant, const plant::Bindings& bindings,
                               const telemetry::Step& step);

} // namespace session
