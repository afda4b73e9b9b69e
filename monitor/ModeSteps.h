// What each mode variable may do in one step, and how probable that is.
//
// From value a, with the transitions enabled by this step's commands: it follows the nominal transition if one
// is enabled and stays otherwise; it may also take any other enabled transition, or stay, with what the enabled
// transitions leave of the probability. A value that none of these reaches cannot be had at this step.
#pragma once

#include "monitor/Prediction.h"

namespace monitor {

/// A value that a mode variable may have after the step.
struct ModeOption {
    AtomIndex value;
    double probability; ///< per step, 0..1
    bool fault;         ///< the value is a fault, and not the one that the variable had
};

/// The possibilities of one mode variable.
struct ModeStep {
    VariableIndex variable;
    AtomIndex before;
    AtomIndex predicted; ///< one of the options
    std::vector<ModeOption> options;

    const ModeOption* option(AtomIndex value) const;
    /// Whether it may deviate from what is predicted without a fault.
    bool deviatesFreely() const;
};

/// The possibilities of every mode variable, in the plant's order of variables. `before` gives the labels in
/// which guards are read: mode values before the step, commands of this step, conditions before the step.
/// Linear in the transitions.
std::vector<ModeStep> modeSteps(const Plant& plant, const Prediction& before);

} // namespace monitor
