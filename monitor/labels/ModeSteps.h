// What each mode variable may do in one step, and how probable that is.
//
// From value a, with the transitions whose guards hold or may hold: it follows the most probable nominal one, if there is one that is
// no less probable than staying, and stays otherwise; it may also take any other enabled transition, or stay,
// with what the enabled transitions leave of the probability. Where they leave nothing to staying and none of them is nominal,
// the most probable one is followed. A value that none of these reaches cannot be had at this step.
#pragma once

#include "monitor/labels/Prediction.h"

namespace monitor {

/// A value that a mode variable may have after the step.
struct ModeOption {
    AtomIndex value;
    double probability; ///< per step, above 0, at most 1 (if the model's add up to at most 1)
    bool fault;         ///< the value is a fault, and not the one that the variable had
    bool repair;        ///< a repair leads to it
    /// A nominal transition leads to it; or it is that of staying, and that no nominal transition can be taken explains that at
    /// least as well as that one was missed.
    bool nominal;

    friend bool operator==(const ModeOption&, const ModeOption&) = default;
};

/// The possibilities of one mode variable.
struct ModeStep {
    VariableIndex variable;
    AtomIndex before;
    AtomIndex predicted; ///< one of the options
    std::vector<ModeOption> options;
    const Transition* followed = nullptr; ///< the nominal transition that is predicted; null: none
    bool exact = true;                    ///< the shares of open guards were counted, not estimated

    /// The option of that value; null when the variable cannot have it.
    const ModeOption* option(AtomIndex value) const;
    /// Whether it may deviate from what is predicted without a fault.
    bool deviatesFreely() const;

    friend bool operator==(const ModeStep&, const ModeStep&) = default;
};

/// The possibilities of every mode variable, in the plant's order of variables. Guards are read in the modes and
/// conditions before the step and the commands of this step; an open one has its share (GuardShares.h). Requires: all conclusions
/// are drawn from `before`. Linear in the plant and in the changes that leave the values before the step, but for open guards.
std::vector<ModeStep> modeSteps(const Plant& plant, const Prediction& before,
                                const std::vector<AtomIndex>& commands);

} // namespace monitor
