// How a model gets into the engine's registry.
#pragma once

#include "plant/Model.h"

namespace plant {

/// Enters a model in the registry that is in use. Requires: that is empty. The model outlives it. Makes its objects for
/// the engine. Linear.
void enter(const Model& model);

} // namespace plant
