// A step of telemetry as the tracker takes it.
#pragma once

#include "monitor/track/Hypothesis.h"
#include "plant/Bindings.h"
#include "session/ReadingChanges.h"

namespace session {

/// Requires that the step's atoms are the plant's; `changes` are those before the step. Ensures: declared inputs come first, and
/// each part is in the order of the plant's numbers, whatever order the step has them in. Linear in the commands and channels, and
/// n log n in the observations.
monitor::TrackInput trackInput(const plant::Plant& plant, const plant::Bindings& bindings,
                               const ReadingChanges& changes, const telemetry::Step& step);

} // namespace session
