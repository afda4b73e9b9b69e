#include "monitor/track/RuledOut.h"

#include <algorithm>

namespace monitor {

namespace {

// What is expected is that it stays, whichever guards hold.
bool isLasting(const Plant& plant, AtomIndex value)
{
    constexpr double certain = 0.999;
    double leaving = 0.0;
    for (const PlantChange& change : plant.changesFrom(value)) {
        if (change.nominal) {
            return false;
        }
        leaving += change.probability;
    }
    return leaving < certain;
}

// Those that are held may have been wrong before, and are left out then.
std::vector<AtomIndex> readAnyway(const TrackInput& present)
{
    std::vector<AtomIndex> observations = present.values.observations;
    std::erase_if(observations, [&](AtomIndex value) {
        return std::binary_search(present.held.begin(), present.held.end(), value);
    });
    return observations;
}

} // namespace

bool RuledOut::forGood(AtomIndex value)
{
    if (!isLasting(plant_, value)) {
        return false;
    }
    if (!required_) {
        required_.emplace(plant_, present_.values.commands, readAnyway(present_));
    }
    return !required_->allow(value);
}

} // namespace monitor
