// What the labels of a step are drawn from.
#pragma once

#include "monitor/labels/Numbering.h"

namespace monitor {

/// Values of commands, then of modes. Copied, and compared with those of the step before, at the cost of what changed.
struct StepAssumptions {
    StepAssumptions(SharedArray<AtomIndex> ofCommands, SharedArray<AtomIndex> ofModes)
        : commands(std::move(ofCommands)), modes(std::move(ofModes))
    {
    }
    /// In this order; which of them are modes does not matter.
    StepAssumptions(const std::vector<AtomIndex>& values) : commands(values) {}

    /// All of them. Linear.
    std::vector<AtomIndex> all() const
    {
        std::vector<AtomIndex> values = commands.toVector();
        values.insert(values.end(), modes.begin(), modes.end());
        return values;
    }

    SharedArray<AtomIndex> commands;
    SharedArray<AtomIndex> modes;

    friend bool operator==(const StepAssumptions&, const StepAssumptions&) = default;
};

/// Modes, commands and inputs.
struct GivenValues {
    GivenValues(StepAssumptions assumed, std::vector<AtomIndex> read = {})
        : assumptions(std::move(assumed)), inputs(std::move(read))
    {
    }
    GivenValues(const std::vector<AtomIndex>& values) : assumptions(values) {}

    StepAssumptions assumptions;
    std::vector<AtomIndex> inputs;

    friend bool operator==(const GivenValues&, const GivenValues&) = default;
};

} // namespace monitor
