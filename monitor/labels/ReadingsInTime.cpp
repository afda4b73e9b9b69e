#include "monitor/labels/ReadingsInTime.h"

#include "monitor/labels/OpenGroups.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

// What is still expected of what was remembered.
ReadingMemory stillOpen(OpenVariables& open, const ReadingMemory& before,
                        const std::set<VariableIndex>& changedModes)
{
    ReadingMemory result;
    for (const auto& [variable, value] : before) {
        if (!open.isOpen(variable)) {
            continue;
        }
        const std::set<VariableIndex> modes =
            changedModes.empty() ? std::set<VariableIndex>() : open.bearing(variable);
        if (std::none_of(modes.begin(), modes.end(),
                         [&](VariableIndex mode) { return changedModes.contains(mode); })) {
            result.emplace(variable, value);
        }
    }
    return result;
}

// Of one group, which has N combinations.
double logLikelihood(bool expected, bool same, double logSame, double count)
{
    if (!expected) {
        return -std::log(count);
    }
    return same ? logSame : std::log(-std::expm1(logSame)) - std::log(count - 1.0);
}

} // namespace

ReadingsInTime readingsInTime(const Plant& plant, const Prediction& labels,
                              const std::vector<Reading>& readings, const ReadingMemory& before,
                              const std::set<VariableIndex>& changedModes)
{
    OpenVariables open(plant, labels);
    ReadingsInTime result;
    result.memory = stillOpen(open, before, changedModes);
    std::map<VariableIndex, const Reading*> read;
    std::vector<VariableIndex> variables;
    for (const Reading& reading : readings) {
        variables.push_back(plant.variableOf(reading.value));
        read.emplace(variables.back(), &reading);
    }
    // The readings of these variables now and last; not expected where not all are remembered, or not possible together.
    const auto add = [&](const std::vector<VariableIndex>& group, double count,
                         const std::set<Combination>* possible) {
        Combination now;
        Combination last;
        double logSame = 0.0;
        for (const VariableIndex variable : group) {
            const auto remembered = result.memory.find(variable);
            now.push_back(read.at(variable)->value);
            if (remembered != result.memory.end()) {
                last.push_back(remembered->second);
            }
            logSame += std::log1p(-read.at(variable)->changing);
        }
        const bool expected = last.size() == now.size() && (!possible || possible->contains(last));
        result.log += logLikelihood(expected, now == last, logSame, count);
    };
    const OpenVariables::Groups groups = open.groups(variables);
    for (const OpenGroup& group : groups.groups) {
        add(group.variables, static_cast<double>(group.combinations.size()), &group.combinations);
    }
    for (const std::vector<VariableIndex>& group : groups.undecided) {
        double logCount = 0.0;
        for (const VariableIndex variable : group) {
            logCount -= read.at(variable)->logEstimate;
        }
        add(group, std::max(2.0, std::exp(logCount)), nullptr);
        result.exact = false;
    }
    for (const VariableIndex variable : variables) {
        if (open.isOpen(variable)) {
            result.memory[variable] = read.at(variable)->value;
        }
    }
    return result;
}

} // namespace monitor
