// A dense view of a model: atoms, variables and clauses by number.
//
// The engine reaches everything by identifier and pointer. The monitor walks the whole plant at every
// prediction, and wants arrays.
#pragma once

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comp.h"
#include "plant/ListSequence.h"
#include "plant/Model.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
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
        std::span<const PlantLiteral> literals;
    };

    AtomIndex to;
    double probability; ///< per step, above 0; counts once, however many alternatives hold
    bool nominal;
    bool repair; ///< something that was wrong is mended; never nominal
    std::span<const Alternative> alternatives;
};

/// The numbers of a variable's values, which follow one another.
class ValueRange {
public:
    class Iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = AtomIndex;
        using difference_type = std::ptrdiff_t;
        using pointer = const AtomIndex*;
        using reference = AtomIndex;

        Iterator() = default;
        explicit Iterator(AtomIndex value) : value_(value) {}
        AtomIndex operator*() const { return value_; }
        AtomIndex operator[](difference_type by) const { return *(*this + by); }
        Iterator& operator++() { return *this += 1; }
        Iterator operator++(int) { return Iterator(value_++); }
        Iterator& operator--() { return *this += -1; }
        Iterator operator--(int) { return Iterator(value_--); }
        Iterator& operator+=(difference_type by)
        {
            value_ += static_cast<AtomIndex>(by);
            return *this;
        }
        Iterator& operator-=(difference_type by) { return *this += -by; }
        friend Iterator operator+(Iterator from, difference_type by) { return from += by; }
        friend Iterator operator+(difference_type by, Iterator from) { return from += by; }
        friend Iterator operator-(Iterator from, difference_type by) { return from -= by; }
        friend difference_type operator-(Iterator a, Iterator b) { return a.value_ - b.value_; }
        friend auto operator<=>(const Iterator&, const Iterator&) = default;

    private:
        AtomIndex value_ = 0;
    };

    ValueRange() = default;
    ValueRange(AtomIndex first, AtomIndex end) : first_(first), end_(end) {}
    Iterator begin() const { return Iterator(first_); }
    Iterator end() const { return Iterator(end_); }
    std::size_t size() const { return static_cast<std::size_t>(end_ - first_); }
    bool empty() const { return first_ == end_; }
    AtomIndex operator[](std::size_t place) const { return first_ + static_cast<AtomIndex>(place); }
    AtomIndex front() const { return first_; }
    AtomIndex back() const { return end_ - 1; }
    std::vector<AtomIndex> toVector() const { return {begin(), end()}; }

private:
    AtomIndex first_ = 0;
    AtomIndex end_ = 0;
};

/// A state variable of the plant.
struct PlantVariable {
    StateVar* variable;
    ValueRange values; ///< in the order of `atomLinks`
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
    /// Requires: no clause mentions one of them and another variable. The plant outlives it. Linear in them, but for a logarithm.
    Plant(const Plant& whole, const std::vector<VariableIndex>& variables);
    ~Plant();
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    const Model& model() const { return model_; }

    std::size_t atomCount() const { return atoms_.size(); }
    Atom* atom(AtomIndex index) const { return atoms_[static_cast<std::size_t>(index)]; }
    /// Requires an atom of the plant. Constant time; in a part of a plant logarithmic.
    AtomIndex indexOf(const Atom* atom) const
    {
        return numbers_.empty() ? indexOf_[atom->number] : indexInPart(atom);
    }

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
    std::span<const PlantLiteral> clause(ClauseIndex index) const
    {
        return clauses_[static_cast<std::size_t>(index)];
    }
    /// The engine's object of the clause. The first call makes those of the whole model. Requires: no part of a plant.
    const Clause* modelClause(ClauseIndex index) const;
    /// Whether it is one of the model-wide laws; the others make a variable have exactly one value.
    bool isLaw(ClauseIndex index) const { return index >= firstLaw_; }
    /// The number of a law in the model. Requires: the clause is a law.
    std::size_t lawOf(ClauseIndex index) const
    {
        return static_cast<std::size_t>(index - firstLaw_);
    }
    /// By rising index.
    std::span<const ClauseIndex> clausesOf(AtomIndex atom) const
    {
        return clausesOf_[static_cast<std::size_t>(atom)];
    }
    /// What is read of an atom's clauses, in this order: each is found by the one before.
    enum class Reading { listPlace, list, clausePlaces, clauses };
    /// Prefetches it, for what will be read soon: the memory of a large plant is read here and there, and not from the cache.
    void prefetch(AtomIndex atom, Reading what) const
    {
        const auto own = static_cast<std::size_t>(atom);
        switch (what) {
        case Reading::listPlace: clausesOf_.prefetchPlace(own); return;
        case Reading::list: clausesOf_.prefetch(own); return;
        case Reading::clausePlaces:
            for (const ClauseIndex clause : clausesOf_[own]) {
                clauses_.prefetchPlace(static_cast<std::size_t>(clause));
            }
            return;
        case Reading::clauses:
            for (const ClauseIndex clause : clausesOf_[own]) {
                clauses_.prefetch(static_cast<std::size_t>(clause));
            }
        }
    }
    /// The clauses of at most one literal: they give a label, or are violated, before anything is assumed.
    const std::vector<ClauseIndex>& unitClauses() const { return unitClauses_; }

    /// The changes that leave a mode value for another one, in the model's order. Those that can never happen (an alternative that
    /// wants another value of the variable, a probability of 0) are not among them.
    std::span<const PlantChange> changesFrom(AtomIndex value) const
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
    AtomIndex indexInPart(const Atom* atom) const;
    void addVariables();
    void addVariable(StateVar* variable);
    void addClauses();
    void addClause(std::vector<SignedNumber>& literals);
    void listClauses();
    void addChanges();
    bool addChange(std::size_t transition, bool isNew);
    void addModes();
    void addReaders();

    const Model& model_;
    std::vector<Atom*> atoms_;
    std::vector<AtomIndex> indexOf_; ///< by the numbers of the model's atoms; of a part of a plant empty
    std::vector<std::pair<std::uint32_t, AtomIndex>> numbers_; ///< of a part: the model's, sorted, and its own
    std::vector<PlantVariable> variables_;
    std::vector<VariableIndex> variableOf_;
    ListSequence<PlantLiteral> clauses_;
    ClauseIndex firstLaw_ = 0;
    ListSequence<ClauseIndex> clausesOf_;
    std::vector<ClauseIndex> unitClauses_;
    ListSequence<PlantChange> changesFrom_; ///< by the value that is left
    std::vector<PlantChange::Alternative> alternatives_;
    std::vector<PlantLiteral> guards_;
    std::vector<VariableIndex> modes_;
    std::vector<std::uint32_t> modePlaces_;    ///< by variable
    ListSequence<VariableIndex> modesReading_; ///< by atom
    std::size_t commandCount_ = 0;
    std::size_t modesOfWhole_ = 0;
    mutable std::unique_ptr<PlantParts> parts_; ///< null: not asked for
};

} // namespace plant
