#include "tests/reference/TrackerAgreement.h"

#include "monitor/track/Tracker.h"
#include "tests/support/RandomPlant.h"
#include "tests/support/TestModel.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

namespace {

using Modes = ExactFilter::Modes;
using Distribution = std::map<Modes, double>;

constexpr double tolerance = 1e-9;
// That a reading is not what it was; a power of two, so that the fractions are exact.
constexpr double changing = 0.25;

monitor::TrackInput trackInput(const plant::Plant& plant, const WatchedPlant& watched,
                               const WatchedStep& step, std::size_t number, bool inTime)
{
    monitor::TrackInput input;
    input.step = number;
    input.t = static_cast<double>(number);
    for (const Atom* command : step.commands) {
        input.values.commands.push_back(plant.indexOf(command));
        const Atom* fallback = command->stateVar->atomLinks->front();
        const auto lost = watched.lost.find(command->stateVar);
        if (lost != watched.lost.end() && command != fallback) {
            input.lossy.push_back({plant.indexOf(command), plant.indexOf(fallback), lost->second});
        }
    }
    for (const bool isInput : {true, false}) {
        for (const Atom* observed : step.observations) {
            if (watched.inputs.contains(observed->stateVar) == isInput) {
                input.values.observations.push_back(plant.indexOf(observed));
            }
        }
        input.values.inputs += isInput ? input.values.observations.size() : 0;
    }
    for (const plant::AtomIndex observed : input.values.observations) {
        const StateVar* variable = plant.atom(observed)->stateVar;
        const auto misread = watched.misread.find(variable);
        if (misread != watched.misread.end()) {
            const double values = static_cast<double>(variable->atomLinks->size());
            input.lossy.push_back({observed, monitor::Loss::nothing, misread->second,
                                   watched.inputs.contains(variable) ? 1.0 : 1.0 / values});
        }
    }
    if (inTime) {
        input.values.changing.assign(input.values.observations.size(), changing);
    }
    return input;
}

// Empty where it is inconsistent, as below.
Distribution ofTracker(const plant::Plant& plant, const std::vector<const StateVar*>& modes,
                       const monitor::TrackAnswer& answer)
{
    Distribution result;
    if (answer.status == monitor::TrackStatus::inconsistent) {
        return result;
    }
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        Modes values;
        for (const StateVar* mode : modes) {
            for (const plant::AtomIndex value : answer.hypotheses[i]->modes) {
                if (plant.atom(value)->stateVar == mode) {
                    values.push_back(plant.atom(value));
                }
            }
        }
        result[values] += answer.probabilities[i];
    }
    return result;
}

Distribution ofFilter(const FilterAnswer& answer)
{
    Distribution result;
    for (const auto& [modes, probability] : answer.probabilities) {
        result[modes] = probability.value();
    }
    return result;
}

double largestDifference(const Distribution& a, const Distribution& b)
{
    double largest = 0.0;
    for (const auto& [one, other] : {std::pair(&a, &b), std::pair(&b, &a)}) {
        for (const auto& [modes, probability] : *one) {
            const auto found = other->find(modes);
            const double there = found == other->end() ? 0.0 : found->second;
            largest = std::max(largest, std::abs(probability - there));
        }
    }
    return largest;
}

void write(std::ostream& out, const char* who, const Distribution& distribution)
{
    out << who << (distribution.empty() ? ": inconsistent\n" : ":\n");
    for (const auto& [modes, probability] : distribution) {
        out << "    " << probability;
        for (const Atom* mode : modes) {
            out << ' ' << mode->id;
        }
        out << '\n';
    }
}

FilterSettings filterSettings(const WatchedPlant& watched, const WatchedOptions& options)
{
    FilterSettings settings;
    settings.inputs = watched.inputs;
    settings.lost = watched.lost;
    settings.misread = watched.misread;
    settings.readingsInTime = options.readingsInTime;
    for (const StateVar* variable : watched.observed) {
        settings.changing.emplace(variable, ExactFraction::of(changing));
    }
    return settings;
}

// What both say of a step.
struct Compared {
    const WatchedPlant& watched;
    int number;
    Distribution exact;
    Distribution tracked;
    bool faulty;                      ///< the filter finds a fault more probable than none
    const std::ostringstream& before; ///< the seed, the plant and its steps, this one included
};

// With what both say of this step.
std::string story(const Compared& step)
{
    std::ostringstream out;
    out << step.before.str();
    write(out, "exact", step.exact);
    write(out, "tracker", step.tracked);
    return out.str();
}

// Shows each step of a plant, until one that the filter finds inconsistent.
template <class See>
void watch(const WatchedOptions& options, std::uint64_t seed, int steps,
           const monitor::TrackSettings& settings, See&& see)
{
    Random random(seed);
    WatchedPlant watched = makeWatchedPlant(random, options);
    ExactFilter filter(*watched.model, filterSettings(watched, options));
    WatchedRun run(random, watched, options);
    watched.model->activate();
    itms engine;
    engine.rtInit();
    const plant::Plant plant(*watched.model);
    monitor::Tracker tracker(engine, plant, settings);
    std::ostringstream before;
    before << "seed " << seed << '\n' << watched.described();
    for (int number = 1; number <= steps; ++number) {
        const std::optional<WatchedStep> step = run.next();
        if (!step) {
            return;
        }
        before << "step " << number << ": " << described(*step) << '\n';
        const Distribution exact = ofFilter(filter.advance({step->commands, step->observations}));
        const Distribution tracked = ofTracker(
            plant, filter.modes(),
            tracker.advance(trackInput(plant, watched, *step, static_cast<std::size_t>(number),
                                       options.readingsInTime)));
        const bool faulty = !exact.empty() && filter.answer().fault().value() > 0.5;
        see(Compared{watched, number, exact, tracked, faulty, before});
        if (exact.empty()) {
            return;
        }
    }
}

// Of parts, laws, transitions and steps: the smaller, the easier to follow.
std::size_t sizeOf(const Compared& step)
{
    const auto& model = *step.watched.model;
    return 100 * model.components().size() + model.laws().size() + model.transitions().size() +
           3 * static_cast<std::size_t>(step.number);
}

// Equal ones are as good as one another.
bool isBest(const Distribution& exact, const Distribution& tracked)
{
    const auto best = [](const Distribution& distribution) {
        return std::max_element(distribution.begin(), distribution.end(),
                                [](const auto& a, const auto& b) { return a.second < b.second; });
    };
    if (exact.empty() || tracked.empty()) {
        return exact.empty() == tracked.empty();
    }
    const auto found = exact.find(best(tracked)->first);
    return found != exact.end() && found->second > best(exact)->second - tolerance;
}

} // namespace

Agreement compareTracker(const WatchedOptions& options, std::uint64_t firstSeed, int seeds,
                         int steps)
{
    const MutedTrace muted;
    const monitor::TrackSettings everything{
        .maxFaults = 1000, .keep = 100000, .lookBack = 1000, .limits = {}, .follow = 0.0};
    Agreement result;
    std::size_t exampleSize = 0;
    for (int i = 0; i < seeds; ++i) {
        ++result.plants;
        bool differs = false;
        watch(options, firstSeed + static_cast<std::uint64_t>(i), steps, everything,
              [&](const Compared& step) {
                  ++result.steps;
                  result.several += step.exact.size() > 1 ? 1 : 0;
                  result.inconsistent += step.exact.empty() && step.tracked.empty() ? 1 : 0;
                  const double difference = largestDifference(step.exact, step.tracked);
                  if (difference <= tolerance) {
                      return;
                  }
                  ++result.differing;
                  result.largest = std::max(result.largest, difference);
                  result.differingPlants += differs ? 0 : 1;
                  if (!differs && (result.example.empty() || sizeOf(step) < exampleSize)) {
                      exampleSize = sizeOf(step);
                      result.example = story(step);
                  }
                  differs = true;
              });
    }
    return result;
}

BestAgreement compareBest(const WatchedOptions& options, std::uint64_t firstSeed, int seeds,
                          int steps)
{
    const MutedTrace muted;
    BestAgreement result;
    for (int i = 0; i < seeds; ++i) {
        watch(options, firstSeed + static_cast<std::uint64_t>(i), steps, {},
              [&](const Compared& step) {
                  ++result.steps;
                  result.faulty += step.faulty ? 1 : 0;
                  if (!isBest(step.exact, step.tracked)) {
                      ++result.differing;
                      result.example = result.example.empty() ? story(step) : result.example;
                  }
              });
    }
    return result;
}
