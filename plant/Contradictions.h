// Laws that cannot hold together, at least while every mode and condition has its initial value, if it has one: a plant with such
// laws has no state to begin with, and most often a typing mistake in one of them.
//
// Only what is certain is reported: the search for values that satisfy all laws has a budget, and a plant for which it does
// not end in time is taken as fine. The laws that are named are not more than needed: without any of them the others can hold.
#pragma once

#include "plant/Model.h"
#include "plant/PlaceHandle.h"

#include <cstddef>
#include <functional>
#include <string_view>

namespace plant {

/// Where a law of the model was written. The laws of all instances of a component have one place.
struct WrittenLaw {
    PlaceHandle at;
    std::string_view instance; ///< whose law it is; empty where the place says enough
};

/// Reports the contradictions among the laws of a model, ten at most: after one, its last law is left out, with all that were
/// written at the same place. `written` is called with indices of Model::laws.
void reportContradictions(const Model& model, const std::function<WrittenLaw(std::size_t)>& written);

} // namespace plant
