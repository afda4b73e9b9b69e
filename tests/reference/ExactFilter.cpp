#include "tests/reference/ExactFilter.h"

#include <algorithm>

ExactFraction FilterAnswer::probability(const Modes& modes) const
{
    const auto found = probabilities.find(modes);
    return found == probabilities.end() ? ExactFraction() : found->second;
}

ExactFraction FilterAnswer::probability(const Atom* value) const
{
    ExactFraction sum;
    for (const auto& [modes, probability] : probabilities) {
        if (std::find(modes.begin(), modes.end(), value) != modes.end()) {
            sum += probability;
        }
    }
    return sum;
}

ExactFraction FilterAnswer::fault() const
{
    ExactFraction sum;
    for (const auto& [modes, probability] : probabilities) {
        if (std::any_of(modes.begin(), modes.end(), [](const Atom* value) { return value->fail; })) {
            sum += probability;
        }
    }
    return sum;
}

ExactFilter::ExactFilter(const plant::Model& model, FilterSettings settings)
    : settings_(std::move(settings)), worlds_(model), transitions_(model, worlds_),
      readings_(model, worlds_, settings_.changing)
{
    Key initial;
    std::vector<const Atom*> values;
    for (const StateVar* variable : worlds_.variables()) {
        if (variable->type == "Mode") {
            initial.modes.push_back(variable->initial ? variable->initial
                                                      : variable->atomLinks->front());
            values.push_back(initial.modes.back());
        } else if (variable->type == "Cond" && variable->initial) {
            values.push_back(variable->initial);
        }
    }
    std::vector<World> worlds = worlds_.withoutCommands(worlds_.with(values));
    if (!worlds.empty()) {
        states_[initial] = {1, std::move(worlds)};
    }
}

std::vector<std::pair<ExactFilter::Commands, ExactFraction>> ExactFilter::arrivals(
    const Commands& given) const
{
    std::vector<std::pair<Commands, ExactFraction>> result{{{}, 1}};
    for (const Atom* command : given) {
        const Atom* fallback = command->stateVar->atomLinks->front();
        const auto lost = settings_.lost.find(command->stateVar);
        const ExactFraction losing = lost == settings_.lost.end() || command == fallback
                                         ? ExactFraction(0)
                                         : ExactFraction::of(lost->second);
        std::vector<std::pair<Commands, ExactFraction>> more;
        for (const auto& [arrived, probability] : result) {
            more.emplace_back(arrived, probability * losing);
            more.back().first.push_back(fallback);
            more.emplace_back(arrived, probability * (ExactFraction(1) - losing));
            more.back().first.push_back(command);
        }
        std::erase_if(more, [](const auto& one) { return one.second.isZero(); });
        result = std::move(more);
    }
    return result;
}

std::vector<std::pair<Observations, ExactFraction>> ExactFilter::rightOnes(
    const Observations& observed) const
{
    std::vector<std::pair<Observations, ExactFraction>> result{{{}, 1}};
    for (const Atom* reading : observed) {
        const auto found = settings_.misread.find(reading->stateVar);
        const ExactFraction wrong =
            found == settings_.misread.end() ? ExactFraction(0) : ExactFraction::of(found->second);
        const auto values = settings_.inputs.contains(reading->stateVar)
                                ? std::uint32_t{1}
                                : static_cast<std::uint32_t>(reading->stateVar->atomLinks->size());
        std::vector<std::pair<Observations, ExactFraction>> more;
        for (const auto& [right, probability] : result) {
            if (!wrong.isZero()) {
                more.emplace_back(right, probability * wrong * ExactFraction(1, values));
            }
            more.emplace_back(right, probability * (ExactFraction(1) - wrong));
            more.back().first.push_back(reading);
        }
        result = std::move(more);
    }
    return result;
}

std::vector<std::pair<ExactFilter::Modes, ExactFraction>> ExactFilter::successors(
    const Modes& before, const State& state, const Commands& arrived) const
{
    std::vector<std::pair<Modes, ExactFraction>> result{{{}, 1}};
    for (const Atom* from : before) {
        const auto chances = transitions_.chances(from->stateVar, from, state.worlds, arrived);
        std::vector<std::pair<Modes, ExactFraction>> more;
        for (const auto& [modes, probability] : result) {
            for (const auto& [value, chance] : chances) {
                more.emplace_back(modes, probability * chance);
                more.back().first.push_back(value);
            }
        }
        result = std::move(more);
    }
    return result;
}

void ExactFilter::reach(const Key& before, const Key& after, const ExactFraction& weight,
                        States& next) const
{
    std::vector<const Atom*> given = after.modes;
    given.insert(given.end(), after.arrived.begin(), after.arrived.end());
    Observations scored;
    for (const Atom* observed : after.read) {
        const bool isInput = settings_.inputs.contains(observed->stateVar);
        (isInput ? given : scored).push_back(observed);
    }
    const std::vector<World> worlds = worlds_.with(given);
    Key key = after;
    ExactFraction likelihood;
    if (settings_.readingsInTime) {
        std::set<const StateVar*> changed;
        for (std::size_t i = 0; i < before.modes.size(); ++i) {
            if (before.modes[i] != after.modes[i]) {
                changed.insert(before.modes[i]->stateVar);
            }
        }
        ReadingsInTime readings = readings_.inTime(worlds, scored, before.remembered, changed);
        likelihood = readings.likelihood;
        key.remembered = std::move(readings.remembered);
    } else {
        likelihood = readings_.likelihood(worlds, scored);
    }
    if (likelihood.isZero()) {
        return;
    }
    State& state = next[key];
    state.weight += weight * likelihood;
    state.worlds = worlds_.withoutCommands(worlds_.with(worlds, scored));
}

const FilterAnswer& ExactFilter::advance(const FilterStep& step)
{
    const ExactFraction totalBefore = total();
    // What comes to the same modes, commands and readings from the same readings, first: the rest is the same for all of it.
    std::map<std::pair<Key, Key>, ExactFraction> ways;
    for (const auto& [key, state] : states_) {
        for (const auto& [arrived, arriving] : arrivals(step.commands)) {
            for (const auto& [modes, changing] : successors(key.modes, state, arrived)) {
                // Without readings in time nothing of what was before matters any more.
                const Key before =
                    settings_.readingsInTime ? Key{key.modes, {}, {}, key.remembered} : Key{};
                for (const auto& [read, reading] : rightOnes(step.observations)) {
                    ways[{before, {modes, arrived, read, {}}}] +=
                        state.weight * (arriving * changing * reading);
                }
            }
        }
    }
    States next;
    for (const auto& [way, weight] : ways) {
        reach(way.first, way.second, weight, next);
    }
    states_ = std::move(next);
    summarise(totalBefore);
    return answer_;
}

ExactFraction ExactFilter::total() const
{
    ExactFraction sum;
    for (const auto& [key, state] : states_) {
        sum += state.weight;
    }
    return sum;
}

void ExactFilter::summarise(const ExactFraction& totalBefore)
{
    answer_ = {};
    const ExactFraction sum = total();
    answer_.inconsistent = sum.isZero();
    if (answer_.inconsistent) {
        return;
    }
    answer_.likelihood = sum / totalBefore;
    for (const auto& [key, state] : states_) {
        answer_.probabilities[key.modes] += state.weight / sum;
    }
}
