#include "monitor/Simulator.h"

#include "monitor/Completion.h"
#include "monitor/Step.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace monitor {

namespace {

// How often modes that contradict one another are drawn anew.
constexpr int mostDraws = 100;

VariableIndex indexOf(const Plant& plant, const StateVar* variable)
{
    return plant.variableOf(plant.indexOf(variable->atomLinks->front()));
}

const Atom* initialOf(const PlantVariable& mode, const Plant& plant)
{
    return mode.variable->initial ? mode.variable->initial : plant.atom(mode.values.front());
}

// The value of the variable in the list, if there is one.
std::optional<AtomIndex> given(const Plant& plant, const std::vector<AtomIndex>& values,
                               VariableIndex variable)
{
    const auto found = std::find_if(values.begin(), values.end(), [&](AtomIndex value) {
        return plant.variableOf(value) == variable;
    });
    return found == values.end() ? std::nullopt : std::optional(*found);
}

// The values of modes on which the contradiction in `labels` rests.
std::vector<AtomIndex> modesOfViolated(const Plant& plant, const Prediction& labels)
{
    std::vector<AtomIndex> atoms;
    if (labels.violated() >= 0) {
        for (const PlantLiteral& literal : plant.clause(labels.violated())) {
            atoms.push_back(literal.atom);
        }
    }
    std::vector<AtomIndex> values;
    for (const VariableIndex mode : labels.environment(atoms)) {
        if (const auto value = labels.valueOf(plant.variable(mode))) {
            values.push_back(*value);
        }
    }
    return values;
}

// Gives the variable the first value that is possible, if one is, and tells whether some value determines one of the
// observed variables that are open.
bool settle(const Plant& plant, VariableIndex variable, const std::vector<VariableIndex>& observed,
            Prediction& labels)
{
    const auto isKnown = [&](VariableIndex one) {
        return labels.valueOf(plant.variable(one)).has_value();
    };
    const std::vector<AtomIndex>& values = plant.variable(variable).values;
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
std::vector<bool> determinedByAMode(const Plant& plant)
{
    std::vector<bool> determined(plant.variables().size(), false);
    for (std::size_t i = 0; i < plant.clauseCount(); ++i) {
        const std::vector<PlantLiteral>& literals = plant.clause(static_cast<ClauseIndex>(i));
        if (literals.size() != 2) {
            continue;
        }
        for (const bool first : {true, false}) {
            const PlantLiteral& mode = literals[first ? 0 : 1];
            const PlantLiteral& other = literals[first ? 1 : 0];
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
    explicit Trial(const Plant& plant) : labels(plant), open(plant.variables().size(), false) {}

    Prediction labels;
    std::vector<bool> open; ///< by variable: modes and commands do not determine it
    std::vector<AtomIndex> arrived;
    SimulatedStep step;
};

Simulator::Simulator(const Plant& plant, const language::Bindings& bindings,
                     const SimulatorSettings& settings)
    : plant_(plant), lost_(plant.variables().size(), 0.0), isInput_(plant.variables().size(), false),
      wasOpen_(plant.variables().size(), false), labels_(initialLabels(plant))
{
    if (settings.seed) {
        chance_.emplace(*settings.seed);
    }
    for (const language::ChannelBinding& binding : bindings.channels) {
        if (binding.kind == language::ChannelBinding::Kind::observation) {
            observed_.push_back(indexOf(plant, binding.variable));
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
    const auto key = [&](VariableIndex variable) {
        const auto index = static_cast<std::size_t>(variable);
        return std::pair(static_cast<bool>(determined[index]), place[index]);
    };
    std::stable_sort(order_.begin(), order_.end(),
                     [&](VariableIndex a, VariableIndex b) { return key(a) < key(b); });
}

// Takes the variables in their order, each with some value, and sees which are open when their turn comes.
void Simulator::findInputs()
{
    Prediction labels(plant_);
    for (const PlantVariable& variable : plant_.variables()) {
        if (variable.isMode && !variable.values.empty()) {
            labels.assume(plant_.indexOf(initialOf(variable, plant_)));
        } else if (variable.isCommand && !variable.values.empty()) {
            labels.assume(variable.values.front());
        }
    }
    if (!labels.propagate()) {
        return;
    }
    std::vector<VariableIndex> openObserved = observed_;
    for (const VariableIndex variable : order_) {
        std::erase_if(openObserved, [&](VariableIndex observed) {
            return labels.valueOf(plant_.variable(observed)).has_value();
        });
        if (!labels.valueOf(plant_.variable(variable))) {
            isInput_[static_cast<std::size_t>(variable)] =
                settle(plant_, variable, openObserved, labels);
        }
    }
    std::stable_partition(order_.begin(), order_.end(), [this](VariableIndex variable) {
        return static_cast<bool>(isInput_[static_cast<std::size_t>(variable)]);
    });
}

std::vector<AtomIndex> Simulator::allCommands(const std::vector<AtomIndex>& givenCommands) const
{
    std::vector<std::optional<AtomIndex>> values(plant_.variables().size());
    for (const AtomIndex value : givenCommands) {
        values[static_cast<std::size_t>(plant_.variableOf(value))] = value;
    }
    std::vector<AtomIndex> commands;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const PlantVariable& variable = plant_.variables()[i];
        if (variable.isCommand && !variable.values.empty()) {
            commands.push_back(values[i].value_or(variable.values.front()));
        }
    }
    return commands;
}

std::vector<AtomIndex> Simulator::possibleFaults(const std::vector<AtomIndex>& commands) const
{
    std::vector<AtomIndex> faults;
    for (const ModeStep& step : modeSteps(plant_, *labels_, allCommands(commands))) {
        for (const ModeOption& option : step.options) {
            if (option.fault) {
                faults.push_back(option.value);
            }
        }
    }
    return faults;
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
    for (const AtomIndex command : trial.step.commands) {
        const VariableIndex variable = plant_.variableOf(command);
        const AtomIndex silent = plant_.variable(variable).values.front();
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
    for (const ModeStep& step : modeSteps(plant_, *labels_, trial.arrived)) {
        const auto injected = given(plant_, input.injections, step.variable);
        if (injected && !step.option(*injected)) {
            SimulationProblem problem{SimulationProblem::Kind::unreachable, *injected, {}};
            for (const ModeOption& option : step.options) {
                problem.values.push_back(option.value);
            }
            return problem;
        }
        const AtomIndex drawn = chance_ && !injected ? draw(step) : step.predicted;
        const AtomIndex after = injected.value_or(drawn);
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

AtomIndex Simulator::draw(const ModeStep& step)
{
    double sum = 0.0;
    for (const ModeOption& option : step.options) {
        sum += option.probability;
    }
    double at = chance_->fraction() * sum;
    for (const ModeOption& option : step.options) {
        if (at < option.probability) {
            return option.value;
        }
        at -= option.probability;
    }
    return step.options.back().value;
}

std::optional<SimulationProblem> Simulator::fill(const SimulationInput& input, Trial& trial)
{
    std::vector<std::optional<AtomIndex>> wanted(plant_.variables().size());
    for (const AtomIndex value : input.observations) {
        wanted[static_cast<std::size_t>(plant_.variableOf(value))] = value;
    }
    std::vector<VariableIndex> order = order_;
    std::stable_partition(order.begin(), order.end(), [&](VariableIndex variable) {
        return static_cast<bool>(wasOpen_[static_cast<std::size_t>(variable)]);
    });
    std::stable_partition(order.begin(), order.end(), [&](VariableIndex variable) {
        return wanted[static_cast<std::size_t>(variable)].has_value();
    });
    const auto values = [&](VariableIndex variable) {
        return valuesToTry(variable, wanted[static_cast<std::size_t>(variable)]);
    };
    switch (complete(plant_, trial.labels, order, values)) {
    case Completion::possible:
        std::copy_if(input.observations.begin(), input.observations.end(),
                     std::back_inserter(trial.step.ignored),
                     [&](AtomIndex value) { return !trial.labels.isTrue(value); });
        return std::nullopt;
    case Completion::impossible:
        return SimulationProblem{SimulationProblem::Kind::contradiction, -1, {}};
    case Completion::unsettled: break;
    }
    return SimulationProblem{SimulationProblem::Kind::unsettled, -1, {}};
}

std::vector<AtomIndex> Simulator::valuesToTry(VariableIndex variable,
                                              std::optional<AtomIndex> wanted)
{
    std::vector<AtomIndex> values = plant_.variable(variable).values;
    if (chance_ && !isInput_[static_cast<std::size_t>(variable)]) {
        values = chance_->shuffled(std::move(values));
    } else if (!wanted) {
        wanted = labels_->valueOf(plant_.variable(variable));
    }
    if (wanted) {
        const auto place = std::find(values.begin(), values.end(), *wanted);
        std::rotate(values.begin(), place, place + 1);
    }
    return values;
}

SimulatedStep Simulator::accept(Trial& trial)
{
    for (const PlantVariable& variable : plant_.variables()) {
        trial.step.values.push_back(trial.labels.valueOf(variable).value_or(-1));
    }
    for (const VariableIndex variable : observed_) {
        trial.step.observations.push_back(trial.step.values[static_cast<std::size_t>(variable)]);
    }
    labels_.emplace(std::move(trial.labels));
    wasOpen_ = std::move(trial.open);
    return std::move(trial.step);
}

} // namespace monitor
