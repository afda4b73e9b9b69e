// What the readings of the present rule out for good: a pump that is broken stays so, and nothing would come out of it now.
#pragma once

#include "monitor/step/Requirements.h"
#include "monitor/track/Hypothesis.h"

#include <optional>

namespace monitor {

class RuledOut {
public:
    /// By the step as it is expected after whatever came before it. Plant and present outlive it.
    RuledOut(const Plant& plant, const TrackInput& present) : plant_(plant), present_(present) {}

    /// Whether no step that is as expected leads from the value of a mode to another one, and the present does not allow it. Costs the
    /// changes that leave it; linear in the plant where it is first asked of a value that stays.
    bool forGood(AtomIndex value);

private:
    const Plant& plant_;
    const TrackInput& present_;
    std::optional<Requirements> required_; ///< from the first question on that needs it
};

} // namespace monitor
