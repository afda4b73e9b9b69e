// A model that was built: all of its objects, and the one place that makes it the active one.
#pragma once

#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Transition.h"
#include "model/keys.h"

#include "model/Atom.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace plant {

/// A literal of a law: `negated` true for "not the atom".
struct Literal {
    bool negated;
    Atom* atom;
};

/// An atom of a precondition: key true when it must hold, false when it must not.
using GuardLiteral = std::pair<bool, Atom*>;

/// Lists one behind the other: what would be a vector of many short vectors.
template <typename Entry> class ListSequence {
public:
    void add(std::span<const Entry> list)
    {
        entries_.insert(entries_.end(), list.begin(), list.end());
        ends_.push_back(entries_.size());
    }
    std::span<const Entry> operator[](std::size_t index) const
    {
        const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
        return {entries_.data() + begin, ends_[index] - begin};
    }

private:
    std::vector<Entry> entries_;
    std::vector<std::size_t> ends_;
};

/// Owns the components, variables, atoms, clauses, transitions and formulas of a model. Made by ModelBuilder.
/// Addresses stay the same while it lives, and it outlives every engine, state and trajectory over it.
class Model {
public:
    /// Takes itself out of the registry if it is the active model.
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// Resets the registry (DataManager::reset) and enters this model in it. Linear.
    /// Ensures: the registry is ready for itms::rtInit.
    void activate();

    const std::string& name() const { return name_; }
    /// In the order of their making.
    const std::vector<std::unique_ptr<Comp>>& components() const { return components_; }
    const std::vector<std::unique_ptr<Atom>>& atoms() const { return atoms_; }
    /// The model-wide clauses; the clauses that make a variable have exactly one value are the variable's.
    const std::vector<Clause*>& laws() const { return laws_; }
    std::size_t clauseCount() const { return clauses_.size(); }
    const std::vector<std::unique_ptr<Transition>>& transitions() const { return transitions_; }

    // How laws and transitions were given: their own containers iterate in an order from which the one of insertion cannot
    // be told, and only a model made in the same order is the same model.

    /// The component whose law laws()[law] is; null when it is nobody's.
    Comp* ownerOf(std::size_t law) const { return lawOwners_[law]; }
    std::span<const Literal> literalsOf(std::size_t law) const { return lawLiterals_[law]; }
    /// Of transitions()[transition]: the mode value that is left, then the guard.
    std::span<const GuardLiteral> preconditionOf(std::size_t transition) const
    {
        return preconditions_[transition];
    }
    /// The change that transitions()[transition] is an alternative of, by the number of its first transition: one statement of a
    /// model, whose probability counts once however many of its alternatives hold.
    std::size_t changeOf(std::size_t transition) const { return changes_[transition]; }

private:
    friend class ModelBuilder;
    explicit Model(std::string name) : name_(std::move(name)) {}

    std::string name_;
    std::vector<std::unique_ptr<Comp>> components_;
    std::vector<std::unique_ptr<StateVar>> variables_;
    std::vector<std::unique_ptr<CommandVar>> commands_;
    std::vector<std::unique_ptr<Atom>> atoms_;
    std::vector<std::unique_ptr<Clause>> clauses_;
    std::vector<std::unique_ptr<Transition>> transitions_;
    std::vector<std::unique_ptr<StateFormula>> formulas_;
    std::vector<Clause*> laws_;
    std::vector<Comp*> lawOwners_;
    ListSequence<Literal> lawLiterals_;
    ListSequence<GuardLiteral> preconditions_;
    std::vector<std::size_t> changes_;
};

} // namespace plant
