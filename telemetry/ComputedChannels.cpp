#include "telemetry/ComputedChannels.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace telemetry {

using Kind = plant::ChannelExpression::Kind;

ComputedChannels::Handle ComputedChannels::add(
    const plant::ChannelExpression& expression, double gapSeconds,
    const std::function<std::uint32_t(const std::string&)>& channelOf)
{
    Node node{expression.kind, expression.number, 0, {}};
    for (const plant::ChannelExpression& operand : expression.operands) {
        node.operands.push_back(add(operand, gapSeconds, channelOf));
    }
    if (expression.kind == Kind::channel) {
        node.index = channelOf(expression.channel);
        readings_.resize(std::max(readings_.size(), node.index + 1));
    } else if (plant::isWindow(expression.kind)) {
        node.index = windows_.size();
        windows_.emplace_back(expression.kind, expression.number, gapSeconds);
    }
    nodes_.push_back(std::move(node));
    values_.emplace_back();
    return nodes_.size() - 1;
}

void ComputedChannels::read(std::uint32_t channel, double number)
{
    if (!readings_[channel]) read_.push_back(channel);
    readings_[channel] = number;
}

void ComputedChannels::forget()
{
    for (const std::uint32_t channel : read_) {
        readings_[channel].reset();
    }
    read_.clear();
}

void ComputedChannels::advance(double t)
{
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        values_[i] = computed(nodes_[i], t);
        if (values_[i] && !std::isfinite(*values_[i])) values_[i].reset();
    }
    forget();
}

std::optional<double> ComputedChannels::computed(const Node& node, double t)
{
    if (node.kind == Kind::constant) return node.number;
    if (node.kind == Kind::channel) return readings_[node.index];
    if (plant::isWindow(node.kind))
        return windows_[node.index].next(t, values_[node.operands.front()]);
    for (const std::size_t operand : node.operands) {
        if (!values_[operand]) return std::nullopt;
    }
    const double first = *values_[node.operands.front()];
    const double last = *values_[node.operands.back()];
    switch (node.kind) {
    case Kind::negation: return -first;
    case Kind::absolute: return std::abs(first);
    case Kind::sum: return first + last;
    case Kind::difference: return first - last;
    case Kind::product: return first * last;
    case Kind::quotient: return first / last;
    default: break;
    }
    double most = first;
    for (const std::size_t operand : node.operands) {
        most = node.kind == Kind::least ? std::min(most, *values_[operand])
                                        : std::max(most, *values_[operand]);
    }
    return most;
}

std::vector<ReaderState::Window> ComputedChannels::state() const
{
    std::vector<ReaderState::Window> windows;
    for (const Window& window : windows_) {
        windows.push_back(window.state());
    }
    return windows;
}

void ComputedChannels::restore(const std::vector<ReaderState::Window>& windows)
{
    if (windows.size() != windows_.size())
        throw std::invalid_argument("the windows are not those of the model");
    for (std::size_t i = 0; i < windows.size(); ++i) {
        windows_[i].restore(windows[i]);
    }
    forget();
}

} // namespace telemetry
