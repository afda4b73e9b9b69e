#include "monitor/labels/Completion.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using monitor::Completion;
using monitor::completionOf;
using monitor::Prediction;

class CompletionTest : public testing::Test {
protected:
    MutedTrace muted_;
    HandMade model_;
};

TEST_F(CompletionTest, LabelsWithoutOpenVariablesAreComplete)
{
    model_.condition("a.x", {"0", "1"});
    const auto active = model_.activate();
    Prediction labels(*active->plant);
    labels.assume(active->index("a.x=1"));
    EXPECT_EQ(completionOf(*active->plant, labels), Completion::possible);
}

TEST_F(CompletionTest, FindsAContradictionThatPropagationDoesNot)
{
    model_.condition("a.x", {"0", "1"});
    model_.condition("a.y", {"0", "1"});
    model_.law("a.x=0 | a.y=0");
    model_.law("a.x=0 | a.y=1");
    model_.law("a.x=1 | a.y=0");
    model_.law("a.x=1 | a.y=1");
    const auto active = model_.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(labels.propagate());
    EXPECT_EQ(completionOf(*active->plant, labels), Completion::impossible);
}

TEST_F(CompletionTest, GivesUpWhereTooManyValuesAreTakenBack)
{
    // Five things in four places, each place with room for one.
    for (int i = 0; i < 5; ++i) {
        model_.condition("thing" + std::to_string(i) + ".place", {"a", "b", "c", "d"});
    }
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < i; ++j) {
            for (const std::string place : {"a", "b", "c", "d"}) {
                model_.law("!thing" + std::to_string(i) + ".place=" + place + " | !thing" +
                           std::to_string(j) + ".place=" + place);
            }
        }
    }
    const auto active = model_.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(labels.propagate());
    EXPECT_EQ(completionOf(*active->plant, labels, 3), Completion::unsettled);
    EXPECT_EQ(completionOf(*active->plant, labels), Completion::impossible);
}

TEST_F(CompletionTest, LeavesTheGivenLabelsAsTheyAre)
{
    model_.condition("a.x", {"0", "1"});
    const auto active = model_.activate();
    const Prediction labels(*active->plant);
    EXPECT_EQ(completionOf(*active->plant, labels), Completion::possible);
    EXPECT_FALSE(labels.isKnown(active->index("a.x=0")));
}

TEST_F(CompletionTest, HandsOutTheFirstValuesWithWhichTheRestIsPossible)
{
    model_.condition("a.x", {"0", "1", "2"});
    model_.condition("a.y", {"0", "1", "2"});
    model_.law("!a.x=2 | a.y=0");
    model_.law("!a.x=2 | a.y=1");
    const auto active = model_.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(labels.propagate());
    const auto variable = [&](const std::string& id) {
        return active->plant->variableOf(active->index(id));
    };
    const auto fromTheLast = [&](plant::VariableIndex one) {
        std::vector<plant::AtomIndex> values = active->plant->variable(one).values.toVector();
        std::reverse(values.begin(), values.end());
        return values;
    };
    EXPECT_EQ(complete(*active->plant, labels, {variable("a.y=0"), variable("a.x=0")}, fromTheLast),
              Completion::possible);
    EXPECT_TRUE(labels.isTrue(active->index("a.y=2")));
    EXPECT_TRUE(labels.isTrue(active->index("a.x=1")));
    EXPECT_TRUE(labels.complete());
}

TEST_F(CompletionTest, HandsOutTheLabelsAsTheyWereWhereThereIsNone)
{
    model_.condition("a.z", {"0", "1"});
    model_.condition("a.x", {"0", "1"});
    model_.condition("a.y", {"0", "1"});
    for (const std::string law :
         {"a.x=0 | a.y=0", "a.x=0 | a.y=1", "a.x=1 | a.y=0", "a.x=1 | a.y=1"}) {
        model_.law(law);
    }
    const auto active = model_.activate();
    Prediction labels(*active->plant);
    ASSERT_TRUE(labels.assume(active->index("a.z=1")) && labels.propagate());
    const std::size_t before = labels.mark();
    const auto variable = active->plant->variableOf(active->index("a.x=0"));
    const auto all = [&](plant::VariableIndex one) {
        return active->plant->variable(one).values.toVector();
    };
    EXPECT_EQ(complete(*active->plant, labels, {variable}, all), Completion::impossible);
    EXPECT_EQ(labels.mark(), before);
    EXPECT_TRUE(labels.isTrue(active->index("a.z=1")));
}

TEST(RandomCompletions, ArePossibleWhereTryingEverythingFindsOne)
{
    const MutedTrace muted;
    int possible = 0;
    int impossible = 0;
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const ActivePlant active(randomModel(random, PlantKind::mixed));
        Prediction labels(*active.plant);
        std::vector<const Atom*> given;
        for (const StateVar* variable : allVariables()) {
            if (random.chance(40)) {
                given.push_back(random.pick(*variable->atomLinks));
                labels.assume(active.plant->indexOf(given.back()));
            }
        }
        if (!labels.propagate()) {
            continue;
        }
        const bool expected = BruteForceDiagnosis::world(given).has_value();
        ++(expected ? possible : impossible);
        EXPECT_EQ(completionOf(*active.plant, labels),
                  expected ? Completion::possible : Completion::impossible);
    }
    EXPECT_GT(possible, 20);
    EXPECT_GT(impossible, 0);
}

} // namespace
