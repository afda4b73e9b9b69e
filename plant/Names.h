// What the parts of a plant are called.
#pragma once

#include "model/StateVar.h"

#include <string>

namespace plant {

/// `COMPONENT.VARIABLE`.
/// Requires: the variable belongs to a component.
std::string nameOf(const StateVar& variable);

} // namespace plant
