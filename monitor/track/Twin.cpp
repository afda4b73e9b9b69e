// Readings tell the twin what its modes leave open, such as what is fed into the plant; one that contradicts it is the plant's own.
// Of those that contradict it together, those are that contradict most others. Which one is taken first must not matter.
// Where a mode may well do this or that, such as where it is not known whether a guard holds, the twin does what the plant did.
#include "monitor/track/Twin.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace monitor {

namespace {

// Inputs, then the others by variable: which one is taken first matters where two contradict one another.
std::vector<AtomIndex> inFixedOrder(const StepFrame& happened)
{
    std::vector<AtomIndex> observations = happened.observations;
    const auto inputs = observations.begin() + static_cast<std::ptrdiff_t>(happened.inputs);
    std::sort(observations.begin(), inputs);
    std::sort(inputs, observations.end());
    return observations;
}

using Pairs = std::set<std::pair<AtomIndex, AtomIndex>>;

// Of readings that the twin's modes and inputs allow each by itself, the pairs that they do not allow. Requires: `labels` took the
// readings. So what is ruled out there is ruled out by modes and inputs, or is in a pair; and one of each pair is ruled out.
Pairs contradictingPairs(const StepLabels& labels)
{
    if (labels.contradicted().empty()) {
        return {};
    }
    std::vector<AtomIndex> readings = labels.observations();
    const auto inputs = static_cast<std::ptrdiff_t>(labels.inputs());
    const std::vector<AtomIndex> given(readings.begin(), readings.begin() + inputs);
    readings.erase(readings.begin(), readings.begin() + inputs);
    StepLabels tried = labels;
    const auto contradicted = [&](std::initializer_list<AtomIndex> some) {
        std::vector<AtomIndex> taken = given;
        taken.insert(taken.end(), some);
        tried.take(labels.assumptions(), taken, labels.inputs());
        return !tried.contradicted().empty() && tried.contradicted().back() == taken.back();
    };
    const auto wasRuledOut = [&](AtomIndex reading) {
        return std::find(labels.contradicted().begin(), labels.contradicted().end(), reading) !=
               labels.contradicted().end();
    };
    std::erase_if(readings, [&](AtomIndex reading) {
        return wasRuledOut(reading) && contradicted({reading});
    });
    Pairs pairs;
    for (const AtomIndex out : readings) {
        if (!wasRuledOut(out)) {
            continue;
        }
        for (const AtomIndex other : readings) {
            if (other != out && contradicted({out, other})) {
                pairs.insert(std::minmax(out, other));
            }
        }
    }
    return pairs;
}

// Readings without which no pair is left: those that are in most of the pairs, all that are in equally many, and so on.
std::set<AtomIndex> leftOut(Pairs pairs)
{
    std::set<AtomIndex> left;
    while (!pairs.empty()) {
        std::map<AtomIndex, std::size_t> counts;
        std::size_t most = 0;
        for (const auto& [one, other] : pairs) {
            most = std::max({most, ++counts[one], ++counts[other]});
        }
        for (const auto& [reading, count] : counts) {
            if (count == most) {
                left.insert(reading);
            }
        }
        std::erase_if(pairs, [&](const auto& pair) {
            return left.contains(pair.first) || left.contains(pair.second);
        });
    }
    return left;
}

// The labels before it make no difference but to what it costs.
StepLabels labelsOf(const Plant& plant, const StepLabels& before, const TwinQuestion& twin)
{
    StepLabels labels = before;
    labels.take(twin.assumptions, twin.readings, twin.inputs);
    if (!labels.consistent()) {
        return StepLabels(plant, concludedFrom(plant, twin.assumptions.modes.toVector()));
    }
    const std::set<AtomIndex> left = leftOut(contradictingPairs(labels));
    if (!left.empty()) {
        std::vector<AtomIndex> readings = twin.readings;
        std::erase_if(readings, [&](AtomIndex reading) { return left.contains(reading); });
        labels.take(twin.assumptions, readings, twin.inputs);
    }
    return labels;
}

} // namespace

TwinPointer twinAfter(const Plant& plant, const Hypothesis& parent, const TrackInput& input,
                      const StepFrame& happened, const StepFrame& expected, const Hypothesis& made,
                      LastTwins& last)
{
    const StepFrame frame = parent.twin ? makeFrame(plant, parent.twin->labels.prediction(),
                                                    input.values, parent.twin->steps)
                                        : expected;
    const ModeSteps& steps = frame.modes;
    SharedArray<AtomIndex> modes = steps.predicted();
    // Where both do the same it makes no difference how they came to it.
    forEachDifference(made.modes, steps.predicted(), [&](std::size_t i) {
        const AtomIndex value = made.modes[i];
        const ModeOption* taken = happened.modes[i].option(value);
        const bool nominal = happened.modes[i].followed && value == happened.modes[i].predicted;
        const bool repaired = taken && taken->repair && !nominal;
        const ModeOption* same = steps[i].option(value);
        const bool together = steps[i].before == happened.modes[i].before && same && same->nominal;
        if (repaired || together) {
            modes.set(i, value);
        }
    });
    if (modes == made.modes && happened.commands == input.values.commands) {
        return nullptr;
    }
    const StepLabels& before = parent.twin ? parent.twin->labels : parent.labels;
    const StepLabels& labels =
        last.to({inFixedOrder(happened), happened.inputs, {input.values.commands, modes}},
                [&](const TwinQuestion& question) {
                    StepLabels drawn = labelsOf(plant, before, question);
                    drawn.share();
                    return drawn;
                });
    return std::make_shared<const Twin>(Twin{std::move(modes), labels, frame.known});
}

} // namespace monitor
