// Readings tell the twin what its modes leave open, such as what is fed into the plant; one that contradicts it is the plant's own.
// Where a mode may well do this or that, such as where it is not known whether a guard holds, the twin does what the plant did.
#include "monitor/track/Twin.h"

#include <algorithm>

namespace monitor {

namespace {

// Inputs, then the others by variable: which one is taken first matters where two contradict one another.
std::vector<AtomIndex> inFixedOrder(const StepInput& input)
{
    std::vector<AtomIndex> observations = input.observations;
    const auto inputs = observations.begin() + static_cast<std::ptrdiff_t>(input.inputs);
    std::sort(observations.begin(), inputs);
    std::sort(inputs, observations.end());
    return observations;
}

StepLabels labelsOf(const Plant& plant, const StepLabels& before,
                    const std::vector<AtomIndex>& modes, const StepInput& input)
{
    std::vector<AtomIndex> assumptions = input.commands;
    assumptions.insert(assumptions.end(), modes.begin(), modes.end());
    StepLabels labels = before;
    labels.take(assumptions, inFixedOrder(input), input.inputs);
    return labels.consistent() ? labels : StepLabels(plant, concludedFrom(plant, modes));
}

} // namespace

TwinPointer twinAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                      const StepFrame& happened, const StepFrame& expected, const Hypothesis& made)
{
    const std::vector<ModeStep> own =
        parent.twin ? modeSteps(plant, parent.twin->labels.prediction(), input.values.commands)
                    : std::vector<ModeStep>();
    const std::vector<ModeStep>& steps = parent.twin ? own : expected.modes;
    std::vector<AtomIndex> modes;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const AtomIndex value = made.modes[i];
        const ModeOption* taken = happened.modes[i].option(value);
        const bool nominal = happened.modes[i].followed && value == happened.modes[i].predicted;
        const bool repaired = taken && taken->repair && !nominal;
        const ModeOption* same = steps[i].option(value);
        const bool together = steps[i].before == happened.modes[i].before && same && same->nominal;
        modes.push_back(repaired || together ? value : steps[i].predicted);
    }
    if (modes == made.modes && made.lost.empty()) {
        return nullptr;
    }
    StepLabels labels =
        labelsOf(plant, parent.twin ? parent.twin->labels : parent.labels, modes, input.values);
    return std::make_shared<const Twin>(Twin{std::move(modes), std::move(labels)});
}

} // namespace monitor
