// What the readings of a step require of its modes, whichever of these deviate.
//
//     Requirements required(frame);                          // costs the plant
//     if (!required.allow(value)) ...                        // no explanation of the step has this value
//
// Nothing is predicted: commands and readings are assumed, and of every mode that it has one of its options. What follows from that
// holds in every explanation. Where a pump's outflow is read, all pumps before it run, and none of them is to be tried.
#pragma once

#include "monitor/step/Scenario.h"

namespace monitor {

/// With no more modes than that a search costs little, and what is looked for is not narrowed.
constexpr std::size_t fewToSearch = 32;

class Requirements {
public:
    /// Linear in the plant. The plant outlives it.
    explicit Requirements(const StepFrame& frame);
    /// The same of these commands and readings, whatever the modes may do. Linear in the plant.
    Requirements(const Plant& plant, const SharedArray<AtomIndex>& commands,
                 const std::vector<AtomIndex>& observations);

    /// Whether there may be an explanation of what is required now.
    bool possible() const { return possible_; }
    /// Whether there may be one with that value of a mode. Constant time.
    bool allow(AtomIndex value) const
    {
        return possible_ && labels_.label(value) != Label::isFalse;
    }

    /// What is required now, to return to.
    std::size_t mark() const { return labels_.mark(); }
    /// Also requires a value. Costs what follows.
    void require(AtomIndex value);
    /// Takes back what was required after the mark. Requires: at the mark it was possible.
    void undo(std::size_t mark);

private:
    Prediction labels_;
    bool possible_;
};

} // namespace monitor
