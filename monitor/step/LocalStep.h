// A step as it is in those parts of the plant in which something contradicts what is predicted: that is where its explanations are.
//
//     if (const auto local = LocalStep::of(frame)) {
//         Scenario scenario(local->frame(), {});             // costs the part
//         ... local->inWhole(scenario.conflicts()) ...
//     }
//
// What is searched there is what would be searched in the whole plant, in the same order: reasons, conflicts and suspects of one part do
// not depend on the others, and a search that begins with a contradiction in one never leaves it.
#pragma once

#include "monitor/step/Scenario.h"

namespace monitor {

/// True where nothing contradicts what is predicted, and what is open has values in turn. Costs what changed at the step, and what is
/// read; false where it is not known what the labels before the step were drawn from.
bool isExpected(const StepFrame& frame);

class LocalStep {
public:
    /// Nothing where the whole plant has to be looked at: where it is not known what the labels before the step were drawn from, or
    /// some command is not given, where modes and commands contradict one another, or no reading contradicts them, where the other parts
    /// leave something open that does not have values in turn, and where the parts are most of the plant. Costs what changed at the
    /// step, what is read, and the parts.
    static std::optional<LocalStep> of(const StepFrame& frame);

    /// The step by the numbers of the part. Lives as long as this.
    const StepFrame& frame() const { return frame_; }
    /// By the numbers of the whole plant; the order stays.
    Deviations inWhole(const Deviations& deviations) const;
    std::vector<Conflict> inWhole(const std::vector<Conflict>& conflicts) const;

private:
    LocalStep(const StepFrame& whole, std::shared_ptr<const PlantPart> part, bool restIsKnown);

    std::shared_ptr<const PlantPart> part_;
    StepFrame frame_;
};

} // namespace monitor
