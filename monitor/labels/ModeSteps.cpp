// The guards of a component's transitions are read once, in labels that mix what was before the step (modes, conditions) with the
// commands of the step. What the enabled transitions leave of the probability is that of staying.
#include "monitor/labels/ModeSteps.h"

#include <algorithm>

namespace monitor {

namespace {

// What probabilities such as 0.9 + 0.06 + 0.04 may miss 1 by: less is nothing.
constexpr double noProbability = 1e-9;

AtomIndex modeBefore(const PlantVariable& mode, const Prediction& before)
{
    return before.valueOf(mode).value_or(mode.values.front());
}

// The labels in which guards are read.
std::vector<Label> guardLabels(const Plant& plant, const Prediction& before,
                               const std::vector<AtomIndex>& commands)
{
    std::vector<Label> labels(plant.atomCount(), Label::unknown);
    const auto give = [&](AtomIndex value) {
        for (const AtomIndex atom : plant.variable(plant.variableOf(value)).values) {
            labels[static_cast<std::size_t>(atom)] = atom == value ? Label::isTrue : Label::isFalse;
        }
    };
    for (const PlantVariable& variable : plant.variables()) {
        if (variable.isMode && !variable.values.empty()) {
            give(modeBefore(variable, before));
        } else if (!variable.isCommand) {
            for (const AtomIndex atom : variable.values) {
                labels[static_cast<std::size_t>(atom)] = before.label(atom);
            }
        }
    }
    std::for_each(commands.begin(), commands.end(), give);
    return labels;
}

// The first alternative of the change's guard that holds; null when none does.
const PlantChange::Alternative* enabledBy(const PlantChange& change,
                                          const std::vector<Label>& labels)
{
    const auto holds = [&](const PlantLiteral& literal) {
        return labels[static_cast<std::size_t>(literal.atom)] ==
               (literal.negated ? Label::isFalse : Label::isTrue);
    };
    const auto found = std::find_if(change.alternatives.begin(), change.alternatives.end(),
                                    [&](const PlantChange::Alternative& alternative) {
                                        return std::all_of(alternative.literals.begin(),
                                                           alternative.literals.end(), holds);
                                    });
    return found == change.alternatives.end() ? nullptr : &*found;
}

void addOption(ModeStep& step, const ModeOption& added)
{
    for (ModeOption& option : step.options) {
        if (option.value == added.value) {
            option.probability += added.probability;
            option.repair = option.repair || added.repair;
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

ModeStep modeStep(const Plant& plant, VariableIndex index, AtomIndex from,
                  const std::vector<Label>& labels)
{
    ModeStep step{index, from, from, {}, nullptr};
    double leaving = 0.0;
    bool nominalTaken = false;
    for (const PlantChange& change : plant.changesFrom(from)) {
        const PlantChange::Alternative* alternative = enabledBy(change, labels);
        if (!alternative) {
            continue;
        }
        addOption(step, {change.to, change.probability, plant.atom(change.to)->fail, change.repair});
        leaving += change.probability;
        if (change.nominal && !nominalTaken) {
            step.predicted = change.to;
            step.followed = alternative->transition;
            nominalTaken = true;
        }
    }
    const double staying = 1.0 - leaving;
    if (staying > noProbability) {
        if (nominalTaken && step.option(step.predicted)->probability < staying - noProbability) {
            step.predicted = from;
            step.followed = nullptr;
        }
        addOption(step, {from, staying, false, false});
    } else if (!nominalTaken) {
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
    const std::vector<Label> labels = guardLabels(plant, before, commands);
    std::vector<ModeStep> steps;
    for (std::size_t i = 0; i < plant.variables().size(); ++i) {
        const PlantVariable& variable = plant.variables()[i];
        if (variable.isMode && !variable.values.empty()) {
            steps.push_back(modeStep(plant, static_cast<VariableIndex>(i),
                                     modeBefore(variable, before), labels));
        }
    }
    return steps;
}

} // namespace monitor
