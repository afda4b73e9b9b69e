// A plant drawn: components, boxes around the parts of a part, and edges for laws across components; with what is believed of them,
// where something was observed.
#pragma once

#include "report/PlantOutline.h"
#include "report/Tracking.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace report {

/// What is believed after a step.
struct GraphStep {
    std::size_t step = 0;
    double t = 0.0; ///< seconds
    std::string status;
    /// By component, the modes in the most probable explanation: variable and value.
    std::map<std::string, std::vector<std::pair<std::string, std::string>>> modes;
    std::map<std::string, double>
        deviating; ///< how probable it is that the component is not as it should be, 0..1
};

struct PlantGraph {
    std::string name; ///< of the system; may be empty
    PlantOutline outline;
    std::vector<bool> shown; ///< by component
    std::optional<GraphStep> step;
};

/// All of a plant; a component without variables is at most a box. Requires: a model was read.
PlantGraph graphOf(const language::ReadResult& model);

/// What is believed after the last step of a session. Requires: there was one.
GraphStep graphStep(const plant::Plant& plant, const StepReport& report,
                    const monitor::TrackAnswer& answer);

/// Shows only what can be reached from a component and its parts over so many laws. False, with nothing changed, when there is no
/// such component that is shown. Requires: it was not called before.
/// Linear in the connections, times the hops.
bool showAround(PlantGraph& graph, std::string_view component, std::size_t hops);

/// In the language of Graphviz. The same graph gives the same bytes.
std::string graphDot(const PlantGraph& graph);

/// One JSON object, ended by a newline; docs/output.md has its fields.
std::string graphJson(const PlantGraph& graph);

} // namespace report
