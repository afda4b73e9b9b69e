#include "assess/ChannelStatistics.h"

#include <algorithm>
#include <cmath>

namespace assess {

namespace {

// As far again from the readings as half of the way from their median to the outermost 1 %: of readings with a bell-shaped
// distribution 2 in 10,000 are beyond it.
constexpr double margin = 0.5;
// What separates two groups of readings is wider than this share of all of them.
constexpr double narrowGap = 0.1;
// Of the distance between limits, of which the model takes less than half.
constexpr double mostWithin = 0.4;

} // namespace

void ChannelReadings::take(double number, const std::vector<Atom*>& commands)
{
    all_.add(number);
    if (last_) changes_.add(std::abs(number - *last_));
    last_ = number;
    auto state = std::find_if(states_.begin(), states_.end(),
                              [&](const State& one) { return one.commands == commands; });
    if (state == states_.end()) {
        if (states_.size() == mostStates) {
            ++inOtherStates_;
            return;
        }
        state = states_.insert(states_.end(), {commands, QuantileSketch(1024)});
    }
    state->readings.add(number);
}

bool ChannelReadings::tellsEnough() const
{
    if (all_.count() < fewReadings) return false;
    const std::vector<double> ends = all_.quantiles({0.01, 0.99});
    return ends.back() > ends.front();
}

// The widest gap between neighbouring readings, the outermost 1 % left out.
std::optional<std::pair<double, double>> ChannelReadings::gap() const
{
    const std::vector<double> ends = all_.quantiles({0.01, 0.99});
    std::pair<double, double> widest{0, 0};
    std::optional<double> before;
    for (const auto& [value, weight] : all_.weighted()) {
        if (value < ends.front() || value > ends.back()) continue;
        if (before && value - *before > widest.second - widest.first) widest = {*before, value};
        before = value;
    }
    if (widest.second - widest.first <= narrowGap * (ends.back() - ends.front())) return {};
    return widest;
}

std::vector<LimitAdvice> ChannelReadings::limits() const
{
    std::vector<LimitAdvice> advice;
    const auto* table = std::get_if<plant::ThresholdTable>(&channel_->translation);
    if (!table) return advice;
    const std::vector<double> q = all_.quantiles({0.01, 0.5, 0.99});
    for (const plant::ThresholdTable::Limit& limit : table->limits) {
        LimitAdvice& one = advice.emplace_back();
        one.computed = limit.computed.has_value();
        if (one.computed) continue;
        one.limit = limit.number;
        one.shareBelow = all_.shareBelow(limit.number);
        if (one.shareBelow >= 1 - tail) {
            const bool isNearest =
                advice.size() < 2 || advice[advice.size() - 2].shareBelow < 1 - tail;
            if (isNearest) one.suggested = q[2] + margin * (q[2] - q[1]);
        } else if (one.shareBelow <= tail) {
            // The one before was not the nearest after all.
            if (advice.size() > 1) advice[advice.size() - 2].suggested.reset();
            one.suggested = q[0] - margin * (q[1] - q[0]);
        } else {
            one.separates = true;
        }
    }
    const auto separating = std::count_if(advice.begin(), advice.end(),
                                          [](const LimitAdvice& one) { return one.separates; });
    const auto between = separating > 0 ? gap() : std::nullopt;
    for (LimitAdvice& one : advice) {
        if (!one.separates || !between) continue;
        if (separating == 1 || (one.limit > between->first && one.limit <= between->second))
            one.suggested = between->first + (between->second - between->first) / 2;
    }
    if (!tellsEnough()) {
        for (LimitAdvice& one : advice) {
            one.suggested.reset();
        }
    }
    return advice;
}

std::optional<double> ChannelReadings::within() const
{
    const auto* table = std::get_if<plant::ThresholdTable>(&channel_->translation);
    if (!table || !tellsEnough() || changes_.count() == 0) return {};
    double most = std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < table->limits.size(); ++i) {
        if (table->limits[i].computed || table->limits[i - 1].computed) continue;
        most = std::min(most, mostWithin * (table->limits[i].number - table->limits[i - 1].number));
    }
    const double within = std::min(most, changes_.quantile(0.95));
    return within > 0 ? std::optional(within) : std::nullopt;
}

ChannelStatistics::ChannelStatistics(const plant::Bindings& bindings)
{
    for (const plant::ChannelBinding& binding : bindings.channels) {
        if (binding.kind != plant::ChannelBinding::Kind::observation) continue;
        places_[&binding] = channels_.size();
        channels_.emplace_back(binding);
        values_[binding.variable];
    }
}

void ChannelStatistics::take(const telemetry::Step& step)
{
    ++steps_;
    if (step.gap) passOver();
    for (const telemetry::ChannelNumber& number : step.numbers) {
        const auto place = places_.find(number.channel);
        if (place != places_.end() && std::isfinite(number.number))
            channels_[place->second].take(number.number, step.commands.toVector());
    }
    for (const telemetry::Observation& observation : step.observations) {
        const auto counts = values_.find(observation.value->stateVar);
        if (counts != values_.end()) ++counts->second[observation.value];
    }
}

void ChannelStatistics::passOver()
{
    for (ChannelReadings& channel : channels_) {
        channel.interrupt();
    }
}

} // namespace assess
