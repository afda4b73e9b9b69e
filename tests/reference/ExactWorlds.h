// What the laws of a model allow: every complete assignment of values to its variables that satisfies all clauses, by
// trying them all.
#pragma once

#include "plant/Model.h"

#include <map>
#include <set>
#include <vector>

/// A value of every variable, in the order of ExactWorlds::variables(). Null for a variable that is left out.
using World = std::vector<const Atom*>;

class ExactWorlds {
public:
    /// The model outlives it, and need not be active.
    explicit ExactWorlds(const plant::Model& model);

    /// The modes first, then the commands, then the conditions.
    const std::vector<const StateVar*>& variables() const { return variables_; }
    /// Those of a type: "Mode", "Command" or "Cond".
    std::vector<const StateVar*> variables(const std::string& type) const;
    std::size_t indexOf(const StateVar* variable) const { return index_.at(variable); }
    const Atom* value(const World& world, const StateVar* variable) const
    {
        return world[indexOf(variable)];
    }

    /// All that have the given values: none where a variable is given two of them.
    std::vector<World> with(const std::vector<const Atom*>& given) const;
    /// Those among the worlds that have the given values.
    std::vector<World> with(const std::vector<World>& worlds,
                            const std::vector<const Atom*>& given) const;
    /// The combinations of the values that these variables have in the worlds, each once, in the order of `variables`.
    std::set<std::vector<const Atom*>> combinations(
        const std::vector<World>& worlds, const std::vector<const StateVar*>& variables) const;
    /// The worlds without the commands, each once.
    std::vector<World> withoutCommands(const std::vector<World>& worlds) const;

private:
    void complete(World& world, std::size_t next, const World& fixed,
                  std::vector<World>& found) const;
    bool satisfied(std::size_t law, const World& world) const;

    std::vector<const StateVar*> variables_;
    std::map<const StateVar*, std::size_t> index_;
    std::vector<std::vector<std::size_t>> lawsEndingAt_; ///< by the last variable that they mention
    std::vector<std::vector<plant::Literal>> laws_;
    bool contradictory_ = false; ///< there is a law without literals
};
