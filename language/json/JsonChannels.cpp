#include "language/json/JsonChannels.h"

#include "language/meaning/Numbers.h"

#include <algorithm>
#include <set>

namespace language {

void JsonChannels::add(const JsonNode& node)
{
    if (!node.isObject({"kind", "variable"},
                       {"channel", "thresholds", "readings", "otherwise", "holdSeconds"})) {
        return;
    }
    StateVar* variable = names_.variable(node["variable"]);
    if (!variable) return;
    const std::string name = variable->comp->name + "." + variable->name;
    const auto [first, isNew] = bound_.insert({variable, node.pointer()});
    if (!isNew) {
        node.error(text::quoted(name) + " is bound twice", "one channel for it",
                   "the first is " + first->second);
        return;
    }
    plant::ChannelBinding made;
    made.variable = variable;
    const auto kind = kindOf(node["kind"], *variable);
    if (!kind) return;
    made.kind = *kind;
    made.channel = name;
    if (node.has("channel")) {
        const auto channel = node["channel"].text();
        if (!channel) return;
        made.channel = *channel;
    }
    if (!readTranslation(node, made)) return;
    if (node.has("holdSeconds")) {
        made.holdSeconds = node["holdSeconds"].number();
        if (!made.holdSeconds) return;
        if (*made.holdSeconds < 0) {
            node["holdSeconds"].error("the time is " + shown(*made.holdSeconds), "0 or more");
            return;
        }
    }
    bindings_.channels.push_back(std::move(made));
}

std::optional<plant::ChannelBinding::Kind> JsonChannels::kindOf(const JsonNode& node,
                                                                const StateVar& variable) const
{
    const auto written = node.text();
    if (!written) return std::nullopt;
    if (*written != "observe" && *written != "command") {
        node.error("found " + text::quoted(*written), "observe, command",
                   didYouMean(*written, {"observe", "command"}));
        return std::nullopt;
    }
    const std::string name = variable.comp->name + "." + variable.name;
    const bool isCommand = variable.type == "Command";
    if (isCommand != (*written == "command")) {
        node.error(isCommand ? text::quoted(name) + " is a command: it is given, not observed"
                             : text::quoted(name) + " is not a command",
                   isCommand ? "command" : "observe");
        return std::nullopt;
    }
    return isCommand ? plant::ChannelBinding::Kind::command
                     : plant::ChannelBinding::Kind::observation;
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
                                                              const StateVar& variable)
{
    if (!node.isObject({"values", "limits"}, {"hysteresis"})) return std::nullopt;
    plant::ThresholdTable table;
    const JsonNode values = node["values"];
    if (!values.isArray()) return std::nullopt;
    for (std::size_t i = 0; i < values.size(); ++i) {
        Atom* atom = PlantNames::value(values[i], variable);
        if (!atom) return std::nullopt;
        if (std::find(table.values.begin(), table.values.end(), atom) != table.values.end()) {
            values[i].error(text::quoted(atom->value) + " is in the row twice", "each value once");
            return std::nullopt;
        }
        table.values.push_back(atom);
    }
    if (table.values.size() < variable.atomLinks->size()) {
        values.error(std::to_string(table.values.size()) + " of the " +
                         std::to_string(variable.atomLinks->size()) + " values of " +
                         text::quoted(variable.comp->name + "." + variable.name) + " are in the row",
                     "all of them, from the lowest to the highest");
        return std::nullopt;
    }
    if (!readLimits(node["limits"], table)) return std::nullopt;
    if (!node.has("hysteresis")) return table;
    const auto hysteresis = node["hysteresis"].number();
    if (!hysteresis) return std::nullopt;
    table.hysteresis = *hysteresis;
    if (!checkHysteresis(node["hysteresis"], table)) return std::nullopt;
    return table;
}

bool JsonChannels::readLimits(const JsonNode& node, plant::ThresholdTable& table)
{
    if (!node.isArray()) return false;
    for (std::size_t i = 0; i < node.size(); ++i) {
        const JsonNode limit = node[i];
        if (!limit.isObject({"number"}, {"belongsAbove"})) return false;
        const auto number = limit["number"].number();
        std::optional<bool> above = true;
        if (limit.has("belongsAbove")) above = limit["belongsAbove"].flag();
        if (!number || !above) return false;
        if (i > 0 && *number <= table.limits.back().number) {
            limit["number"].error("the limit " + shown(*number) +
                                      " is not above the one before it, " +
                                      shown(table.limits.back().number),
                                  "limits from the lowest to the highest");
            return false;
        }
        table.limits.push_back({*number, *above});
    }
    if (table.limits.size() + 1 == table.values.size()) return true;
    node.error("the number of limits is " + std::to_string(table.limits.size()) +
                   ", that of values " + std::to_string(table.values.size()),
               "a limit between each two neighbours");
    return false;
}

bool JsonChannels::checkHysteresis(const JsonNode& node, const plant::ThresholdTable& table)
{
    if (table.hysteresis < 0) {
        node.error("the hysteresis is " + shown(table.hysteresis), "0 or more");
        return false;
    }
    for (std::size_t i = 1; i < table.limits.size(); ++i) {
        const double distance = table.limits[i].number - table.limits[i - 1].number;
        if (table.hysteresis * 2 < distance) continue;
        node.error("the hysteresis is " + shown(table.hysteresis) + ", and two limits are only " +
                       shown(distance) + " apart",
                   "less than half of the distance between two limits");
        return false;
    }
    return true;
}

std::optional<plant::ReadingTable> JsonChannels::readings(const JsonNode& channel,
                                                          const StateVar& variable)
{
    plant::ReadingTable table;
    if (channel.has("otherwise")) {
        table.otherwise = PlantNames::value(channel["otherwise"], variable);
        if (!table.otherwise) return std::nullopt;
    }
    if (!channel.has("readings")) return table;
    const JsonNode list = channel["readings"];
    if (!list.isArray()) return std::nullopt;
    std::set<std::variant<double, std::string>> seen;
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
        Atom* atom = PlantNames::value(entry["value"], variable);
        if (!atom) return std::nullopt;
        if (!seen.insert(known).second) {
            reading.error("this reading stands for two values");
            return std::nullopt;
        }
        table.readings.emplace_back(std::move(known), atom);
    }
    return table;
}

} // namespace language
