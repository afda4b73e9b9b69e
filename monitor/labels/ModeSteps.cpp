// A transition has its probability times the share of its guard. What the enabled ones leave is that of staying.
#include "monitor/labels/ModeSteps.h"

#include "monitor/labels/GuardShares.h"
#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

namespace {

// What probabilities such as 0.9 + 0.06 + 0.04 may miss 1 by: less is nothing.
constexpr double noProbability = 1e-9;

void addOption(ModeStep& step, const ModeOption& added)
{
    for (ModeOption& option : step.options) {
        if (option.value == added.value) {
            option.probability += added.probability;
            option.repair = option.repair || added.repair;
            option.nominal = option.nominal || added.nominal;
            return;
        }
    }
    step.options.push_back(added);
}

AtomIndex mostProbable(const std::vector<ModeOption>& options)
{
    return std::max_element(options.begin(), options.end(),
                            [](const ModeOption& a, const ModeOption& b) {
                                return a.probability < b.probability;
                            })
        ->value;
}

ModeStep modeStep(const Plant& plant, VariableIndex index, GuardShares& guards)
{
    const AtomIndex from = guards.before(plant.variable(index));
    Meter::spend(10 * (1 + plant.changesFrom(from).size()));
    ModeStep step{index, from, from, {}, nullptr, true};
    double leaving = 0.0;
    double nominal = 0.0;
    double closed = 1.0; // that no nominal transition can be taken
    double missed = 0.0;
    for (const PlantChange& change : plant.changesFrom(from)) {
        const GuardShare guard = guards.of(change);
        step.exact = step.exact && guard.exact;
        if (guard.share <= 0.0) {
            continue;
        }
        const double probability = change.probability * guard.share;
        addOption(step, {change.to, probability, plant.atom(change.to)->fail, change.repair,
                         change.nominal});
        leaving += probability;
        if (change.nominal) {
            closed -= guard.share;
            missed += guard.share - probability;
        }
        if (change.nominal && probability > nominal) {
            step.predicted = change.to;
            step.followed = guard.alternative->transition;
            nominal = probability;
        }
    }
    const double staying = 1.0 - leaving;
    if (staying > noProbability) {
        if (step.followed && step.option(step.predicted)->probability < staying - noProbability) {
            step.predicted = from;
            step.followed = nullptr;
        }
        const bool isNominal = step.predicted == from || closed > missed - noProbability;
        addOption(step, {from, staying, false, false, isNominal});
    } else if (!step.followed) {
        step.predicted = mostProbable(step.options);
    }
    return step;
}

} // namespace

const ModeOption* ModeStep::option(AtomIndex value) const
{
    const auto found =
        std::find_if(options.begin(), options.end(),
                     [value](const ModeOption& option) { return option.value == value; });
    return found == options.end() ? nullptr : &*found;
}

bool ModeStep::deviatesFreely() const
{
    return std::any_of(options.begin(), options.end(), [this](const ModeOption& option) {
        return option.value != predicted && !option.fault;
    });
}

std::vector<ModeStep> modeSteps(const Plant& plant, const Prediction& before,
                                const std::vector<AtomIndex>& commands)
{
    GuardShares guards(plant, before, commands);
    std::vector<ModeStep> steps;
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (variable.isMode && !variable.values.empty()) {
            steps.push_back(modeStep(plant, static_cast<VariableIndex>(i), guards));
        }
    }
    return steps;
}

} // namespace monitor
