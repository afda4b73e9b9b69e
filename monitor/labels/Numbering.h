// The numbers of the plant, under the names by which the whole monitor knows them.
#pragma once

#include "plant/Plant.h"
#include "plant/PlantPart.h"
#include "plant/SharedArray.h"

namespace monitor {

using plant::AtomIndex;
using plant::ClauseIndex;
using plant::Plant;
using plant::PlantChange;
using plant::PlantLiteral;
using plant::PlantPart;
using plant::PlantVariable;
using plant::SharedArray;
using plant::VariableIndex;

} // namespace monitor
