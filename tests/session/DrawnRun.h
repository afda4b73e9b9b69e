// A plant that lives by the probabilities of its model: what happens in it is drawn from a seed, and what is true of it is known.
//
// Modes, commands that are lost and what nobody reads come from simulate::Simulator. The readings that the plant leaves open are
// drawn here, by what docs/output.md says of readings in time, and given to it: a group that hangs together shows what it showed
// before, but for its channels' `varies`; when it was not open before, or a mode that bears on it changed, each of its combinations
// is as probable as the others.
#pragma once

#include "language/Reader.h"
#include "monitor/labels/OpenGroups.h"
#include "simulate/CommandSource.h"
#include "simulate/Simulator.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

/// The model with the probabilities of its faults so many times as large, and `varies` for every reading that has none. What is left
/// to staying and to nominal transitions is less. Requires: they leave something.
language::ReadResult withRates(const language::ReadResult& read, double factor, double varies);

/// What happened in a step.
struct DrawnStep {
    std::vector<plant::AtomIndex> commands; ///< that were given
    std::vector<plant::VariableIndex> lost; ///< those of them that did not arrive
    std::vector<plant::AtomIndex> modes;    ///< in the plant's order
    std::vector<plant::AtomIndex> observations;
};

class DrawnRun {
public:
    /// Plant and bindings outlive it. Inputs change with the probability `inputsChange` per step.
    DrawnRun(const plant::Plant& plant, const plant::Bindings& bindings, std::uint64_t seed,
             double inputsChange = 0.1);

    /// Nothing where the modes contradict one another, or where there are too many combinations of readings to draw from.
    std::optional<DrawnStep> next();

private:
    std::vector<plant::AtomIndex> drawnInputs();
    std::optional<std::vector<plant::AtomIndex>> drawnReadings(
        const simulate::SimulatedStep& happened, const std::vector<plant::AtomIndex>& inputs);
    void forget(monitor::OpenVariables& open, const std::vector<plant::AtomIndex>& modes);
    monitor::Combination draw(const monitor::OpenGroup& group);
    std::vector<plant::AtomIndex> modesOf(const simulate::SimulatedStep& step) const;

    const plant::Plant& plant_;
    double inputsChange_;
    simulate::Chance chance_;
    simulate::CommandSource commands_;
    simulate::Simulator simulator_;
    std::vector<plant::VariableIndex> inputs_;
    std::vector<plant::VariableIndex> read_; ///< and scored
    std::map<plant::VariableIndex, double> varies_;
    std::map<plant::VariableIndex, plant::AtomIndex> lastInputs_;
    std::map<plant::VariableIndex, plant::AtomIndex> last_; ///< of what was open
    std::vector<plant::AtomIndex> modes_;
};
