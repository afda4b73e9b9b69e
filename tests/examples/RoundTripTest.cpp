// Round trips: a plant is simulated with faults injected at random, and followed by what its sensors show. The faults have
// to be among what is believed in the end.
//
// A run counts when each of its faults shows: without it, the sensors would have shown something else at some step. Of a
// fault that never shows nobody can know.
#include "monitor/Simulation.h"
#include "monitor/Tracker.h"
#include "tests/examples/ExamplePlant.h"
#include "tests/support/TestModel.h"

#include <cmath>
#include <gtest/gtest.h>
#include <iostream>

namespace {

using monitor::AtomIndex;
using monitor::SimulatedStep;
using monitor::SimulationInput;

/// An example, and how it is tried.
struct Trial {
    std::string file;
    Names ambient; ///< what comes from outside
    std::size_t faults;
    std::size_t runs;
};

std::ostream& operator<<(std::ostream& out, const Trial& trial)
{
    return out << trial.file << ", " << trial.faults << " faults";
}

/// What came of the runs of a trial.
struct Figures {
    std::size_t distinguishable = 0; ///< from a run without faults
    std::size_t count = 0;           ///< each fault shows
    std::size_t kept = 0;            ///< of these, the faults are what a kept hypothesis says
    std::size_t mostProbable = 0;    ///< of these, no kept hypothesis has a more probable way
    std::size_t first = 0;           ///< of these, none is ranked before it
    std::size_t incomplete = 0;      ///< runs with a step whose search was cut
};

monitor::TrackInput trackInput(const ExamplePlant& plant, const SimulationInput& input,
                               const SimulatedStep& step, std::size_t number)
{
    monitor::TrackInput made;
    made.step = number;
    made.t = plant.bindings().stepSeconds * static_cast<double>(number);
    made.values.commands = step.commands;
    made.values.observations = step.observations;
    const monitor::Plant& numbers = *plant.active().plant;
    for (const AtomIndex given : input.commands) {
        StateVar* variable = numbers.atom(given)->stateVar;
        const auto lost = plant.bindings().lost.find(variable);
        const AtomIndex fallback = numbers.indexOf(variable->atomLinks->front());
        if (lost != plant.bindings().lost.end() && given != fallback) {
            made.lossy.push_back({given, fallback, lost->second});
        }
    }
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

std::set<AtomIndex> faultsOf(const monitor::Plant& plant, const monitor::Hypothesis& hypothesis)
{
    std::set<AtomIndex> faults;
    for (const auto& [variable, since] : hypothesis.since) {
        if (plant.atom(since.value)->fail) {
            faults.insert(since.value);
        }
    }
    return faults;
}

class RoundTrip {
public:
    explicit RoundTrip(const Trial& trial) : trial_(trial), plant_(trial.file) {}

    Figures run()
    {
        for (std::size_t seed = 1; seed <= trial_.runs; ++seed) {
            one(seed);
        }
        return figures_;
    }

private:
    const monitor::Plant& numbers() const { return *plant_.active().plant; }

    void one(std::size_t seed)
    {
        constexpr std::size_t steps = 30;
        std::vector<SimulationInput> inputs = monitor::randomCommands(numbers(), steps, seed, 0.15);
        for (SimulationInput& input : inputs) {
            for (const std::string& id : trial_.ambient) {
                input.observations.push_back(plant_.active().index(id));
            }
        }
        if (monitor::injectRandomFaults(numbers(), plant_.bindings(), inputs, trial_.faults, seed) <
            trial_.faults) {
            return;
        }
        const monitor::SimulatedRun run = simulate(inputs);
        if (run.problem) {
            return;
        }
        figures_.distinguishable += distinguishable(inputs) ? 1 : 0;
        if (eachFaultShows(inputs, run)) {
            follow(inputs, run, seed);
        }
    }

    monitor::SimulatedRun simulate(const std::vector<SimulationInput>& inputs) const
    {
        return monitor::simulate(numbers(), plant_.bindings(), inputs);
    }

    bool distinguishable(const std::vector<SimulationInput>& inputs) const
    {
        return monitor::distinguishableFromNominal(numbers(), plant_.bindings(), inputs);
    }

    bool eachFaultShows(const std::vector<SimulationInput>& inputs,
                        const monitor::SimulatedRun& run) const
    {
        for (std::size_t step = 0; step < inputs.size(); ++step) {
            if (inputs[step].injections.empty()) {
                continue;
            }
            std::vector<SimulationInput> without = inputs;
            without[step].injections.clear();
            const monitor::SimulatedRun other = simulate(without);
            if (!other.problem && !monitor::firstDifference(run, other)) {
                return false;
            }
        }
        return true;
    }

    void follow(const std::vector<SimulationInput>& inputs, const monitor::SimulatedRun& run,
                std::size_t seed)
    {
        ++figures_.count;
        monitor::Tracker tracker(plant_.engine(), numbers(), {});
        bool complete = true;
        for (std::size_t step = 0; step < run.steps.size(); ++step) {
            tracker.advance(trackInput(plant_, inputs[step], run.steps[step], step + 1));
            complete = complete && tracker.answer().complete;
        }
        figures_.incomplete += complete ? 0 : 1;
        const auto& hypotheses = tracker.answer().hypotheses;
        const std::set<AtomIndex> faults = injected(inputs);
        const auto found = std::find_if(
            hypotheses.begin(), hypotheses.end(),
            [&](const auto& one) { return faultsOf(numbers(), *one) == faults; });
        if (found == hypotheses.end()) {
            std::cerr << "seed " << seed << ":";
            for (std::size_t step = 0; step < inputs.size(); ++step)
                for (AtomIndex f : inputs[step].injections) std::cerr << " " << numbers().atom(f)->id << "@" << step + 1;
            std::cerr << " best:";
            for (auto f : faultsOf(numbers(), *hypotheses.front())) std::cerr << " " << numbers().atom(f)->id;
            std::cerr << " " << name(tracker.answer().status) << " of " << hypotheses.size() << "\n";
            return;
        }
        ++figures_.kept;
        const double best = hypotheses.front()->logWeight;
        if ((*found)->logWeight > best - 1e-6) ++figures_.first;
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
    std::ostream& out = std::cerr;
    const Figures figures = RoundTrip(GetParam()).run();
    out << GetParam() << ": runs " << GetParam().runs << ", distinguishable "
        << figures.distinguishable << ", each shows " << figures.count << ", kept " << figures.kept
        << ", first " << figures.first << ", incomplete " << figures.incomplete << "\n";
}

INSTANTIATE_TEST_SUITE_P(
    Examples, RoundTrips,
    testing::Values(Trial{"water/station.itms", {"tank.level=normal"}, 1, 300},
                    Trial{"water/station.itms", {"tank.level=normal"}, 2, 300},
                    Trial{"power/grid.itms", {}, 1, 300}, Trial{"power/grid.itms", {}, 2, 300},
                    Trial{"circuits/full-adder.itms", {}, 1, 300},
                    Trial{"circuits/full-adder.itms", {}, 2, 300}));
