// Elements on demand: what a look-up finds, what it instantiates, and what it leaves behind.
#include "tests/engine/EngineTest.h"

namespace {

class ElementAccessTest : public EngineTest {
protected:
    TrajEl* get(const Atom* of)
    {
        return engine.getElt(of->getId(), state.get(), &trajectory, step);
    }
    TrajEl* get(const Atom* of, bool addFlag)
    {
        return engine.getElt(of->getId(), state.get(), &trajectory, step, addFlag);
    }
    bool instantiated(const Atom* of) { return state->elements->count(of->getId()) != 0; }
};

TEST_F(ElementAccessTest, AnElementThatIsThereIsReturned)
{
    props("a");
    begin();
    TrajEl* present = el("a");
    EXPECT_EQ(get(atom("a")), present);
}

TEST_F(ElementAccessTest, APresentElementNeedsNoTrajectory)
{
    props("a");
    begin();
    EXPECT_EQ(engine.getElt("k.a=1", state.get(), nullptr, step), el("a"));
}

TEST_F(ElementAccessTest, AnAbsentElementIsMadeWithItsWholeComponent)
{
    props("a b");
    Atom* far = remote("far");
    Atom* sibling = model.variable(far->getVarComp(), "y", "Cond", {"1"})->atomLinks->front();
    begin();
    TrajEl* made = get(far);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->atom, far);
    EXPECT_EQ((*state->elements)[far->getId()], made);
    EXPECT_TRUE(instantiated(sibling));
}

TEST_F(ElementAccessTest, ASecondLookUpDoesNotInstantiateAgain)
{
    Atom* far = remote("far");
    begin();
    TrajEl* made = get(far);
    Atom* late = model.variable(far->getVarComp(), "late", "Cond", {"1"})->atomLinks->front();
    EXPECT_EQ(get(far), made);
    EXPECT_FALSE(instantiated(late)) << "a second instantiation would have met the new atom";
    EXPECT_EQ(DataManager::searchWork.components, 1U);
}

TEST_F(ElementAccessTest, ANullEntryIsFilledByTheInstantiation)
{
    Atom* far = remote("far");
    begin();
    (*state->elements)[far->getId()] = nullptr;
    TrajEl* made = get(far);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ((*state->elements)[far->getId()], made);
}

TEST_F(ElementAccessTest, AnEntryThatInstantiationDoesNotFillStaysNull)
{
    Atom* far = remote("far");
    far->getVarComp()->atoms->clear();
    begin();
    EXPECT_EQ(get(far), nullptr);
    EXPECT_TRUE(instantiated(far));
    EXPECT_EQ((*state->elements)[far->getId()], nullptr);
}

TEST_F(ElementAccessTest, TheComponentJoinsTheStateOnlyWithTheAddFlag)
{
    Atom* plain = remote("plain");
    Atom* added = remote("added");
    begin();
    get(plain, false);
    get(added, true);
    EXPECT_EQ(state->comps->count("plain"), 0U);
    EXPECT_EQ(state->comps->count("added"), 1U);
}

TEST_F(ElementAccessTest, TheShortFormAddsTheComponent)
{
    Atom* far = remote("far");
    begin();
    get(far);
    EXPECT_EQ(state->comps->count("far"), 1U);
}

TEST_F(ElementAccessTest, AnElementOnDemandIsLabelledAsPredictedForTheStep)
{
    Atom* far = remote("far");
    trajectory.predict(0, far, "false", 4);
    trajectory.predict(1, far, "true", 3);
    begin();
    const TrajEl* made = engine.getElt(far->getId(), state.get(), &trajectory, 1);
    EXPECT_EQ(made->label, "true");
    EXPECT_EQ(made->lock, 3);
}

TEST_F(ElementAccessTest, OfTheTrajectorysElementOnlyTheAtomIsUsed)
{
    Atom* far = remote("far");
    begin();
    auto committed = std::make_unique<State>();
    auto* held = new TrajEl;
    held->atom = far;
    held->label = "true";
    (*committed->elements)[far->getId()] = held;
    trajectory.states.push_back(committed.release());
    TrajEl* made = get(far);
    ASSERT_NE(made, nullptr);
    EXPECT_NE(made, held);
    EXPECT_EQ(made->label, "unknown");
}

TEST_F(ElementAccessTest, EvaluationInstantiatesTheComponentsItReachesAndAddsThem)
{
    props("a");
    Atom* far = remote("far");
    Clause* clause = law("a | !far.x=1");
    begin({{"a", "false"}});
    engine.testClause(clause, state.get(), &trajectory, step);
    EXPECT_TRUE(instantiated(far));
    EXPECT_EQ(state->comps->count("far"), 1U);
}

TEST_F(ElementAccessTest, ACopyHoldsTheOtherStatesElementsOfTheSameIds)
{
    props("a b c");
    begin();
    ElMap from = mapOf({"a", "b"});
    const std::unique_ptr<State> other(model.state({k}));
    const std::unique_ptr<ElMap> copy(engine.copyState(&from, other.get()));
    EXPECT_EQ(copy->size(), 2U);
    EXPECT_EQ((*copy)["k.a=1"], elementOf(other.get(), "a"));
    EXPECT_EQ((*copy)["k.b=1"], elementOf(other.get(), "b"));
    EXPECT_NE((*copy)["k.a=1"], el("a"));
}

TEST_F(ElementAccessTest, AnElementThatTheOtherStateLacksIsANullEntryInBoth)
{
    props("a");
    begin();
    ElMap from = mapOf({"a"});
    State empty;
    const std::unique_ptr<ElMap> copy(engine.copyState(&from, &empty));
    ASSERT_EQ(copy->count("k.a=1"), 1U);
    EXPECT_EQ((*copy)["k.a=1"], nullptr);
    ASSERT_EQ(empty.elements->count("k.a=1"), 1U);
    EXPECT_EQ((*empty.elements)["k.a=1"], nullptr);
    EXPECT_TRUE(empty.comps->empty()) << "nothing is instantiated";
}

TEST_F(ElementAccessTest, ACopyIsKeyedByTheElementsOwnId)
{
    props("a");
    begin();
    ElMap from;
    from["some other key"] = el("a");
    const std::unique_ptr<ElMap> copy(engine.copyState(&from, state.get()));
    EXPECT_EQ(copy->size(), 1U);
    EXPECT_EQ((*copy)["k.a=1"], el("a"));
}

TEST_F(ElementAccessTest, ACopyOfNothingIsEmpty)
{
    begin();
    ElMap none;
    const std::unique_ptr<ElMap> copy(engine.copyState(&none, state.get()));
    EXPECT_TRUE(copy->empty());
}

TEST_F(ElementAccessTest, VariablesOfElementsAreListedOncePerName)
{
    StateVar* two = model.variable(k, "two", "Cond", {"0", "1"});
    StateVar* one = model.variable(k, "one", "Cond", {"1"});
    begin();
    std::vector<TrajEl*> els{el("k.two=0"), el("k.one=1"), el("k.two=1")};
    const std::unique_ptr<StateVarMap> variables(engine.getStateVars(&els));
    EXPECT_EQ(variables->size(), 2U);
    EXPECT_EQ((*variables)["two"], two);
    EXPECT_EQ((*variables)["one"], one);
}

TEST_F(ElementAccessTest, OfVariablesWithOneNameTheFirstElementsIsKept)
{
    Atom* left = remote("left");
    Atom* right = remote("right");
    begin({}, {left->getVarComp(), right->getVarComp()});
    std::vector<TrajEl*> els{el("right.x=1"), el("left.x=1")};
    const std::unique_ptr<StateVarMap> variables(engine.getStateVars(&els));
    EXPECT_EQ(variables->size(), 1U);
    EXPECT_EQ((*variables)["x"], right->stateVar);
}

} // namespace
