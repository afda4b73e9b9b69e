#include "monitor/track/Deviated.h"

#include <algorithm>
#include <iterator>

namespace monitor {

Deviated whatDeviated(const Successors& successors, const Hypothesis& parent,
                      const TrackInput& input, const SharedArray<AtomIndex>& modes,
                      const std::vector<AtomIndex>& lost)
{
    Deviated deviated{{}, lost};
    std::sort(deviated.lost.begin(), deviated.lost.end());
    const Losses losses = lossesOf(deviated, input);
    deviated.lost = givenValues(losses);
    const StepFrame frame = successors.frame(parent, input, losses);
    forEachDifference(modes, frame.modes.predicted(),
                      [&](std::size_t place) { deviated.deviations.push_back(modes[place]); });
    std::sort(deviated.deviations.begin(), deviated.deviations.end());
    return deviated;
}

Losses lossesOf(const Deviated& deviated, const TrackInput& input)
{
    Losses lost;
    std::copy_if(
        input.lossy.begin(), input.lossy.end(), std::back_inserter(lost), [&](const Loss& one) {
            return std::binary_search(deviated.lost.begin(), deviated.lost.end(), one.given);
        });
    return lost;
}

std::vector<AtomIndex> givenValues(const Losses& lost)
{
    std::vector<AtomIndex> given;
    for (const Loss& one : lost) {
        given.push_back(one.given);
    }
    std::sort(given.begin(), given.end());
    return given;
}

} // namespace monitor
