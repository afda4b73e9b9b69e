#include "monitor/track/Deviated.h"

#include <algorithm>
#include <iterator>

namespace monitor {

Deviated whatDeviated(const Successors& successors, const Hypothesis& parent,
                      const TrackInput& input, const std::vector<AtomIndex>& modes,
                      const std::vector<AtomIndex>& lost)
{
    Deviated deviated{{}, lost};
    std::sort(deviated.lost.begin(), deviated.lost.end());
    const StepFrame frame = successors.frame(parent, input, lossesOf(deviated, input));
    for (std::size_t i = 0; i < frame.modes.size(); ++i) {
        if (modes[i] != frame.modes[i].predicted) {
            deviated.deviations.push_back(modes[i]);
        }
    }
    std::sort(deviated.deviations.begin(), deviated.deviations.end());
    return deviated;
}

std::vector<LossyCommand> lossesOf(const Deviated& deviated, const TrackInput& input)
{
    std::vector<LossyCommand> lost;
    std::copy_if(input.lossy.begin(), input.lossy.end(), std::back_inserter(lost),
                 [&](const LossyCommand& command) {
                     return std::binary_search(deviated.lost.begin(), deviated.lost.end(),
                                               command.given);
                 });
    return lost;
}

std::vector<AtomIndex> givenValues(const std::vector<LossyCommand>& commands)
{
    std::vector<AtomIndex> given;
    for (const LossyCommand& command : commands) {
        given.push_back(command.given);
    }
    std::sort(given.begin(), given.end());
    return given;
}

} // namespace monitor
