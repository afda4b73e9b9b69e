// What happened in a plant at one time: the commands given and the values observed.
#pragma once

#include "model/Atom.h"
#include "plant/Bindings.h"
#include "plant/SharedArray.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace telemetry {

/// A variable was seen to have a value.
struct Observation {
    Atom* value = nullptr;
    bool held = false; ///< the last reading stands for a missing one (`hold` in the model)
    std::optional<double> number =
        {}; ///< the reading itself, where a channel gave a number; none for a held one
};

/// The number that a channel gave, or that was computed from channels.
struct ChannelNumber {
    const plant::ChannelBinding* channel = nullptr; ///< one of the plant's bindings
    double number = 0;
};

/// One step. The atoms are the model's.
struct Step {
    std::size_t number = 0; ///< from 1
    double t = 0;           ///< seconds; more than that of the step before
    bool wallClock = false; ///< these are seconds since the beginning of 1970 in UTC
    /// One value of every command variable, in the model's order of components and variables: the one that is given, or a
    /// held one, or else the first of its values.
    plant::SharedArray<Atom*> commands;
    std::vector<Atom*> givenCommands; ///< those that the input gave in this step, in the same order
    /// At most one for each variable: first those bound to a channel, in the order of the bindings, then others in the model's order.
    std::vector<Observation> observations;
    /// The seconds since the step before, when they are more than three of the model's step lengths, or as many as ReadSettings says.
    std::optional<double> gap;
    /// What the observed channels gave, whether or not it counts yet (`for`), in no particular order. Nothing of channels that have
    /// not settled.
    std::vector<ChannelNumber> numbers = {};
};

} // namespace telemetry
