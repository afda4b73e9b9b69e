#include "monitor/Scenario.h"

#include <algorithm>

namespace monitor {

namespace {

bool assumeAll(Prediction& prediction, const std::vector<AtomIndex>& values)
{
    return std::all_of(values.begin(), values.end(),
                       [&](AtomIndex value) { return prediction.assume(value); });
}

bool assumeModes(Prediction& prediction, const StepFrame& frame,
                 const std::vector<AtomIndex>& deviations)
{
    return assumeAll(prediction, deviations) &&
           std::all_of(frame.modes.begin(), frame.modes.end(), [&](const ModeStep& step) {
               return prediction.valueOf(frame.plant.variable(step.variable)) ||
                      prediction.assume(step.predicted);
           });
}

} // namespace

Scenario::Scenario(const StepFrame& frame, Assumptions assumptions)
    : frame_(frame), assumptions_(std::move(assumptions)), prediction_(frame.plant),
      consistent_(assumeAll(prediction_, frame.commands) &&
                  assumeModes(prediction_, frame, assumptions_.modes) && prediction_.propagate() &&
                  assumeAll(prediction_, frame.adopted) && prediction_.propagate() &&
                  assumeAll(prediction_, assumptions_.conditions) && prediction_.propagate())
{
    if (consistent_) {
        std::copy_if(frame.compared.begin(), frame.compared.end(),
                     std::back_inserter(discrepancies_),
                     [this](AtomIndex value) { return prediction_.label(value) == Label::isFalse; });
        if (!discrepancies_.empty()) {
            prediction_.preferSmallEnvironments();
        }
    }
}

std::vector<Conflict> Scenario::conflicts() const
{
    std::vector<Conflict> conflicts;
    conflicts.reserve(discrepancies_.size());
    for (const AtomIndex observed : discrepancies_) {
        conflicts.push_back(prediction_.environment({observed}));
    }
    return conflicts;
}

Conflict Scenario::contradiction() const
{
    if (prediction_.violated() < 0) {
        return {};
    }
    std::vector<AtomIndex> atoms;
    for (const PlantLiteral& literal : frame_.plant.clause(prediction_.violated())) {
        atoms.push_back(literal.atom);
    }
    return prediction_.environment(atoms);
}

StepFrame makeFrame(const Plant& plant, const Prediction& before, const StepInput& input)
{
    StepFrame frame{plant, input.commands, modeSteps(plant, before), {}, {}};
    Prediction nominal(plant);
    bool consistent = assumeAll(nominal, frame.commands) && assumeModes(nominal, frame, {}) &&
                      nominal.propagate();
    for (const AtomIndex observed : input.observations) {
        if (!consistent || nominal.isKnown(observed)) {
            frame.compared.push_back(observed);
            continue;
        }
        // A value that the laws rule out, although nothing predicted another one, is compared like a prediction.
        const std::size_t mark = nominal.mark();
        if (nominal.assume(observed) && nominal.propagate()) {
            frame.adopted.push_back(observed);
        } else {
            nominal.undo(mark);
            frame.compared.push_back(observed);
        }
    }
    return frame;
}

} // namespace monitor
