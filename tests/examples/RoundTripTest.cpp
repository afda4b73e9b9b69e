// Round trips: a plant is simulated with faults injected at random, and followed by what its sensors show. The faults have
// to be among what is believed in the end.
//
// A run counts when each of its faults shows: without it, what the sensors show would contradict the model. Of a fault
// that never shows, or that looks like a change of an input, nobody can know.
#include "monitor/track/Tracker.h"
#include "tests/examples/ExamplePlant.h"
#include "tests/support/Sanitized.h"
#include "tests/support/SimulatedRun.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>
#include <iostream>

namespace {

using plant::AtomIndex;
using simulate::SimulatedStep;
using simulate::SimulationInput;

/// An example, and how it is tried.
struct Trial {
    std::string name;
    std::string file;
    Names ambient; ///< values that come from outside
    Names drawn; ///< a value of each variable that comes from outside and is drawn anew at every step
};

constexpr std::size_t runs = underSanitizers ? 5 : 150; // with one fault, and as many with two
constexpr std::size_t steps = 30;

/// What came of the runs of a trial.
struct Figures {
    std::size_t distinguishable = 0; ///< from the run without faults
    std::size_t shown = 0;           ///< each fault shows
    std::size_t kept = 0; ///< of these: a kept hypothesis has these faults, and no others
    std::size_t mostProbable =
        0; ///< of these: what happened is as probable as the best hypothesis, or more so
    std::size_t first =
        0; ///< of these: its faults are those of the best hypothesis, or of one as probable
};

void PrintTo(const Trial& trial, std::ostream* out)
{
    *out << trial.name;
}

monitor::TrackInput trackInput(const ExamplePlant& plant, const SimulationInput& input,
                               const SimulatedStep& step, std::size_t number)
{
    monitor::TrackInput made;
    made.step = number;
    made.t = plant.bindings().stepSeconds * static_cast<double>(number);
    made.values.commands = step.commands;
    made.values.observations = step.observations;
    made.lossy = monitor::lossyCommands(*plant.active().plant, plant.bindings(), input.commands);
    return made;
}

std::set<AtomIndex> injected(const std::vector<SimulationInput>& inputs)
{
    std::set<AtomIndex> faults;
    for (const SimulationInput& input : inputs) {
        faults.insert(input.injections.begin(), input.injections.end());
    }
    return faults;
}

std::set<AtomIndex> faultsOf(const plant::Plant& plant, const monitor::Hypothesis& hypothesis)
{
    std::set<AtomIndex> faults;
    for (const auto& [variable, since] : hypothesis.since) {
        if (plant.atom(since.value)->fail) {
            faults.insert(since.value);
        }
    }
    return faults;
}

/// The runs of a trial.
class RoundTrip {
public:
    explicit RoundTrip(const Trial& trial) : trial_(trial), plant_(trial.file) {}

    Figures run(std::size_t faults)
    {
        figures_ = {};
        for (std::uint64_t seed = 1; seed <= runs; ++seed) {
            std::vector<SimulationInput> inputs = surroundings(seed);
            const std::size_t injected =
                simulate::injectRandomFaults(numbers(), plant_.bindings(), inputs, faults, seed);
            const simulate::SimulatedRun run = simulate(inputs);
            if (injected == faults && !run.problem) {
                count(inputs, run, seed);
            }
        }
        return figures_;
    }

private:
    const plant::Plant& numbers() const { return *plant_.active().plant; }

    simulate::SimulatedRun simulate(const std::vector<SimulationInput>& inputs) const
    {
        return simulate::simulate(numbers(), plant_.bindings(), inputs);
    }

    // Commands, and what comes from outside.
    std::vector<SimulationInput> surroundings(std::uint64_t seed) const
    {
        Random random(seed);
        std::vector<SimulationInput> inputs = simulate::randomCommands(numbers(), steps, seed, 0.15);
        for (SimulationInput& input : inputs) {
            for (const std::string& id : trial_.ambient) {
                input.observations.push_back(plant_.active().index(id));
            }
            for (const std::string& id : trial_.drawn) {
                const AtomIndex some = plant_.active().index(id);
                input.observations.push_back(
                    random.pick(numbers().variable(numbers().variableOf(some)).values));
            }
        }
        return inputs;
    }

    // Whether none of the faults could be left out: without it, something that is seen would contradict the model.
    bool eachFaultShows(const std::vector<SimulationInput>& inputs,
                        const simulate::SimulatedRun& run)
    {
        for (std::size_t step = 0; step < inputs.size(); ++step) {
            if (inputs[step].injections.empty()) {
                continue;
            }
            std::vector<SimulationInput> without = inputs;
            without[step].injections.clear();
            if (explains(without, run)) {
                return false;
            }
        }
        return true;
    }

    // Whether a plant with these faults could have shown what is seen in the run.
    bool explains(const std::vector<SimulationInput>& inputs, const simulate::SimulatedRun& run)
    {
        const monitor::Successors successors(plant_.engine(), numbers());
        monitor::Hypothesis now = monitor::initialHypothesis(numbers());
        for (std::size_t i = 0; i < run.steps.size(); ++i) {
            auto next = successors.deviating(
                now, trackInput(plant_, inputs[i], run.steps[i], i + 1), inputs[i].injections, {});
            if (!next) {
                return false;
            }
            now = std::move(*next);
        }
        return true;
    }

    void count(const std::vector<SimulationInput>& inputs, const simulate::SimulatedRun& run,
               std::uint64_t seed)
    {
        figures_.distinguishable +=
            simulate::distinguishableFromNominal(numbers(), plant_.bindings(), inputs) ? 1 : 0;
        if (eachFaultShows(inputs, run)) {
            ++figures_.shown;
            follow(inputs, run, seed);
        }
    }

    void follow(const std::vector<SimulationInput>& inputs, const simulate::SimulatedRun& run,
                std::uint64_t seed)
    {
        monitor::Tracker tracker(plant_.engine(), numbers(), {.keep = 16});
        const monitor::Successors successors(plant_.engine(), numbers());
        monitor::Hypothesis truth = monitor::initialHypothesis(numbers());
        for (std::size_t i = 0; i < run.steps.size(); ++i) {
            const monitor::TrackInput input = trackInput(plant_, inputs[i], run.steps[i], i + 1);
            tracker.advance(input);
            auto next = successors.deviating(truth, input, inputs[i].injections, {});
            ASSERT_TRUE(next) << "seed " << seed << ", step " << i + 1;
            truth = std::move(*next);
            truth.logWeight -= tracker.memory().past.back().logScale;
        }
        const auto& hypotheses = tracker.answer().hypotheses;
        const std::set<AtomIndex> faults = injected(inputs);
        const auto found =
            std::find_if(hypotheses.begin(), hypotheses.end(), [&](const auto& hypothesis) {
                return faultsOf(numbers(), *hypothesis) == faults;
            });
        const double best = hypotheses.front()->logWeight - 1e-6;
        figures_.kept += found != hypotheses.end() ? 1 : 0;
        if (truth.logWeight > best) {
            ++figures_.mostProbable;
            figures_.first += found != hypotheses.end() && (*found)->logWeight > best ? 1 : 0;
        }
    }

    const Trial& trial_;
    ExamplePlant plant_;
    Figures figures_;
};

class RoundTrips : public testing::TestWithParam<Trial> {};

} // namespace

TEST_P(RoundTrips, FindWhatWasInjected)
{
    MutedTrace muted;
    RoundTrip roundTrip(GetParam());
    Figures sum;
    for (const std::size_t faults : {1U, 2U}) {
        const Figures figures = roundTrip.run(faults);
        std::cerr << GetParam().name << ", faults: " << faults << ", runs: " << runs
                  << ", differ from nominal: " << figures.distinguishable
                  << ", each fault shows: " << figures.shown << ", of these kept: " << figures.kept
                  << ", most probable: " << figures.mostProbable
                  << ", of these first: " << figures.first << "\n";
        sum.shown += figures.shown;
        sum.kept += figures.kept;
        sum.mostProbable += figures.mostProbable;
        sum.first += figures.first;
    }
    EXPECT_GT(sum.shown, runs / 2);
    EXPECT_GE(100 * sum.kept, 99 * sum.shown);
    EXPECT_GE(100 * sum.first, 90 * sum.mostProbable);
}

INSTANTIATE_TEST_SUITE_P(
    , RoundTrips,
    testing::Values(
        Trial{"Water", "water/station.itms", {"tank.level=normal"}, {}},
        Trial{"Power", "power/grid.itms", {"mains.voltage=live"}, {}},
        Trial{"Adder", "circuits/full-adder.itms", {}, {"a.out=zero", "b.out=zero", "cin.out=zero"}}),
    [](const auto& given) { return given.param.name; });
