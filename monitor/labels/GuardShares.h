// How far the guards of transitions hold.
//
// A guard that follows from what is known before the step, and from its commands, holds; one that is excluded does not. Between
// them it has a share: that of the combinations of what is open, as the laws allow them, in which it holds. With `cond a: x, y, z`
// unknown, `when a = x` has the share 1/3.
#pragma once

#include "monitor/labels/CommandValues.h"
#include "monitor/labels/OpenGroups.h"

#include <optional>
#include <unordered_map>

namespace monitor {

/// What a guard has.
struct GuardShare {
    double share = 0.0; ///< 0..1
    /// The first alternative that holds, or of an open guard the first that may; null when none does.
    const PlantChange::Alternative* alternative = nullptr;
    /// False where there are too many combinations: then the share is that which the values by themselves would have, without laws.
    bool exact = true;
};

/// The guards of a step.
class GuardShares {
public:
    /// From the modes and conditions before the step and the commands of this step. A command that is not given may have any value,
    /// whatever `before` says of it. A mode variable without a value in `before` has its first.
    /// Requires: all conclusions are drawn from `before`, and there is no contradiction. Plant and labels outlive it. Constant time where
    /// the labels are shared.
    GuardShares(const Plant& plant, const Prediction& before, CommandValues commands);

    /// Linear in the guard where it follows or is excluded. Otherwise it costs a count of what is open together with it, for each
    /// combination of values that its variables can have.
    GuardShare of(const PlantChange& change);
    /// The value that the mode variable had before the step.
    AtomIndex before(const PlantVariable& mode) const;
    /// How many open guards were counted, or estimated, until now.
    std::size_t counted() const { return counted_; }

private:
    enum class Holds { no, perhaps, yes };
    struct Counts {
        double holding = 0.0;
        double all = 0.0;
    };

    /// In which guards are read.
    Label label(AtomIndex atom) const;
    std::vector<VariableIndex> openVariables(
        const std::vector<const PlantChange::Alternative*>& alternatives) const;
    Holds holds(const PlantChange::Alternative& alternative) const;
    double shareOf(const std::vector<const PlantChange::Alternative*>& open, bool& exact);
    double shareWithoutLaws(const std::vector<const PlantChange::Alternative*>& open) const;
    /// The conditions that are open together with these, these included; the known ones are left out.
    std::vector<VariableIndex> connectedConditions(const std::vector<VariableIndex>& variables);
    /// Gives the variables from this one on every combination of values. False where there are too many.
    bool count(const std::vector<VariableIndex>& variables, std::size_t next,
               const std::vector<const PlantChange::Alternative*>& open,
               const std::vector<VariableIndex>& connected, Counts& counts);

    const Plant& plant_;
    const Prediction& known_;
    CommandValues commands_;
    std::unordered_map<AtomIndex, Label> tryingLabels_; ///< of what has a value for a trial
    std::optional<Prediction> trying_;  ///< that of the labels before the step, with values tried
    std::optional<OpenVariables> open_; ///< of those labels
    std::size_t tried_ = 0;
    std::size_t counted_ = 0;
};

} // namespace monitor
