// What is open is kept from step to step: as long as modes, commands and inputs stay, so does it.
#include "monitor/labels/ReadingsInTime.h"

#include <algorithm>
#include <cmath>

namespace monitor {

namespace {

bool isKnown(const ReadingMemory& before, const GivenValues& given,
             const std::vector<VariableIndex>& read)
{
    return before.open && before.open->given == given && before.open->read == read &&
           std::all_of(before.last.begin(), before.last.end(),
                       [&](const auto& last) { return before.open->isOpen.contains(last.first); });
}

// Also takes from `last` what a changed mode bears on.
std::shared_ptr<const OpenReadings> whatIsOpen(const Plant& plant, GivenValues given,
                                               const Prediction& labels,
                                               std::vector<VariableIndex> read,
                                               std::map<VariableIndex, AtomIndex>& last,
                                               const std::set<VariableIndex>& changedModes)
{
    OpenVariables variables(plant, labels);
    OpenReadings open{std::move(given), {}, {}, {}, true};
    open.groups = variables.groups(read);
    for (const VariableIndex variable : read) {
        open.isOpen[variable] = variables.isOpen(variable);
    }
    std::erase_if(last, [&](const auto& one) {
        open.isOpen[one.first] = variables.isOpen(one.first);
        if (changedModes.empty() || !open.isOpen[one.first]) {
            return false;
        }
        const std::set<VariableIndex>& modes = variables.bearing(one.first);
        return std::any_of(modes.begin(), modes.end(),
                           [&](VariableIndex mode) { return changedModes.contains(mode); });
    });
    open.exact = variables.exact();
    open.read = std::move(read);
    return std::make_shared<const OpenReadings>(std::move(open));
}

// Of one group, which has N combinations.
double logLikelihood(bool expected, bool same, double logSame, double count)
{
    if (!expected) {
        return -std::log(count);
    }
    return same ? logSame : std::log(-std::expm1(logSame)) - std::log(count - 1.0);
}

// The readings of a step, group by group.
class Groups {
public:
    Groups(const Plant& plant, const std::vector<Reading>& readings,
           const std::map<VariableIndex, AtomIndex>& last)
        : last_(last)
    {
        for (const Reading& reading : readings) {
            read_.emplace(plant.variableOf(reading.value), &reading);
        }
    }

    double log(const OpenGroup& group) const
    {
        return log(group.variables, static_cast<double>(group.combinations.size()),
                   &group.combinations);
    }

    // The number of combinations is estimated.
    double logOfUndecided(const std::vector<VariableIndex>& group) const
    {
        double logCount = 0.0;
        for (const VariableIndex variable : group) {
            logCount -= read_.at(variable)->logEstimate;
        }
        return log(group, std::max(2.0, std::exp(logCount)), nullptr);
    }

private:
    // Not expected where not all are remembered, or where they are not possible together; nor where a reading that cannot change
    // did: it is held from a step at which nothing explained it.
    double log(const std::vector<VariableIndex>& group, double count,
               const std::set<Combination>* possible) const
    {
        Combination now;
        Combination last;
        double logSame = 0.0;
        for (const VariableIndex variable : group) {
            now.push_back(read_.at(variable)->value);
            logSame += std::log1p(-read_.at(variable)->changing);
            const auto remembered = last_.find(variable);
            if (remembered != last_.end()) {
                last.push_back(remembered->second);
            }
        }
        const bool expected = last.size() == now.size() && (now == last || logSame < 0.0) &&
                              (!possible || possible->contains(last));
        return logLikelihood(expected, now == last, logSame, count);
    }

    const std::map<VariableIndex, AtomIndex>& last_;
    std::map<VariableIndex, const Reading*> read_;
};

} // namespace

ReadingsInTime readingsInTime(const Plant& plant, GivenValues given,
                              const std::function<Prediction()>& labels,
                              const std::vector<Reading>& readings, const ReadingMemory& before,
                              const std::set<VariableIndex>& changedModes)
{
    std::vector<VariableIndex> read;
    for (const Reading& reading : readings) {
        read.push_back(plant.variableOf(reading.value));
    }
    ReadingsInTime result;
    std::map<VariableIndex, AtomIndex>& last = result.memory.last;
    last = before.last;
    result.memory.open =
        isKnown(before, given, read)
            ? before.open
            : whatIsOpen(plant, std::move(given), labels(), std::move(read), last, changedModes);
    const OpenReadings& open = *result.memory.open;
    std::erase_if(last, [&](const auto& one) { return !open.isOpen.at(one.first); });
    result.exact = open.exact;
    const Groups groups(plant, readings, last);
    for (const OpenGroup& group : open.groups.groups) {
        result.log += groups.log(group);
    }
    for (const std::vector<VariableIndex>& group : open.groups.undecided) {
        result.log += groups.logOfUndecided(group);
        result.exact = false;
    }
    for (const Reading& reading : readings) {
        const VariableIndex variable = plant.variableOf(reading.value);
        if (open.isOpen.at(variable)) {
            last[variable] = reading.value;
        }
    }
    return result;
}

} // namespace monitor
