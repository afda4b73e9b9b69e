#include "session/ReadingChanges.h"

namespace session {

double ReadingChanges::probability(plant::VariableIndex variable) const
{
    const auto found = counts_.find(variable);
    const ReadingCount count = found == counts_.end() ? ReadingCount() : found->second;
    return (static_cast<double>(count.changes) + 0.5) / (static_cast<double>(count.readings) + 1.0);
}

void ReadingChanges::add(const plant::Plant& plant, const telemetry::Step& step)
{
    for (const telemetry::Observation& observation : step.observations) {
        if (observation.held) continue;
        const plant::AtomIndex value = plant.indexOf(observation.value);
        ReadingCount& count = counts_[plant.variableOf(value)];
        count.changes += count.readings > 0 && count.last != value ? 1 : 0;
        ++count.readings;
        count.last = value;
    }
}

} // namespace session
