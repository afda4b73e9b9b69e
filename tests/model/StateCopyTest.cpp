// Copies of a state: which elements are the copy's own, what is carried over, in which order.
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <random>

namespace {

template <class Map> auto entriesOf(const Map& map)
{
    std::vector<std::pair<typename Map::key_type, typename Map::mapped_type>> entries;
    for (const auto& [key, value] : map) {
        entries.emplace_back(key, value);
    }
    return entries;
}

template <class Map> auto keysOf(const Map& map)
{
    std::vector<typename Map::key_type> keys;
    for (const auto& [key, value] : map) {
        keys.push_back(key);
    }
    return keys;
}

class StateCopyTest : public testing::Test {
protected:
    StateCopyTest()
    {
        comp_ = model_.comp("x");
        model_.variable(comp_, "v", "Cond", {"a", "b", "c"});
        clause_ = model_.clause("x.v=a | !x.v=b");
        state_.reset(model_.state({comp_}));
    }

    TrajEl* el(State& state, const char* id) { return state.elements->find(id)->second; }

    TestModel model_;
    Comp* comp_;
    Clause* clause_;
    std::vector<std::unique_ptr<Atom>> atoms_; // outlive the state, which holds their identifiers
    std::unique_ptr<State> state_;
};

TEST_F(StateCopyTest, HasElementsOfItsOwnWithTheSameFields)
{
    Transition transition;
    TrajEl& a = *el(*state_, "x.v=a");
    a.label = "false";
    a.support = clause_;
    a.transition = &transition;
    a.propagationNumber = 5;
    a.lock = 3;
    State copy(state_.get(), true);
    const TrajEl& mine = *el(copy, "x.v=a");
    EXPECT_NE(&mine, &a);
    EXPECT_EQ(mine.atom, a.atom);
    EXPECT_EQ(mine.label, "false");
    EXPECT_EQ(mine.support, clause_);
    EXPECT_EQ(mine.transition, &transition);
    EXPECT_EQ(mine.propagationNumber, 5);
    EXPECT_EQ(mine.lock, 3);
}

TEST_F(StateCopyTest, IsNotTouchedByChangesToTheOriginal)
{
    State copy(state_.get(), true);
    el(*state_, "x.v=a")->label = "true";
    el(*state_, "x.v=a")->dependents->push_back(el(*state_, "x.v=b"));
    (*state_->postProbs)[3] = 0.5;
    EXPECT_EQ(el(copy, "x.v=a")->label, "unknown");
    EXPECT_TRUE(el(copy, "x.v=a")->dependents->empty());
    EXPECT_TRUE(copy.postProbs->empty());
}

TEST_F(StateCopyTest, OutlivesTheOriginal)
{
    el(*state_, "x.v=a")->label = "true";
    el(*state_, "x.v=a")->dependents->push_back(el(*state_, "x.v=c"));
    (*state_->condProbs)["x.v=a"] = new ProbMap;
    State copy(state_.get(), true);
    state_.reset();
    EXPECT_EQ(el(copy, "x.v=a")->label, "true");
    EXPECT_EQ(el(copy, "x.v=a")->dependents->front()->label, "unknown");
    EXPECT_TRUE((*copy.condProbs)["x.v=a"]->empty());
}

TEST_F(StateCopyTest, KeepsNullEntriesAsNullEntries)
{
    (*state_->elements)["y.v=1"] = nullptr;
    State copy(state_.get(), true);
    ASSERT_EQ(copy.elements->size(), 4u);
    ASSERT_NE(copy.elements->find("y.v=1"), copy.elements->end());
    EXPECT_EQ(el(copy, "y.v=1"), nullptr);
}

TEST_F(StateCopyTest, PointsDependentsAtItsOwnElements)
{
    TrajEl* a = el(*state_, "x.v=a");
    TrajEl* b = el(*state_, "x.v=b");
    TrajEl* c = el(*state_, "x.v=c");
    a->dependents->assign({c, b, c});
    c->dependents->assign({a, c});
    State copy(state_.get(), true);
    TrajEl* myA = el(copy, "x.v=a");
    TrajEl* myB = el(copy, "x.v=b");
    TrajEl* myC = el(copy, "x.v=c");
    EXPECT_EQ(*myA->dependents, (std::vector<TrajEl*>{myC, myB, myC}));
    EXPECT_TRUE(myB->dependents->empty());
    EXPECT_EQ(*myC->dependents, (std::vector<TrajEl*>{myA, myC}));
    EXPECT_EQ(*a->dependents, (std::vector<TrajEl*>{c, b, c}));
}

TEST_F(StateCopyTest, LeavesADependentThatTheOriginalDoesNotHold)
{
    Atom stranger;
    stranger.id = "y.v=1";
    TrajEl outside;
    outside.atom = &stranger;
    el(*state_, "x.v=a")->dependents->push_back(&outside);
    State copy(state_.get(), true);
    EXPECT_EQ(*el(copy, "x.v=a")->dependents, std::vector<TrajEl*>{&outside});
}

TEST_F(StateCopyTest, CopiesTheProbabilities)
{
    (*state_->postProbs)[3] = 0.25;
    (*state_->postProbs)[196] = 0.5;
    (*state_->postProbs)[0] = 0.125;
    for (const int id : {4, 2, 9, 7}) {
        state_->sortedPostProbs->insert({0.5, id});
    }
    State copy(state_.get(), true);
    EXPECT_NE(copy.postProbs, state_->postProbs);
    EXPECT_EQ(entriesOf(*copy.postProbs), entriesOf(*state_->postProbs));
    EXPECT_NE(copy.sortedPostProbs, state_->sortedPostProbs);
    EXPECT_EQ(entriesOf(*copy.sortedPostProbs), entriesOf(*state_->sortedPostProbs));
    EXPECT_EQ(copy.sortedPostProbs->begin()->second, 7);
}

TEST_F(StateCopyTest, CarriesTheRestOver)
{
    state_->wkstRank = 2.0;
    state_->obsCondProba = 0.125;
    state_->computeProbas = true;
    state_->setUnknown();
    state_->rank = 3.0;
    State copy(state_.get(), true);
    EXPECT_EQ(copy.wkstRank, 2.0);
    EXPECT_EQ(copy.obsCondProba, 0.125);
    EXPECT_TRUE(copy.computeProbas);
    EXPECT_TRUE(copy.unknown);
    EXPECT_EQ(copy.rank, 3.0);
    EXPECT_NE(copy.comps, state_->comps);
    EXPECT_EQ(entriesOf(*copy.comps), entriesOf(*state_->comps));
    EXPECT_EQ(copy.comps->begin()->second, comp_);
}

TEST_F(StateCopyTest, AnswersForTheSameDistributionsWithItsOwn)
{
    auto* distribution = new ProbMap;
    (*distribution)[0] = 0.75;
    (*distribution)[193] = 0.25;
    (*state_->condProbs)["x.v=a"] = distribution;
    (*state_->condProbs)["x.v=b"] = nullptr;
    State copy(state_.get(), true);
    EXPECT_EQ(keysOf(*copy.condProbs), keysOf(*state_->condProbs));
    EXPECT_EQ(copy.condProbs->find("x.v=b")->second, nullptr);
    ProbMap& mine = *copy.condProbs->find("x.v=a")->second;
    EXPECT_NE(&mine, distribution);
    EXPECT_EQ(entriesOf(mine), entriesOf(*distribution));
    mine[0] = 0.5;
    mine[7] = 0.5;
    EXPECT_EQ((*distribution)[0], 0.75);
    EXPECT_EQ(distribution->size(), 2u);
}

TEST_F(StateCopyTest, IteratesItsMapsInTheOriginalsOrder)
{
    const unsigned int seed = 31;
    std::mt19937 random(seed);
    for (int i = 0; i < 400; ++i) {
        atoms_.push_back(std::make_unique<Atom>());
        Atom* atom = atoms_.back().get();
        atom->id = "c" + std::to_string(random() % 1000) + ".v=" + std::to_string(i);
        TrajEl* made = nullptr;
        if (i % 7 != 0) {
            made = new TrajEl;
            made->atom = atom;
        }
        (*state_->elements)[atom->getId()] = made;
        (*state_->postProbs)[static_cast<int>(random() % 5000)] = 0.5;
        (*state_->condProbs)[atom->getId()] = nullptr;
    }
    State copy(state_.get(), true);
    EXPECT_EQ(keysOf(*copy.elements), keysOf(*state_->elements)) << "seed " << seed;
    EXPECT_EQ(keysOf(*copy.postProbs), keysOf(*state_->postProbs)) << "seed " << seed;
    EXPECT_EQ(keysOf(*copy.condProbs), keysOf(*state_->condProbs)) << "seed " << seed;
}

TEST_F(StateCopyTest, OfAClearedStateHasNoElements)
{
    state_->clear();
    State copy(state_.get(), true);
    EXPECT_EQ(copy.elements, nullptr);
    State view(state_.get(), false);
    EXPECT_EQ(view.elements, nullptr);
}

TEST_F(StateCopyTest, WithoutOwnElementsRefersToTheOriginals)
{
    {
        State view(state_.get(), false);
        EXPECT_NE(view.elements, state_->elements);
        EXPECT_EQ(entriesOf(*view.elements), entriesOf(*state_->elements));
    }
    EXPECT_EQ(el(*state_, "x.v=a")->label, "unknown");
}

TEST_F(StateCopyTest, WithoutOwnElementsLeavesThemToTheOriginalWhenCleared)
{
    State view(state_.get(), false);
    view.clear();
    EXPECT_EQ(view.elements, nullptr);
    EXPECT_EQ(el(*state_, "x.v=a")->label, "unknown");
}

TEST_F(StateCopyTest, WithoutOwnElementsHasItsOwnProbabilities)
{
    (*state_->postProbs)[1] = 0.5;
    (*state_->condProbs)["x.v=a"] = new ProbMap;
    State view(state_.get(), false);
    (*view.postProbs)[1] = 0.25;
    (*view.condProbs->find("x.v=a")->second)[1] = 0.25;
    EXPECT_EQ((*state_->postProbs)[1], 0.5);
    EXPECT_TRUE((*state_->condProbs)["x.v=a"]->empty());
}

TEST_F(StateCopyTest, OfACopyIsACopy)
{
    el(*state_, "x.v=a")->dependents->push_back(el(*state_, "x.v=b"));
    auto first = std::make_unique<State>(state_.get(), true);
    const State second(first.get(), true);
    first.reset();
    const TrajEl* a = second.elements->find("x.v=a")->second;
    EXPECT_EQ(a->dependents->front(), second.elements->find("x.v=b")->second);
}

TEST_F(StateCopyTest, ClearReleasesTheElementsAndTheMap)
{
    (*state_->elements)["y.v=1"] = nullptr;
    state_->clear();
    EXPECT_EQ(state_->elements, nullptr);
}

TEST_F(StateCopyTest, ClearLeavesTheRestOfTheState)
{
    (*state_->postProbs)[1] = 0.5;
    state_->clear();
    EXPECT_EQ(state_->postProbs->size(), 1u);
    EXPECT_EQ(state_->comps->size(), 1u);
}

TEST_F(StateCopyTest, ClearingTwiceIsClearingOnce)
{
    state_->clear();
    state_->clear();
    EXPECT_EQ(state_->elements, nullptr);
}

TEST_F(StateCopyTest, SetUnknownRaisesTheFlagForGood)
{
    EXPECT_FALSE(state_->unknown);
    state_->setUnknown();
    state_->setUnknown();
    EXPECT_TRUE(state_->unknown);
}

} // namespace
