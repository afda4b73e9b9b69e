#include "monitor/track/Losses.h"

#include "monitor/track/ConflictGroups.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace monitor {

namespace {

// How probable it is that what is given was lost.
double probabilityOf(const Loss& one)
{
    return one.probability * one.share;
}

} // namespace

bool contains(const Losses& losses, const Loss& one)
{
    return std::any_of(losses.begin(), losses.end(),
                       [&](const Loss& other) { return other.given == one.given; });
}

bool haveReadings(const Losses& losses)
{
    return std::any_of(losses.begin(), losses.end(),
                       [](const Loss& one) { return one.isReading(); });
}

int lostCommands(const Losses& losses)
{
    return static_cast<int>(std::count_if(losses.begin(), losses.end(),
                                          [](const Loss& one) { return !one.isReading(); }));
}

std::size_t mostLosses(const Losses& lossy, int mostCommands)
{
    const int commands = lostCommands(lossy);
    return lossy.size() - static_cast<std::size_t>(commands) +
           static_cast<std::size_t>(std::min(commands, std::max(0, mostCommands)));
}

double logArrivals(const TrackInput& input, const Losses& lost)
{
    double sum = 0.0;
    for (const Loss& one : input.lossy) {
        sum += std::log(contains(lost, one) ? probabilityOf(one) : 1.0 - one.probability);
    }
    return sum;
}

double logLoss(const Loss& one)
{
    return std::log(probabilityOf(one)) - std::log(1.0 - one.probability);
}

std::vector<AtomIndex> lostValues(const TrackInput& input, const Losses& lost,
                                  const std::vector<AtomIndex>& wrong)
{
    std::vector<AtomIndex> values;
    for (const Loss& one : lost) {
        values.push_back(one.given);
    }
    std::copy_if(wrong.begin(), wrong.end(), std::back_inserter(values), [&](AtomIndex value) {
        return std::binary_search(input.held.begin(), input.held.end(), value);
    });
    std::sort(values.begin(), values.end());
    return values;
}

StepInput arriving(const TrackInput& input, const Losses& lost, const std::vector<AtomIndex>& wrong)
{
    StepInput values = input.values;
    for (const Loss& one : lost) {
        for (std::size_t i = 0; i < values.commands.size() && !one.isReading(); ++i) {
            if (values.commands[i] == one.given) {
                values.commands.set(i, one.fallback);
            }
        }
    }
    const std::vector<AtomIndex> left = lostValues(input, lost, wrong);
    leaveOutReadings(values, [&](AtomIndex value) {
        return std::binary_search(left.begin(), left.end(), value);
    });
    return values;
}

LostSets::LostSets(const Losses& lossy, std::size_t size)
    : lossy_(lossy), places_(size), atEnd_(size > lossy.size())
{
    std::iota(places_.begin(), places_.end(), std::size_t{0});
}

const Losses* LostSets::next()
{
    if (atEnd_) {
        return nullptr;
    }
    set_.clear();
    for (const std::size_t place : places_) {
        set_.push_back(lossy_[place]);
    }
    advance();
    return &set_;
}

// The first that has room before the next one moves on, and those before it begin again.
void LostSets::advance()
{
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const std::size_t limit = i + 1 < places_.size() ? places_[i + 1] : lossy_.size();
        if (places_[i] + 1 < limit) {
            ++places_[i];
            for (std::size_t before = 0; before < i; ++before) {
                places_[before] = before;
            }
            return;
        }
    }
    atEnd_ = true;
}

std::vector<ProbableLoss> probableLosses(const Losses& lossy, double leastRatio, int mostCommands,
                                         std::size_t most)
{
    std::vector<ProbableLoss> all{{{}, 1.0}};
    for (const Loss& one : lossy) {
        const double arrives = 1.0 - one.probability;
        const double larger = std::max(arrives, probabilityOf(one));
        const std::size_t known = all.size();
        for (std::size_t i = 0; i < known; ++i) {
            const double ratio = all[i].ratio * (probabilityOf(one) / larger);
            const bool fits = one.isReading() || lostCommands(all[i].lost) < mostCommands;
            if (ratio > 0.0 && ratio >= leastRatio && fits && all.size() <= most) {
                ProbableLoss longer{all[i].lost, ratio};
                longer.lost.push_back(one);
                all.push_back(std::move(longer));
            }
            all[i].ratio *= arrives / larger;
        }
    }
    std::erase_if(all, [&](const ProbableLoss& loss) {
        return loss.ratio <= 0.0 || loss.ratio < leastRatio;
    });
    return all;
}

Losses lossesThatMatter(const StepFrame& frame, const Losses& lossy,
                        const ConnectedVariables& connected)
{
    const ConflictGroups contradicted = conflictGroupsOf(frame, connected);
    if (!contradicted.allSeen) {
        return lossy;
    }
    Losses matter;
    std::copy_if(lossy.begin(), lossy.end(), std::back_inserter(matter), [&](const Loss& one) {
        return !one.isReading() ||
               contradicted.isIn(connected.groupOf(frame.plant.variableOf(one.given)));
    });
    return matter;
}

Losses lossyCommands(const Plant& plant, const plant::Bindings& bindings,
                     const std::vector<AtomIndex>& given)
{
    Losses lossy;
    for (const AtomIndex command : given) {
        const PlantVariable& variable = plant.variable(plant.variableOf(command));
        const auto lost = bindings.lost.find(variable.variable);
        const AtomIndex fallback = variable.values.front();
        if (lost != bindings.lost.end() && lost->second > 0.0 && command != fallback) {
            lossy.push_back({command, fallback, lost->second});
        }
    }
    return lossy;
}

} // namespace monitor
