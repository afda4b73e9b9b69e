#include "language/json/ModelJson.h"

#include "language/json/JsonExpressions.h"
#include "plant/Names.h"

#include <nlohmann/json.hpp>

namespace language {

namespace {

using nlohmann::ordered_json;

std::string dumped(const ordered_json& value)
{
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

const char* kindOf(const StateVar& variable)
{
    return variable.type == "Mode" ? "mode" : variable.type == "Command" ? "command" : "cond";
}

ordered_json jsonOf(const StateVar& variable, const plant::Bindings& bindings)
{
    ordered_json values = ordered_json::array();
    for (const Atom* atom : *variable.atomLinks) {
        ordered_json& value = values.emplace_back(ordered_json{{"name", atom->value}});
        if (atom->fail) value["fault"] = true;
    }
    ordered_json made{
        {"name", variable.name}, {"kind", kindOf(variable)}, {"values", std::move(values)}};
    if (variable.initial) made["initial"] = variable.initial->value;
    const auto lost = bindings.lost.find(&variable);
    if (lost != bindings.lost.end()) made["lost"] = lost->second;
    return made;
}

ordered_json jsonOf(const Comp& component, const plant::Bindings& bindings)
{
    ordered_json variables = ordered_json::array();
    for (const StateVar* variable : *component.stateVars) {
        variables.push_back(jsonOf(*variable, bindings));
    }
    ordered_json made{{"name", component.name}, {"variables", std::move(variables)}};
    if (component.importedComps->empty()) return made;
    ordered_json& imports = made["imports"] = ordered_json::array();
    for (const Comp* imported : *component.importedComps) {
        imports.push_back(imported->name);
    }
    return made;
}

ordered_json lawJson(const ReadResult& read, std::size_t law)
{
    const Comp* owner = read.model->ownerOf(law);
    ordered_json literals = ordered_json::array();
    for (const plant::Literal& literal : read.model->literalsOf(law)) {
        literals.push_back((literal.negated ? "!" : "") + literal.atom->id);
    }
    ordered_json made{{"owner", owner ? ordered_json(owner->name) : ordered_json()},
                      {"literals", std::move(literals)}};
    if (law < read.lawPlaces.size() && read.lawPlaces[law].line > 0) {
        const LawPlace& place = read.lawPlaces[law];
        made["place"] = {{"file", place.file}, {"line", place.line}, {"column", place.column}};
    }
    return made;
}

const char* kindOf(plant::TransitionKind kind)
{
    switch (kind) {
    case plant::TransitionKind::nominal: return "nominal";
    case plant::TransitionKind::fault: return "fault";
    case plant::TransitionKind::repair: return "repair";
    case plant::TransitionKind::idle: break;
    }
    return "idle";
}

ordered_json transitionJson(const plant::Model& model, std::size_t index)
{
    const plant::GivenTransition& transition = model.transition(index);
    const Atom& to = *model.atoms()[transition.to];
    const auto precondition = model.preconditionOf(index);
    ordered_json guard = ordered_json::array();
    for (std::size_t i = 1; i < precondition.size(); ++i) {
        guard.push_back((precondition[i].first ? "" : "!") + precondition[i].second->id);
    }
    return {{"kind", kindOf(transition.kind)},
            {"name", plant::nameOf(transition.kind, to)},
            {"from", precondition.front().second->id},
            {"to", to.id},
            {"guard", std::move(guard)},
            {"probability", transition.probability}};
}

ordered_json jsonOf(const plant::ThresholdTable& table)
{
    ordered_json values = ordered_json::array();
    for (const Atom* atom : table.values) {
        values.push_back(atom->value);
    }
    ordered_json limits = ordered_json::array();
    for (const plant::ThresholdTable::Limit& limit : table.limits) {
        ordered_json made = limit.computed ? ordered_json{{"from", expressionJson(*limit.computed)}}
                                           : ordered_json{{"number", limit.number}};
        made["belongsAbove"] = limit.belongsAbove;
        limits.push_back(std::move(made));
    }
    return {{"values", std::move(values)},
            {"limits", std::move(limits)},
            {"hysteresis", table.hysteresis}};
}

void addReadings(const plant::ReadingTable& table, ordered_json& channel)
{
    ordered_json readings = ordered_json::array();
    for (const auto& [reading, atom] : table.readings) {
        const double* number = std::get_if<double>(&reading);
        readings.push_back({{"reading", number ? ordered_json(*number)
                                               : ordered_json(std::get<std::string>(reading))},
                            {"value", atom->value}});
    }
    channel["readings"] = std::move(readings);
    if (table.otherwise) channel["otherwise"] = table.otherwise->value;
}

ordered_json jsonOf(const plant::NumberRange& range)
{
    return {range.from, range.to};
}

ordered_json jsonOf(const plant::Noise& noise)
{
    if (noise.ranges.empty()) return noise.deviation;
    ordered_json ranges = ordered_json::object();
    for (const auto& [value, range] : noise.ranges) {
        ranges[value->value] = jsonOf(range);
    }
    return ranges;
}

ordered_json jsonOf(const plant::ChannelBinding& channel)
{
    ordered_json made{
        {"kind", channel.kind == plant::ChannelBinding::Kind::command ? "command" : "observe"},
        {channel.computed ? "from" : "channel",
         channel.computed ? expressionJson(*channel.computed) : ordered_json(channel.channel)},
        {"variable", plant::nameOf(*channel.variable)}};
    if (const auto* thresholds = std::get_if<plant::ThresholdTable>(&channel.translation)) {
        made["thresholds"] = jsonOf(*thresholds);
    } else if (const auto* readings = std::get_if<plant::ReadingTable>(&channel.translation)) {
        addReadings(*readings, made);
    }
    if (channel.holdSeconds) made["holdSeconds"] = *channel.holdSeconds;
    if (channel.persistSeconds) made["forSeconds"] = *channel.persistSeconds;
    if (channel.settling) {
        made["settled"] = {{"seconds", channel.settling->seconds},
                           {"after", channel.settling->channels}};
    }
    if (channel.input) made["input"] = true;
    if (channel.varies) made["varies"] = *channel.varies;
    if (channel.misread) made["misread"] = *channel.misread;
    if (channel.physical) made["within"] = jsonOf(*channel.physical);
    if (channel.noise) made["noise"] = jsonOf(*channel.noise);
    return made;
}

// `"key": [...]` with each of `count` entries on a line of its own.
template <typename Entry>
void addList(std::string& text, const char* key, std::size_t count, const Entry& entry)
{
    text += std::string(",\n \"") + key + "\": [";
    for (std::size_t i = 0; i < count; ++i) {
        text += i == 0 ? "\n  " : ",\n  ";
        text += dumped(entry(i));
    }
    text += count == 0 ? "]" : "\n ]";
}

} // namespace

std::string modelJson(const ReadResult& read)
{
    const plant::Model& model = *read.model;
    const plant::Bindings& bindings = read.bindings;
    std::string text = "{\"format\": \"itms-model\",\n \"v\": 1";
    text += ",\n \"name\": " + dumped(model.name());
    text += ",\n \"stepSeconds\": " + dumped(bindings.stepSeconds);
    text += ",\n \"files\": " + dumped(read.files);
    addList(text, "components", model.components().size(),
            [&](std::size_t i) { return jsonOf(*model.components()[i], bindings); });
    addList(text, "laws", model.lawCount(), [&](std::size_t i) { return lawJson(read, i); });
    addList(text, "transitions", model.transitionCount(),
            [&](std::size_t i) { return transitionJson(model, i); });
    addList(text, "channels", bindings.channels.size(),
            [&](std::size_t i) { return jsonOf(bindings.channels[i]); });
    if (!bindings.measurable.empty()) {
        addList(text, "measurable", bindings.measurable.size(),
                [&](std::size_t i) { return ordered_json(plant::nameOf(*bindings.measurable[i])); });
    }
    return text + "\n}\n";
}

} // namespace language
