#include "app/Truth.h"

#include "plant/Names.h"
#include "report/Tracking.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace app {

namespace {

using nlohmann::ordered_json;

const char* name(simulate::ModeCause cause)
{
    switch (cause) {
    case simulate::ModeCause::predicted: return "predicted";
    case simulate::ModeCause::drawn: return "drawn";
    case simulate::ModeCause::injected: break;
    }
    return "injected";
}

} // namespace

TruthFile::TruthFile(const std::string& path, const plant::Plant& plant, const plant::Model& model)
    : plant_(plant), file_(path, "--truth")
{
    for (const auto& component : model.components()) {
        for (const StateVar* variable : *component->stateVars) {
            if (variable->type == "Mode") {
                modes_.push_back(plant.variableOf(plant.indexOf(variable->atomLinks->front())));
            }
        }
    }
}

void TruthFile::write(std::size_t step, double t, const simulate::SimulatedStep& simulated)
{
    const auto nameAt = [&](plant::VariableIndex variable) {
        return plant::nameOf(*plant_.variable(variable).variable);
    };
    // An ordered object of the library would be searched from its beginning for every mode that is added.
    std::string modes;
    for (const plant::VariableIndex mode : modes_) {
        const Atom* value = plant_.atom(simulated.values[static_cast<std::size_t>(mode)]);
        modes += fmt::format("{}{}:{}", modes.empty() ? "" : ",", ordered_json(nameAt(mode)).dump(),
                             ordered_json(value->value).dump());
    }
    ordered_json changes = ordered_json::array();
    for (const simulate::ModeChange& change : simulated.changes) {
        changes.push_back({{"variable", nameAt(change.variable)},
                           {"before", plant_.atom(change.before)->value},
                           {"after", plant_.atom(change.after)->value},
                           {"cause", name(change.cause)}});
    }
    ordered_json lost = ordered_json::array();
    for (const plant::VariableIndex command : simulated.lost) {
        lost.push_back(nameAt(command));
    }
    ordered_json misread = ordered_json::array();
    for (const plant::VariableIndex variable : simulated.misread) {
        misread.push_back(nameAt(variable));
    }
    file_.write(fmt::format(R"({{"v":1,"step":{},"t":{},"modes":{{{}}},"changes":{},"lost":{}{}}})",
                            step, ordered_json(t).dump(), modes, changes.dump(), lost.dump(),
                            misread.empty() ? "" : ",\"misread\":" + misread.dump()) +
                "\n");
}

} // namespace app
