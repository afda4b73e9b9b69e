// The search of a step in a plant that laws connect as a whole, where what is predicted is known from the step before.
//
// Every explanation deviates in a mode of each conflict ("A theory of diagnosis from first principles", Artificial Intelligence 32,
// 1987). The conflict is the stretch between the readings around a contradiction (NearConflict.h), without what the readings require
// to be as it is (Requirements.h); each of its modes in turn deviates, those before it kept as they are. The labels of each are those
// of the one before, but for what changes: so a fault costs its stretch, and what it changes.
//
//     if (auto explanations = searchStretches(frame, 2, budget)) ...    // else it takes a FaultSearch
#pragma once

#include "monitor/step/Budget.h"
#include "monitor/step/ExplanationSearch.h"

namespace monitor {

/// What ExplanationSearch::search() promises; a conflict that is taken apart is a record. Nothing where this does not find it: where
/// there is nothing to go by (StepFrame::carried), where modes and commands contradict the laws, where propagation does not see a
/// contradiction, or where what is open does not have values. What it took to see that is spent of the budget.
std::optional<Explanations> searchStretches(const StepFrame& frame, int faultBudget, Budget& budget);

} // namespace monitor
