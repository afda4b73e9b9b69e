// How probable each value of a mode is after a step, in exact fractions, from everything that may have been before it.
#pragma once

#include "tests/reference/ExactFraction.h"
#include "tests/reference/ExactWorlds.h"

class ExactTransitions {
public:
    /// Model and worlds outlive it.
    ExactTransitions(const plant::Model& model, const ExactWorlds& worlds);

    /// The values that the mode may have after a step, with their probabilities. `before` is what may have been before the
    /// step, each world as probable as any other; the mode has the same value, `from`, in all of them. `commands` are those
    /// of the step; another command may have any of its values, each as probable as any other.
    /// Requires: a world before.
    std::map<const Atom*, ExactFraction> chances(const StateVar* mode, const Atom* from,
                                                 const std::vector<World>& before,
                                                 const std::vector<const Atom*>& commands) const;

private:
    /// Transitions that are one change of the model, whose probability counts once.
    struct Statement {
        const Atom* target;
        double probability;
        std::vector<std::vector<plant::GuardLiteral>> alternatives;
    };

    ExactFraction share(const Statement& statement, const std::vector<World>& before,
                        const std::vector<const Atom*>& commands) const;
    bool holds(const Statement& statement, const World& world) const;

    const ExactWorlds& worlds_;
    std::vector<Statement> statements_;
};
