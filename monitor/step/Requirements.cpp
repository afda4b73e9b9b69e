#include "monitor/step/Requirements.h"

#include <algorithm>

namespace monitor {

namespace {

// Of each mode only what it can have at the step.
bool narrow(Prediction& labels, const StepFrame& frame)
{
    for (const ModeStep& step : frame.modes) {
        for (const AtomIndex value : frame.plant.variable(step.variable).values) {
            if (!step.option(value) && !labels.exclude(value)) {
                return false;
            }
        }
    }
    return true;
}

bool give(Prediction& labels, const SharedArray<AtomIndex>& commands,
          const std::vector<AtomIndex>& observations)
{
    const auto assume = [&](AtomIndex value) { return labels.assume(value); };
    return std::all_of(commands.begin(), commands.end(), assume) &&
           std::all_of(observations.begin(), observations.end(), assume);
}

} // namespace

Requirements::Requirements(const StepFrame& frame)
    : labels_(frame.plant), possible_(give(labels_, frame.commands, frame.observations) &&
                                      narrow(labels_, frame) && labels_.propagate())
{
}

Requirements::Requirements(const Plant& plant, const SharedArray<AtomIndex>& commands,
                           const std::vector<AtomIndex>& observations)
    : labels_(plant), possible_(give(labels_, commands, observations) && labels_.propagate())
{
}

void Requirements::require(AtomIndex value)
{
    possible_ = possible_ && labels_.assume(value) && labels_.propagate();
}

void Requirements::undo(std::size_t mark)
{
    labels_.undo(mark);
    possible_ = true;
}

} // namespace monitor
