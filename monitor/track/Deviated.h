// What deviated at a step, as it is compared between ways.
#pragma once

#include "monitor/track/Successors.h"

namespace monitor {

/// Modes that are not as expected when these commands and readings are lost; neither: the step was as expected.
struct Deviated {
    Deviations deviations; ///< sorted
    /// The values that were given or read, sorted; without readings that are held and were wrong before.
    std::vector<AtomIndex> lost;
    auto operator<=>(const Deviated&) const = default;
};

/// What deviated at a step that led from the parent to these modes; `lost` may have readings that are held, too. Costs a frame
/// (monitor/track/Successors.h).
Deviated whatDeviated(const Successors& successors, const Hypothesis& parent,
                      const TrackInput& input, const SharedArray<AtomIndex>& modes,
                      const std::vector<AtomIndex>& lost);

/// What was lost, of what might be lost at the step.
Losses lossesOf(const Deviated& deviated, const TrackInput& input);
/// The values that were given or read, sorted.
std::vector<AtomIndex> givenValues(const Losses& lost);

} // namespace monitor
