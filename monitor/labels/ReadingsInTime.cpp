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

// A reading is not expected again where a changed mode bears on it.
OpenAnswer whatIsOpen(const Plant& plant, const OpenQuestion& question, const Prediction& labels)
{
    OpenVariables variables(plant, labels);
    OpenReadings open{question.given, question.read, {}, {}, true};
    open.groups = variables.groups(question.read);
    for (const VariableIndex variable : question.read) {
        open.isOpen[variable] = variables.isOpen(variable);
    }
    std::set<VariableIndex> unexpected;
    for (const VariableIndex variable : question.remembered) {
        open.isOpen[variable] = variables.isOpen(variable);
        if (question.changedModes.empty() || !open.isOpen[variable]) {
            continue;
        }
        const std::set<VariableIndex>& modes = variables.bearing(variable);
        if (std::any_of(modes.begin(), modes.end(),
                        [&](VariableIndex mode) { return question.changedModes.contains(mode); })) {
            unexpected.insert(variable);
        }
    }
    open.exact = variables.exact();
    return {std::make_shared<const OpenReadings>(std::move(open)), std::move(unexpected)};
}

// What is remembered is that before the step; the readings that are not expected again go from it.
std::shared_ptr<const OpenReadings> askedBefore(const Plant& plant, OpenQuestion question,
                                                const std::function<Prediction()>& labels,
                                                std::map<VariableIndex, AtomIndex>& last,
                                                LastOpenAnswers& asked)
{
    for (const auto& [variable, value] : last) {
        question.remembered.push_back(variable);
    }
    const OpenAnswer& answer = asked.to(std::move(question), [&](const OpenQuestion& unknown) {
        return whatIsOpen(plant, unknown, labels());
    });
    for (const VariableIndex variable : answer.unexpected) {
        last.erase(variable);
    }
    return answer.open;
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
                              const std::set<VariableIndex>& changedModes, LastOpenAnswers& asked)
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
            : askedBefore(plant, {changedModes, {}, std::move(read), std::move(given)}, labels,
                          last, asked);
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
