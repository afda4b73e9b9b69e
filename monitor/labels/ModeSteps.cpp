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

// Those with an open guard are looked at whatever is remembered. How many of the others are does not count, as in a run that was resumed
// it may be all.
void spendOnOpen(const std::vector<std::size_t>& places)
{
    Meter::spend(10 * (1 + places.size()));
}

ModeStep modeStep(const Plant& plant, VariableIndex index, GuardShares& guards)
{
    const AtomIndex from = guards.before(plant.variable(index));
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
            step.followed = guard.alternative;
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

double logPredictedOf(const ModeStep& step)
{
    return std::log(step.option(step.predicted)->probability);
}

bool isNotable(const ModeStep& step)
{
    double largest = 0.0;
    for (const ModeOption& option : step.options) {
        largest = std::max(largest, option.probability);
    }
    return std::any_of(step.options.begin(), step.options.end(), [&](const ModeOption& option) {
        return option.value == step.predicted
                   ? option.probability < largest
                   : option.probability >= ModeSteps::notableRatio * largest;
    });
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

double logCalmOf(const ModeStep& step, const std::vector<AtomIndex>& others)
{
    double fault = 0.0;
    for (const ModeOption& option : step.options) {
        const bool is = option.value == step.predicted ||
                        std::binary_search(others.begin(), others.end(), option.value);
        fault += option.fault && !is ? option.probability : 0.0;
    }
    return std::log1p(-std::min(fault, 1.0));
}

/// Enters what a mode may do, and keeps the sums and lists of all of them.
class ModeStepsWriter {
public:
    ModeStepsWriter(const Plant& plant, ModeSteps& steps) : plant_(plant), steps_(steps) {}

    void add(const ModeStep& step, bool open)
    {
        const std::size_t place = steps_.size();
        steps_.steps_.push_back(std::make_shared<const ModeStep>(step));
        steps_.predicted_.push_back(step.predicted);
        enter(place, open);
    }

    void replace(std::size_t place, const ModeStep& step, bool open)
    {
        const ModeStep& before = steps_[place];
        steps_.logPredicted_.remove(logPredictedOf(before));
        steps_.logCalm_.remove(logCalmOf(before, {}));
        steps_.inexact_ -= before.exact ? 0 : 1;
        if (!(before == step)) {
            steps_.steps_.set(place, std::make_shared<const ModeStep>(step));
        }
        if (steps_.predicted_[place] != step.predicted) {
            steps_.predicted_.set(place, step.predicted);
        }
        enter(place, open);
    }

    // Requires: what was entered was so by rising place.
    void finish()
    {
        list(steps_.notable_, notable_);
        list(steps_.faulty_, faulty_);
        list(steps_.open_, open_);
        list(steps_.failing_, failing_);
    }

    const std::vector<std::size_t>& open() const { return ModeSteps::places(steps_.open_); }

private:
    void enter(std::size_t place, bool open)
    {
        const ModeStep& step = steps_[place];
        steps_.logPredicted_.add(logPredictedOf(step));
        steps_.logCalm_.add(logCalmOf(step, {}));
        steps_.inexact_ += step.exact ? 0 : 1;
        notable_.emplace_back(place, isNotable(step));
        const bool faulty = plant_.atom(step.before)->fail;
        faulty_.emplace_back(place, faulty);
        open_.emplace_back(place, open);
        failing_.emplace_back(place, faulty || plant_.atom(step.predicted)->fail);
    }

    using Entered =
        std::vector<std::pair<std::size_t, bool>>; // by rising place: whether it is in the list

    static void list(ModeSteps::Places& places, const Entered& entered)
    {
        const std::vector<std::size_t>& now = ModeSteps::places(places);
        const bool same = std::all_of(entered.begin(), entered.end(), [&](const auto& one) {
            return std::binary_search(now.begin(), now.end(), one.first) == one.second;
        });
        if (same) {
            return;
        }
        std::vector<std::size_t> changed;
        auto left = now.begin();
        for (const auto& [place, wanted] : entered) {
            while (left != now.end() && *left < place) {
                changed.push_back(*left++);
            }
            if (left != now.end() && *left == place) {
                ++left;
            }
            if (wanted) {
                changed.push_back(place);
            }
        }
        changed.insert(changed.end(), left, now.end());
        places = std::make_shared<const std::vector<std::size_t>>(std::move(changed));
    }

    const Plant& plant_;
    ModeSteps& steps_;
    Entered notable_;
    Entered faulty_;
    Entered open_;
    Entered failing_;
};

bool operator==(const ModeSteps& a, const ModeSteps& b)
{
    if (a.size() != b.size()) {
        return false;
    }
    bool same = true;
    forEachDifference(a.steps_, b.steps_,
                      [&](std::size_t place) { same = same && a[place] == b[place]; });
    return same;
}

ModeSteps modeSteps(const Plant& plant, const Prediction& before,
                    const SharedArray<AtomIndex>& commands)
{
    return KnownModeSteps(plant, before, commands).steps();
}

ModeSteps stepsWithin(const PlantPart& part, const Plant& whole, const ModeSteps& steps)
{
    ModeSteps within;
    ModeStepsWriter writer(part.plant(), within);
    for (const VariableIndex mode : part.plant().modes()) {
        ModeStep step = steps[whole.modePlace(part.variableInWhole(mode))];
        step.variable = mode;
        step.before = *part.here(step.before);
        step.predicted = *part.here(step.predicted);
        for (ModeOption& option : step.options) {
            option.value = *part.here(option.value);
        }
        writer.add(step, false);
    }
    writer.finish();
    return within;
}

KnownModeSteps::KnownModeSteps(const Plant& plant, const Prediction& before,
                               const SharedArray<AtomIndex>& commands)
    : before_(before), commands_(commands), given_(plant, commands), lookedAt_(plant.modes().size())
{
    GuardShares guards(plant, before_, given_);
    ModeStepsWriter writer(plant, steps_);
    for (const VariableIndex mode : plant.modes()) {
        const std::size_t counted = guards.counted();
        const ModeStep step = modeStep(plant, mode, guards);
        writer.add(step, guards.counted() > counted);
    }
    writer.finish();
    spendOnOpen(writer.open());
}

KnownModeSteps::KnownModeSteps(const Plant& plant, const Prediction& before,
                               const SharedArray<AtomIndex>& commands, const KnownModeSteps& last)
    : before_(before), commands_(commands), given_(last.given_), steps_(last.steps_)
{
    std::vector<AtomIndex> changed;
    if (!before.isShared() || !last.before_.isShared() ||
        !giveChanged(plant, last.commands_, changed)) {
        *this = KnownModeSteps(plant, before, commands);
        return;
    }
    forEachDifference(before, last.before_, [&](AtomIndex atom) { changed.push_back(atom); });
    ModeStepsWriter writer(plant, steps_);
    std::vector<VariableIndex> modes;
    for (const std::size_t place : writer.open()) {
        modes.push_back(plant.modes()[place]);
    }
    for (const AtomIndex atom : changed) {
        const VariableIndex variable = plant.variableOf(atom);
        if (plant.variable(variable).isMode) {
            modes.push_back(variable);
        }
        const auto reading = plant.modesReading(atom);
        modes.insert(modes.end(), reading.begin(), reading.end());
    }
    std::sort(modes.begin(), modes.end());
    modes.erase(std::unique(modes.begin(), modes.end()), modes.end());
    derive(plant, modes);
}

// The atoms of commands that are not given as before. False where other commands are.
bool KnownModeSteps::giveChanged(const Plant& plant, const SharedArray<AtomIndex>& last,
                                 std::vector<AtomIndex>& changed)
{
    if (last.size() != commands_.size()) {
        return false;
    }
    bool sameVariables = true;
    forEachDifference(last, commands_, [&](std::size_t place) {
        const VariableIndex variable = plant.variableOf(commands_[place]);
        sameVariables = sameVariables && plant.variableOf(last[place]) == variable;
        given_.give(plant, commands_[place]);
        changed.push_back(last[place]);
        changed.push_back(commands_[place]);
    });
    return sameVariables;
}

// Looks at these modes again, in their order.
void KnownModeSteps::derive(const Plant& plant, const std::vector<VariableIndex>& modes)
{
    lookedAt_ = modes.size();
    GuardShares guards(plant, before_, given_);
    ModeStepsWriter writer(plant, steps_);
    for (const VariableIndex mode : modes) {
        const std::size_t place = plant.modePlace(mode);
        const std::size_t counted = guards.counted();
        const ModeStep step = modeStep(plant, mode, guards);
        writer.replace(place, step, guards.counted() > counted);
    }
    writer.finish();
    spendOnOpen(writer.open());
}

} // namespace monitor
