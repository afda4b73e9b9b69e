// A calibration for programs: one line of JSON.
#include "plant/Names.h"
#include "report/Calibration.h"
#include "report/Numbers.h"

#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json quantilesJson(const assess::QuantileSketch& readings)
{
    if (readings.count() == 0) return nullptr;
    static constexpr std::array<const char*, 9> names{"min", "q01", "q05", "q25", "q50",
                                                      "q75", "q95", "q99", "max"};
    const auto& shares = assess::ChannelReadings::shares;
    const auto values = readings.quantiles({shares.begin(), shares.end()});
    Json json = Json::object();
    for (std::size_t i = 0; i < names.size(); ++i) {
        json[names[i]] = values[i];
    }
    return json;
}

Json limitsJson(const assess::ChannelReadings& channel)
{
    Json limits = Json::array();
    if (channel.all().count() == 0) return limits;
    for (const assess::LimitAdvice& one : channel.limits()) {
        limits.push_back(
            {{"limit", one.computed ? Json(nullptr) : Json(one.limit)},
             {"computed", one.computed},
             {"below", one.computed ? Json(nullptr) : Json(sixDigits(one.shareBelow))},
             {"separates", one.separates},
             {"suggested", one.suggested ? Json(sixDigits(*one.suggested)) : Json(nullptr)}});
    }
    return limits;
}

Json statesJson(const assess::ChannelReadings& channel)
{
    Json states = Json::array();
    for (const assess::ChannelReadings::State& state : channel.states()) {
        Json commands = Json::object();
        for (const Atom* command : state.commands) {
            commands[plant::nameOf(*command->stateVar)] = command->value;
        }
        states.push_back({{"commands", std::move(commands)},
                          {"count", state.readings.count()},
                          {"quantiles", quantilesJson(state.readings)}});
    }
    return states;
}

Json channelJson(const assess::ChannelReadings& channel, const assess::ChannelStatistics& statistics)
{
    const plant::ChannelBinding& binding = channel.channel();
    const auto* table = std::get_if<plant::ThresholdTable>(&binding.translation);
    Json record;
    record["channel"] = binding.channel;
    record["variable"] = plant::nameOf(*binding.variable);
    record["input"] = binding.input;
    record["computed"] = binding.computed.has_value();
    record["count"] = channel.all().count();
    record["rankError"] = sixDigits(channel.all().rankError());
    record["quantiles"] = quantilesJson(channel.all());
    record["values"] = Json::object();
    for (const Atom* value : *binding.variable->atomLinks) {
        const auto& counts = statistics.values().at(binding.variable);
        const auto count = counts.find(value);
        record["values"][value->value] = count == counts.end() ? 0 : count->second;
    }
    record["limits"] = limitsJson(channel);
    record["within"] = table ? Json(table->hysteresis) : Json(nullptr);
    const auto within = channel.all().count() > 0 ? channel.within() : std::nullopt;
    record["suggestedWithin"] = within ? Json(sixDigits(*within)) : Json(nullptr);
    record["states"] = statesJson(channel);
    record["inOtherStates"] = channel.inOtherStates();
    return record;
}

Json lawJson(const ViolatedLaw& one, std::size_t freeSteps, Clock clock)
{
    Json record;
    const bool known = !one.law.file.empty();
    record["file"] = known ? Json(one.law.file) : Json(nullptr);
    record["line"] = known ? Json(one.law.line) : Json(nullptr);
    record["column"] = known ? Json(one.law.column) : Json(nullptr);
    record["text"] = one.law.text;
    record["steps"] = one.steps;
    record["share"] = sixDigits(static_cast<double>(one.steps) / static_cast<double>(freeSteps));
    record["firstStep"] = one.firstStep;
    record["firstT"] = one.firstTime;
    if (clock == Clock::wall) record["firstTime"] = moment(one.firstTime, clock);
    record["observed"] = one.observed;
    return record;
}

} // namespace

std::string calibrationJson(const CalibrationReport& report)
{
    Json record;
    record["v"] = 1;
    record["steps"] = report.steps;
    record["freeSteps"] = report.statistics.steps();
    record["contradicted"] = report.contradicted;
    record["channels"] = Json::array();
    for (const assess::ChannelReadings& channel : report.statistics.channels()) {
        record["channels"].push_back(channelJson(channel, report.statistics));
    }
    record["laws"] = Json::array();
    for (const ViolatedLaw& law : report.laws) {
        record["laws"].push_back(lawJson(law, report.statistics.steps(), report.clock));
    }
    return record.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
