// How many combinations of values the laws leave to variables that are open.
//
// With a valve of unknown position, `law in.flow = out.flow` leaves flow and flow together two combinations, not four. The number is
// what the likelihood of observations is made of: each combination that modes and commands allow is equally likely.
#pragma once

#include "monitor/labels/Prediction.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace monitor {

/// Values that are tried, at most, before counting is given up.
constexpr std::size_t mostTriedValues = 500;
/// Open variables that are looked at, at most, each as often as that happens.
constexpr std::size_t mostReachedVariables = 500'000;

/// The combinations of values that these variables can have together, with values for everything that is open with them; those whose
/// value is known are one. Nothing when there are too many to be counted. 0 when the laws leave none; laws that no open variable
/// connects with these are not looked at.
/// Requires: `labels` are propagated without contradiction. Neither the order of the variables nor a repetition matters. Linear in what
/// is open together with the variables, for each value that is tried.
std::optional<double> countCombinations(const Plant& plant, Prediction labels,
                                        const std::vector<VariableIndex>& variables);

} // namespace monitor
