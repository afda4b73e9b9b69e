#include "tests/reference/ExactReadings.h"

#include <algorithm>

namespace {

using Variables = std::vector<const StateVar*>;

Variables variablesOf(const Observations& observations)
{
    Variables result;
    for (const Atom* observed : observations) {
        if (std::find(result.begin(), result.end(), observed->stateVar) == result.end()) {
            result.push_back(observed->stateVar);
        }
    }
    return result;
}

} // namespace

ExactFraction ExactReadings::likelihood(const std::vector<World>& worlds,
                                        const Observations& observations) const
{
    if (worlds_.with(worlds, observations).empty()) {
        return 0;
    }
    const std::size_t allowed = worlds_.combinations(worlds, variablesOf(observations)).size();
    return {1, static_cast<std::uint32_t>(allowed)};
}

bool ExactReadings::open(const std::vector<World>& worlds, const StateVar* variable) const
{
    return worlds_.combinations(worlds, {variable}).size() > 1;
}

std::vector<Variables> ExactReadings::groups(const std::vector<World>& worlds,
                                             Variables variables) const
{
    if (variables.empty()) {
        return {};
    }
    // The smallest group of the first variable whose combinations go with all of those of the others.
    const std::size_t all = worlds_.combinations(worlds, variables).size();
    Variables best = variables;
    Variables bestOthers;
    for (std::size_t set = 0; set < std::size_t{1} << (variables.size() - 1); ++set) {
        Variables group{variables.front()};
        Variables others;
        for (std::size_t i = 1; i < variables.size(); ++i) {
            (((set >> (i - 1)) & 1) != 0 ? group : others).push_back(variables[i]);
        }
        const bool isProduct = worlds_.combinations(worlds, group).size() *
                                   worlds_.combinations(worlds, others).size() ==
                               all;
        if (isProduct && group.size() < best.size()) {
            best = group;
            bestOthers = others;
        }
    }
    std::vector<Variables> result = groups(worlds, bestOthers);
    result.insert(result.begin(), best);
    return result;
}

std::set<const StateVar*> ExactReadings::bearing(const std::vector<World>& worlds,
                                                 const StateVar* variable) const
{
    std::set<const StateVar*> region{variable};
    std::set<const StateVar*> modes;
    for (bool grown = true; grown;) {
        grown = false;
        for (std::size_t law = 0; law < model_.lawCount(); ++law) {
            const auto literals = model_.literalsOf(law);
            const bool touches =
                std::any_of(literals.begin(), literals.end(), [&](const plant::Literal& literal) {
                    return region.contains(literal.atom->stateVar);
                });
            for (const plant::Literal& literal : literals) {
                const StateVar* other = literal.atom->stateVar;
                if (touches && other->type == "Mode") {
                    modes.insert(other);
                } else if (touches && open(worlds, other)) {
                    grown = region.insert(other).second || grown;
                }
            }
        }
    }
    return modes;
}

ExactFraction ExactReadings::likelihood(const Variables& group, const std::vector<World>& worlds,
                                        const Observations& observations,
                                        const Remembered& remembered) const
{
    const auto allowed = worlds_.combinations(worlds, group);
    const auto count = static_cast<std::uint32_t>(allowed.size());
    std::vector<const Atom*> last;
    std::vector<const Atom*> now;
    ExactFraction same(1); // 1 - v
    for (const StateVar* variable : group) {
        const auto reading = remembered.find(variable);
        last.push_back(reading == remembered.end() ? nullptr : reading->second);
        now.push_back(
            *std::find_if(observations.begin(), observations.end(),
                          [&](const Atom* observed) { return observed->stateVar == variable; }));
        const auto changing = changing_.find(variable);
        if (changing != changing_.end()) {
            same *= ExactFraction(1) - changing->second;
        }
    }
    if (!allowed.contains(last)) {
        return {1, count};
    }
    return now == last ? same : (ExactFraction(1) - same) / ExactFraction(count - 1);
}

ReadingsInTime ExactReadings::inTime(const std::vector<World>& worlds,
                                     const Observations& observations, const Remembered& before,
                                     const std::set<const StateVar*>& changedModes) const
{
    if (worlds_.with(worlds, observations).empty()) {
        return {{}, 0};
    }
    ReadingsInTime result{{}, 1};
    for (const auto& [variable, value] : before) {
        if (!open(worlds, variable)) {
            continue;
        }
        const std::set<const StateVar*> modes = bearing(worlds, variable);
        if (std::none_of(modes.begin(), modes.end(),
                         [&](const StateVar* mode) { return changedModes.contains(mode); })) {
            result.remembered[variable] = value;
        }
    }
    Variables read = variablesOf(observations);
    std::erase_if(read, [&](const StateVar* variable) { return !open(worlds, variable); });
    for (const Variables& group : groups(worlds, read)) {
        result.likelihood *= likelihood(group, worlds, observations, result.remembered);
    }
    for (const Atom* observed : observations) {
        if (open(worlds, observed->stateVar)) {
            result.remembered[observed->stateVar] = observed;
        }
    }
    return result;
}
