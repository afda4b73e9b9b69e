// A step is tried on a copy of the labels: modes move, propagation follows, and the open variables get values in a fixed order with
// backtracking (monitor/labels/Completion.h). Only a step without a problem is accepted. With a seed, modes that contradict one
// another are drawn anew.
#include "simulate/Simulator.h"

#include "monitor/labels/Completion.h"
#include "monitor/step/Step.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <unordered_set>

namespace simulate {

namespace {

// How often modes that contradict one another are drawn anew.
constexpr int mostDraws = 100;

plant::VariableIndex indexOf(const plant::Plant& plant, const StateVar* variable)
{
    return plant.variableOf(plant.indexOf(variable->atomLinks->front()));
}

const Atom* initialOf(const plant::PlantVariable& mode, const plant::Plant& plant)
{
    return mode.variable->initial ? mode.variable->initial : plant.atom(mode.values.front());
}

// The value of the variable in the list, if there is one.
std::optional<plant::AtomIndex> given(const plant::Plant& plant,
                                      const std::vector<plant::AtomIndex>& values,
                                      plant::VariableIndex variable)
{
    const auto found = std::find_if(values.begin(), values.end(), [&](plant::AtomIndex value) {
        return plant.variableOf(value) == variable;
    });
    return found == values.end() ? std::nullopt : std::optional(*found);
}

// The values of modes on which the contradiction in `labels` rests.
std::vector<plant::AtomIndex> modesOfViolated(const plant::Plant& plant,
                                              const monitor::Prediction& labels)
{
    std::vector<plant::AtomIndex> atoms;
    if (labels.violated() >= 0) {
        for (const plant::PlantLiteral& literal : plant.clause(labels.violated())) {
            atoms.push_back(literal.atom);
        }
    }
    std::vector<plant::AtomIndex> values;
    for (const plant::VariableIndex mode : labels.environment(atoms)) {
        if (const auto value = labels.valueOf(plant.variable(mode))) {
            values.push_back(*value);
        }
    }
    return values;
}

// Gives the variable the first value that is possible, if one is, and tells whether some value determines one of the
// observed variables that are open.
bool settle(const plant::Plant& plant, plant::VariableIndex variable,
            const std::vector<plant::VariableIndex>& observed, monitor::Prediction& labels)
{
    const auto isKnown = [&](plant::VariableIndex one) {
        return labels.valueOf(plant.variable(one)).has_value();
    };
    const std::vector<plant::AtomIndex> values = plant.variable(variable).values.toVector();
    const std::size_t mark = labels.mark();
    bool measured = false;
    for (auto value = values.rbegin(); value != values.rend(); ++value) {
        labels.undo(mark);
        if (labels.assume(*value) && labels.propagate()) {
            measured = measured || std::any_of(observed.begin(), observed.end(), isKnown);
        }
    }
    if (labels.violated() >= 0) {
        labels.undo(mark);
    }
    return measured;
}

// For each variable, whether a law `mode value -> value` determines it.
std::vector<bool> determinedByAMode(const plant::Plant& plant)
{
    std::vector<bool> determined(plant.variables().size(), false);
    for (std::size_t i = 0; i < plant.clauseCount(); ++i) {
        const std::span<const plant::PlantLiteral> literals =
            plant.clause(static_cast<plant::ClauseIndex>(i));
        if (literals.size() != 2) {
            continue;
        }
        for (const bool first : {true, false}) {
            const plant::PlantLiteral& mode = literals[first ? 0 : 1];
            const plant::PlantLiteral& other = literals[first ? 1 : 0];
            if (mode.negated && plant.variable(plant.variableOf(mode.atom)).isMode &&
                !other.negated) {
                determined[static_cast<std::size_t>(plant.variableOf(other.atom))] = true;
            }
        }
    }
    return determined;
}

} // namespace

// A step that may still turn out not to be possible.
struct Simulator::Trial {
    explicit Trial(const plant::Plant& plant) : labels(plant), open(plant.variables().size(), false)
    {
    }

    monitor::Prediction labels;
    std::vector<bool> open; ///< by variable: modes and commands do not determine it
    std::vector<plant::AtomIndex> arrived;
    SimulatedStep step;
};

Simulator::Simulator(const plant::Plant& plant, const plant::Bindings& bindings,
                     const SimulatorSettings& settings)
    : plant_(plant), lost_(plant.variables().size(), 0.0), isInput_(plant.variables().size(), false),
      varies_(plant.variables().size()), misread_(plant.variables().size(), 0.0),
      wasOpen_(plant.variables().size(), false), labels_(monitor::initialLabels(plant))
{
    if (settings.seed) {
        chance_.emplace(*settings.seed);
    }
    std::unordered_set<const StateVar*> bound; // of several channels of a variable the first
    for (const plant::ChannelBinding& binding : bindings.channels) {
        if (binding.misread) {
            double& most = misread_[static_cast<std::size_t>(indexOf(plant, binding.variable))];
            most = std::max(most, *binding.misread);
        }
        if (binding.kind == plant::ChannelBinding::Kind::observation &&
            bound.insert(binding.variable).second) {
            observed_.push_back(indexOf(plant, binding.variable));
            isInput_[static_cast<std::size_t>(observed_.back())] = binding.input;
            varies_[static_cast<std::size_t>(observed_.back())] = binding.varies;
        }
    }
    for (const auto& [variable, probability] : bindings.lost) {
        lost_[static_cast<std::size_t>(indexOf(plant, variable))] = probability;
    }
    findOrder();
    findInputs();
    // Last: what is printed besides does not change what happens.
    observed_.insert(observed_.end(), settings.alsoObserved.begin(), settings.alsoObserved.end());
}

void Simulator::findOrder()
{
    const std::vector<bool> determined = determinedByAMode(plant_);
    std::vector<std::size_t> place(plant_.variables().size(), observed_.size());
    for (std::size_t i = 0; i < observed_.size(); ++i) {
        place[static_cast<std::size_t>(observed_[i])] = i;
    }
    order_.resize(plant_.variables().size());
    std::iota(order_.begin(), order_.end(), 0);
    const auto key = [&](plant::VariableIndex variable) {
        const auto index = static_cast<std::size_t>(variable);
        return std::pair(static_cast<bool>(determined[index]), place[index]);
    };
    std::stable_sort(order_.begin(), order_.end(),
                     [&](plant::VariableIndex a, plant::VariableIndex b) { return key(a) < key(b); });
}

// Takes the variables in their order, declared inputs first, each with some value, and sees which are open when their turn comes.
void Simulator::findInputs()
{
    const auto inputsFirst = [this] {
        std::stable_partition(order_.begin(), order_.end(), [this](plant::VariableIndex variable) {
            return static_cast<bool>(isInput_[static_cast<std::size_t>(variable)]);
        });
    };
    inputsFirst();
    monitor::Prediction labels(plant_);
    for (const plant::PlantVariable& variable : plant_.variables()) {
        if (variable.isMode && !variable.values.empty()) {
            labels.assume(plant_.indexOf(initialOf(variable, plant_)));
        } else if (variable.isCommand && !variable.values.empty()) {
            labels.assume(variable.values.front());
        }
    }
    if (!labels.propagate()) {
        return;
    }
    std::vector<plant::VariableIndex> openObserved = observed_;
    for (const plant::VariableIndex variable : order_) {
        std::erase_if(openObserved, [&](plant::VariableIndex observed) {
            return labels.valueOf(plant_.variable(observed)).has_value();
        });
        if (!labels.valueOf(plant_.variable(variable))) {
            const bool measured = settle(plant_, variable, openObserved, labels);
            isInput_[static_cast<std::size_t>(variable)] =
                isInput_[static_cast<std::size_t>(variable)] || measured;
        }
    }
    inputsFirst();
}

std::vector<plant::AtomIndex> Simulator::allCommands(
    const std::vector<plant::AtomIndex>& givenCommands) const
{
    std::vector<std::optional<plant::AtomIndex>> values(plant_.variables().size());
    for (const plant::AtomIndex value : givenCommands) {
        values[static_cast<std::size_t>(plant_.variableOf(value))] = value;
    }
    std::vector<plant::AtomIndex> commands;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const plant::PlantVariable& variable = plant_.variables()[i];
        if (variable.isCommand && !variable.values.empty()) {
            commands.push_back(values[i].value_or(variable.values.front()));
        }
    }
    return commands;
}

std::variant<SimulatedStep, SimulationProblem> Simulator::step(const SimulationInput& input)
{
    const int draws = chance_ ? mostDraws : 1;
    std::optional<SimulationProblem> problem;
    for (int i = 0; i < draws; ++i) {
        Trial trial(plant_);
        problem = tryStep(input, trial);
        if (!problem) {
            return accept(trial);
        }
        if (problem->kind != SimulationProblem::Kind::contradiction) {
            break;
        }
    }
    return *problem;
}

std::optional<SimulationProblem> Simulator::tryStep(const SimulationInput& input, Trial& trial)
{
    trial.step.commands = allCommands(input.commands);
    loseCommands(trial);
    if (auto problem = moveModes(input, trial)) {
        return problem;
    }
    if (!trial.labels.propagate()) {
        return SimulationProblem{SimulationProblem::Kind::contradiction, -1,
                                 modesOfViolated(plant_, trial.labels)};
    }
    for (std::size_t i = 0; i < trial.open.size(); ++i) {
        trial.open[i] = !trial.labels.valueOf(plant_.variables()[i]);
    }
    return fill(input, trial);
}

void Simulator::loseCommands(Trial& trial)
{
    for (const plant::AtomIndex command : trial.step.commands) {
        const plant::VariableIndex variable = plant_.variableOf(command);
        const plant::AtomIndex silent = plant_.variable(variable).values.front();
        const bool lost = chance_ && command != silent &&
                          chance_->happens(lost_[static_cast<std::size_t>(variable)]);
        if (lost) {
            trial.step.lost.push_back(variable);
        }
        trial.arrived.push_back(lost ? silent : command);
        trial.labels.assume(trial.arrived.back());
    }
}

std::optional<SimulationProblem> Simulator::moveModes(const SimulationInput& input, Trial& trial)
{
    for (const monitor::ModeStep& step : monitor::modeSteps(plant_, *labels_, trial.arrived)) {
        const auto injected = given(plant_, input.injections, step.variable);
        if (injected && !step.option(*injected)) {
            SimulationProblem problem{SimulationProblem::Kind::unreachable, *injected, {}};
            for (const monitor::ModeOption& option : step.options) {
                problem.values.push_back(option.value);
            }
            return problem;
        }
        const plant::AtomIndex drawn = chance_ && !injected ? draw(step) : step.predicted;
        const plant::AtomIndex after = injected.value_or(drawn);
        trial.labels.assume(after);
        if (after != step.before || after != step.predicted) {
            const ModeCause cause = injected                  ? ModeCause::injected
                                    : after != step.predicted ? ModeCause::drawn
                                                              : ModeCause::predicted;
            trial.step.changes.push_back({step.variable, step.before, after, cause});
        }
    }
    return std::nullopt;
}

plant::AtomIndex Simulator::draw(const monitor::ModeStep& step)
{
    double sum = 0.0;
    for (const monitor::ModeOption& option : step.options) {
        sum += option.probability;
    }
    double at = chance_->fraction() * sum;
    for (const monitor::ModeOption& option : step.options) {
        if (at < option.probability) {
            return option.value;
        }
        at -= option.probability;
    }
    return step.options.back().value;
}

std::optional<SimulationProblem> Simulator::fill(const SimulationInput& input, Trial& trial)
{
    std::vector<std::optional<plant::AtomIndex>> wanted(plant_.variables().size());
    for (const plant::AtomIndex value : input.observations) {
        wanted[static_cast<std::size_t>(plant_.variableOf(value))] = value;
    }
    std::vector<plant::VariableIndex> order = order_;
    std::stable_partition(order.begin(), order.end(), [&](plant::VariableIndex variable) {
        return static_cast<bool>(wasOpen_[static_cast<std::size_t>(variable)]);
    });
    std::stable_partition(order.begin(), order.end(), [&](plant::VariableIndex variable) {
        return wanted[static_cast<std::size_t>(variable)].has_value();
    });
    const auto values = [&](plant::VariableIndex variable) {
        return valuesToTry(variable, wanted[static_cast<std::size_t>(variable)]);
    };
    switch (monitor::complete(plant_, trial.labels, order, values)) {
    case monitor::Completion::possible:
        std::copy_if(input.observations.begin(), input.observations.end(),
                     std::back_inserter(trial.step.ignored),
                     [&](plant::AtomIndex value) { return !trial.labels.isTrue(value); });
        return std::nullopt;
    case monitor::Completion::impossible:
        return SimulationProblem{SimulationProblem::Kind::contradiction, -1, {}};
    case monitor::Completion::unsettled: break;
    }
    return SimulationProblem{SimulationProblem::Kind::unsettled, -1, {}};
}

std::vector<plant::AtomIndex> Simulator::valuesToTry(plant::VariableIndex variable,
                                                     std::optional<plant::AtomIndex> wanted)
{
    const auto index = static_cast<std::size_t>(variable);
    const auto last = labels_->valueOf(plant_.variable(variable));
    std::vector<plant::AtomIndex> values = plant_.variable(variable).values.toVector();
    if (chance_ && varies_[index] && last && !wanted) {
        values = chance_->shuffled(std::move(values));
        const auto place = std::find(values.begin(), values.end(), *last);
        if (chance_->happens(*varies_[index])) {
            std::rotate(place, place + 1, values.end());
        } else {
            std::rotate(values.begin(), place, place + 1);
        }
        return values;
    }
    if (chance_ && !isInput_[index]) {
        values = chance_->shuffled(std::move(values));
    } else if (!wanted) {
        wanted = last;
    }
    if (wanted) {
        const auto place = std::find(values.begin(), values.end(), *wanted);
        std::rotate(values.begin(), place, place + 1);
    }
    return values;
}

void Simulator::read(Trial& trial)
{
    for (const plant::VariableIndex variable : observed_) {
        const auto index = static_cast<std::size_t>(variable);
        plant::AtomIndex value = trial.step.values[index];
        if (chance_ && misread_[index] > 0.0 && chance_->happens(misread_[index])) {
            const plant::ValueRange values = plant_.variable(variable).values;
            value = values[chance_->below(values.size())];
            trial.step.misread.push_back(variable);
        }
        trial.step.observations.push_back(value);
    }
    std::sort(trial.step.misread.begin(), trial.step.misread.end());
}

SimulatedStep Simulator::accept(Trial& trial)
{
    for (const plant::PlantVariable& variable : plant_.variables()) {
        trial.step.values.push_back(trial.labels.valueOf(variable).value_or(-1));
    }
    read(trial);
    labels_.emplace(std::move(trial.labels));
    wasOpen_ = std::move(trial.open);
    return std::move(trial.step);
}

} // namespace simulate
