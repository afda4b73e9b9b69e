// A plant's graph for programs.
#include "report/Numbers.h"
#include "report/PlantGraph.h"

#include <nlohmann/json.hpp>

namespace report {

namespace {

using Json = nlohmann::ordered_json;

Json componentOf(const PlantGraph& graph, const std::string& name)
{
    Json component = {{"name", name}};
    if (!graph.step) return component;
    Json modes = Json::object();
    const auto known = graph.step->modes.find(name);
    if (known != graph.step->modes.end()) {
        for (const auto& [variable, value] : known->second) {
            modes[variable] = value;
        }
    }
    const auto deviating = graph.step->deviating.find(name);
    component["modes"] = std::move(modes);
    component["p"] = deviating == graph.step->deviating.end() ? 0.0 : sixDigits(deviating->second);
    return component;
}

Json lawOf(const LawStatement& law)
{
    const bool placed = !law.file.empty();
    return {{"file", placed ? Json(law.file) : Json(nullptr)},
            {"line", placed ? Json(law.line) : Json(nullptr)},
            {"column", placed ? Json(law.column) : Json(nullptr)},
            {"text", law.text}};
}

} // namespace

std::string graphJson(const PlantGraph& graph)
{
    Json components = Json::array();
    for (std::size_t i = 0; i < graph.shown.size(); ++i) {
        if (graph.shown[i]) components.push_back(componentOf(graph, graph.outline.components[i]));
    }
    Json connections = Json::array();
    for (const Connection& connection : graph.outline.connections) {
        Json ends = Json::array();
        for (const std::uint32_t component : connection.components) {
            if (graph.shown[component]) ends.push_back(graph.outline.components[component]);
        }
        if (ends.size() < 2) continue;
        Json laws = Json::array();
        for (const std::uint32_t law : connection.laws) {
            laws.push_back(lawOf(graph.outline.laws[law]));
        }
        connections.push_back({{"components", std::move(ends)}, {"laws", std::move(laws)}});
    }
    Json json = {{"v", 1}, {"system", graph.name.empty() ? Json(nullptr) : Json(graph.name)}};
    if (graph.step) {
        json["step"] = graph.step->step;
        json["t"] = graph.step->t;
        json["status"] = graph.step->status;
    }
    json["components"] = std::move(components);
    json["connections"] = std::move(connections);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace report
