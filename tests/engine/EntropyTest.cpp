// Expected entropies of a variable and entropies given an atom, and the distributions that they leave.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace {

// The entropy in nats of a distribution.
double nats(std::initializer_list<double> distribution)
{
    double sum = 0.0;
    for (const double p : distribution) {
        sum -= p * std::log(p);
    }
    return sum;
}

// Two transitions of a mode; a flow within their reach; a level that is out of it.
class EntropyTest : public testing::Test {
protected:
    EntropyTest()
    {
        valve_ = model_.comp("valve");
        model_.variable(valve_, "mode", "Mode", {"ok", "stuck!"});
        flow_ = model_.variable(valve_, "flow", "Cond", {"on", "off"});
        level_ = model_.variable(model_.comp("tank"), "level", "Cond", {"1", "2", "3"});
        toOk_ = model_.transition(atom("valve.mode=ok"), "Nominal", 0.75);
        toStuck_ = model_.transition(atom("valve.mode=stuck"), "Stick", 0.25);
        toOk_->id = 1;
        toStuck_->id = 2;
        for (const char* id :
             {"valve.flow=on", "valve.flow=off", "tank.level=1", "tank.level=2", "tank.level=3"}) {
            auto* el = new TrajEl;
            el->atom = atom(id);
            (*state_.elements)[el->getId()] = el;
        }
        (*state_.comps)[valve_->name.c_str()] = valve_;
        prior(0.75, 0.25);
    }

    Atom* atom(const std::string& id) { return model_.atom(id); }
    void prior(double ofOk, double ofStuck)
    {
        (*state_.postProbs)[1] = ofOk;
        (*state_.postProbs)[2] = ofStuck;
    }
    double expected(StateVar* variable)
    {
        return engine_.entropy(variable, &state_, state_.elements);
    }
    double given(const char* id) { return engine_.entropy(atom(id), &state_, state_.elements); }
    // The atom's distribution as (transition, probability), by transition.
    std::map<int, double> distribution(const char* id)
    {
        const auto found = state_.condProbs->find(id);
        EXPECT_NE(found, state_.condProbs->end()) << id;
        return {found->second->begin(), found->second->end()};
    }

    TestModel model_;
    itms engine_;
    Comp* valve_;
    StateVar* flow_;
    StateVar* level_;
    Transition* toOk_;
    Transition* toStuck_;
    State state_;
};

TEST_F(EntropyTest, OfAVariableOutOfReachIsThatOfThePrior)
{
    EXPECT_DOUBLE_EQ(expected(level_), nats({0.75, 0.25}));
}

TEST_F(EntropyTest, OfAVariableOutOfReachIsWeightedByTheSumOfThePrior)
{
    prior(0.5, 0.125); // Z = 5/24 for each of three values
    EXPECT_DOUBLE_EQ(expected(level_), 0.625 * nats({0.8, 0.2}));
}

TEST_F(EntropyTest, OfAVariableThatDecidesTheTransitionIsZero)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    model_.clause("!valve.mode=stuck | valve.flow=off");
    EXPECT_EQ(expected(flow_), 0.0);
    EXPECT_EQ(distribution("valve.flow=on"), (std::map<int, double>{{1, 1.0}, {2, 0.0}}));
    EXPECT_EQ(distribution("valve.flow=off"), (std::map<int, double>{{1, 0.0}, {2, 1.0}}));
}

TEST_F(EntropyTest, WeighsTheEntropyOfEachValue)
{
    // "on" is compatible with both transitions, "off" with the fault alone.
    model_.clause("!valve.mode=ok | valve.flow=on");
    model_.clause("!valve.mode=stuck | valve.flow=on");
    model_.clause("!valve.mode=stuck | valve.flow=off");
    EXPECT_DOUBLE_EQ(expected(flow_), 1.0 * nats({0.75, 0.25}) + 0.25 * 0.0);
}

TEST_F(EntropyTest, DoesNotNormaliseTheWeightsOverTheValues)
{
    // Both values are compatible with both transitions: Z is 1 for each of them.
    for (const char* mode : {"ok", "stuck"}) {
        model_.clause("!valve.mode=" + std::string(mode) + " | valve.flow=on");
        model_.clause("!valve.mode=" + std::string(mode) + " | valve.flow=off");
    }
    EXPECT_DOUBLE_EQ(expected(flow_), 2 * nats({0.75, 0.25}));
}

TEST_F(EntropyTest, LeavesANormalisedDistributionForEachValue)
{
    prior(0.5, 0.25);
    expected(level_);
    for (const char* id : {"tank.level=1", "tank.level=2", "tank.level=3"}) {
        const std::map<int, double> left = distribution(id);
        ASSERT_EQ(left.size(), 2u) << id;
        EXPECT_DOUBLE_EQ(left.at(1), 2.0 / 3) << id;
        EXPECT_DOUBLE_EQ(left.at(2), 1.0 / 3) << id;
    }
    EXPECT_EQ(state_.condProbs->size(), 3u);
}

TEST_F(EntropyTest, LeavesTheDistributionUnderTheAtomsOwnCharacters)
{
    expected(flow_);
    EXPECT_EQ(state_.condProbs->find("valve.flow=on")->first, atom("valve.flow=on")->getId());
}

TEST_F(EntropyTest, LeavesThePriorAlone)
{
    expected(level_);
    EXPECT_EQ(state_.postProbs->size(), 2u);
    EXPECT_EQ((*state_.postProbs)[1], 0.75);
    EXPECT_EQ((*state_.postProbs)[2], 0.25);
}

TEST_F(EntropyTest, LeavesATransitionOfPriorZeroOut)
{
    prior(0.5, 0.0);
    EXPECT_EQ(expected(level_), 0.0);
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 1.0}}));
}

TEST_F(EntropyTest, AddsNothingForAProbabilityThatIsZero)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    model_.clause("!valve.mode=ok | valve.flow=off");
    const double h = expected(flow_);
    EXPECT_EQ(h, 0.0); // ln 0 was not taken: it would have made this NaN
    EXPECT_EQ(distribution("valve.flow=on"), (std::map<int, double>{{1, 1.0}, {2, 0.0}}));
}

TEST_F(EntropyTest, IsNotANumberWhenNoTransitionAdmitsAValue)
{
    model_.clause("!valve.mode=ok | valve.flow=on");
    model_.clause("!valve.mode=stuck | valve.flow=on");
    EXPECT_TRUE(std::isnan(expected(flow_)));
    for (const auto& [id, probability] : distribution("valve.flow=off")) {
        EXPECT_TRUE(std::isnan(probability)) << id;
    }
    EXPECT_EQ(distribution("valve.flow=off").size(), 2u);
    EXPECT_EQ(distribution("valve.flow=on"), (std::map<int, double>{{1, 0.75}, {2, 0.25}}));
}

TEST_F(EntropyTest, IsZeroWhenEveryPriorIsZero)
{
    prior(0.0, 0.0);
    EXPECT_EQ(expected(level_), 0.0);
    EXPECT_TRUE(distribution("tank.level=1").empty());
}

TEST_F(EntropyTest, IsZeroForAStateWithoutComponents)
{
    state_.comps->clear();
    EXPECT_EQ(expected(level_), 0.0);
    EXPECT_TRUE(distribution("tank.level=3").empty());
}

TEST_F(EntropyTest, IsZeroForAVariableWithoutValues)
{
    EXPECT_EQ(expected(model_.variable(valve_, "bare", "Cond", {})), 0.0);
    EXPECT_TRUE(state_.condProbs->empty());
}

TEST_F(EntropyTest, OfAVariableWithoutValuesLooksNoTransitionUp)
{
    state_.postProbs->clear();
    expected(model_.variable(valve_, "bare", "Cond", {}));
    EXPECT_TRUE(state_.postProbs->empty());
}

TEST_F(EntropyTest, TransitionsOfOneNumberShareAnEntryAndCountEach)
{
    toStuck_->id = 1;
    prior(0.5, 0.0);
    // Z = 1/6 + 1/6 for each of three values, and the entry is 1/2 for both transitions.
    EXPECT_DOUBLE_EQ(expected(level_), nats({0.5, 0.5}));
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 0.5}}));
}

TEST_F(EntropyTest, EntersAProbabilityOfZeroForATransitionThatHasNone)
{
    Transition* further = model_.transition(atom("valve.mode=ok"), "Nominal", 0.5);
    further->id = 9;
    EXPECT_DOUBLE_EQ(expected(level_), nats({0.75, 0.25}));
    ASSERT_EQ(state_.postProbs->count(9), 1u);
    EXPECT_EQ((*state_.postProbs)[9], 0.0);
    EXPECT_EQ(distribution("tank.level=1").count(9), 0u);
}

TEST_F(EntropyTest, CountsEveryComponentOfTheState)
{
    Comp* pump = model_.comp("pump");
    model_.variable(pump, "mode", "Mode", {"ok"});
    model_.transition(atom("pump.mode=ok"), "Nominal", 0.5)->id = 3;
    (*state_.postProbs)[3] = 1.0;
    (*state_.comps)[pump->name.c_str()] = pump;
    EXPECT_DOUBLE_EQ(expected(level_), 2.0 * nats({0.375, 0.125, 0.5}));
}

TEST_F(EntropyTest, LeavesOutTransitionsOfComponentsThatAreNotTheStates)
{
    model_.variable(model_.comp("pump"), "mode", "Mode", {"ok"});
    model_.transition(atom("pump.mode=ok"), "Nominal", 0.5)->id = 3;
    (*state_.postProbs)[3] = 0.5;
    EXPECT_DOUBLE_EQ(expected(level_), nats({0.75, 0.25}));
}

TEST_F(EntropyTest, MakesAFreshDistributionAtEveryRating)
{
    expected(level_);
    const ProbMap* first = state_.condProbs->find("tank.level=1")->second;
    prior(0.5, 0.0);
    expected(level_);
    EXPECT_NE(state_.condProbs->find("tank.level=1")->second, first);
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 1.0}}));
    // The one that was replaced can still be read.
    EXPECT_EQ(first->size(), 2u);
    EXPECT_EQ(first->find(1)->second, 0.75);
}

TEST_F(EntropyTest, ReplacesADistributionThatIsNull)
{
    (*state_.condProbs)[atom("tank.level=1")->getId()] = nullptr;
    expected(level_);
    EXPECT_EQ(distribution("tank.level=1").size(), 2u);
}

TEST_F(EntropyTest, TakesTheElementsOfTheStateAndNotTheMapItIsGiven)
{
    ElMap other;
    EXPECT_EQ(engine_.entropy(level_, &state_, &other), engine_.entropy(level_, &state_, nullptr));
    EXPECT_TRUE(other.empty());
}

TEST_F(EntropyTest, RatesTheAtomOfTheStatesElement)
{
    // The state's element under the identifier instantiates another atom, of a variable of two values.
    state_.elements->find("tank.level=1")->second->atom = atom("valve.mode=ok");
    prior(1.0, 0.0);
    toOk_->formula = model_.formula("and", {{true, atom("tank.level=2")}});
    // level=1 is rated as valve.mode=ok (1/2); 2 and 3 are within reach and opposed to nothing.
    EXPECT_TRUE(std::isnan(expected(level_)));
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 1.0}}));
}

TEST_F(EntropyTest, LeavesANullEntryForAnElementThatIsMissing)
{
    delete state_.elements->find("tank.level=2")->second;
    state_.elements->erase("tank.level=2");
    EXPECT_DOUBLE_EQ(expected(level_), nats({0.75, 0.25}));
    ASSERT_EQ(state_.elements->count("tank.level=2"), 1u);
    EXPECT_EQ(state_.elements->find("tank.level=2")->second, nullptr);
}

TEST_F(EntropyTest, LooksNoElementUpWhenNoTransitionIsLikely)
{
    prior(0.0, 0.0);
    delete state_.elements->find("tank.level=2")->second;
    state_.elements->erase("tank.level=2");
    expected(level_);
    EXPECT_EQ(state_.elements->count("tank.level=2"), 0u);
}

TEST_F(EntropyTest, IsNotANumberForAVariableWithPrimeImplicates)
{
    PiTable table;
    table.addPIAtom(atom("tank.level=1"), new PiTable::Implicates);
    engine_.piTable = &table;
    const FlushLog log;
    EXPECT_TRUE(std::isnan(expected(level_)));
    EXPECT_EQ(log.text(), "rough proba computation - strange end\n"
                          "rough proba computation - strange end\n");
}

TEST_F(EntropyTest, RatesNoTransitionOfPriorZero)
{
    PiTable table;
    table.addPIAtom(atom("tank.level=1"), new PiTable::Implicates);
    engine_.piTable = &table;
    prior(0.0, 0.5);
    const FlushLog log;
    expected(level_);
    EXPECT_EQ(log.text(), "rough proba computation - strange end\n");
}

TEST_F(EntropyTest, IsTheSameWithAMutedTrace)
{
    const double loud = expected(level_);
    const MutedTrace muted;
    EXPECT_EQ(expected(level_), loud);
}

TEST_F(EntropyTest, OnACopyLeavesTheOriginalsDistributions)
{
    expected(level_);
    State copy(&state_, true);
    (*copy.postProbs)[2] = 0.0;
    engine_.entropy(level_, &copy, copy.elements);
    engine_.entropy(atom("tank.level=1"), &copy, copy.elements);
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 0.75}, {2, 0.25}}));
    EXPECT_EQ(copy.condProbs->find("tank.level=1")->second->size(), 1u);
}

TEST_F(EntropyTest, GivenAnAtomIsThatOfThePrior)
{
    model_.clause("!valve.mode=ok | valve.flow=on"); // not asked for here
    expected(flow_);
    prior(0.5, 0.125);
    EXPECT_DOUBLE_EQ(given("valve.flow=on"), nats({0.8, 0.2}));
    EXPECT_EQ(distribution("valve.flow=on"), (std::map<int, double>{{1, 0.8}, {2, 0.2}}));
}

TEST_F(EntropyTest, GivenAnAtomRefillsTheDistributionThatThereIs)
{
    expected(level_);
    const ProbMap* before = state_.condProbs->find("tank.level=1")->second;
    given("tank.level=1");
    EXPECT_EQ(state_.condProbs->find("tank.level=1")->second, before);
}

TEST_F(EntropyTest, GivenAnAtomDividesEveryEntryThatThereIs)
{
    expected(level_);
    (*state_.condProbs->find("tank.level=1")->second)[77] = 1.0;
    prior(0.5, 0.0);
    EXPECT_EQ(given("tank.level=1"), 0.0);
    // Transition 2 is of prior zero now: its entry of before stays, divided by 0.5, and counts for nothing.
    EXPECT_EQ(distribution("tank.level=1"), (std::map<int, double>{{1, 1.0}, {2, 0.5}, {77, 2.0}}));
}

TEST_F(EntropyTest, GivenAnAtomAndOneCertainTransitionIsNegativeZero)
{
    prior(0.5, 0.0);
    expected(level_);
    const double h = given("tank.level=1");
    EXPECT_EQ(h, 0.0);
    EXPECT_TRUE(std::signbit(h));
}

TEST_F(EntropyTest, GivenAnAtomWithoutLikelyTransitionsIsNegativeZero)
{
    prior(0.0, 0.0);
    expected(level_);
    const double h = given("tank.level=1");
    EXPECT_EQ(h, 0.0);
    EXPECT_TRUE(std::signbit(h));
}

TEST_F(EntropyTest, GivenAnAtomAsksNoTable)
{
    expected(level_);
    PiTable table;
    table.addPIAtom(atom("tank.level=1"), new PiTable::Implicates);
    engine_.piTable = &table;
    const FlushLog log;
    EXPECT_DOUBLE_EQ(given("tank.level=1"), nats({0.75, 0.25}));
    EXPECT_EQ(log.text(), "");
}

TEST_F(EntropyTest, GivenAnAtomNeedsNoElement)
{
    expected(level_);
    state_.clear();
    state_.elements = new ElMap;
    EXPECT_DOUBLE_EQ(engine_.entropy(atom("tank.level=1"), &state_, nullptr), nats({0.75, 0.25}));
    EXPECT_TRUE(state_.elements->empty());
}

} // namespace
