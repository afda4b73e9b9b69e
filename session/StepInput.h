// A step of telemetry as the tracker takes it.
#pragma once

#include "monitor/track/Hypothesis.h"
#include "plant/Bindings.h"
#include "session/ReadingChanges.h"

namespace session {

/// Requires that the step's atoms are the plant's; `changes` are those before the step. Declared inputs come first. Linear in the
/// commands, the observations and the channels.
monitor::TrackInput trackInput(const plant::Plant& plant, const plant::Bindings& bindings,
                               const ReadingChanges& changes, const telemetry::Step& step);

} // namespace session
