// A plant for Graphviz: a node for each component, a cluster for each part with parts, a point for a law of three or more.
#include "report/PlantGraph.h"
#include "report/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <set>

namespace report {

namespace {

// A text in quotes; in a label the backslash that stands for itself is doubled, too.
std::string dotText(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') result += '\\';
        result += character;
    }
    return result + "\"";
}

std::string lastPart(const std::string& name)
{
    return name.substr(name.rfind('/') + 1);
}

// From white to orange.
std::string fill(double probability)
{
    const auto between = [&](double from, double to) {
        return static_cast<int>(std::lround(from + (to - from) * std::clamp(probability, 0.0, 1.0)));
    };
    return fmt::format("#{:02x}{:02x}{:02x}", between(255, 240), between(255, 148),
                       between(255, 90));
}

class DotWriter {
public:
    explicit DotWriter(const PlantGraph& graph) : graph_(graph)
    {
        for (std::size_t i = 0; i < graph.shown.size(); ++i) {
            if (!graph.shown[i]) continue;
            const std::string& name = graph.outline.components[i];
            for (std::size_t at = name.find('/'); at != std::string::npos;
                 at = name.find('/', at + 1)) {
                parts_.insert(name.substr(0, at));
            }
        }
        for (std::size_t i = 0; i < graph.shown.size(); ++i) {
            if (graph.shown[i]) members_[boxOf(graph.outline.components[i])].push_back(i);
        }
        for (const std::string& part : parts_) {
            inner_[outer(part)].push_back(part);
        }
    }

    std::string write()
    {
        text_ = fmt::format("graph {} {{\n", dotText(graph_.name.empty() ? "plant" : graph_.name));
        if (graph_.step) {
            text_ += fmt::format("    label={};\n",
                                 dotText(fmt::format("step {}, t = {}: {}", graph_.step->step,
                                                     graph_.step->t, graph_.step->status)));
        }
        text_ += "    rankdir=LR;\n"
                 "    node [shape=box, style=\"rounded,filled\", fillcolor=\"#ffffff\", "
                 "fontname=\"sans-serif\", fontsize=11];\n"
                 "    edge [color=\"#708090\"];\n";
        box("", "    ");
        edges();
        return text_ + "}\n";
    }

private:
    static std::string outer(const std::string& name)
    {
        const std::size_t at = name.rfind('/');
        return at == std::string::npos ? "" : name.substr(0, at);
    }
    // A component that has parts stands in its own box.
    std::string boxOf(const std::string& name) const
    {
        return parts_.count(name) > 0 ? name : outer(name);
    }

    void box(const std::string& part, const std::string& indent)
    {
        for (const std::size_t component : members_[part]) {
            node(component, indent);
        }
        for (const std::string& inner : inner_[part]) {
            text_ += fmt::format("{}subgraph {} {{\n{}    label={};\n", indent,
                                 dotText("cluster_" + inner), indent, dotText(lastPart(inner)));
            box(inner, indent + "    ");
            text_ += indent + "}\n";
        }
    }

    void node(std::size_t component, const std::string& indent)
    {
        const std::string& name = graph_.outline.components[component];
        std::string label = dotText(lastPart(name));
        label.pop_back();
        double probability = 0.0;
        if (graph_.step) {
            const auto modes = graph_.step->modes.find(name);
            if (modes != graph_.step->modes.end()) {
                for (const auto& [variable, value] : modes->second) {
                    const std::string line = dotText(fmt::format("{} = {}", variable, value));
                    label += "\\n" + line.substr(1, line.size() - 2);
                }
            }
            const auto deviating = graph_.step->deviating.find(name);
            if (deviating != graph_.step->deviating.end()) {
                probability = deviating->second;
                label += "\\n" + percent(probability);
            }
        }
        text_ += fmt::format("{}{} [label={}\"", indent, dotText(name), label);
        if (probability > 0.0) text_ += fmt::format(", fillcolor=\"{}\"", fill(probability));
        text_ += "];\n";
    }

    void edges()
    {
        std::size_t points = 0;
        for (const Connection& connection : graph_.outline.connections) {
            std::vector<std::string> ends;
            for (const std::uint32_t component : connection.components) {
                if (graph_.shown[component])
                    ends.push_back(dotText(graph_.outline.components[component]));
            }
            if (ends.size() < 2) continue;
            const std::string tip = dotText(graph_.outline.laws[connection.laws.front()].text);
            if (ends.size() == 2) {
                text_ += fmt::format("    {} -- {} [tooltip={}];\n", ends[0], ends[1], tip);
                continue;
            }
            // A name of a component has no colon.
            const std::string point = dotText(fmt::format("law:{}", ++points));
            text_ += fmt::format("    {} [shape=point, label=\"\", tooltip={}];\n", point, tip);
            for (const std::string& end : ends) {
                text_ += fmt::format("    {} -- {} [tooltip={}];\n", end, point, tip);
            }
        }
    }

    const PlantGraph& graph_;
    std::set<std::string> parts_;                             // that have parts which are shown
    std::map<std::string, std::vector<std::size_t>> members_; // components, by box
    std::map<std::string, std::vector<std::string>> inner_;   // boxes, by box
    std::string text_;
};

} // namespace

std::string graphDot(const PlantGraph& graph)
{
    return DotWriter(graph).write();
}

} // namespace report
