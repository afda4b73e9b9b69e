#include "language/json/JsonChannels.h"

#include "language/json/JsonExpressions.h"
#include "plant/BindingRules.h"
#include "plant/SimulatedReadings.h"

namespace language {

void JsonChannels::addMeasurable(const JsonNode& node)
{
    StateVar* variable = names_.variable(node);
    if (!variable) return;
    if (!plant::checkMeasurable(variable->type == "Command", plant::nameOf(*variable), node.at()))
        return;
    builder_.measurable(variable, node.at());
}

void JsonChannels::add(const JsonNode& node)
{
    if (!node.isObject({"kind", "variable"},
                       {"channel", "thresholds", "readings", "otherwise", "holdSeconds", "input",
                        "varies", "from", "forSeconds", "settled", "misread", "within", "noise"})) {
        return;
    }
    StateVar* variable = names_.variable(node["variable"]);
    if (!variable) return;
    plant::ChannelBinding made;
    made.variable = variable;
    const auto kind = kindOf(node["kind"], *variable);
    if (!kind) return;
    made.kind = *kind;
    made.channel = plant::nameOf(*variable);
    if (node.has("channel")) {
        const auto channel = node["channel"].text();
        if (!channel) return;
        made.channel = *channel;
    }
    if (!readComputed(node, made) || !readTranslation(node, made)) return;
    if (!readSeconds(node, "holdSeconds", made.holdSeconds)) return;
    if (!readTimes(node, made) || !readSpread(node, made) || !readChances(node, made)) return;
    if (!builder_.bind(variable, made.kind, made.input, node.at())) return;
    builder_.channel(std::move(made));
}

bool JsonChannels::readComputed(const JsonNode& node, plant::ChannelBinding& made) const
{
    if (!node.has("from")) return true;
    const JsonNode from = node["from"];
    if (node.has("channel")) {
        node.error("a channel with 'channel' and 'from'", "one of them");
        return false;
    }
    if (!plant::checkObserved(made.kind, "a computed channel", from.at())) return false;
    made.computed = channelExpression(from, stepSeconds_);
    if (!made.computed) return false;
    bool reads = false;
    plant::forEach(*made.computed, [&reads](const plant::ChannelExpression& part) {
        reads = reads || part.kind == plant::ChannelExpression::Kind::channel;
    });
    if (!reads) from.error("nothing is read here", "an expression with a channel");
    made.channel = plant::textOf(*made.computed);
    return reads;
}

bool JsonChannels::readSeconds(const JsonNode& node, const char* key, std::optional<double>& seconds)
{
    if (!node.has(key)) return true;
    seconds = node[key].number();
    return seconds && plant::checkSeconds(*seconds, node[key].at());
}

bool JsonChannels::readTimes(const JsonNode& node, plant::ChannelBinding& made)
{
    if (!readSeconds(node, "forSeconds", made.persistSeconds)) return false;
    if (made.persistSeconds && !plant::checkObserved(made.kind, "'for'", node["forSeconds"].at()))
        return false;
    if (!node.has("settled")) return true;
    const JsonNode settled = node["settled"];
    if (!plant::checkObserved(made.kind, "'settled'", settled.at())) return false;
    if (!settled.isObject({"seconds", "after"}, {})) return false;
    std::optional<double> seconds;
    if (!readSeconds(settled, "seconds", seconds) || !seconds) return false;
    const JsonNode after = settled["after"];
    if (!after.isArray()) return false;
    made.settling = plant::Settling{*seconds, {}};
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto channel = after[i].text();
        if (!channel) return false;
        made.settling->channels.push_back(*channel);
    }
    return true;
}

std::optional<plant::NumberRange> JsonChannels::range(const JsonNode& node)
{
    if (!node.isArray()) return std::nullopt;
    if (node.size() != 2) {
        node.error("a range of " + std::to_string(node.size()) + " numbers", "[from, to]");
        return std::nullopt;
    }
    const auto from = node[0].number();
    const auto to = node[1].number();
    if (!from || !to) return std::nullopt;
    return plant::NumberRange{*from, *to};
}

bool JsonChannels::readSpread(const JsonNode& node, plant::ChannelBinding& made)
{
    if (node.has("within")) {
        const JsonNode within = node["within"];
        const auto physical = range(within);
        if (!physical || !plant::checkHasReadings(made, "'within'", within.at()) ||
            !plant::checkPhysical(made, *physical, within.at())) {
            return false;
        }
        made.physical = physical;
    }
    if (node.has("noise") && !readNoise(node["noise"], made)) return false;
    if (!node.has("misread")) return true;
    const JsonNode misread = node["misread"];
    if (!plant::checkObserved(made.kind, "'misread'", misread.at())) return false;
    made.misread = misread.number();
    return made.misread && plant::checkMisread(*made.misread, misread.at());
}

bool JsonChannels::readNoise(const JsonNode& node, plant::ChannelBinding& made)
{
    if (!plant::checkHasReadings(made, "'noise'", node.at())) return false;
    plant::Noise noise;
    if (!node.isObjectAtAll()) {
        const auto deviation = node.number();
        if (!deviation || !plant::checkDeviation(*deviation, node.at())) return false;
        noise.deviation = *deviation;
        made.noise = std::move(noise);
        return true;
    }
    JsonNode::Keys values;
    for (const Atom* value : *made.variable->atomLinks) {
        values.push_back(value->value);
    }
    if (!node.isObject({}, values)) return false;
    for (Atom* value : *made.variable->atomLinks) {
        if (!node.has(value->value)) continue;
        const JsonNode written = node[value->value];
        const auto readings = range(written);
        if (!readings || !plant::checkNoise(made, value, *readings, written.at())) return false;
        noise.ranges.emplace_back(value, *readings);
    }
    if (noise.ranges.empty()) {
        node.error("noise of no value", "a standard deviation, or a range for a value");
        return false;
    }
    made.noise = std::move(noise);
    return true;
}

// What is known of the readings before they come.
bool JsonChannels::readChances(const JsonNode& node, plant::ChannelBinding& made)
{
    if (node.has("input")) {
        const JsonNode input = node["input"];
        const auto flag = input.flag();
        if (!flag) return false;
        if (*flag && made.kind == plant::ChannelBinding::Kind::command) {
            input.error("a command that is an input", "false", "a command is given anyway");
            return false;
        }
        made.input = *flag;
    }
    if (!node.has("varies")) return true;
    const JsonNode varies = node["varies"];
    if (!plant::checkVaryingKind(made.kind, made.input, varies.at())) return false;
    made.varies = varies.number();
    return made.varies && plant::checkVaries(*made.varies, varies.at());
}

std::optional<plant::ChannelBinding::Kind> JsonChannels::kindOf(const JsonNode& node,
                                                                const StateVar& variable)
{
    const auto word = node.oneOf({"observe", "command"});
    if (!word) return std::nullopt;
    const auto kind = *word == 1 ? plant::ChannelBinding::Kind::command
                                 : plant::ChannelBinding::Kind::observation;
    const bool isCommand = variable.type == "Command";
    if (!plant::checkDirection(isCommand, kind, plant::nameOf(variable), node.at())) {
        return std::nullopt;
    }
    return kind;
}

bool JsonChannels::readTranslation(const JsonNode& node, plant::ChannelBinding& made) const
{
    if (node.has("thresholds") && (node.has("readings") || node.has("otherwise"))) {
        node.error("a channel with thresholds and readings", "one of them");
        return false;
    }
    if (node.has("thresholds")) {
        auto table = thresholds(node["thresholds"], *made.variable);
        if (table) made.translation = std::move(*table);
        return table.has_value();
    }
    if (node.has("readings") || node.has("otherwise")) {
        auto table = readings(node, *made.variable);
        if (table) made.translation = std::move(*table);
        return table.has_value();
    }
    return true;
}

std::optional<plant::ThresholdTable> JsonChannels::thresholds(const JsonNode& node,
                                                              const StateVar& variable) const
{
    if (!node.isObject({"values", "limits"}, {"hysteresis"})) return std::nullopt;
    plant::ThresholdTable table;
    const JsonNode values = node["values"];
    if (!values.isArray()) return std::nullopt;
    plant::ThresholdRow row;
    for (std::size_t i = 0; i < values.size(); ++i) {
        Atom* atom = JsonNames::value(values[i], variable);
        if (!atom || !row.add(atom->value, values[i].at())) return std::nullopt;
        table.values.push_back(atom);
    }
    if (!row.checkComplete(variable.atomLinks->size(), plant::nameOf(variable), values.at())) {
        return std::nullopt;
    }
    if (!readLimits(node["limits"], table)) return std::nullopt;
    if (!node.has("hysteresis")) return table;
    const auto hysteresis = node["hysteresis"].number();
    if (!hysteresis) return std::nullopt;
    table.hysteresis = *hysteresis;
    if (!plant::checkHysteresis(table, node["hysteresis"].at())) return std::nullopt;
    return table;
}

bool JsonChannels::readLimits(const JsonNode& node, plant::ThresholdTable& table) const
{
    if (!node.isArray()) return false;
    for (std::size_t i = 0; i < node.size(); ++i) {
        const JsonNode limit = node[i];
        const bool isComputed = limit.has("from");
        if (!limit.isObject({isComputed ? "from" : "number"}, {"belongsAbove"})) return false;
        std::optional<plant::ChannelExpression> computed;
        if (isComputed) {
            computed = channelExpression(limit["from"], stepSeconds_);
            if (!computed) return false;
        }
        const auto number = isComputed ? std::optional(0.0) : limit["number"].number();
        std::optional<bool> above = true;
        if (limit.has("belongsAbove")) above = limit["belongsAbove"].flag();
        if (!number || !above) return false;
        table.limits.push_back({*number, *above, std::move(computed)});
        if (!isComputed && !plant::checkLimit(table, i, limit["number"].at())) return false;
    }
    if (table.limits.size() + 1 == table.values.size()) return true;
    node.error("the number of limits is " + std::to_string(table.limits.size()) +
                   ", that of values " + std::to_string(table.values.size()),
               "a limit between each two neighbours");
    return false;
}

std::optional<plant::ReadingTable> JsonChannels::readings(const JsonNode& channel,
                                                          const StateVar& variable)
{
    plant::ReadingTable table;
    if (channel.has("otherwise")) {
        table.otherwise = JsonNames::value(channel["otherwise"], variable);
        if (!table.otherwise) return std::nullopt;
    }
    if (!channel.has("readings")) return table;
    const JsonNode list = channel["readings"];
    if (!list.isArray()) return std::nullopt;
    plant::ReadingSet seen;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const JsonNode entry = list[i];
        if (!entry.isObject({"reading", "value"})) return std::nullopt;
        const JsonNode reading = entry["reading"];
        std::variant<double, std::string> known;
        if (reading.isText()) {
            known = *reading.text();
        } else {
            const auto number = reading.number();
            if (!number) return std::nullopt;
            known = *number;
        }
        Atom* atom = JsonNames::value(entry["value"], variable);
        if (!atom) return std::nullopt;
        if (!seen.add(known, "this reading", reading.at())) return std::nullopt;
        table.readings.emplace_back(std::move(known), atom);
    }
    return table;
}

} // namespace language
