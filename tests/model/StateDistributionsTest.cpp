// Distributions of a state: renewed, shared by the search's copies, made its own again.
#include "model/Atom.h"
#include "model/State.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* a = "x.v=a";
constexpr const char* b = "x.v=b";

ProbMap* of(const State& state, const char* id)
{
    const auto found = state.condProbs->find(id);
    return found == state.condProbs->end() ? nullptr : found->second;
}

TEST(Distributions, ARenewedOneIsEmptyAndInTheMap)
{
    State state;
    ProbMap* fresh = state.renewDistribution(a);
    ASSERT_NE(fresh, nullptr);
    EXPECT_TRUE(fresh->empty());
    EXPECT_EQ(of(state, a), fresh);
}

TEST(Distributions, ANullEntryIsRenewedToo)
{
    State state;
    (*state.condProbs)[a] = nullptr;
    EXPECT_EQ(of(state, a), nullptr);
    ProbMap* fresh = state.renewDistribution(a);
    EXPECT_EQ(of(state, a), fresh);
    EXPECT_EQ(state.condProbs->size(), 1u);
}

TEST(Distributions, ARenewedOneIsAnother)
{
    State state;
    ProbMap* first = state.renewDistribution(a);
    (*first)[1] = 0.5;
    ProbMap* second = state.renewDistribution(a);
    EXPECT_NE(first, second);
    EXPECT_TRUE(second->empty());
}

TEST(Distributions, TheOneThatWasReplacedStaysReadable)
{
    State state;
    ProbMap* first = state.renewDistribution(a);
    (*first)[1] = 0.5;
    state.renewDistribution(a);
    state.renewDistribution(a);
    EXPECT_EQ((*first)[1], 0.5);
}

TEST(Distributions, OneFromOutsideIsTheStatesWhenItIsReplaced)
{
    State state;
    auto* outside = new ProbMap; // the leak check sees to it that the state releases it
    (*outside)[1] = 0.5;
    (*state.condProbs)[a] = outside;
    state.renewDistribution(a);
    EXPECT_EQ((*outside)[1], 0.5);
}

TEST(Distributions, OneFromOutsideIsReleasedWithTheState)
{
    State state;
    (*state.condProbs)[a] = new ProbMap;
    EXPECT_TRUE(of(state, a)->empty());
}

TEST(Distributions, OneFromOutsideThatReplacedTheStatesIsReleasedToo)
{
    State state;
    ProbMap* first = state.renewDistribution(a);
    (*state.condProbs)[a] = new ProbMap;
    EXPECT_NE(of(state, a), first);
    EXPECT_TRUE(first->empty());
}

TEST(Branch, SharesTheDistributionsOfItsParent)
{
    State parent;
    ProbMap* renewed = parent.renewDistribution(a);
    auto* outside = new ProbMap;
    (*parent.condProbs)[b] = outside;
    const std::unique_ptr<State> child = State::branch(&parent);
    EXPECT_NE(child->condProbs, parent.condProbs);
    EXPECT_EQ(of(*child, a), renewed);
    EXPECT_EQ(of(*child, b), outside);
}

TEST(Branch, KeepsANullDistribution)
{
    State parent;
    (*parent.condProbs)[a] = nullptr;
    const std::unique_ptr<State> child = State::branch(&parent);
    EXPECT_EQ(child->condProbs->size(), 1u);
    EXPECT_EQ(of(*child, a), nullptr);
}

TEST(Branch, KeepsSharedDistributionsAliveAfterItsParent)
{
    auto parent = std::make_unique<State>();
    (*parent->renewDistribution(a))[1] = 0.5;
    (*parent->condProbs)[b] = new ProbMap;
    const std::unique_ptr<State> child = State::branch(parent.get());
    parent.reset();
    EXPECT_EQ((*of(*child, a))[1], 0.5);
    EXPECT_TRUE(of(*child, b)->empty());
}

TEST(Branch, ThatDiesLeavesTheDistributionsToItsParent)
{
    State parent;
    (*parent.renewDistribution(a))[1] = 0.5;
    State::branch(&parent).reset();
    EXPECT_EQ((*of(parent, a))[1], 0.5);
}

TEST(Branch, ThatRenewsADistributionLeavesItsParentsAlone)
{
    State parent;
    ProbMap* shared = parent.renewDistribution(a);
    (*shared)[1] = 0.5;
    const std::unique_ptr<State> child = State::branch(&parent);
    (*child->renewDistribution(a))[1] = 0.25;
    EXPECT_EQ(of(parent, a), shared);
    EXPECT_EQ((*shared)[1], 0.5);
    EXPECT_EQ((*of(*child, a))[1], 0.25);
}

TEST(Branch, HasElementsOfItsOwnAndNoProbabilities)
{
    Atom atom;
    atom.id = a;
    State parent;
    auto* el = new TrajEl;
    el->atom = &atom;
    el->label = "true";
    el->lock = 4;
    el->dependents->push_back(el);
    (*parent.elements)[atom.getId()] = el;
    (*parent.elements)[b] = nullptr;
    (*parent.postProbs)[1] = 0.5;
    const std::unique_ptr<State> child = State::branch(&parent);
    ASSERT_EQ(child->elements->size(), 2u);
    TrajEl* mine = child->elements->find(a)->second;
    EXPECT_NE(mine, el);
    EXPECT_EQ(mine->atom, &atom);
    EXPECT_EQ(mine->label, "true");
    EXPECT_EQ(mine->lock, 4);
    EXPECT_EQ(*mine->dependents, std::vector<TrajEl*>{mine});
    EXPECT_EQ(child->elements->find(b)->second, nullptr);
    EXPECT_EQ(child->postProbs, nullptr);
}

TEST(Branch, CarriesTheRestOver)
{
    State parent;
    parent.wkstRank = 2.0;
    parent.obsCondProba = 0.125;
    parent.computeProbas = true;
    parent.setUnknown();
    parent.rank = 3.0;
    (*parent.comps)["x"] = nullptr;
    parent.sortedPostProbs->insert({0.5, 7});
    const std::unique_ptr<State> child = State::branch(&parent);
    EXPECT_EQ(child->wkstRank, 2.0);
    EXPECT_EQ(child->obsCondProba, 0.125);
    EXPECT_TRUE(child->computeProbas);
    EXPECT_TRUE(child->unknown);
    EXPECT_EQ(child->rank, 3.0);
    EXPECT_EQ(child->comps->size(), 1u);
    ASSERT_EQ(child->sortedPostProbs->size(), 1u);
    EXPECT_EQ(child->sortedPostProbs->begin()->second, 7);
}

TEST(Detach, GivesABranchDistributionsOfItsOwn)
{
    State parent;
    (*parent.renewDistribution(a))[1] = 0.5;
    const std::unique_ptr<State> child = State::branch(&parent);
    child->detach();
    EXPECT_NE(of(*child, a), of(parent, a));
    EXPECT_EQ((*of(*child, a))[1], 0.5);
    (*of(*child, a))[1] = 0.25;
    EXPECT_EQ((*of(parent, a))[1], 0.5);
}

TEST(Detach, OfTheParentSeparatesTheTwoAsWell)
{
    State parent;
    (*parent.renewDistribution(a))[1] = 0.5;
    const std::unique_ptr<State> child = State::branch(&parent);
    parent.detach();
    (*of(parent, a))[1] = 0.25;
    EXPECT_EQ((*of(*child, a))[1], 0.5);
}

TEST(Detach, LeavesADistributionThatNobodyShares)
{
    State state;
    ProbMap* mine = state.renewDistribution(a);
    auto* outside = new ProbMap;
    (*state.condProbs)[b] = outside;
    state.detach();
    EXPECT_EQ(of(state, a), mine);
    EXPECT_EQ(of(state, b), outside);
}

TEST(Detach, LeavesTheLastHolderItsDistribution)
{
    auto parent = std::make_unique<State>();
    ProbMap* shared = parent->renewDistribution(a);
    const std::unique_ptr<State> child = State::branch(parent.get());
    parent.reset();
    child->detach();
    EXPECT_EQ(of(*child, a), shared);
}

TEST(Detach, SeparatesSiblings)
{
    State parent;
    (*parent.renewDistribution(a))[1] = 0.5;
    const std::unique_ptr<State> first = State::branch(&parent);
    const std::unique_ptr<State> second = State::branch(&parent);
    first->detach();
    second->detach();
    (*of(*first, a))[1] = 0.25;
    EXPECT_EQ((*of(*second, a))[1], 0.5);
    EXPECT_EQ((*of(parent, a))[1], 0.5);
}

} // namespace
