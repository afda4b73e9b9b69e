// Simulated runs of several steps, with commands and faults drawn at random.
//
//     std::vector<SimulationInput> inputs = randomCommands(plant, 20, seed);
//     const bool shows = distinguishableFromNominal(plant, bindings, inputs);   // false: nothing is injected yet
//     injectRandomFaults(plant, bindings, inputs, 2, seed);
//     const SimulatedRun run = simulate(plant, bindings, inputs);
#pragma once

#include "simulate/CommandSource.h"
#include "simulate/Simulator.h"

namespace simulate {

/// As many steps as there were without a problem.
struct SimulatedRun {
    std::vector<SimulatedStep> steps;
    std::optional<SimulationProblem> problem; ///< of the step after them, which ended the run
};

/// Simulates from the initial state.
SimulatedRun simulate(const plant::Plant& plant, const plant::Bindings& bindings,
                      const std::vector<SimulationInput>& inputs,
                      const SimulatorSettings& settings = {});

/// The first step, from 0, at which the observations of the two runs differ; none if they do not in the steps that
/// both have.
std::optional<std::size_t> firstDifference(const SimulatedRun& a, const SimulatedRun& b);

/// Whether the observations of a run differ at some step from those of the run with the same commands and inputs, and
/// without the injections. What is not predicted has the same seed in both.
bool distinguishableFromNominal(const plant::Plant& plant, const plant::Bindings& bindings,
                                const std::vector<SimulationInput>& inputs,
                                const SimulatorSettings& settings = {});

/// So many steps with commands of a CommandSource.
std::vector<SimulationInput> randomCommands(const plant::Plant& plant, std::size_t steps,
                                            std::uint64_t seed,
                                            double probability = usualCommandProbability);

/// The faults, of all mode variables, that a step with these commands could bring, and how probable each is.
std::vector<monitor::ModeOption> possibleFaults(const plant::Plant& plant,
                                                const Simulator& simulator,
                                                const std::vector<plant::AtomIndex>& commands);

/// Adds injections of faults to the inputs, at most one a step: at steps drawn at random, of the faults that are possible
/// then, by their probabilities in proportion to one another. Returns how many, `count` if the inputs have that many steps at which
/// there is one and no step is a problem. Costs a simulated run, and one step for each fault that is tried.
std::size_t injectRandomFaults(const plant::Plant& plant, const plant::Bindings& bindings,
                               std::vector<SimulationInput>& inputs, std::size_t count,
                               std::uint64_t seed);

} // namespace simulate
