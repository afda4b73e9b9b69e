// A model that was built: all of its objects, and the one place that makes it the active one.
#pragma once

#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Transition.h"
#include "model/keys.h"

#include "model/Atom.h"
#include "plant/ListSequence.h"
#include "plant/SignedOrder.h"
#include "plant/Store.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace plant {

class EngineObjects;

/// A literal of a law: `negated` true for "not the atom".
struct Literal {
    bool negated;
    Atom* atom;
};

/// An atom of a precondition: key true when it must hold, false when it must not.
using GuardLiteral = std::pair<bool, Atom*>;

enum class TransitionKind : std::uint8_t { nominal, fault, repair, idle };

/// A transition as it was given.
struct GivenTransition {
    double probability; ///< per step
    std::uint32_t to;   ///< number of the atom
    /// The change that it is an alternative of, by the number of its first transition: one statement of a model, whose
    /// probability counts once however many of its alternatives hold.
    std::uint32_t change;
    TransitionKind kind;
};

/// Owns the components, variables, atoms, clauses, transitions and formulas of a model. Made by ModelBuilder.
/// Addresses stay the same while it lives, and it outlives every engine, state and trajectory over it.
///
/// What only an engine looks at is made when it is asked for: the objects of clauses, transitions and formulas, and the containers in
/// components, variables and atoms that list them. Before, these containers are null, but for `stateVars`, `commandVars`,
/// `importedComps` and `atomLinks`.
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
    /// In the order of their making, as below.
    const Store<Comp>& components() const { return components_; }
    /// An atom's place is its `number`.
    const Store<Atom>& atoms() const { return atoms_; }
    /// Of laws, and of those that make a variable have exactly one value.
    std::size_t clauseCount() const { return domainClauses_ + lawLiterals_.size(); }

    // Laws and transitions as they were given: the engine's containers iterate in an order from which the one of insertion cannot
    // be told, and only a model made in the same order is the same model.

    std::size_t lawCount() const { return lawLiterals_.size(); }
    /// The component whose law it is; null when it is nobody's.
    Comp* ownerOf(std::size_t law) const { return lawOwners_[law]; }
    std::vector<Literal> literalsOf(std::size_t law) const;
    /// The same by the numbers of the atoms, key true for "not".
    std::span<const SignedNumber> signedLiteralsOf(std::size_t law) const
    {
        return lawLiterals_[law];
    }

    std::size_t transitionCount() const { return transitions_.size(); }
    const GivenTransition& transition(std::size_t number) const { return transitions_[number]; }
    std::size_t changeOf(std::size_t transition) const { return transitions_[transition].change; }
    /// The mode value that is left, then the guard.
    std::vector<GuardLiteral> preconditionOf(std::size_t transition) const;
    /// The same by the numbers of the atoms, key true for those that must hold.
    std::span<const SignedNumber> signedPreconditionOf(std::size_t transition) const
    {
        return preconditions_[transition];
    }

    // What an engine works on. All of it is made by the first of these calls, which is linear in the model; then they take constant
    // time.

    /// Ensures: no container of a component, variable or atom is null, but for `commandVars`.
    void makeEngineObjects() const;
    /// The clauses of the laws; the clauses that make a variable have exactly one value are the variable's.
    const std::vector<Clause*>& laws() const;
    const std::vector<Transition*>& transitions() const;

private:
    friend class ModelBuilder;
    explicit Model(std::string name);

    std::string name_;
    Store<Comp> components_;
    Store<StateVar> variables_;
    Store<CommandVar> commands_;
    Store<Atom> atoms_;
    std::size_t domainClauses_ = 0;
    std::vector<Comp*> lawOwners_;
    ListSequence<SignedNumber> lawLiterals_;
    std::vector<GivenTransition> transitions_;
    ListSequence<SignedNumber> preconditions_;
    mutable std::unique_ptr<const EngineObjects> engineObjects_;
};

/// `Nominal`, `Repair`, `idle`, and of a fault the value that it leads to.
const std::string& nameOf(TransitionKind kind, const Atom& to);
/// `Nominal`, `Fail`, `Repair` or `Idle`.
const std::string& typeOf(TransitionKind kind);

} // namespace plant
