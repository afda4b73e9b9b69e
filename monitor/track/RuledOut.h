// What the readings of the present rule out for good: a pump that is broken stays so, and nothing would come out of it now.
#pragma once

#include "monitor/step/Requirements.h"
#include "monitor/track/Hypothesis.h"

namespace monitor {

class RuledOut {
public:
    /// By the step as it is expected after whatever came before it. Linear in the plant.
    RuledOut(const Plant& plant, const TrackInput& present);

    /// Whether no step that is as expected leads from the value of a mode to another one, and the present does not allow it. Costs the
    /// changes that leave it.
    bool forGood(AtomIndex value) const;

private:
    const Plant& plant_;
    Requirements required_;
};

} // namespace monitor
