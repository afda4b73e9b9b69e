#include "session/StepInput.h"

#include "monitor/track/Successors.h"

namespace session {

monitor::TrackInput trackInput(const plant::Plant& plant, const plant::Bindings& bindings,
                               const telemetry::Step& step)
{
    monitor::TrackInput input;
    input.step = step.number;
    input.t = step.t;
    for (const Atom* command : step.commands) {
        input.values.commands.push_back(plant.indexOf(command));
    }
    for (const telemetry::Observation& observation : step.observations) {
        input.values.observations.push_back(plant.indexOf(observation.value));
    }
    std::vector<plant::AtomIndex> given;
    for (const Atom* command : step.givenCommands) {
        given.push_back(plant.indexOf(command));
    }
    input.lossy = monitor::lossyCommands(plant, bindings, given);
    return input;
}

} // namespace session
