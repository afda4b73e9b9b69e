// A model made from a seed, active in the registry while it lives.
//
// Two models of one seed are equal in everything but the addresses of their objects; what is drawn from `random`
// afterwards is equal too. So one and the same run can be watched twice, with two engines, one after the other.
#pragma once

#include "model/Clause.h"
#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Trajectory.h"
#include "model/Transition.h"
#include "tests/reference/Random.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

/// How the elements of a model's states are labelled.
enum class Labelling {
    consistent, ///< by the assignment: one value of each variable "true", the others "false"
    boolean,    ///< "true" or "false" at random
    open,       ///< "unknown" among them
    odd         ///< labels that are none of the three among them
};

class RandomModel {
public:
    /// `sound`: the labelling is consistent, every element is labelled, and the assignment satisfies all clauses.
    explicit RandomModel(std::uint64_t seed, bool sound = false);
    ~RandomModel();
    RandomModel(const RandomModel&) = delete;
    RandomModel& operator=(const RandomModel&) = delete;

    Random random; ///< goes on where the making of the model left it
    bool sound;
    bool wide =
        false; ///< a model in which a search branches much: long clauses, little that is locked or blocked
    Labelling labelling = Labelling::consistent;
    int lockPercent = 0; ///< how many of the elements get a lock other than 2

    std::vector<Comp*> comps;
    std::vector<StateVar*> variables;
    std::vector<Atom*> atoms;
    std::vector<Clause*> clauses;
    std::vector<Transition*> transitions;
    std::unique_ptr<Trajectory> trajectory;

    /// Whether the assignment that the model was built around gives the variable this value.
    bool holds(const Atom* atom) const { return assignment_.at(atom->stateVar) == atom; }
    /// A label for an element of the atom.
    std::string label(const Atom* atom);
    int lock();
    /// `c7` for the clause made seventh, "null", or "?" for one that is not the model's.
    std::string nameOf(const Clause* clause) const;
    StateFormula* formula(const std::string& op, std::size_t atomCount);
    /// Predicts for step `time` the labels and locks of all elements, or, where a model need not be sound, of some.
    void predict(int time);
    /// The text of a prime-implicate file about this model, often with a fault in it.
    std::string implicateFile();
    /// Atoms for a prime-implicate table; the caller owns the sets.
    std::vector<std::vector<Atom*>*>* implicateSets();

private:
    void makeComp(std::size_t index);
    void makeVariable(Comp* comp, std::size_t index);
    void makeAtom(StateVar* variable, const std::string& value);
    void makeDomainClauses(StateVar* variable);
    void makeClause();
    void makeTransition(Comp* comp);
    void guard(Transition* transition);
    Clause* addClause(const std::vector<std::pair<bool, Atom*>>& literals, bool global);
    bool satisfied(const std::vector<std::pair<bool, Atom*>>& literals) const;
    /// An atom of the component, often, or of any other.
    Atom* atomNear(Comp* comp);

    int faultPercent_ = 0;
    std::unordered_map<const StateVar*, const Atom*> assignment_;
    std::unordered_map<const Clause*, std::size_t> numbers_;
    std::vector<std::unique_ptr<Comp>> ownComps_;
    std::vector<std::unique_ptr<StateVar>> ownVariables_;
    std::vector<std::unique_ptr<CommandVar>> ownCommands_;
    std::vector<std::unique_ptr<Atom>> ownAtoms_;
    std::vector<std::unique_ptr<Clause>> ownClauses_;
    std::vector<std::unique_ptr<Transition>> ownTransitions_;
    std::vector<std::unique_ptr<StateFormula>> ownFormulas_;
};
