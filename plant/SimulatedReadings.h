// What a channel's readings are in a simulated plant.
#pragma once

#include "plant/Bindings.h"
#include "plant/PlaceHandle.h"

namespace plant {

/// The numbers that are read as a value whatever was read before: from one limit to the next, a hysteresis away from both, and within
/// what can be read at all. Infinite where nothing bounds them; `from` is above `to` where there are none.
/// Requires: the binding has thresholds, none of them computed, and the value is one of its variable.
NumberRange readingsOf(const ChannelBinding& binding, const Atom* value);

/// Reports a range, or noise, of what is commanded, computed, or has no limits that are numbers. `what` is "'within'" or "'noise'".
bool checkHasReadings(const ChannelBinding& binding, const std::string& what, const PlaceHandle& at);
/// Reports a range that is none, or leaves a value of the variable without a reading.
/// Requires: checkHasReadings().
bool checkPhysical(const ChannelBinding& binding, const NumberRange& range, const PlaceHandle& at);
/// Reports a standard deviation that is not above 0.
bool checkDeviation(double deviation, const PlaceHandle& at);
/// Reports a range that is none, or that has readings of other values, too.
/// Requires: checkHasReadings().
bool checkNoise(const ChannelBinding& binding, const Atom* value, const NumberRange& range,
                const PlaceHandle& at);

} // namespace plant
