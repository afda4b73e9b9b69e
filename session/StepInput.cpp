#include "session/StepInput.h"

#include "monitor/track/Successors.h"

#include <algorithm>
#include <unordered_map>

namespace session {

monitor::TrackInput trackInput(const plant::Plant& plant, const plant::Bindings& bindings,
                               const ReadingChanges& changes, const telemetry::Step& step)
{
    monitor::TrackInput input;
    input.step = step.number;
    input.t = step.t;
    for (const Atom* command : step.commands) {
        input.values.commands.push_back(plant.indexOf(command));
    }
    std::unordered_map<const StateVar*, const plant::ChannelBinding*> channels;
    for (const plant::ChannelBinding& channel : bindings.channels) {
        channels.emplace(channel.variable, &channel);
    }
    const auto channelOf = [&](const telemetry::Observation& observation) {
        const auto found = channels.find(observation.value->stateVar);
        return found == channels.end() ? nullptr : found->second;
    };
    const auto isInput = [&](const telemetry::Observation& observation) {
        const plant::ChannelBinding* channel = channelOf(observation);
        return channel && channel->input;
    };
    // Where readings contradict one another, the first ones are taken; so the order must not be that of the telemetry.
    std::vector<telemetry::Observation> observations = step.observations;
    std::sort(observations.begin(), observations.end(), [&](const auto& a, const auto& b) {
        return std::pair(!isInput(a), plant.indexOf(a.value)) <
               std::pair(!isInput(b), plant.indexOf(b.value));
    });
    input.values.inputs =
        static_cast<std::size_t>(std::count_if(observations.begin(), observations.end(), isInput));
    for (const telemetry::Observation& observation : observations) {
        const plant::AtomIndex value = plant.indexOf(observation.value);
        const plant::ChannelBinding* channel = channelOf(observation);
        input.values.observations.push_back(value);
        input.values.changing.push_back(observation.held ? 0.0
                                        : channel && channel->varies
                                            ? *channel->varies
                                            : changes.probability(plant.variableOf(value)));
    }
    std::vector<plant::AtomIndex> given;
    for (const Atom* command : step.givenCommands) {
        given.push_back(plant.indexOf(command));
    }
    input.lossy = monitor::lossyCommands(plant, bindings, given);
    return input;
}

} // namespace session
