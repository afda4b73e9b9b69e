// A dense view of a model: atoms, variables and clauses by number.
//
// The engine reaches everything by identifier and pointer. The monitor walks the whole plant at every
// prediction, and wants arrays.
#pragma once

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comp.h"
#include "plant/Model.h"

#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace plant {

using AtomIndex = std::int32_t;
using ClauseIndex = std::int32_t;
using VariableIndex = std::int32_t;

/// A literal of a clause.
struct PlantLiteral {
    AtomIndex atom;
    bool negated;
};

/// How a mode may change from a value: what one statement of the model says.
struct PlantChange {
    /// It can happen where all of these literals hold; that its variable has the value that is left is understood.
    struct Alternative {
        std::vector<PlantLiteral> literals;
        const Transition* transition; ///< that was made of it
    };

    AtomIndex to;
    double probability; ///< per step, above 0; counts once, however many alternatives hold
    bool nominal;
    bool repair; ///< something that was wrong is mended; never nominal
    std::vector<Alternative> alternatives;
};

/// A state variable of the plant.
struct PlantVariable {
    StateVar* variable;
    std::vector<AtomIndex> values; ///< in the order of `atomLinks`
    bool isMode;
    bool isCommand;
};

class PlantParts;

/// A model by numbers. Components come in the order in which the registry lists them when the model is the first one in
/// it, their variables and values in their own, so the numbers are the same at every run. Checkpoints hold them.
class Plant {
public:
    /// The model outlives the plant, and is not changed; it need not be active. Linear.
    explicit Plant(const Model& model);
    /// These variables of a plant, by rising index, with the clauses that mention them, in its order; without the changes of modes.
    /// Requires: no clause mentions one of them and another variable. The plant's model outlives it. Linear in them, but for a logarithm.
    Plant(const Plant& whole, const std::vector<VariableIndex>& variables);
    ~Plant();
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    std::size_t atomCount() const { return atoms_.size(); }
    Atom* atom(AtomIndex index) const { return atoms_[static_cast<std::size_t>(index)]; }
    /// Requires an atom of the plant.
    AtomIndex indexOf(const Atom* atom) const { return indexOf_.at(atom); }

    const std::vector<PlantVariable>& variables() const { return variables_; }
    const PlantVariable& variable(VariableIndex index) const
    {
        return variables_[static_cast<std::size_t>(index)];
    }
    VariableIndex variableOf(AtomIndex atom) const
    {
        return variableOf_[static_cast<std::size_t>(atom)];
    }

    std::size_t clauseCount() const { return clauses_.size(); }
    const std::vector<PlantLiteral>& clause(ClauseIndex index) const
    {
        return clauses_[static_cast<std::size_t>(index)];
    }
    /// The object that the clause was made of.
    const Clause* modelClause(ClauseIndex index) const
    {
        return modelClauses_[static_cast<std::size_t>(index)];
    }
    /// Whether it is one of the model-wide laws; the others make a variable have exactly one value.
    bool isLaw(ClauseIndex index) const { return index >= firstLaw_; }
    const std::vector<ClauseIndex>& clausesOf(AtomIndex atom) const
    {
        return clausesOf_[static_cast<std::size_t>(atom)];
    }
    /// The clauses of at most one literal: they give a label, or are violated, before anything is assumed.
    const std::vector<ClauseIndex>& unitClauses() const { return unitClauses_; }

    /// The changes that leave a mode value for another one, in the model's order. Those that can never happen (an alternative that
    /// wants another value of the variable, a probability of 0) are not among them.
    const std::vector<PlantChange>& changesFrom(AtomIndex value) const
    {
        return changesFrom_[static_cast<std::size_t>(value)];
    }

    /// The mode variables that have values, by rising index.
    const std::vector<VariableIndex>& modes() const { return modes_; }
    /// The place of a mode variable among them. Requires: it has values.
    std::size_t modePlace(VariableIndex mode) const
    {
        return modePlaces_[static_cast<std::size_t>(mode)];
    }
    /// The modes of which a guard mentions the atom, by rising index, each once.
    std::span<const VariableIndex> modesReading(AtomIndex atom) const
    {
        return modesReading_[static_cast<std::size_t>(atom)];
    }

    /// How many command variables have values.
    std::size_t commandCount() const { return commandCount_; }
    /// How many mode variables it has; of a part of a plant: the whole.
    std::size_t modesOfWhole() const { return modesOfWhole_; }

    /// The parts that nothing but guards connects, found where they are asked for. For one thread, as all of a session is.
    PlantParts& parts() const;

private:
    void addChanges(const Model& model);
    void addModes();
    void addReaders();
    void addVariable(StateVar* variable);
    void addClause(const Clause* clause);
    void addClause(const Clause* clause, std::vector<PlantLiteral> literals);

    std::vector<Atom*> atoms_;
    std::unordered_map<const Atom*, AtomIndex> indexOf_;
    std::vector<PlantVariable> variables_;
    std::vector<VariableIndex> variableOf_;
    std::vector<std::vector<PlantLiteral>> clauses_;
    std::unordered_map<const Clause*, ClauseIndex> clauseIndexOf_;
    std::vector<const Clause*> modelClauses_;
    ClauseIndex firstLaw_ = 0;
    std::vector<std::vector<ClauseIndex>> clausesOf_;
    std::vector<ClauseIndex> unitClauses_;
    std::vector<std::vector<PlantChange>> changesFrom_; ///< by the value that is left
    std::vector<VariableIndex> modes_;
    std::vector<std::size_t> modePlaces_;      ///< by variable
    ListSequence<VariableIndex> modesReading_; ///< by atom
    std::size_t commandCount_ = 0;
    std::size_t modesOfWhole_ = 0;
    mutable std::unique_ptr<PlantParts> parts_; ///< null: not asked for
};

} // namespace plant
