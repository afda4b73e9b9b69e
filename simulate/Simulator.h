// A plant that a model stands in for: commands and faults in, readings out.
//
//     Simulator simulator(plant, bindings);
//     const SimulatedStep opened = std::get<SimulatedStep>(simulator.step({{requestOpen}, {}, {}}));
//     const auto stuck = simulator.step({{}, {}, {stuckClosed}});
//
// A step: commands that are not given have their default, the first value. A mode variable has the value injected, or
// else the one predicted (monitor/labels/ModeSteps.h). Conditions follow by propagation. What is still open takes the value
// given for it, and at last any value with which all laws hold: the one that it had, if it can keep it, and else
// its first possible one.
//
// With a seed the plant lives by the model's probabilities: modes take transitions as probable as they are, commands
// are lost, readings are wrong (then any value is read, one as probable as the other), and what is open is drawn from the values
// that it can have, one as probable as the other. Modes that contradict one another by a law are drawn anew, so that they have
// their probability among those that can be together. Inputs keep their value: variables that the bindings declare to be inputs,
// and those that are open while nothing is broken, and measured, which means that they are bound to a channel or determine one that
// is. What varies by its binding keeps its value where it is open, except as often as the binding says.
//
// Laws have no direction, so the order in which open variables get values matters: after `outflow = inflow` begins to hold,
// the one that comes first takes the other along. First come those that are given, then those that were open in the
// step before as well, then inputs, then those that no single mode value determines (an inflow, not the outflow, which a
// closed valve makes zero), then those bound to a channel, in the order of the bindings.
#pragma once

#include "monitor/labels/ModeSteps.h"
#include "plant/Bindings.h"
#include "simulate/Chance.h"

#include <optional>
#include <variant>
#include <vector>

namespace simulate {

/// What comes from outside in a step. Values are atoms of the plant, at most one of each variable in each list.
struct SimulationInput {
    std::vector<plant::AtomIndex> commands;
    std::vector<plant::AtomIndex>
        observations; ///< of inputs; of a variable that follows from others it is ignored
    std::vector<plant::AtomIndex> injections; ///< mode values that are set, however improbable
};

enum class ModeCause {
    predicted, ///< a nominal transition, or one that leaves nothing to staying
    drawn,     ///< another one, by its probability
    injected,
};

/// A mode variable that changed its value, or did not where a change was predicted.
struct ModeChange {
    plant::VariableIndex variable;
    plant::AtomIndex before;
    plant::AtomIndex after;
    ModeCause cause;

    friend bool operator==(const ModeChange&, const ModeChange&) = default;
};

struct SimulatedStep {
    std::vector<plant::AtomIndex> values; ///< of every variable, by its index
    std::vector<plant::AtomIndex> commands; ///< as given, or the default: a value of every command variable
    std::vector<plant::VariableIndex> lost; ///< commands that did not arrive: their variable has the default
    std::vector<ModeChange> changes;            ///< by rising index of the variable
    std::vector<plant::AtomIndex> observations; ///< of the observed variables, in the order of their bindings
    std::vector<plant::VariableIndex>
        misread; ///< of which another value was read than there is, perhaps; sorted
    std::vector<plant::AtomIndex> ignored; ///< given observations that do not hold: something else follows

    friend bool operator==(const SimulatedStep&, const SimulatedStep&) = default;
};

/// Why a step cannot be.
struct SimulationProblem {
    enum class Kind {
        unreachable,   ///< no transition that is possible now leads to an injected value
        contradiction, ///< modes and commands cannot be together by the laws
        unsettled, ///< neither values for what is open nor a contradiction was found in reasonable time
    };
    Kind kind;
    plant::AtomIndex injected =
        -1; ///< unreachable: the value; `values` are those that its variable can have
    std::vector<plant::AtomIndex> values; ///< contradiction: the modes on which it rests, as far as known
};

struct SimulatorSettings {
    std::optional<std::uint64_t> seed; ///< none: everything goes as predicted
    std::vector<plant::VariableIndex>
        alsoObserved; ///< besides those with a binding, and after them; none twice. Changes nothing in the plant
};

class Simulator {
public:
    /// In the initial state (monitor/step/Step.h, initialLabels). Linear in the plant, and in the open variables times the observed
    /// ones that are open with them.
    /// Requires: the plant outlives this; the bindings are of its model.
    Simulator(const plant::Plant& plant, const plant::Bindings& bindings,
              const SimulatorSettings& settings = {});

    /// Goes a step on. Linear in the plant, if no value that was given to an open variable has to be taken back; there is a bound
    /// on how many are.
    /// Ensures: with a problem the state is as it was.
    std::variant<SimulatedStep, SimulationProblem> step(const SimulationInput& input);

    /// Labels after the last step. Before the first, the initial ones: modes, and conditions as far as known.
    const monitor::Prediction& labels() const { return *labels_; }
    /// The observed variables: those bound as observations, then those of the settings.
    const std::vector<plant::VariableIndex>& observed() const { return observed_; }

private:
    struct Trial;

    std::vector<plant::AtomIndex> allCommands(const std::vector<plant::AtomIndex>& given) const;
    std::optional<SimulationProblem> tryStep(const SimulationInput& input, Trial& trial);
    void loseCommands(Trial& trial);
    std::optional<SimulationProblem> moveModes(const SimulationInput& input, Trial& trial);
    plant::AtomIndex draw(const monitor::ModeStep& step);
    std::optional<SimulationProblem> fill(const SimulationInput& input, Trial& trial);
    std::vector<plant::AtomIndex> valuesToTry(plant::VariableIndex variable,
                                              std::optional<plant::AtomIndex> wanted);
    void read(Trial& trial);
    SimulatedStep accept(Trial& trial);
    void findOrder();
    void findInputs();

    const plant::Plant& plant_;
    std::optional<Chance> chance_;
    std::vector<plant::VariableIndex> observed_;
    std::vector<double> lost_;                  ///< by variable
    std::vector<plant::VariableIndex> order_;   ///< in which open variables get values
    std::vector<bool> isInput_;                 ///< by variable
    std::vector<std::optional<double>> varies_; ///< by variable, as the bindings say
    std::vector<double> misread_; ///< the same, of several channels of a variable the most
    std::vector<bool> wasOpen_;   ///< by variable: nothing determined it in the last step
    std::optional<monitor::Prediction> labels_; ///< always there
};

} // namespace simulate
