// States and propositions for a random model.
#pragma once

#include "model/State.h"
#include "tests/reference/RandomModel.h"

/// A state of step `time` with some of the components in it, ready for a step of the engine. The caller owns it.
/// Supports in it are installed as the engine would, with the dependents that belong to them.
State* randomState(RandomModel& model, int time);

/// Gives a state what no step of the engine leaves behind: supports without dependents, dependents without
/// support, any depth, null entries, distributions that do not fit.
void disturb(RandomModel& model, State* state);

/// Some elements of the state, most of them with the value opposite to their label, and locked to that value.
SignedEls randomPropositions(RandomModel& model, State* state);

/// An element of the state, or null when it has none.
TrajEl* randomElement(RandomModel& model, State* state);
