// Run-time set-up: numbering, variables, active atoms, links, dead ends, the initial assignment.
#include "tests/reference/BucketOrder.h"
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <map>

namespace {

class SetupTest : public testing::Test {
protected:
    void setUp()
    {
        const MutedTrace muted;
        engine_.rtInit();
    }
    Atom* atom(const std::string& id) { return model_.atom(id); }
    Transition* nominal(Atom* to, double proba)
    {
        Transition* made = model_.transition(to, "Nominal", proba);
        model_.guard(made, {});
        return made;
    }
    bool active(const std::string& id)
    {
        return DataManager::active_atoms->find(id.c_str()) != DataManager::active_atoms->end();
    }

    TestModel model_;
    itms engine_;
};

TEST_F(SetupTest, NumbersTransitionsFromZeroInTheOrderOfTheComponentsAndOfTheirTransitions)
{
    BucketOrder<std::string, TextHash> order;
    std::map<std::string, std::vector<Transition*>> transitions;
    for (const char* name : {"valve", "pump", "tank", "sensor", "heater"}) {
        order.insert(name);
        Comp* comp = model_.comp(name);
        model_.variable(comp, "mode", "Mode", {"ok", "bad"});
        const std::string id = std::string(name) + ".mode=";
        transitions[name] = {nominal(atom(id + "bad"), 0.5), nominal(atom(id + "ok"), 0.5),
                             nominal(atom(id + "bad"), 0.5)};
    }
    setUp();
    int expected = 0;
    for (const std::string& name : order.keys()) {
        for (const Transition* transition : transitions[name]) {
            EXPECT_EQ(transition->id, expected) << name;
            ++expected;
        }
    }
    EXPECT_EQ(expected, 15);
}

TEST_F(SetupTest, NumbersTransitionsConsecutivelyAcrossComponents)
{
    Comp* first = model_.comp("a");
    Comp* second = model_.comp("b"); // the hash of "a" is one less than that of "b"
    model_.variable(first, "v", "Mode", {"1"});
    model_.variable(second, "v", "Mode", {"1"});
    std::vector<Transition*> all;
    for (int i = 0; i < 2; ++i) {
        all.push_back(nominal(atom("a.v=1"), 0.5));
    }
    for (int i = 0; i < 3; ++i) {
        all.push_back(nominal(atom("b.v=1"), 0.5));
    }
    setUp();
    for (int id = 0; id < 5; ++id) {
        EXPECT_EQ(all[static_cast<std::size_t>(id)]->id, id);
        EXPECT_EQ((*DataManager::active_trans)[id], all[static_cast<std::size_t>(id)]);
    }
    EXPECT_EQ(DataManager::active_trans->size(), 5u);
}

TEST_F(SetupTest, GathersTheVariablesInTheOrderOfTheComponents)
{
    Comp* b = model_.comp("b");
    Comp* a = model_.comp("a");
    StateVar* b1 = model_.variable(b, "1", "Mode", {"x"});
    StateVar* a2 = model_.variable(a, "2", "Command", {"x"});
    StateVar* a1 = model_.variable(a, "1", "Cond", {"x"});
    setUp();
    EXPECT_EQ(*engine_.stateVars, (std::vector<StateVar*>{a2, a1, b1}));
}

TEST_F(SetupTest, ActivatesTheAtomsThatOccurInAModelWideClause)
{
    model_.variable(model_.comp("x"), "v", "Cond", {"a", "b", "c"});
    model_.clause("x.v=a | !x.v=b");
    setUp();
    EXPECT_TRUE(active("x.v=a"));
    EXPECT_TRUE(active("x.v=b"));
    EXPECT_EQ(DataManager::active_atoms->size(), 2u);
}

TEST_F(SetupTest, ActivatesTheAtomsThatOccurInAClauseOfAVariable)
{
    model_.domainClauses(model_.variable(model_.comp("x"), "v", "Cond", {"a", "b"}));
    setUp();
    EXPECT_TRUE(active("x.v=a"));
    EXPECT_TRUE(active("x.v=b"));
}

TEST_F(SetupTest, AnAtomInNoClauseIsReachedOnlyThroughItsComponentAndVariable)
{
    Comp* comp = model_.comp("x");
    StateVar* variable = model_.variable(comp, "v", "Cond", {"a", "b"});
    model_.clause("x.v=a");
    setUp();
    EXPECT_FALSE(active("x.v=b"));
    EXPECT_EQ(comp->atoms->find("x.v=b")->second, atom("x.v=b"));
    EXPECT_EQ(variable->atomLinks->at(1), atom("x.v=b"));
    EXPECT_EQ(engine_.getAtom("x.v=b"), atom("x.v=b"));
}

TEST_F(SetupTest, ReplacesTheActiveAtomsAndLeavesTheEarlierMapValid)
{
    model_.variable(model_.comp("x"), "v", "Cond", {"a", "b"});
    model_.clause("x.v=a");
    const AtomMap* earlier = DataManager::active_atoms;
    setUp();
    EXPECT_NE(DataManager::active_atoms, earlier);
    EXPECT_EQ(earlier->size(), 2u);
}

TEST_F(SetupTest, KeysActiveAtomsByTheirOwnCharacters)
{
    model_.variable(model_.comp("x"), "v", "Cond", {"a"});
    model_.clause("x.v=a");
    setUp();
    EXPECT_EQ(DataManager::active_atoms->begin()->first, atom("x.v=a")->getId());
}

TEST_F(SetupTest, RefillsTheAtomsOfEveryComponent)
{
    Comp* comp = model_.comp("x");
    model_.variable(comp, "v", "Cond", {"a", "b"});
    Atom stale;
    stale.id = "x.w=stale";
    (*comp->atoms)[stale.getId()] = &stale;
    setUp();
    EXPECT_EQ(comp->atoms->size(), 2u);
    EXPECT_EQ(comp->atoms->find("x.v=a")->second, atom("x.v=a"));
    EXPECT_EQ(comp->atoms->find("x.v=a")->first, atom("x.v=a")->getId());
    EXPECT_EQ(comp->atoms->find("x.w=stale"), comp->atoms->end());
}

TEST_F(SetupTest, LinksEveryAtomToItsComponent)
{
    Comp* comp = model_.comp("x");
    model_.variable(comp, "v", "Cond", {"a"});
    model_.variable(comp, "c", "Command", {"go"});
    setUp();
    for (const char* id : {"x.v=a", "x.c=go"}) {
        ASSERT_EQ(atom(id)->comps->size(), 1u) << id;
        EXPECT_EQ(atom(id)->comps->begin()->second, comp) << id;
        EXPECT_EQ(atom(id)->comps->begin()->first, comp->name.c_str()) << id;
    }
}

TEST_F(SetupTest, AllowsAComponentWithoutVariables)
{
    model_.comp("bare");
    setUp();
    EXPECT_TRUE(engine_.stateVars->empty());
    EXPECT_TRUE(DataManager::active_atoms->empty());
}

TEST_F(SetupTest, AnAtomThatNothingLeavesIsADeadEnd)
{
    model_.variable(model_.comp("x"), "v", "Mode", {"a"});
    EXPECT_FALSE(atom("x.v=a")->deadEnd);
    setUp();
    EXPECT_TRUE(atom("x.v=a")->deadEnd);
}

class DeadEndTest : public SetupTest {
protected:
    DeadEndTest()
    {
        leaving_.name = "Nominal";
        other_.name = "Stick";
    }
    bool deadEnd()
    {
        engine_.deadEndAtom(&atom_);
        return atom_.deadEnd;
    }

    Transition leaving_;
    Transition other_;
    Atom atom_;
};

TEST_F(DeadEndTest, WithoutTransitionsIsOne)
{
    EXPECT_TRUE(deadEnd());
}

TEST_F(DeadEndTest, WithANominalTransitionIsNone)
{
    atom_.outTransitions->assign({&leaving_});
    EXPECT_FALSE(deadEnd());
}

TEST_F(DeadEndTest, WithANominalTransitionAmongOthersIsNone)
{
    atom_.outTransitions->assign({&other_, &leaving_, &other_});
    EXPECT_FALSE(deadEnd());
}

TEST_F(DeadEndTest, WithAnIdleNominalTransitionAloneIsOne)
{
    leaving_.idle = true;
    atom_.outTransitions->assign({&leaving_});
    EXPECT_TRUE(deadEnd());
}

TEST_F(DeadEndTest, WithOtherTransitionsAloneIsOne)
{
    other_.name = "nominal";
    atom_.outTransitions->assign({&other_});
    EXPECT_TRUE(deadEnd());
}

TEST_F(DeadEndTest, TransitionsToTheAtomDoNotCount)
{
    atom_.transitions->assign({&leaving_});
    EXPECT_TRUE(deadEnd());
}

TEST_F(DeadEndTest, StaysOneForEver)
{
    ASSERT_TRUE(deadEnd());
    atom_.outTransitions->assign({&leaving_});
    EXPECT_TRUE(deadEnd());
}

TEST_F(SetupTest, LabelsTheOtherValuesOfAVariableFalse)
{
    model_.domainClauses(model_.variable(model_.comp("x"), "v", "Mode", {"a", "b", "c"}));
    setUp();
    EXPECT_EQ(atom("x.v=a")->label, "true");
    EXPECT_EQ(atom("x.v=b")->label, "false");
    EXPECT_EQ(atom("x.v=c")->label, "false");
}

TEST_F(SetupTest, MarksTheValueThatHoldsInitiallyAndNoOther)
{
    model_.domainClauses(model_.variable(model_.comp("x"), "v", "Mode", {"a", "b"}));
    setUp();
    EXPECT_EQ(atom("x.v=a")->initTrue, 1);
    EXPECT_EQ(atom("x.v=b")->initTrue, 0);
}

TEST_F(SetupTest, LabelsOtherValuesThatAreNotActiveToo)
{
    model_.variable(model_.comp("x"), "v", "Mode", {"a", "b"});
    model_.clause("x.v=a");
    setUp();
    EXPECT_EQ(atom("x.v=b")->label, "false");
}

TEST_F(SetupTest, LeavesTheLabelsOfAVariableWhoseTrueValueIsNotActive)
{
    model_.variable(model_.comp("x"), "v", "Mode", {"a", "b"});
    model_.clause("x.v=b");
    setUp();
    EXPECT_EQ(atom("x.v=a")->label, "unknown");
    EXPECT_EQ(atom("x.v=b")->label, "unknown");
    EXPECT_EQ(atom("x.v=a")->initTrue, 0);
}

TEST_F(SetupTest, LeavesTheLabelsOfAVariableWithoutInitialValue)
{
    StateVar* variable = model_.variable(model_.comp("x"), "v", "Cond", {"a", "b"});
    variable->initial = nullptr;
    model_.clause("x.v=a | x.v=b");
    setUp();
    EXPECT_EQ(atom("x.v=a")->label, "unknown");
    EXPECT_EQ(atom("x.v=b")->label, "unknown");
}

TEST_F(SetupTest, CompilesTheProbabilityOfEveryActiveAtom)
{
    model_.variable(model_.comp("x"), "v", "Mode", {"a", "b"});
    nominal(atom("x.v=b"), 0.25);
    nominal(atom("x.v=b"), 0.5);
    nominal(atom("x.v=a"), 0.5);
    model_.clause("x.v=b");
    setUp();
    EXPECT_EQ(atom("x.v=b")->compiledProba, 0.375);
    EXPECT_EQ(atom("x.v=a")->compiledProba, 0.0);
}

TEST_F(SetupTest, PrintsTheTransitionsAndThenTheActiveAtoms)
{
    Comp* comp = model_.comp("a");
    model_.domainClauses(model_.variable(comp, "v", "Mode", {"1", "2"}));
    nominal(atom("a.v=2"), 0.5);
    nominal(atom("a.v=1"), 0.25);
    const FlushLog log;
    engine_.rtInit();
    EXPECT_EQ(log.text(), "transition 0 v: Nominal (0.5)\n"
                          "weight : 0.25\n"
                          "transition 1 v: Nominal (0.25)\n"
                          "weight : 0.125\n"
                          "guards number of a.v=2 : 0\n"
                          "guards number of v : 2\n"
                          "guard proba : 0.25\n"
                          "guards number of a.v=1 : 0\n"
                          "guards number of v : 2\n"
                          "guard proba : 0.125\n"
                          "compiled probability : a.v=1 -- 0.25\n"
                          "compiled probability : a.v=2 -- 0.5\n");
}

TEST_F(SetupTest, ASecondTimeStartsOver)
{
    Comp* comp = model_.comp("x");
    StateVar* variable = model_.variable(comp, "v", "Mode", {"a", "b"});
    Transition* first = nominal(atom("x.v=a"), 0.5);
    Transition* second = nominal(atom("x.v=b"), 0.5);
    model_.clause("x.v=a");
    setUp();
    const std::vector<StateVar*>* earlierVariables = engine_.stateVars;
    const AtomMap* earlierAtoms = DataManager::active_atoms;
    model_.clause("x.v=b");
    setUp();
    EXPECT_EQ(first->id, 0);
    EXPECT_EQ(second->id, 1);
    EXPECT_EQ(*engine_.stateVars, std::vector<StateVar*>{variable});
    EXPECT_EQ(DataManager::active_atoms->size(), 2u);
    EXPECT_EQ(comp->atoms->size(), 2u);
    // What the first time made stays valid.
    EXPECT_NE(engine_.stateVars, earlierVariables);
    EXPECT_EQ(*earlierVariables, std::vector<StateVar*>{variable});
    EXPECT_NE(DataManager::active_atoms, earlierAtoms);
    EXPECT_EQ(earlierAtoms->size(), 1u);
}

TEST_F(SetupTest, WithAMutedTraceDoesTheSameInSilence)
{
    Comp* comp = model_.comp("a");
    model_.domainClauses(model_.variable(comp, "v", "Mode", {"1", "2"}));
    const Transition* transition = nominal(atom("a.v=2"), 0.5);
    const FlushLog log;
    setUp();
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(log.flushes(), 0u);
    EXPECT_EQ(transition->weight, 0.5);
    EXPECT_EQ(transition->guardProba, 0.5);
    EXPECT_EQ(atom("a.v=2")->compiledProba, 0.5);
    EXPECT_EQ(atom("a.v=2")->label, "false");
    EXPECT_EQ(DataManager::active_atoms->size(), 2u);
}

TEST_F(SetupTest, InitPbEntersTheProbabilitiesOfTheStatesTransitions)
{
    Comp* comp = model_.comp("x");
    model_.variable(comp, "v", "Mode", {"a", "b"});
    nominal(atom("x.v=a"), 0.75);
    nominal(atom("x.v=b"), 0.25);
    setUp();
    State state;
    (*state.comps)["x"] = comp;
    engine_.initPb(&state);
    EXPECT_EQ(state.postProbs->size(), 2u);
    EXPECT_EQ((*state.postProbs)[0], 0.75);
    EXPECT_EQ((*state.postProbs)[1], 0.25);
    EXPECT_TRUE(state.sortedPostProbs->empty());
    EXPECT_TRUE(state.elements->empty());
}

} // namespace
