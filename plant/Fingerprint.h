// A number that tells models apart.
#pragma once

#include "plant/Bindings.h"
#include "plant/Plant.h"

#include <string>

namespace plant {

/// Sixteen hexadecimal digits that depend on everything of the model and its bindings that decides how a plant is followed:
/// names, values, laws, transitions, probabilities, channels. The layout of the files does not count. Linear.
/// The hash is FNV-1a with 64 bits: it finds mistakes, not forgeries.
std::string fingerprint(const Plant& plant, const Bindings& bindings);

/// The same without probabilities and rates: those of transitions, of lost commands, of readings that change or are wrong. Models
/// that share it number everything alike.
std::string structure(const Plant& plant, const Bindings& bindings);

/// The same of any text.
std::string fingerprint(std::string_view text);

} // namespace plant
