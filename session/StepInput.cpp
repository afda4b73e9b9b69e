#include "session/StepInput.h"

#include "monitor/track/Successors.h"

#include <algorithm>

namespace session {

StepInputs::StepInputs(const plant::Plant& plant, const plant::Bindings& bindings)
    : plant_(plant), bindings_(bindings)
{
    for (const plant::ChannelBinding& channel : bindings.channels) {
        channels_.emplace(channel.variable, &channel);
        if (channel.misread) {
            double& most = misread_[channel.variable];
            most = std::max(most, *channel.misread);
        }
    }
}

const plant::SharedArray<plant::AtomIndex>& StepInputs::commandsOf(const telemetry::Step& step)
{
    if (commands_.size() != step.commands.size()) {
        commandNumbers_ = {};
        for (const Atom* command : step.commands) {
            commandNumbers_.push_back(plant_.indexOf(command));
        }
    } else {
        forEachDifference(commands_, step.commands, [&](std::size_t place) {
            commandNumbers_.set(place, plant_.indexOf(step.commands[place]));
        });
    }
    commands_ = step.commands;
    return commandNumbers_;
}

monitor::TrackInput StepInputs::of(const ReadingChanges& changes, const telemetry::Step& step)
{
    monitor::TrackInput input;
    input.step = step.number;
    input.t = step.t;
    input.values.commands = commandsOf(step);
    const auto channelOf = [&](const telemetry::Observation& observation) {
        const auto found = channels_.find(observation.value->stateVar);
        return found == channels_.end() ? nullptr : found->second;
    };
    const auto isInput = [&](const telemetry::Observation& observation) {
        const plant::ChannelBinding* channel = channelOf(observation);
        return channel && channel->input;
    };
    // Where readings contradict one another, the first ones are taken; so the order must not be that of the telemetry.
    std::vector<telemetry::Observation> observations = step.observations;
    std::sort(observations.begin(), observations.end(), [&](const auto& a, const auto& b) {
        return std::pair(!isInput(a), plant_.indexOf(a.value)) <
               std::pair(!isInput(b), plant_.indexOf(b.value));
    });
    input.values.inputs =
        static_cast<std::size_t>(std::count_if(observations.begin(), observations.end(), isInput));
    for (const telemetry::Observation& observation : observations) {
        const plant::AtomIndex value = plant_.indexOf(observation.value);
        const plant::ChannelBinding* channel = channelOf(observation);
        if (observation.held) input.held.push_back(value);
        input.values.observations.push_back(value);
        input.values.changing.push_back(observation.held ? 0.0
                                        : channel && channel->varies
                                            ? *channel->varies
                                            : changes.probability(plant_.variableOf(value)));
    }
    std::vector<plant::AtomIndex> given;
    for (const Atom* command : step.givenCommands) {
        given.push_back(plant_.indexOf(command));
    }
    input.lossy = monitor::lossyCommands(plant_, bindings_, given);
    std::sort(input.held.begin(), input.held.end());
    for (std::size_t i = 0; i < observations.size(); ++i) {
        const auto found = misread_.find(observations[i].value->stateVar);
        if (found == misread_.end() || observations[i].held) continue;
        const auto values = static_cast<double>(found->first->atomLinks->size());
        input.lossy.push_back({input.values.observations[i], monitor::Loss::nothing, found->second,
                               i < input.values.inputs ? 1.0 : 1.0 / values});
    }
    return input;
}

} // namespace session
