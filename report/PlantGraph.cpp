#include "report/PlantGraph.h"

#include <algorithm>

namespace report {

PlantGraph graphOf(const language::ReadResult& model)
{
    PlantGraph graph;
    graph.name = model.system;
    graph.outline = outlineOf(model);
    // A part that has nothing but parts is their box.
    for (const auto& component : model.model->components()) {
        graph.shown.push_back(!component->stateVars->empty());
    }
    return graph;
}

GraphStep graphStep(const plant::Plant& plant, const StepReport& report,
                    const monitor::TrackAnswer& answer)
{
    GraphStep step;
    step.step = report.step;
    step.t = report.t;
    step.status = monitor::name(report.status);
    for (const plant::AtomIndex mode : answer.hypotheses.front()->modes) {
        const Atom& value = *plant.atom(mode);
        step.modes[value.stateVar->comp->name].emplace_back(value.stateVar->name, value.value);
    }
    step.deviating = report.components;
    return step;
}

bool showAround(PlantGraph& graph, std::string_view component, std::size_t hops)
{
    const std::vector<std::string>& names = graph.outline.components;
    const std::string inside = std::string(component) + "/";
    std::vector<bool> near(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        near[i] = graph.shown[i] && (names[i] == component || names[i].starts_with(inside));
    }
    if (std::find(near.begin(), near.end(), true) == near.end()) return false;
    graph.shown = near;
    for (std::size_t hop = 0; hop < hops; ++hop) {
        const std::vector<bool> before = graph.shown;
        for (const Connection& connection : graph.outline.connections) {
            const bool reached =
                std::any_of(connection.components.begin(), connection.components.end(),
                            [&](std::uint32_t one) { return before[one]; });
            if (!reached) continue;
            for (const std::uint32_t one : connection.components) {
                graph.shown[one] = true;
            }
        }
        if (graph.shown == before) break;
    }
    return true;
}

} // namespace report
