// The distribution of a step: filled from the transitions, and sorted.
#include "tests/support/FlushLog.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

class StateProbabilitiesTest : public testing::Test {
protected:
    StateProbabilitiesTest()
    {
        for (const char* name : {"valve", "pump", "tank"}) {
            model_.variable(model_.comp(name), "mode", "Mode", {"ok", "bad"});
        }
    }

    Transition* transition(const char* comp, int id, double proba)
    {
        Transition* made =
            model_.transition(model_.atom(std::string(comp) + ".mode=ok"), "Nominal", proba);
        made->id = id;
        return made;
    }
    void enter(const char* comp)
    {
        Comp* found = DataManager::active_comps->find(comp)->second;
        (*state_.comps)[found->name.c_str()] = found;
    }
    std::vector<std::pair<double, int>> sorted()
    {
        engine_.sortPostProbs(&state_);
        return {state_.sortedPostProbs->begin(), state_.sortedPostProbs->end()};
    }

    TestModel model_;
    itms engine_;
    State state_;
};

TEST_F(StateProbabilitiesTest, AreThoseOfTheTransitionsOfTheStatesComponents)
{
    transition("valve", 0, 0.75);
    transition("valve", 1, 0.25);
    transition("pump", 2, 0.5);
    transition("tank", 3, 1.0);
    enter("valve");
    enter("pump");
    engine_.initStateProbas(&state_);
    EXPECT_EQ(state_.postProbs->size(), 3u);
    EXPECT_EQ((*state_.postProbs)[0], 0.75);
    EXPECT_EQ((*state_.postProbs)[1], 0.25);
    EXPECT_EQ((*state_.postProbs)[2], 0.5);
}

TEST_F(StateProbabilitiesTest, AreNotNormalised)
{
    transition("valve", 0, 3.0);
    transition("valve", 1, 0.0);
    enter("valve");
    engine_.initStateProbas(&state_);
    EXPECT_EQ((*state_.postProbs)[0], 3.0);
    EXPECT_EQ(state_.postProbs->count(1), 1u);
    EXPECT_EQ((*state_.postProbs)[1], 0.0);
}

TEST_F(StateProbabilitiesTest, OverwriteEntriesOfTheirOwnAndLeaveOthers)
{
    transition("valve", 0, 0.75);
    enter("valve");
    (*state_.postProbs)[0] = 0.125;
    (*state_.postProbs)[9] = 0.5;
    engine_.initStateProbas(&state_);
    EXPECT_EQ((*state_.postProbs)[0], 0.75);
    EXPECT_EQ((*state_.postProbs)[9], 0.5);
}

TEST_F(StateProbabilitiesTest, OfAStateWithoutComponentsAreNone)
{
    transition("valve", 0, 0.75);
    engine_.initStateProbas(&state_);
    EXPECT_TRUE(state_.postProbs->empty());
}

TEST_F(StateProbabilitiesTest, FillingThemSortsNothing)
{
    transition("valve", 0, 0.75);
    enter("valve");
    state_.sortedPostProbs->insert({0.5, 4});
    engine_.initStateProbas(&state_);
    EXPECT_EQ(state_.sortedPostProbs->size(), 1u);
}

TEST_F(StateProbabilitiesTest, AreSortedLargestFirst)
{
    (*state_.postProbs)[0] = 0.25;
    (*state_.postProbs)[1] = 0.75;
    (*state_.postProbs)[2] = 0.5;
    EXPECT_EQ(sorted(), (std::vector<std::pair<double, int>>{{0.75, 1}, {0.5, 2}, {0.25, 0}}));
}

TEST_F(StateProbabilitiesTest, EqualOnesAreSortedInTheReverseOfTheOrderInWhichTheyWereMet)
{
    for (const int id : {3, 1, 2, 0}) {
        (*state_.postProbs)[id] = 0.5;
    }
    (*state_.postProbs)[4] = 0.75;
    // The map iterates 0 1 2 3 4.
    EXPECT_EQ(sorted(), (std::vector<std::pair<double, int>>{
                            {0.75, 4}, {0.5, 3}, {0.5, 2}, {0.5, 1}, {0.5, 0}}));
}

TEST_F(StateProbabilitiesTest, OfOneBucketAreMetNewestFirst)
{
    // 0, 193 and 386 share a bucket, where the newest comes first: met 386, 193, 0.
    for (const int id : {0, 193, 386}) {
        (*state_.postProbs)[id] = 0.5;
    }
    EXPECT_EQ(sorted(), (std::vector<std::pair<double, int>>{{0.5, 0}, {0.5, 193}, {0.5, 386}}));
}

TEST_F(StateProbabilitiesTest, AreSortedFromScratch)
{
    (*state_.postProbs)[0] = 0.25;
    sorted();
    state_.postProbs->clear();
    (*state_.postProbs)[1] = 0.5;
    EXPECT_EQ(sorted(), (std::vector<std::pair<double, int>>{{0.5, 1}}));
    state_.postProbs->clear();
    EXPECT_TRUE(sorted().empty());
}

TEST_F(StateProbabilitiesTest, SortingLeavesTheDistribution)
{
    (*state_.postProbs)[0] = 0.25;
    sorted();
    EXPECT_EQ(state_.postProbs->size(), 1u);
    EXPECT_EQ((*state_.postProbs)[0], 0.25);
}

// A stable sort of the reversed entries says the same in other words.
TEST_F(StateProbabilitiesTest, AreSortedAsAStableSortOfTheReversedEntries)
{
    const unsigned int seed = 5150;
    std::mt19937 random(seed);
    for (int round = 0; round < 20; ++round) {
        state_.postProbs->clear();
        for (int i = 0; i < 300; ++i) {
            (*state_.postProbs)[static_cast<int>(random() % 2000)] =
                static_cast<double>(random() % 8) / 8;
        }
        std::vector<std::pair<double, int>> expected;
        for (const auto& [id, probability] : *state_.postProbs) {
            expected.insert(expected.begin(), {probability, id});
        }
        std::stable_sort(expected.begin(), expected.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        EXPECT_EQ(sorted(), expected) << "seed " << seed << ", round " << round;
    }
}

TEST_F(StateProbabilitiesTest, PrintNothing)
{
    transition("valve", 0, 0.75);
    enter("valve");
    const FlushLog log;
    engine_.initStateProbas(&state_);
    engine_.sortPostProbs(&state_);
    EXPECT_EQ(log.text(), "");
    EXPECT_EQ(log.flushes(), 0u);
}

} // namespace
