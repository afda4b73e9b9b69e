// The minimal explanations of a step by trying out sets of mode changes, each with a complete search for values of
// all other variables. Of the monitor it takes the step's frame: what each mode may do, and the dense view of the
// clauses. Plants of some fifty components with two faults take a second, where BruteForceDiagnosis takes for ever.
#pragma once

#include "monitor/step/Scenario.h"

#include <set>
#include <vector>

/// A search for values of all atoms that satisfy all clauses of a plant: unit propagation, else a choice.
class Values {
public:
    /// Keeps `given` for all searches. The plant outlives it.
    Values(const plant::Plant& plant, const std::vector<plant::AtomIndex>& given);

    /// Whether there are values that have the atoms given and `further`.
    bool exist(const std::vector<plant::AtomIndex>& further);

private:
    bool set(plant::AtomIndex atom, bool value);
    bool propagate();
    bool choose();
    void undo(std::size_t mark);
    bool assume(const std::vector<plant::AtomIndex>& atoms);

    const plant::Plant& plant_;
    std::vector<int> values_; ///< 1 true, -1 false, 0 open
    std::vector<plant::AtomIndex> trail_;
    std::size_t next_ = 0;
    bool possible_;
};

/// All sets of mode changes with at most `maxFaults` faults that agree with commands, observations and clauses and
/// contain no other such set. Changes that are no faults are not counted.
std::set<std::set<plant::AtomIndex>> minimalExplanations(const monitor::StepFrame& frame,
                                                         int maxFaults);
