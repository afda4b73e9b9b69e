#include "telemetry/Writer.h"

#include "plant/Names.h"
#include "plant/SimulatedReadings.h"
#include "telemetry/Reading.h"
#include "text/JsonText.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <numbers>
#include <numeric>

namespace telemetry {

namespace {

using plant::ChannelBinding;
using plant::ReadingTable;
using plant::ThresholdTable;
using Candidate = std::variant<double, std::string>;

std::string jsonReading(const Candidate& candidate)
{
    const double* number = std::get_if<double>(&candidate);
    return number ? fmt::format("{}", *number) : text::jsonQuoted(std::get<std::string>(candidate));
}

// Adds a rounded form of the number, and then the number itself.
void addNumber(double number, std::vector<Candidate>& candidates)
{
    if (const auto shorter = parseNumber(fmt::format("{:.6g}", number)))
        candidates.emplace_back(*shorter);
    candidates.emplace_back(number);
}

// Numbers well within the interval of each value.
void addNumbers(const ChannelBinding& binding, const ThresholdTable& table,
                std::vector<Candidate>& candidates)
{
    const std::vector<ThresholdTable::Limit>& limits = table.limits;
    if (limits.empty() || table.isComputed()) return;
    const auto distance = [&](double limit, double toNeighbour) {
        const double margin = toNeighbour > 0 ? toNeighbour / 2 : std::abs(limit) / 2;
        return table.hysteresis + (margin > 0 ? margin : 1);
    };
    // Between an outermost limit and what can be read at all there may be less room.
    const auto possible = [&](double number, const Atom* value) {
        if (!binding.physical) return number;
        const plant::NumberRange range = plant::readingsOf(binding, value);
        return range.from <= number && number <= range.to ? number
                                                          : std::midpoint(range.from, range.to);
    };
    const double first = limits.front().number;
    const double last = limits.back().number;
    const bool single = limits.size() == 1;
    addNumber(possible(first - distance(first, single ? 0 : limits[1].number - first),
                       table.values.front()),
              candidates);
    for (std::size_t i = 1; i < limits.size(); ++i) {
        addNumber(std::midpoint(limits[i - 1].number, limits[i].number), candidates);
    }
    const double beforeLast = single ? last : limits[limits.size() - 2].number;
    addNumber(possible(last + distance(last, last - beforeLast), table.values.back()), candidates);
}

// Adds readings that may stand for a value of the binding's variable: numbers, mapped texts, then names of values.
void addCandidates(const ChannelBinding& binding, std::vector<Candidate>& candidates)
{
    if (const auto* thresholds = std::get_if<ThresholdTable>(&binding.translation))
        addNumbers(binding, *thresholds, candidates);
    double beyond = 0;
    if (const auto* table = std::get_if<ReadingTable>(&binding.translation)) {
        for (const auto& [reading, atom] : table->readings) {
            candidates.push_back(reading);
            if (const double* number = std::get_if<double>(&reading))
                beyond = std::max(beyond, std::floor(*number) + 1);
        }
    }
    for (const Atom* atom : *binding.variable->atomLinks) {
        candidates.emplace_back(atom->value);
    }
    // For a value that only `otherwise` leads to.
    if (std::holds_alternative<ReadingTable>(binding.translation)) candidates.emplace_back(beyond);
}

bool isReadAs(const ChannelBinding& binding, const Candidate& candidate, const Atom* atom)
{
    if (const auto* text = std::get_if<std::string>(&candidate)) return binding.read(*text) == atom;
    const double number = std::get<double>(candidate);
    if (!std::isfinite(number) || binding.read(number, nullptr) != atom) return false;
    if (binding.physical && (number < binding.physical->from || number > binding.physical->to))
        return false;
    const std::vector<Atom*>& values = *binding.variable->atomLinks;
    return std::all_of(values.begin(), values.end(),
                       [&](const Atom* last) { return binding.read(number, last) == atom; });
}

// Normally distributed: a mean of 0, a standard deviation of 1 ("A note on the generation of random normal deviates", Annals of
// Mathematical Statistics 29, 1958).
double normal(const Draw& draw)
{
    const double radius = std::sqrt(-2.0 * std::log1p(-draw()));
    return radius * std::cos(2.0 * std::numbers::pi * draw());
}

// The range that the noise gives the value, if it does.
const plant::NumberRange* rangeOf(const plant::Noise& noise, const Atom* atom)
{
    const auto found = std::find_if(noise.ranges.begin(), noise.ranges.end(),
                                    [&](const auto& one) { return one.first == atom; });
    return found == noise.ranges.end() ? nullptr : &found->second;
}

} // namespace

StepWriter::StepWriter(const plant::Bindings& bindings, Draw draw) : draw_(std::move(draw))
{
    std::map<std::pair<std::string, Binding::Kind>, std::size_t> known;
    for (const Binding& binding : bindings.channels) {
        // Nothing is written that something is computed from: the variable itself has its value.
        const std::string name =
            binding.computed ? plant::nameOf(*binding.variable) : binding.channel;
        const auto [entry, isNew] = known.try_emplace({name, binding.kind}, channels_.size());
        if (isNew) channels_.push_back({name, {}});
        channels_[entry->second].bindings.push_back(&binding);
        bound_.try_emplace(binding.variable, entry->second, &binding);
    }
}

// The reading of the channel that stands for the atom, as JSON; empty when there is none.
const std::string& StepWriter::reading(const Binding& binding, const Atom* atom)
{
    const auto [entry, isNew] = readings_.try_emplace(atom);
    if (isNew) {
        Channel alone{binding.channel, {&binding}};
        entry->second = sharedReading(alone, {atom});
    }
    return entry->second;
}

std::string StepWriter::sharedReading(const Channel& channel,
                                      const std::vector<const Atom*>& atoms) const
{
    std::vector<Candidate> candidates;
    for (const Binding* binding : channel.bindings) {
        addCandidates(*binding, candidates);
    }
    for (const Candidate& candidate : candidates) {
        bool fits = true;
        for (std::size_t i = 0; i < atoms.size() && fits; ++i) {
            fits = isReadAs(*channel.bindings[i], candidate, atoms[i]);
        }
        if (fits) return jsonReading(candidate);
    }
    return {};
}

// A reading near the middle, by the first of the channel's bindings that has noise. One that would be read as something else is
// drawn again.
std::string StepWriter::noisyReading(const Channel& channel, const std::vector<const Atom*>& atoms,
                                     const std::string& middle) const
{
    constexpr int mostDraws = 100;
    const auto noisy =
        std::find_if(channel.bindings.begin(), channel.bindings.end(),
                     [](const Binding* binding) { return binding->noise.has_value(); });
    const auto number = parseNumber(middle);
    if (!draw_ || noisy == channel.bindings.end() || !number) return middle;
    const plant::Noise& noise = *(*noisy)->noise;
    const plant::NumberRange* range =
        rangeOf(noise, atoms[static_cast<std::size_t>(noisy - channel.bindings.begin())]);
    for (int i = 0; i < mostDraws; ++i) {
        const double drawn = range ? range->from + draw_() * (range->to - range->from)
                                   : *number + noise.deviation * normal(draw_);
        const std::string text = fmt::format("{:.6g}", drawn);
        const auto reading = parseNumber(text);
        bool fits = reading.has_value();
        for (std::size_t k = 0; k < atoms.size() && fits; ++k) {
            fits = isReadAs(*channel.bindings[k], *reading, atoms[k]);
        }
        if (fits) return fmt::format("{}", *reading);
    }
    return middle;
}

// A channel of several variables is written once where one reading stands for all of their values; otherwise each variable is
// written under its own name.
std::string StepWriter::object(const std::vector<Atom*>& atoms)
{
    std::unordered_map<const StateVar*, const Atom*> given;
    for (const Atom* atom : atoms) {
        given.emplace(atom->stateVar, atom);
    }
    std::unordered_map<std::size_t, std::string> shared;
    std::string text;
    const auto add = [&text](const std::string& name, const std::string& reading) {
        text += (text.empty() ? "" : ", ") + text::jsonQuoted(name) + ": " + reading;
    };
    for (const Atom* atom : atoms) {
        const auto found = bound_.find(atom->stateVar);
        std::string written;
        if (found != bound_.end()) {
            const auto [index, binding] = found->second;
            const Channel& channel = channels_[index];
            if (channel.bindings.size() == 1) {
                written = noisyReading(channel, {atom}, reading(*binding, atom));
            } else if (const auto [entry, isFirst] = shared.try_emplace(index); isFirst) {
                std::vector<const Atom*> all;
                for (const Binding* each : channel.bindings) {
                    const auto value = given.find(each->variable);
                    if (value != given.end()) all.push_back(value->second);
                }
                if (all.size() == channel.bindings.size())
                    entry->second = noisyReading(channel, all, sharedReading(channel, all));
                written = entry->second;
            } else if (!entry->second.empty()) {
                continue;
            }
            if (!written.empty()) {
                add(channel.name, written);
                continue;
            }
        }
        add(plant::nameOf(*atom->stateVar), text::jsonQuoted(atom->value));
    }
    return "{" + text + "}";
}

std::string StepWriter::line(double t, const std::vector<Atom*>& commands,
                             const std::vector<Atom*>& observations)
{
    return fmt::format("{{\"t\": {}, \"commands\": {}, \"observations\": {}}}\n", t,
                       object(commands), object(observations));
}

std::string stepLine(double t, const std::vector<Atom*>& commands,
                     const std::vector<Atom*>& observations, const plant::Bindings& bindings)
{
    return StepWriter(bindings).line(t, commands, observations);
}

} // namespace telemetry
