#include "monitor/labels/Agreeing.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/OpenGroups.h"

#include <algorithm>
#include <set>

namespace monitor {

namespace {

// Whether there are values for these variables with the observations of them.
bool agree(const Plant& plant, StepLabels labels, const std::vector<AtomIndex>& observations,
           const std::vector<VariableIndex>& connected)
{
    const std::vector<AtomIndex> assumptions = labels.assumptions();
    std::vector<AtomIndex> all = labels.observations();
    all.insert(all.end(), observations.begin(), observations.end());
    labels.take(assumptions, all);
    if (!labels.contradicted().empty()) {
        return false;
    }
    Prediction values = labels.prediction();
    return complete(plant, values, connected, [&](VariableIndex variable) {
               return plant.variable(variable).values;
           }) != Completion::impossible;
}

} // namespace

AgreeingLabels agreeing(const Plant& plant, const StepLabels& labels)
{
    const std::vector<AtomIndex> observations = labels.observations();
    const std::vector<AtomIndex> assumptions = labels.assumptions();
    StepLabels alone = labels;
    alone.take(assumptions, {observations.begin(),
                             observations.begin() + static_cast<std::ptrdiff_t>(labels.inputs())});
    if (!alone.contradicted().empty()) {
        alone.take(assumptions, {});
    }
    if (!alone.consistent()) {
        return {std::move(alone), observations};
    }
    OpenVariables open(plant, alone.prediction());
    std::map<std::vector<VariableIndex>, std::vector<AtomIndex>> parts;
    std::set<AtomIndex> leftOut;
    for (const AtomIndex observed : observations) {
        if (!alone.prediction().isKnown(observed)) {
            parts[open.connected(plant.variableOf(observed))].push_back(observed);
        } else if (!alone.prediction().isTrue(observed)) {
            leftOut.insert(observed);
        }
    }
    for (const auto& [connected, observed] : parts) {
        if (!agree(plant, alone, observed, connected)) {
            leftOut.insert(observed.begin(), observed.end());
        }
    }
    AgreeingLabels result{std::move(alone), {}};
    std::vector<AtomIndex> kept;
    for (const AtomIndex observed : observations) {
        (leftOut.contains(observed) ? result.leftOut : kept).push_back(observed);
    }
    const auto inputs = std::count_if(
        observations.begin(), observations.begin() + static_cast<std::ptrdiff_t>(labels.inputs()),
        [&](AtomIndex observed) { return !leftOut.contains(observed); });
    result.labels.take(assumptions, kept, static_cast<std::size_t>(inputs));
    return result;
}

} // namespace monitor
