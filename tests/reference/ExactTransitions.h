// How probable each value of a mode is after a step, in exact fractions, from everything that may have been before it.
#pragma once

#include "tests/reference/ExactFraction.h"
#include "tests/reference/ExactWorlds.h"

/// For each transition of the model, in its order, which statement it belongs to: a statement whose guard has several
/// alternatives becomes several transitions. The numbers themselves mean nothing.
using Statements = std::vector<std::size_t>;

/// Neighbouring transitions that differ in their guards only belong together. A model does not tell more than that:
/// two statements that follow one another and differ in their guards only are taken for one.
Statements statementsOfNeighbours(const plant::Model& model);

class ExactTransitions {
public:
    /// Model and worlds outlive it.
    ExactTransitions(const plant::Model& model, const ExactWorlds& worlds, Statements statements);

    /// The values that the mode may have after a step, with their probabilities. `before` is what may have been before the
    /// step, each world as probable as any other; the mode has the same value, `from`, in all of them. `commands` are those
    /// of the step; another command may have any of its values, each as probable as any other.
    /// Requires: a world before.
    std::map<const Atom*, ExactFraction> chances(const StateVar* mode, const Atom* from,
                                                 const std::vector<World>& before,
                                                 const std::vector<const Atom*>& commands) const;

private:
    struct Statement {
        const Atom* target;
        double probability;
        std::vector<std::span<const plant::GuardLiteral>> alternatives;
    };

    ExactFraction share(const Statement& statement, const std::vector<World>& before,
                        const std::vector<const Atom*>& commands) const;
    bool holds(const Statement& statement, const World& world) const;

    const ExactWorlds& worlds_;
    std::vector<Statement> statements_;
};
