// The labels are a prediction with the observations on top of it, one mark for each. A new step takes the observations off,
// lets the prediction assume other values in place, and puts the observations of the step on.
#include "monitor/labels/StepLabels.h"

#include "monitor/labels/Counting.h"

#include <algorithm>
#include <cmath>

namespace monitor {

void StepLabels::take(const StepAssumptions& assumptions,
                      const std::vector<AtomIndex>& observations, std::size_t inputs)
{
    inputs_ = inputs;
    const bool same = consistent_ && assumptions == assumptions_;
    if (!same) {
        undoFrom(0);
        consistent_ = assume(assumptions);
        assumptions_ = assumptions;
    }
    std::size_t common = 0;
    if (consistent_) {
        while (common < std::min(taken_.size(), observations.size()) &&
               taken_[common].value == observations[common]) {
            ++common;
        }
        undoFrom(common);
        for (std::size_t i = common; i < observations.size(); ++i) {
            taken_.push_back(takeOne(observations[i]));
        }
    }
    contradicted_.clear();
    for (const Taken& taken : taken_) {
        if (taken.ruledOut) {
            contradicted_.push_back(taken.value);
        }
    }
}

bool StepLabels::assume(const StepAssumptions& assumptions)
{
    if (consistent_) {
        if (const auto values = changed(assumptions)) {
            return prediction_.reassume(*values);
        }
    }
    prediction_.undo(0);
    const auto assumeOne = [this](AtomIndex value) { return prediction_.assume(value); };
    return std::all_of(assumptions.commands.begin(), assumptions.commands.end(), assumeOne) &&
           std::all_of(assumptions.modes.begin(), assumptions.modes.end(), assumeOne) &&
           prediction_.propagate();
}

// The values that are not assumed already. Nothing where the assumptions are of other variables.
std::optional<std::vector<AtomIndex>> StepLabels::changed(const StepAssumptions& assumptions) const
{
    if (assumptions.commands.size() != assumptions_.commands.size() ||
        assumptions.modes.size() != assumptions_.modes.size()) {
        return std::nullopt;
    }
    std::vector<AtomIndex> values;
    bool sameVariables = true;
    const auto compare = [&](const SharedArray<AtomIndex>& now, const SharedArray<AtomIndex>& last) {
        forEachDifference(now, last, [&](std::size_t place) {
            sameVariables =
                sameVariables && plant_->variableOf(now[place]) == plant_->variableOf(last[place]);
            values.push_back(now[place]);
        });
    };
    compare(assumptions.commands, assumptions_.commands);
    compare(assumptions.modes, assumptions_.modes);
    return sameVariables ? std::optional(std::move(values)) : std::nullopt;
}

void StepLabels::undoFrom(std::size_t observation)
{
    if (observation < taken_.size()) {
        prediction_.undo(taken_[observation].mark);
        taken_.resize(observation);
    }
}

StepLabels::Taken StepLabels::takeOne(AtomIndex observed)
{
    Taken taken{observed, prediction_.mark(), 0.0, false};
    if (prediction_.isTrue(observed)) {
        return taken;
    }
    const plant::ValueRange values = plant_->variable(plant_->variableOf(observed)).values;
    const auto open = std::count_if(values.begin(), values.end(),
                                    [this](AtomIndex value) { return !prediction_.isKnown(value); });
    if (prediction_.assume(observed) && prediction_.propagate()) {
        taken.logFactor = -std::log(static_cast<double>(open));
    } else {
        prediction_.undo(taken.mark);
        taken.ruledOut = true;
    }
    return taken;
}

Likelihood StepLabels::likelihood() const
{
    Likelihood result;
    std::vector<VariableIndex> scored;
    for (std::size_t i = inputs_; i < taken_.size(); ++i) {
        result.log += taken_[i].logFactor;
        if (!taken_[i].ruledOut) {
            scored.push_back(plant_->variableOf(taken_[i].value));
        }
    }
    if (result.log == 0.0) {
        return result;
    }
    Prediction before = prediction_;
    before.undo(taken_[inputs_].mark);
    const std::optional<double> combinations = countCombinations(*plant_, std::move(before), scored);
    if (combinations) {
        result.log = -std::log(*combinations);
    }
    result.exact = combinations.has_value();
    return result;
}

ReadingsInTime StepLabels::inTime(const std::vector<double>& changing, const ReadingMemory& before,
                                  const std::set<VariableIndex>& changedModes,
                                  LastOpenAnswers& asked) const
{
    std::vector<Reading> readings;
    bool follow = true;
    for (std::size_t i = inputs_; i < taken_.size(); ++i) {
        if (!taken_[i].ruledOut) {
            readings.push_back({taken_[i].value, changing[i], taken_[i].logFactor});
            follow = follow && taken_[i].logFactor == 0.0;
        }
    }
    if ((follow && before.last.empty()) || !consistent_) {
        return {};
    }
    GivenValues given(assumptions_);
    for (std::size_t i = 0; i < inputs_; ++i) {
        given.inputs.push_back(taken_[i].value);
    }
    const auto labels = [this] {
        Prediction alone = prediction_;
        if (inputs_ < taken_.size()) {
            alone.undo(taken_[inputs_].mark);
        }
        return alone;
    };
    return readingsInTime(*plant_, std::move(given), labels, readings, before, changedModes, asked);
}

std::vector<AtomIndex> StepLabels::observations() const
{
    std::vector<AtomIndex> observations;
    for (const Taken& taken : taken_) {
        observations.push_back(taken.value);
    }
    return observations;
}

StepLabels StepLabels::afresh() const
{
    if (!consistent_) {
        return *this;
    }
    StepLabels made(*plant_);
    made.take(assumptions_, observations(), inputs_);
    return made;
}

// What contradicts itself was drawn as far as it came, in an order that depends on the steps before.
std::uint64_t StepLabels::workFrom(const StepLabels& before) const
{
    constexpr std::uint64_t least = 100;
    std::uint64_t work = least + 10 * taken_.size();
    if (consistent_) {
        forEachDifference(prediction_, before.prediction_,
                          [&](AtomIndex atom) { work += 4 * (1 + plant_->clausesOf(atom).size()); });
    }
    return work;
}

StepLabels StepLabels::afreshWithin(const PlantPart& part, const CommandValues& given) const
{
    std::vector<AtomIndex> modes;
    for (const VariableIndex mode : part.plant().modes()) {
        modes.push_back(
            *part.here(assumptions_.modes[plant_->modePlace(part.variableInWhole(mode))]));
    }
    std::vector<AtomIndex> observed;
    std::size_t inputs = 0;
    for (std::size_t i = 0; i < taken_.size(); ++i) {
        if (const auto value = part.here(taken_[i].value)) {
            observed.push_back(*value);
            inputs += i < inputs_ ? 1 : 0;
        }
    }
    StepLabels made(part.plant());
    made.take({given.within(part), modes}, observed, inputs);
    return made;
}

} // namespace monitor
