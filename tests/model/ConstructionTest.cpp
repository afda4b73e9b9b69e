// What a default constructor leaves, what a destructor releases, and how the fields lie.
#include "model/Clause.h"
#include "model/Comp.h"
#include "model/DataManager.h"
#include "model/StateFormula.h"
#include "model/Trajectory.h"
#include "model/Transition.h"
#include "model/mdlChk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

template <class Container> bool isNewAndEmpty(const Container* one, const Container* other)
{
    return one && other && one != other && one->empty();
}

TEST(Construction, OfAnAtomLeavesEmptyContainersOfItsOwn)
{
    const Atom a;
    const Atom b;
    EXPECT_TRUE(isNewAndEmpty(a.outTransitions, b.outTransitions));
    EXPECT_TRUE(isNewAndEmpty(a.transitions, b.transitions));
    EXPECT_NE(a.transitions, a.outTransitions);
    EXPECT_TRUE(isNewAndEmpty(a.clauses, b.clauses));
    EXPECT_TRUE(isNewAndEmpty(a.comps, b.comps));
}

TEST(Construction, OfAnAtomLeavesItUnknownAndUnset)
{
    const Atom atom;
    EXPECT_EQ(atom.stateVar, nullptr);
    EXPECT_EQ(atom.value, "");
    EXPECT_EQ(atom.id, "");
    EXPECT_FALSE(atom.fail);
    EXPECT_EQ(atom.support, nullptr);
    EXPECT_EQ(atom.initTrue, 0);
    EXPECT_EQ(atom.compiledProba, 0.0);
    EXPECT_EQ(atom.guardsNumber, 0u);
    EXPECT_FALSE(atom.deadEnd);
    EXPECT_EQ(atom.label, "unknown");
}

template <class Variable> void expectFreshVariable()
{
    const Variable a;
    const Variable b;
    EXPECT_TRUE(isNewAndEmpty(a.atomLinks, b.atomLinks));
    EXPECT_TRUE(isNewAndEmpty(a.clauses, b.clauses));
    EXPECT_EQ(a.type, "");
    EXPECT_EQ(a.name, "");
    EXPECT_EQ(a.comp, nullptr);
    EXPECT_EQ(a.guardsNumber, 0);
    EXPECT_FALSE(a.commandBlocked);
    EXPECT_EQ(a.initial, nullptr);
}

TEST(Construction, OfAStateVariable)
{
    expectFreshVariable<StateVar>();
}

TEST(Construction, OfACommandVariableIsThatOfAStateVariable)
{
    expectFreshVariable<CommandVar>();
}

TEST(Construction, OfAComponent)
{
    const Comp a;
    const Comp b;
    EXPECT_EQ(a.name, "");
    EXPECT_EQ(a.commandVars, nullptr);
    EXPECT_TRUE(isNewAndEmpty(a.stateVars, b.stateVars));
    EXPECT_TRUE(isNewAndEmpty(a.transitions, b.transitions));
    EXPECT_TRUE(isNewAndEmpty(a.importedComps, b.importedComps));
    EXPECT_TRUE(isNewAndEmpty(a.atoms, b.atoms));
    EXPECT_EQ(a.altName, "");
}

TEST(Construction, OfATransitionLeavesItCommanded)
{
    const Transition transition;
    EXPECT_EQ(transition.id, 0);
    EXPECT_EQ(transition.name, "");
    EXPECT_EQ(transition.stateVar, nullptr);
    EXPECT_EQ(transition.atom, nullptr);
    EXPECT_EQ(transition.proba, 0.0);
    EXPECT_EQ(transition.weight, 0.0);
    EXPECT_EQ(transition.guardProba, 0.0);
    EXPECT_EQ(transition.guard, nullptr);
    EXPECT_EQ(transition.formula, nullptr);
    EXPECT_FALSE(transition.idle);
    EXPECT_TRUE(transition.commanded);
    EXPECT_EQ(transition.type, "");
}

TEST(Construction, OfAClauseLeavesNoLiterals)
{
    const Clause a;
    const Clause b;
    EXPECT_TRUE(isNewAndEmpty(a.literals, b.literals));
}

TEST(Construction, OfAFormulaLeavesNoAtomsAndNoConnective)
{
    const StateFormula formula;
    EXPECT_EQ(formula.op, "");
    EXPECT_EQ(formula.atoms, nullptr);
}

TEST(Construction, OfAnElementLeavesItUnknownAndFree)
{
    const TrajEl a;
    const TrajEl b;
    EXPECT_EQ(a.atom, nullptr);
    EXPECT_EQ(a.transition, nullptr);
    EXPECT_EQ(a.label, "unknown");
    EXPECT_EQ(a.support, nullptr);
    EXPECT_TRUE(isNewAndEmpty(a.dependents, b.dependents));
    EXPECT_EQ(a.propagationNumber, 0);
    EXPECT_EQ(a.lock, 2);
}

TEST(Construction, OfAState)
{
    const State a;
    const State b;
    EXPECT_TRUE(isNewAndEmpty(a.elements, b.elements));
    EXPECT_EQ(a.wkstRank, 0.0);
    EXPECT_EQ(a.obsCondProba, 1.0);
    EXPECT_TRUE(isNewAndEmpty(a.postProbs, b.postProbs));
    EXPECT_TRUE(isNewAndEmpty(a.sortedPostProbs, b.sortedPostProbs));
    EXPECT_TRUE(isNewAndEmpty(a.condProbs, b.condProbs));
    EXPECT_TRUE(isNewAndEmpty(a.comps, b.comps));
    EXPECT_FALSE(a.computeProbas);
    EXPECT_FALSE(a.unknown);
    EXPECT_EQ(a.rank, 0.0);
}

TEST(Construction, OfATrajectory)
{
    const Trajectory trajectory;
    EXPECT_EQ(trajectory.currentRank, 0.0);
    EXPECT_TRUE(trajectory.states.empty());
}

TEST(Construction, OfAPrimeImplicateTableLeavesItEmpty)
{
    const PiTable table;
    Atom atom;
    EXPECT_EQ(table.getPIs(&atom), nullptr);
}

// Each owner refers to objects on the stack: a destructor that released them would be caught.
TEST(Destruction, OfModelObjectsLeavesTheObjectsInTheirContainersAlone)
{
    StateVar variable;
    Transition transition;
    Clause clause;
    Comp other;
    CommandVar command;
    Atom value;
    {
        Atom atom;
        atom.stateVar = &variable;
        atom.support = &clause;
        atom.outTransitions->push_back(&transition);
        atom.transitions->push_back(&transition);
        atom.clauses->push_back(&clause);
        (*atom.comps)["other"] = &other;
    }
    {
        StateVar owner;
        owner.comp = &other;
        owner.initial = &value;
        owner.atomLinks->push_back(&value);
        owner.clauses->push_back(&clause);
    }
    {
        Comp comp;
        comp.commandVars = new std::vector<CommandVar*>{&command};
        comp.stateVars->push_back(&variable);
        comp.transitions->push_back(&transition);
        comp.importedComps->push_back(&other);
        (*comp.atoms)["value"] = &value;
    }
    {
        Clause owner;
        owner.literals->insert({true, &value});
    }
    {
        StateFormula formula;
        formula.atoms = new SignedAtoms;
        formula.atoms->insert({true, &value});
    }
    EXPECT_TRUE(value.clauses->empty());
    EXPECT_TRUE(other.stateVars->empty());
}

TEST(Destruction, OfATransitionLeavesItsFormulasAlone)
{
    StateFormula guard;
    StateFormula effect;
    {
        Transition transition;
        transition.guard = &guard;
        transition.formula = &effect;
    }
    guard.op = "and";
    EXPECT_EQ(guard.op, "and");
    EXPECT_EQ(effect.atoms, nullptr);
}

TEST(Destruction, OfAnElementLeavesItsDependentsAlone)
{
    TrajEl dependent;
    {
        TrajEl el;
        el.dependents->push_back(&dependent);
    }
    EXPECT_EQ(dependent.label, "unknown");
}

TEST(Destruction, OfAStateReleasesItsElementsAndNotTheirAtoms)
{
    Atom atom;
    atom.id = "a.v=1";
    {
        State state;
        auto* el = new TrajEl; // the leak check sees to it that this is released
        el->atom = &atom;
        (*state.elements)[atom.getId()] = el;
        (*state.elements)["a.v=2"] = nullptr;
    }
    EXPECT_EQ(atom.id, "a.v=1");
}

TEST(Layout, NoClassHasVirtualOperations)
{
    static_assert(!std::is_polymorphic_v<Atom> && !std::is_polymorphic_v<StateVar>);
    static_assert(!std::is_polymorphic_v<CommandVar> && !std::is_polymorphic_v<Comp>);
    static_assert(!std::is_polymorphic_v<Transition> && !std::is_polymorphic_v<Clause>);
    static_assert(!std::is_polymorphic_v<StateFormula> && !std::is_polymorphic_v<PiTable>);
    static_assert(!std::is_polymorphic_v<State> && !std::is_polymorphic_v<TrajEl>);
    static_assert(!std::is_polymorphic_v<Trajectory> && !std::is_polymorphic_v<DataManager>);
    static_assert(!std::is_polymorphic_v<mdlChk>);
    static_assert(std::is_base_of_v<StateVar, CommandVar>);
    static_assert(std::is_base_of_v<DataManager, mdlChk>);
    SUCCEED();
}

template <class... Fields> bool liesInThisOrder(const Fields&... fields)
{
    const std::vector<const void*> addresses{&fields...};
    return std::is_sorted(addresses.begin(), addresses.end(), std::less<>());
}

TEST(Layout, FieldsLieInTheirFixedOrder)
{
    const Atom a;
    EXPECT_TRUE(liesInThisOrder(a.stateVar, a.value, a.id, a.fail, a.outTransitions, a.transitions,
                                a.support, a.clauses, a.comps, a.initTrue, a.compiledProba,
                                a.guardsNumber, a.deadEnd));
    const StateVar v;
    EXPECT_TRUE(liesInThisOrder(v.type, v.name, v.comp, v.atomLinks, v.clauses, v.guardsNumber,
                                v.commandBlocked));
    const Comp c;
    EXPECT_TRUE(liesInThisOrder(c.name, c.commandVars, c.stateVars, c.transitions, c.importedComps,
                                c.atoms, c.altName));
    const Transition t;
    EXPECT_TRUE(liesInThisOrder(t.id, t.name, t.stateVar, t.atom, t.proba, t.weight, t.guardProba,
                                t.guard, t.formula, t.idle, t.commanded));
    const StateFormula f;
    EXPECT_TRUE(liesInThisOrder(f.op, f.atoms));
    const Clause clause;
    EXPECT_EQ(static_cast<const void*>(&clause), static_cast<const void*>(&clause.literals));
    const TrajEl e;
    EXPECT_TRUE(liesInThisOrder(e.atom, e.transition, e.label, e.support, e.dependents,
                                e.propagationNumber, e.lock));
    const State s;
    EXPECT_TRUE(liesInThisOrder(s.elements, s.wkstRank, s.obsCondProba, s.postProbs,
                                s.sortedPostProbs, s.condProbs, s.comps, s.computeProbas, s.unknown));
}

} // namespace
