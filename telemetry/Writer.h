// Steps as text, in the form that StepReader reads: the telemetry of a plant that is simulated.
#pragma once

#include "model/Atom.h"
#include "plant/Bindings.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace telemetry {

/// Draws a number, at least 0 and less than 1, each as probable as the others.
using Draw = std::function<double()>;

/// Writes steps as JSON Lines. A variable that is bound to a channel is written under the channel's name, as a number where numbers are
/// read as its values: the middle between two thresholds, and beyond the outermost ones far enough for the reading to be this value
/// whatever the last one was; never outside of what can be read at all. With a draw the readings of a channel for which the model gives
/// noise scatter around that number, or in the range that it gives, and are still read as the value. Reading what was written gives
/// the atoms that it was written from, unless the name of a variable is also the channel of another one.
class StepWriter {
public:
    /// Linear in the number of bindings.
    /// Requires: the bindings outlive this, and are not changed.
    explicit StepWriter(const plant::Bindings& bindings, Draw draw = {});

    /// One line, ended by a newline. The atoms stand in the order in which they are given; `t` is in seconds.
    /// Requires: `t` is finite; there is at most one atom of each variable.
    std::string line(double t, const std::vector<Atom*>& commands,
                     const std::vector<Atom*>& observations);

private:
    using Binding = plant::ChannelBinding;

    struct Channel {
        std::string name;
        std::vector<const Binding*> bindings;
    };

    std::string object(const std::vector<Atom*>& atoms);
    const std::string& reading(const Binding& binding, const Atom* atom);
    std::string sharedReading(const Channel& channel, const std::vector<const Atom*>& atoms) const;
    std::string noisyReading(const Channel& channel, const std::vector<const Atom*>& atoms,
                             const std::string& middle) const;

    Draw draw_;
    std::vector<Channel> channels_;
    std::unordered_map<const StateVar*, std::pair<std::size_t, const Binding*>> bound_;
    std::unordered_map<const Atom*, std::string>
        readings_; // of the channels of one variable, as far as written
};

/// StepWriter::line for a single step.
std::string stepLine(double t, const std::vector<Atom*>& commands,
                     const std::vector<Atom*>& observations, const plant::Bindings& bindings);

} // namespace telemetry
