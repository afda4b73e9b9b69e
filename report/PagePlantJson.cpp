// The plant as a page's data has it.
#include "language/json/ModelJson.h"
#include "report/PageJson.h"
#include "text/File.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_map>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t mostSourceBytes = std::size_t{1} << 20; // of all files together

const char* kindOf(const StateVar& variable)
{
    if (variable.type == "Mode") return "mode";
    return variable.type == "Command" ? "command" : "cond";
}

std::size_t indexOf(const std::vector<Atom*>& values, const Atom* value)
{
    return static_cast<std::size_t>(std::find(values.begin(), values.end(), value) - values.begin());
}

Json variableJson(const StateVar& variable, std::size_t component)
{
    Json values = Json::array();
    Json faults = Json::array();
    for (const Atom* value : *variable.atomLinks) {
        if (value->fail) faults.push_back(values.size());
        values.push_back(value->value);
    }
    return {{"component", component},
            {"name", variable.name},
            {"kind", kindOf(variable)},
            {"values", std::move(values)},
            {"faults", std::move(faults)}};
}

const char* roleOf(const PageChannel& channel)
{
    if (channel.variable->type == "Command") return "command";
    return channel.binding && channel.binding->input ? "input" : "observe";
}

Json thresholdsJson(const PageChannel& channel)
{
    if (!channel.binding) return nullptr;
    const auto* table = std::get_if<plant::ThresholdTable>(&channel.binding->translation);
    if (!table || table->isComputed()) return nullptr;
    Json limits = Json::array();
    for (const plant::ThresholdTable::Limit& limit : table->limits) {
        limits.push_back(limit.number);
    }
    Json values = Json::array();
    for (const Atom* value : table->values) {
        values.push_back(indexOf(*channel.variable->atomLinks, value));
    }
    return {{"limits", std::move(limits)}, {"values", std::move(values)}};
}

// The numbers that stand for values: `open = 1` becomes [1, index of open].
Json numbersJson(const PageChannel& channel)
{
    Json numbers = Json::array();
    if (!channel.binding) return numbers;
    const auto* table = std::get_if<plant::ReadingTable>(&channel.binding->translation);
    if (!table) return numbers;
    for (const auto& [reading, value] : table->readings) {
        const double* number = std::get_if<double>(&reading);
        if (number) numbers.push_back({*number, indexOf(*channel.variable->atomLinks, value)});
    }
    return numbers;
}

// What a model file says. A model that was read as data names files that it may know nothing of: they are not opened.
Json sourcesJson(const language::ReadResult& model)
{
    Json sources = Json::array();
    const bool asData = !model.files.empty() && model.lawTexts.empty();
    std::size_t bytes = 0;
    for (const std::string& file : model.files) {
        Json text = nullptr;
        if (!asData && !language::isJsonPath(file) && bytes < mostSourceBytes) {
            text::FileText read = text::readFile(file, mostSourceBytes - bytes);
            if (read.text && read.text->size() <= mostSourceBytes - bytes) {
                bytes += read.text->size();
                text = std::move(*read.text);
            }
        }
        sources.push_back({{"file", file}, {"text", std::move(text)}});
    }
    return sources;
}

} // namespace

std::string pagePlantJson(const language::ReadResult& model, const plant::Plant& plant,
                          const PageStory& story)
{
    const PlantOutline outline = outlineOf(model);
    std::unordered_map<const Comp*, std::size_t> components;
    for (const auto& component : model.model->components()) {
        components.emplace(component, components.size());
    }
    std::unordered_map<const StateVar*, std::size_t> variableNumbers;
    Json variables = Json::array();
    for (const plant::PlantVariable& one : plant.variables()) {
        variableNumbers.emplace(one.variable, variables.size());
        variables.push_back(variableJson(*one.variable, components.at(one.variable->comp)));
    }
    Json channels = Json::array();
    for (const PageChannel& channel : story.channels()) {
        channels.push_back(
            {{"variable", variableNumbers.at(channel.variable)},
             {"channel", channel.binding ? Json(channel.binding->channel) : Json(nullptr)},
             {"kind", roleOf(channel)},
             {"thresholds", thresholdsJson(channel)},
             {"numbers", numbersJson(channel)}});
    }
    Json laws = Json::array();
    for (const LawStatement& law : outline.laws) {
        laws.push_back({{"file", law.file.empty() ? Json(nullptr) : Json(law.file)},
                        {"line", law.line},
                        {"text", law.text},
                        {"components", law.components}});
    }
    Json connections = Json::array();
    for (const Connection& connection : outline.connections) {
        connections.push_back({{"components", connection.components}, {"laws", connection.laws}});
    }
    const Json json = {{"system", model.system},
                       {"stepSeconds", model.bindings.stepSeconds},
                       {"components", outline.components},
                       {"variables", std::move(variables)},
                       {"channels", std::move(channels)},
                       {"laws", std::move(laws)},
                       {"connections", std::move(connections)},
                       {"sources", sourcesJson(model)}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace report
