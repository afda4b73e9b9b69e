// What the channels of a plant read while nothing was wrong, and which limits would fit that.
#pragma once

#include "assess/QuantileSketch.h"
#include "plant/Bindings.h"
#include "telemetry/Step.h"

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace assess {

/// A limit of a channel beside what was read.
struct LimitAdvice {
    double limit = 0; ///< the model's; of a computed one nothing is known
    bool computed = false;
    double shareBelow = 0; ///< of the readings
    /// Readings lie on one side of the limit, and no other limit is between: the suggested one is out of their reach. Or on both: it is
    /// in the gap between, where no other limit tells groups of readings apart, or this one is there already. None where there is no
    /// gap, and for a computed limit.
    std::optional<double> suggested;
    bool separates = false; ///< readings lie on both sides
};

/// The readings of an observed channel.
class ChannelReadings {
public:
    /// The quantiles that are told, from the least to the greatest reading.
    static constexpr std::array<double, 9> shares{0, 0.01, 0.05, 0.25, 0.5, 0.75, 0.95, 0.99, 1};
    /// With fewer readings, or where all but 2 % are the same, nothing is suggested.
    static constexpr std::size_t fewReadings = 100;
    /// A limit with less than this share of the readings beyond it is one that they should not pass.
    static constexpr double tail = 0.05;

    explicit ChannelReadings(const plant::ChannelBinding& channel) : channel_(&channel) {}

    void take(double number, const std::vector<Atom*>& commands);
    /// The next reading is no neighbour of the last one.
    void interrupt() { last_.reset(); }

    const plant::ChannelBinding& channel() const { return *channel_; }
    const QuantileSketch& all() const { return all_; }
    /// By how much neighbouring readings differ.
    const QuantileSketch& changes() const { return changes_; }

    /// The readings while the commands were so.
    struct State {
        std::vector<Atom*> commands;
        QuantileSketch readings{1024};
    };
    const std::vector<State>& states() const
    {
        return states_;
    } ///< in the order of their first readings
    std::size_t inOtherStates() const { return inOtherStates_; } ///< readings beyond `mostStates`
    static constexpr std::size_t mostStates = 16;

    /// For each limit of the channel. Requires: a reading.
    std::vector<LimitAdvice> limits() const;
    /// A hysteresis that neighbouring readings seldom pass: the 95 % quantile of how much they differ, no more than 40 % of the
    /// distance between the nearest limits. None without limits, or where neighbours do not differ. Requires: a reading.
    std::optional<double> within() const;

private:
    bool tellsEnough() const;
    std::optional<std::pair<double, double>> gap() const;

    const plant::ChannelBinding* channel_;
    QuantileSketch all_;
    QuantileSketch changes_{1024};
    std::vector<State> states_;
    std::size_t inOtherStates_ = 0;
    std::optional<double> last_;
};

/// The readings of all observed channels, and the values of all observed variables.
class ChannelStatistics {
public:
    /// Requires: the bindings outlive this, and are not changed.
    explicit ChannelStatistics(const plant::Bindings& bindings);

    /// Takes a step at which nothing is wrong. Linear in its readings, amortised.
    void take(const telemetry::Step& step);
    /// A step that does not count: what comes next is no neighbour of what was before.
    void passOver();

    const std::vector<ChannelReadings>& channels() const
    {
        return channels_;
    } ///< as they are bound
    std::size_t steps() const { return steps_; }
    /// At how many steps a variable was observed to have a value.
    const std::unordered_map<const StateVar*, std::map<const Atom*, std::size_t>>& values() const
    {
        return values_;
    }

private:
    std::vector<ChannelReadings> channels_;
    std::unordered_map<const plant::ChannelBinding*, std::size_t> places_;
    std::unordered_map<const StateVar*, std::map<const Atom*, std::size_t>> values_;
    std::size_t steps_ = 0;
};

} // namespace assess
