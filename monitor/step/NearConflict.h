// The modes behind a contradiction, as far as the readings around it.
//
// In a chain of pumps a reading rests on all pumps before it. But where one of them is read, too, and is as predicted, the pumps before
// that one have nothing to do with it: what is read is given, and the reasons of a label end there. So a conflict is the stretch between
// readings, however long the chain is. The reasons are those that propagation finds first from what is given, breadth first, and do
// not depend on the steps before ("An assumption-based TMS", Artificial Intelligence 28, 1986, on environments).
#pragma once

#include "monitor/step/Scenario.h"

#include <optional>

namespace monitor {

/// Modes of which at least one is not as assumed, if everything that is observed holds: the smallest set of those behind the
/// observations that the labels rule out. The one that is the most reasons away from the observation comes first: two that follow one
/// another mostly stand side by side in the plant. Nothing where none of these has a value with a reason. Requires: consistent labels.
/// Costs what is between these observations and others that agree.
std::optional<std::vector<VariableIndex>> nearConflict(const Plant& plant, const StepLabels& labels);

} // namespace monitor
