// What an engine needs of a model beyond components, variables and atoms: its clauses, transitions and formulas as objects, and the
// lists of them in the objects that they mention.
//
// A monitor works on numbers (Plant.h), and most plants are large where something is wrong with one of their parts, if at all. So none
// of this is made before an engine is set up.
#pragma once

#include "plant/Model.h"

namespace plant {

class EngineObjects {
public:
    /// Makes the objects of all laws and transitions, and fills the containers of the model's components, variables and atoms.
    /// Linear. Requires: it is the first of the model, which outlives it.
    explicit EngineObjects(const Model& model);

    const std::vector<Clause*>& laws() const { return laws_; }
    const std::vector<Transition*>& transitions() const { return transitionList_; }

private:
    void makeContainers();
    void addDomainClauses(StateVar& variable);
    Clause* addClause(std::span<const SignedNumber> literals);
    void addTransition(std::size_t number);
    StateFormula* formula(std::span<const SignedNumber> atoms);

    const Model& model_;
    Store<Clause> clauses_;
    Store<Transition> transitions_;
    Store<StateFormula> formulas_;
    std::vector<Clause*> laws_;
    std::vector<Transition*> transitionList_;
};

} // namespace plant
