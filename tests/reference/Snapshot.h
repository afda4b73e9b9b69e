// Everything that can be seen of the engine's work, as text: doubles in hexadecimal, clauses by number, elements
// by identifier, containers in their iteration order.
#pragma once

#include "engine/ItmsRes.h"
#include "tests/reference/RandomModel.h"

#include <string>

std::string text(double number);
/// The element by identifier; marked when it is not the one that the state holds under that identifier.
std::string text(TrajEl* el, const State* state);
std::string text(const ElMap* els, const State* state);
std::string text(const std::vector<TrajEl*>& els, const State* state);
std::string text(std::queue<Clause*> clauses, const RandomModel& model);
std::string text(const std::vector<Atom*>* atoms);

std::string snapshot(const State* state, const RandomModel& model);
std::string snapshot(const ItmsRes* record, const RandomModel& model);
/// The registry, and the engine's variables (`stateVars`, may be null).
std::string snapshotRegistry(const std::vector<StateVar*>* stateVars);
/// The fields of model objects that the engine writes.
std::string snapshotModel(const RandomModel& model);
