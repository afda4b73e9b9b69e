// What deviated at a step, as it is compared between ways.
#pragma once

#include "monitor/track/Successors.h"

namespace monitor {

/// Modes that are not as expected when these commands are lost; neither: the step was as expected.
struct Deviated {
    Deviations deviations;       ///< sorted
    std::vector<AtomIndex> lost; ///< the values that were given, sorted
    auto operator<=>(const Deviated&) const = default;
};

/// What deviated at a step that led from the parent to these modes. Costs a frame (monitor/track/Successors.h).
Deviated whatDeviated(const Successors& successors, const Hypothesis& parent,
                      const TrackInput& input, const std::vector<AtomIndex>& modes,
                      const std::vector<AtomIndex>& lost);

/// The lossy commands of the step that were lost. Each of `lost` is one of the step's.
std::vector<LossyCommand> lossesOf(const Deviated& deviated, const TrackInput& input);
/// The values that were given of these commands, sorted.
std::vector<AtomIndex> givenValues(const std::vector<LossyCommand>& commands);

} // namespace monitor
