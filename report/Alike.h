// Explanations that cannot be told apart: each has one fault that the others have not, and whatever is read looks the same.
//
// A torn belt, a loose wheel and a shut damper all end the flow. To a reader these are not three answers of which each is
// improbable; there is one: it is one of these.
#pragma once

#include "report/Tracking.h"

namespace report {

/// Explanations that cannot be told apart, or a single one.
struct ExplanationGroup {
    double probability = 0.0;         ///< of all of them together, 0..1
    std::vector<std::size_t> members; ///< places among the step's explanations, most probable first
    /// By member, the mode that it alone has, which began to differ at the same step in all; empty for a single one.
    std::vector<DeviatingMode> either;
};

/// Notes for each explanation of the answer's report how the variables that were read so far look under it: which of their values
/// follow, or are excluded. Costs their values times the explanations; nothing where there is one.
void noteAppearance(StepReport& report, const plant::Plant& plant,
                    const monitor::TrackAnswer& answer,
                    const std::vector<plant::VariableIndex>& read);

/// All explanations in groups, the most probable group first; of equally probable ones the one that begins first. Two are in one group
/// where they have the same number of faults, lost the same commands, leave the same unexplained, look the same, and differ in one mode
/// each, since the same step. Without noteAppearance() each is alone. Linear in the explanations' modes, but for sorting.
std::vector<ExplanationGroup> grouped(const std::vector<TrackedExplanation>& explanations);

/// Those of a step that are shown: what is improbable by itself is in no group.
std::vector<ExplanationGroup> shownGroups(const StepReport& report, const Shown& shown);

/// A group in words: "one of a.mode = stuck (40.0 %), b.mode = dead (20.0 %) since step 7; c.mode = open since step 5". Of more than
/// eight members the most probable ones are named. Without numbers that may change a little where these are not wanted, the names
/// sorted then.
std::string inWords(const ExplanationGroup& group,
                    const std::vector<TrackedExplanation>& explanations,
                    bool withProbabilities = true);

} // namespace report
