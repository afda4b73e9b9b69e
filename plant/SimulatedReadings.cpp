#include "plant/SimulatedReadings.h"

#include "text/Wording.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plant {

namespace {

bool checkRising(const NumberRange& range, const PlaceHandle& at)
{
    if (range.from < range.to) return true;
    at.report("the range from " + text::shown(range.from) + " to " + text::shown(range.to),
              "a range from a lower number to a higher one");
    return false;
}

std::string shown(const NumberRange& range)
{
    if (std::isinf(range.from) && std::isinf(range.to)) return "any number";
    if (std::isinf(range.from)) return "numbers below " + text::shown(range.to);
    if (std::isinf(range.to)) return "numbers above " + text::shown(range.from);
    return "numbers between " + text::shown(range.from) + " and " + text::shown(range.to);
}

} // namespace

NumberRange readingsOf(const ChannelBinding& binding, const Atom* value)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto& table = std::get<ThresholdTable>(binding.translation);
    const auto place = static_cast<std::size_t>(
        std::find(table.values.begin(), table.values.end(), value) - table.values.begin());
    NumberRange range{-infinity, infinity};
    if (place > 0) range.from = table.limits[place - 1].number + table.hysteresis;
    if (place < table.limits.size()) range.to = table.limits[place].number - table.hysteresis;
    if (binding.physical) {
        range.from = std::max(range.from, binding.physical->from);
        range.to = std::min(range.to, binding.physical->to);
    }
    return range;
}

bool checkHasReadings(const ChannelBinding& binding, const std::string& what, const PlaceHandle& at)
{
    const auto* table = std::get_if<ThresholdTable>(&binding.translation);
    const bool observed = binding.kind == ChannelBinding::Kind::observation;
    if (observed && !binding.computed && table && !table->isComputed()) return true;
    at.report((observed ? "a channel" : "a command") + std::string(" with ") + what +
                  (!observed || binding.computed || !table ? "" : ", and with computed limits"),
              "an observation of a channel, with limits that are numbers",
              "it says what 'itms simulate' writes: leave it out here");
    return false;
}

bool checkPhysical(const ChannelBinding& binding, const NumberRange& range, const PlaceHandle& at)
{
    if (!checkRising(range, at)) return false;
    ChannelBinding bounded = binding;
    bounded.physical = range;
    for (const Atom* value : std::get<ThresholdTable>(binding.translation).values) {
        const NumberRange readings = readingsOf(bounded, value);
        if (readings.from < readings.to) continue;
        at.report("the range from " + text::shown(range.from) + " to " + text::shown(range.to) +
                      " has no reading of " + text::quoted(value->value),
                  "a range in which every value can be read");
        return false;
    }
    return true;
}

bool checkDeviation(double deviation, const PlaceHandle& at)
{
    if (deviation > 0) return true;
    at.report("the noise is " + text::shown(deviation), "a standard deviation above 0");
    return false;
}

bool checkNoise(const ChannelBinding& binding, const Atom* value, const NumberRange& range,
                const PlaceHandle& at)
{
    if (!checkRising(range, at)) return false;
    const NumberRange readings = readingsOf(binding, value);
    if (readings.from <= range.from && range.to <= readings.to) return true;
    at.report("the range from " + text::shown(range.from) + " to " + text::shown(range.to) +
                  " has readings of other values than " + text::quoted(value->value),
              shown(readings));
    return false;
}

} // namespace plant
