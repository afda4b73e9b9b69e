// What is known about the modes of a plant after each step, in exact fractions: the forward recursion over all modes, by
// trying everything. It judges monitor/track/Tracker, and shares nothing with it.
//
//     ExactFilter filter(*model, {.lost = bindings.lost});
//     const FilterAnswer& answer = filter.advance({commands, observations});
//     answer.probability({broken, ok}).value();
//
// The weight of modes after a step is the sum, over all modes before it, of their weight times the probability of getting from
// there to here times the likelihood of what was observed. In detail:
//
//   - Each mode variable changes by itself (ExactTransitions.h). What may have been before the step are the worlds that the laws
//     allow with the modes, commands and observations of the step before; before the first step, with the initial values. Where
//     there are none before the first step, it is inconsistent.
//   - A given command that may be lost has its variable's first value then. A command that is not given is open.
//   - Given modes, commands and inputs, each combination of values of the observed variables that the laws allow is as probable
//     as any other (ExactReadings.h). Inputs count nothing.
//
//   - A reading that may be wrong is any value of its variable then, one as probable as the other; the step is as if it had not been
//     made. A wrong reading of an input counts nothing but that it is wrong.
//
// Besides the modes, the weights are kept apart by what the future depends on as well: which commands arrived and which readings were
// wrong, since laws may mention them; and with readings in time the readings that are remembered.
#pragma once

#include "tests/reference/ExactReadings.h"
#include "tests/reference/ExactTransitions.h"

#include <unordered_map>

/// What is given for a step, in any order.
struct FilterStep {
    std::vector<const Atom*> commands;
    Observations observations;
};

struct FilterSettings {
    std::set<const StateVar*> inputs = {}; ///< variables whose readings are given, not scored
    /// By command: that it does not arrive.
    std::unordered_map<const StateVar*, double> lost = {};
    std::unordered_map<const StateVar*, double> misread = {}; ///< by variable: that a reading is wrong
    bool readingsInTime = false;
    std::map<const StateVar*, ExactFraction> changing = {}; ///< v of ExactReadings.h, by variable
};

/// What is known after a step.
struct FilterAnswer {
    using Modes = std::vector<const Atom*>; ///< by ExactFilter::modes()

    /// Nothing that is possible explains this step or one before it. The probabilities are empty.
    bool inconsistent = false;
    /// Of the step's observations given all before it; 0 where it is inconsistent.
    ExactFraction likelihood;
    std::map<Modes, ExactFraction> probabilities; ///< of those that are possible; they add up to 1

    ExactFraction probability(const Modes& modes) const;
    /// That a mode has this value.
    ExactFraction probability(const Atom* value) const;
    /// That some mode has a value that is a fault.
    ExactFraction fault() const;
};

class ExactFilter {
public:
    using Modes = FilterAnswer::Modes;

    /// The model outlives it, and need not be active.
    explicit ExactFilter(const plant::Model& model, FilterSettings settings = {});
    ExactFilter(const ExactFilter&) = delete; // parts of it refer to others
    ExactFilter& operator=(const ExactFilter&) = delete;

    /// Takes a step. After an inconsistent one all further ones are.
    const FilterAnswer& advance(const FilterStep& step);
    const FilterAnswer& answer() const { return answer_; }

    std::vector<const StateVar*> modes() const { return worlds_.variables("Mode"); }

private:
    using Commands = std::vector<const Atom*>;

    /// What the weights are kept apart by.
    struct Key {
        Modes modes;
        Commands arrived;
        Observations read; ///< those that are not wrong
        Remembered remembered;
        auto operator<=>(const Key&) const = default;
    };
    struct State {
        ExactFraction weight;
        std::vector<World> worlds; ///< that there may be, without the commands
    };
    using States = std::map<Key, State>;

    /// Every way in which the commands may arrive, with its probability.
    std::vector<std::pair<Commands, ExactFraction>> arrivals(const Commands& given) const;
    /// Every way in which readings may be right, with its probability and that of the others to be what they are.
    std::vector<std::pair<Observations, ExactFraction>> rightOnes(const Observations& observed) const;
    /// Every combination of modes after the step, with its probability.
    std::vector<std::pair<Modes, ExactFraction>> successors(const Modes& before, const State& state,
                                                            const Commands& arrived) const;
    /// Adds what becomes of a state whose modes and commands are these.
    void reach(const Key& before, const Key& after, const ExactFraction& weight, States& next) const;
    void summarise(const ExactFraction& totalBefore);
    ExactFraction total() const;

    FilterSettings settings_;
    ExactWorlds worlds_;
    ExactTransitions transitions_;
    ExactReadings readings_;
    States states_;
    FilterAnswer answer_;
};
