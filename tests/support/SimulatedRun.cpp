#include "tests/support/SimulatedRun.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <numeric>

namespace simulate {

SimulatedRun simulate(const plant::Plant& plant, const plant::Bindings& bindings,
                      const std::vector<SimulationInput>& inputs, const SimulatorSettings& settings)
{
    Simulator simulator(plant, bindings, settings);
    SimulatedRun run;
    for (const SimulationInput& input : inputs) {
        auto result = simulator.step(input);
        if (auto* problem = std::get_if<SimulationProblem>(&result)) {
            run.problem = std::move(*problem);
            break;
        }
        run.steps.push_back(std::move(std::get<SimulatedStep>(result)));
    }
    return run;
}

std::optional<std::size_t> firstDifference(const SimulatedRun& a, const SimulatedRun& b)
{
    const std::size_t both = std::min(a.steps.size(), b.steps.size());
    for (std::size_t step = 0; step < both; ++step) {
        if (a.steps[step].observations != b.steps[step].observations) {
            return step;
        }
    }
    return std::nullopt;
}

bool distinguishableFromNominal(const plant::Plant& plant, const plant::Bindings& bindings,
                                const std::vector<SimulationInput>& inputs,
                                const SimulatorSettings& settings)
{
    std::vector<SimulationInput> nominal = inputs;
    for (SimulationInput& input : nominal) {
        input.injections.clear();
    }
    return firstDifference(simulate(plant, bindings, inputs, settings),
                           simulate(plant, bindings, nominal, settings))
        .has_value();
}

std::vector<SimulationInput> randomCommands(const plant::Plant& plant, std::size_t steps,
                                            std::uint64_t seed, double probability)
{
    CommandSource source(plant, seed, probability);
    std::vector<SimulationInput> inputs(steps);
    for (SimulationInput& input : inputs) {
        input.commands = source.next();
    }
    return inputs;
}

namespace {

// The first is drawn by its probability among all, each next one among those that are left ("Weighted random
// sampling with a reservoir", Information Processing Letters 97, 2006).
std::vector<plant::AtomIndex> drawnOrder(const std::vector<monitor::ModeOption>& options,
                                         Chance& chance)
{
    std::vector<std::pair<double, plant::AtomIndex>> keys;
    for (const monitor::ModeOption& option : options) {
        keys.emplace_back(std::log(1.0 - chance.fraction()) / option.probability, option.value);
    }
    std::sort(keys.begin(), keys.end(), std::greater<>());
    std::vector<plant::AtomIndex> order;
    for (const auto& [key, value] : keys) {
        order.push_back(value);
    }
    return order;
}

} // namespace

std::vector<monitor::ModeOption> possibleFaults(const plant::Plant& plant,
                                                const Simulator& simulator,
                                                const std::vector<plant::AtomIndex>& given)
{
    std::vector<plant::AtomIndex> commands;
    for (const plant::PlantVariable& variable : plant.variables()) {
        if (!variable.isCommand || variable.values.empty()) {
            continue;
        }
        const auto value = std::find_first_of(given.begin(), given.end(), variable.values.begin(),
                                              variable.values.end());
        commands.push_back(value == given.end() ? variable.values.front() : *value);
    }
    std::vector<monitor::ModeOption> faults;
    for (const monitor::ModeStep& step : monitor::modeSteps(plant, simulator.labels(), commands)) {
        std::copy_if(step.options.begin(), step.options.end(), std::back_inserter(faults),
                     [](const monitor::ModeOption& option) { return option.fault; });
    }
    return faults;
}

std::size_t injectRandomFaults(const plant::Plant& plant, const plant::Bindings& bindings,
                               std::vector<SimulationInput>& inputs, std::size_t count,
                               std::uint64_t seed)
{
    Chance chance(seed);
    std::vector<std::size_t> order(inputs.size());
    std::iota(order.begin(), order.end(), 0U);
    order = chance.shuffled(std::move(order));
    std::vector<bool> drawn(inputs.size(), false);
    std::for_each_n(order.begin(), std::min(count, order.size()),
                    [&](std::size_t step) { drawn[step] = true; });

    Simulator simulator(plant, bindings);
    std::size_t owed = 0; // of steps at which there was no fault
    std::size_t injected = 0;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        owed += drawn[i] ? 1 : 0;
        const std::vector<plant::AtomIndex> faults =
            owed > 0 ? drawnOrder(possibleFaults(plant, simulator, inputs[i].commands), chance)
                     : std::vector<plant::AtomIndex>();
        const bool done = std::any_of(faults.begin(), faults.end(), [&](plant::AtomIndex fault) {
            SimulationInput with = inputs[i];
            with.injections.push_back(fault);
            if (std::holds_alternative<SimulationProblem>(simulator.step(with))) {
                return false;
            }
            inputs[i] = std::move(with);
            return true;
        });
        if (done) {
            --owed;
            ++injected;
        } else if (std::holds_alternative<SimulationProblem>(simulator.step(inputs[i]))) {
            break;
        }
    }
    return injected;
}

} // namespace simulate
