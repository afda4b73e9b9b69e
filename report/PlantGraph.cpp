#include "report/PlantGraph.h"

#include <algorithm>

namespace report {

PlantGraph graphOf(const language::ReadResult& model)
{
    PlantGraph graph;
    graph.name = model.system;
    graph.outline = outlineOf(model);
    graph.shown.assign(graph.outline.components.size(), true);
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
    const auto found = std::find(names.begin(), names.end(), component);
    if (found == names.end()) return false;
    graph.shown.assign(names.size(), false);
    graph.shown[static_cast<std::size_t>(found - names.begin())] = true;
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
