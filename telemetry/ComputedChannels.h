// The expressions of a plant's bindings, computed step by step from what the channels read. plant/ChannelExpression.h says what they
// are made of, and Window.h what a number was over some time.
//
//     computed.read(channel, 21.5);      // a step's readings
//     computed.advance(t);
//     computed.value(handle);            // none where an operand is missing, and where the result is no finite number
#pragma once

#include "plant/ChannelExpression.h"
#include "telemetry/ReaderState.h"
#include "telemetry/Window.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace telemetry {

class ComputedChannels {
public:
    using Handle = std::size_t;

    /// `channelOf` gives each channel a number, from 0. Linear in the expression.
    Handle add(const plant::ChannelExpression& expression, double gapSeconds,
               const std::function<std::uint32_t(const std::string&)>& channelOf);

    /// A channel's reading of the step that comes next. Constant.
    void read(std::uint32_t channel, double number);
    /// Forgets the readings of that step.
    void forget();
    /// Takes the step: gives all expressions their values. Linear in their operations, amortised.
    /// Requires: `t` is later than before.
    void advance(double t);
    /// The value at the step taken last.
    std::optional<double> value(Handle expression) const { return values_[expression]; }

    std::vector<ReaderState::Window> state() const;
    /// Throws std::invalid_argument when the windows are not those of the expressions.
    void restore(const std::vector<ReaderState::Window>& windows);

private:
    struct Node {
        plant::ChannelExpression::Kind kind;
        double number = 0;                 // a constant
        std::size_t index = 0;             // of a channel, or of a window
        std::vector<std::size_t> operands; // all before the node
    };

    std::optional<double> computed(const Node& node, double t);

    std::vector<Node> nodes_;
    std::vector<std::optional<double>> values_; // of the nodes
    std::vector<Window> windows_;
    std::vector<std::optional<double>> readings_; // by channel
    std::vector<std::uint32_t> read_;             // the channels with a reading
};

} // namespace telemetry
