// With the parts that are contradicted go those in which a mode has a fault already, or is to have one: such modes count towards the
// bound of the engine's search wherever they are.
#include "monitor/step/LocalStep.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "monitor/step/Judge.h"

#include <algorithm>

namespace monitor {

namespace {

std::vector<VariableIndex> contradictedVariables(const StepFrame& frame, const StepLabels& predicted)
{
    std::vector<VariableIndex> variables;
    for (const AtomIndex value : predicted.contradicted()) {
        variables.push_back(frame.plant.variableOf(value));
    }
    for (const std::size_t place : frame.modes.failing()) {
        variables.push_back(frame.plant.modes()[place]);
    }
    return variables;
}

StepLabels predictedLabels(const StepFrame& frame)
{
    StepLabels predicted = *frame.carried;
    predicted.take(assumptionsOf(frame, {}), frame.observations, frame.inputs);
    return predicted;
}

// What was open before the step had values in turn.
bool filledBefore(const StepFrame& frame)
{
    return frame.carriedFills ||
           completionOf(frame.plant, frame.carried->prediction(), 0) == Completion::possible;
}

// What is open outside of the part has values in turn.
bool restFills(const StepFrame& frame, const Prediction& predicted, const PlantPart& part)
{
    if (!filledBefore(frame)) {
        return false;
    }
    const Prediction& before = frame.carried->prediction();
    std::vector<VariableIndex> around = variablesAround(frame.plant, predicted, before);
    std::erase_if(around, [&](VariableIndex variable) { return part.has(variable); });
    return fillsInTurn(frame.plant, predicted, around);
}

// Whether every atom outside of the part has a label.
bool restIsKnown(const Plant& plant, const Prediction& predicted, const PlantPart& part)
{
    const std::size_t atoms = part.plant().atomCount();
    std::size_t known = 0;
    for (std::size_t atom = 0; atom < atoms; ++atom) {
        known += predicted.isKnown(part.inWhole(static_cast<AtomIndex>(atom))) ? 1 : 0;
    }
    return predicted.mark() - known == plant.atomCount() - atoms;
}

StepFrame within(const StepFrame& whole, const PlantPart& part, bool restIsKnown)
{
    StepFrame frame{part.plant(),
                    whole.known->given().within(part),
                    {},
                    0,
                    stepsWithin(part, whole.plant, whole.modes)};
    for (std::size_t i = 0; i < whole.observations.size(); ++i) {
        if (const auto observed = part.here(whole.observations[i])) {
            frame.observations.push_back(*observed);
            frame.inputs += i < whole.inputs ? 1 : 0;
        }
    }
    frame.restIsKnown = restIsKnown;
    return frame;
}

} // namespace

bool isExpected(const StepFrame& frame)
{
    if (!frame.carried) {
        return false;
    }
    const Meter::Uncounted uncounted;
    const StepLabels predicted = predictedLabels(frame);
    return predicted.consistent() && predicted.contradicted().empty() && filledBefore(frame) &&
           stillFillsInTurn(frame.plant, predicted.prediction(), frame.carried->prediction());
}

LocalStep::LocalStep(const StepFrame& whole, std::shared_ptr<const PlantPart> part, bool restIsKnown)
    : part_(std::move(part)), frame_(within(whole, *part_, restIsKnown))
{
}

// What it costs depends on what is remembered of the step before. Whether there is such a part does not.
std::optional<LocalStep> LocalStep::of(const StepFrame& frame)
{
    const Plant& plant = frame.plant;
    if (!frame.carried || !frame.known || frame.commands.size() != plant.commandCount()) {
        return std::nullopt;
    }
    const Meter::Uncounted uncounted;
    const StepLabels predicted = predictedLabels(frame);
    if (!predicted.consistent() || predicted.contradicted().empty()) {
        return std::nullopt;
    }
    auto part = plant.parts().around(contradictedVariables(frame, predicted));
    if (!part || !restFills(frame, predicted.prediction(), *part)) {
        return std::nullopt;
    }
    const bool known = restIsKnown(plant, predicted.prediction(), *part);
    return LocalStep(frame, std::move(part), known);
}

Deviations LocalStep::inWhole(const Deviations& deviations) const
{
    Deviations whole;
    for (const AtomIndex value : deviations) {
        whole.push_back(part_->inWhole(value));
    }
    return whole;
}

std::vector<Conflict> LocalStep::inWhole(const std::vector<Conflict>& conflicts) const
{
    std::vector<Conflict> whole;
    for (const Conflict& conflict : conflicts) {
        Conflict& added = whole.emplace_back();
        for (const VariableIndex variable : conflict) {
            added.push_back(part_->variableInWhole(variable));
        }
    }
    return whole;
}

} // namespace monitor
