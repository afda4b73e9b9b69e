#include "language/meaning/BindingBuilder.h"

#include "plant/BindingRules.h"
#include "plant/Names.h"
#include "plant/SimulatedReadings.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

plant::ChannelBinding::Kind kindOf(const syntax::Binding& binding)
{
    return binding.kind == syntax::Binding::Kind::command ? plant::ChannelBinding::Kind::command
                                                          : plant::ChannelBinding::Kind::observation;
}

void BindingBuilder::build(const syntax::Binding& binding, Instance& within,
                           const Environment& environment)
{
    plant::ChannelBinding made;
    made.variable = plant_.find(within, binding.variable, environment);
    if (!made.variable) return;
    if (binding.kind == syntax::Binding::Kind::measurable) {
        builder_.measurable(made.variable, report_.at(binding.range));
        return;
    }
    made.kind = kindOf(binding);
    made.input = binding.kind == syntax::Binding::Kind::input;
    if (!builder_.bind(made.variable, made.kind, made.input, report_.at(binding.range))) return;
    made.channel = plant::nameOf(*made.variable);
    if (binding.channel && !readChannel(*binding.channel, made, environment)) return;
    if (const auto* row = std::get_if<syntax::Thresholds>(&binding.translation)) {
        auto table = thresholds(*row, made.variable, environment);
        if (!table) return;
        made.translation = std::move(*table);
    } else if (const auto* list = std::get_if<syntax::Readings>(&binding.translation)) {
        auto table = readings(*list, made.variable, environment);
        if (!table) return;
        made.translation = std::move(*table);
    }
    if (!readTimes(binding, made, environment) || !readSpread(binding, made, environment)) return;
    if (binding.varies) {
        made.varies = probabilityPerStep(*binding.varies, environment, stepSeconds_, report_);
        if (!made.varies) return;
        if (!plant::checkVaries(*made.varies, report_.at(binding.varies->range))) return;
    }
    builder_.channel(std::move(made));
}

bool BindingBuilder::readChannel(const syntax::Expression& written, plant::ChannelBinding& made,
                                 const Environment& environment)
{
    if (written.kind == syntax::Expression::Kind::channel) {
        const auto name = channels_.channelName(written.name, written.range, environment);
        if (name) made.channel = *name;
        return name.has_value();
    }
    made.computed = channels_.translate(written, environment);
    if (made.computed) made.channel = plant::textOf(*made.computed);
    return made.computed.has_value();
}

bool BindingBuilder::readTimes(const syntax::Binding& written, plant::ChannelBinding& made,
                               const Environment& environment)
{
    const auto seconds = [&](const syntax::Duration& duration) {
        return channels_.seconds(duration.amount, duration.unit, environment);
    };
    if (written.hold) {
        made.holdSeconds = seconds(*written.hold);
        if (!made.holdSeconds) return false;
    }
    if (written.persistence) {
        made.persistSeconds = seconds(*written.persistence);
        if (!made.persistSeconds) return false;
    }
    if (!written.settling) return true;
    const auto time = seconds(written.settling->duration);
    if (!time) return false;
    made.settling = plant::Settling{*time, {}};
    for (const syntax::Text& channel : written.settling->channels) {
        const auto name = channels_.channelName(channel.text, channel.range, environment);
        if (!name) return false;
        made.settling->channels.push_back(*name);
    }
    return true;
}

std::optional<plant::NumberRange> BindingBuilder::range(const syntax::NumberRange& written,
                                                        const Environment& environment)
{
    const auto from = evaluate(written.from, environment, report_);
    const auto to = evaluate(written.to, environment, report_);
    if (!from || !to) return std::nullopt;
    return plant::NumberRange{*from, *to};
}

bool BindingBuilder::readSpread(const syntax::Binding& written, plant::ChannelBinding& made,
                                const Environment& environment)
{
    if (written.physical) {
        const plant::PlaceHandle at = report_.at(written.physical->range);
        const auto physical = range(*written.physical, environment);
        if (!physical || !plant::checkHasReadings(made, "'within'", at) ||
            !plant::checkPhysical(made, *physical, at)) {
            return false;
        }
        made.physical = physical;
    }
    if (written.noise && !readNoise(*written.noise, made, environment)) return false;
    if (!written.misread) return true;
    made.misread = evaluate(*written.misread, environment, report_);
    return made.misread && plant::checkMisread(*made.misread, report_.at(written.misread->range));
}

bool BindingBuilder::readNoise(const syntax::Noise& written, plant::ChannelBinding& made,
                               const Environment& environment)
{
    if (!plant::checkHasReadings(made, "'noise'", report_.at(written.range))) return false;
    plant::Noise noise;
    if (written.deviation) {
        const auto deviation = evaluate(*written.deviation, environment, report_);
        if (!deviation || !plant::checkDeviation(*deviation, report_.at(written.deviation->range)))
            return false;
        noise.deviation = *deviation;
    }
    for (const syntax::Noise::Value& one : written.values) {
        Atom* value = plant::value(made.variable, one.value.text);
        const auto readings = range(one.readings, environment);
        if (!readings || !plant::checkNoise(made, value, *readings, report_.at(one.readings.range))) {
            return false;
        }
        noise.ranges.emplace_back(value, *readings);
    }
    const std::vector<Atom*>& order = *made.variable->atomLinks;
    std::sort(noise.ranges.begin(), noise.ranges.end(), [&](const auto& a, const auto& b) {
        return std::find(order.begin(), order.end(), a.first) <
               std::find(order.begin(), order.end(), b.first);
    });
    made.noise = std::move(noise);
    return true;
}

std::optional<plant::ThresholdTable> BindingBuilder::thresholds(const syntax::Thresholds& written,
                                                                const StateVar* variable,
                                                                const Environment& environment)
{
    plant::ThresholdTable table;
    for (const syntax::Name& name : written.values) {
        table.values.push_back(plant::value(variable, name.text));
    }
    for (const syntax::Thresholds::Limit& limit : written.limits) {
        auto number = channels_.translate(limit.number, environment);
        if (!number) return std::nullopt;
        table.limits.push_back({number->number, limit.above == syntax::Order::lessOrEqual});
        if (number->kind != plant::ChannelExpression::Kind::constant)
            table.limits.back().computed = std::move(number);
    }
    if (written.hysteresis) {
        const auto hysteresis = evaluate(*written.hysteresis, environment, report_);
        if (!hysteresis) return std::nullopt;
        table.hysteresis = *hysteresis;
    }
    if (!checkLimits(written, table)) return std::nullopt;
    return table;
}

bool BindingBuilder::checkLimits(const syntax::Thresholds& written,
                                 const plant::ThresholdTable& table)
{
    for (std::size_t i = 0; i < table.limits.size(); ++i) {
        if (!plant::checkLimit(table, i, report_.at(written.limits[i].number.range))) return false;
    }
    return !written.hysteresis ||
           plant::checkHysteresis(table, report_.at(written.hysteresis->range));
}

std::optional<plant::ReadingTable> BindingBuilder::readings(const syntax::Readings& written,
                                                            const StateVar* variable,
                                                            const Environment& environment)
{
    plant::ReadingTable table;
    plant::ReadingSet numbers;
    for (const syntax::Reading& reading : written.readings) {
        Atom* atom = plant::value(variable, reading.value.text);
        if (const auto* text = std::get_if<syntax::Text>(&reading.reading)) {
            table.readings.emplace_back(text->text, atom);
        } else if (const auto* expression = std::get_if<syntax::Expression>(&reading.reading)) {
            const auto number = evaluate(*expression, environment, report_);
            if (!number) return std::nullopt;
            if (!numbers.add(*number, "the reading " + text::shown(*number),
                             report_.at(expression->range))) {
                return std::nullopt;
            }
            table.readings.emplace_back(*number, atom);
        } else {
            table.otherwise = atom;
        }
    }
    return table;
}

} // namespace language
