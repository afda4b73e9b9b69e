// Combinations counted, compared with those found by trying every assignment.
#include "monitor/labels/Counting.h"

#include "tests/reference/BruteForceDiagnosis.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using monitor::countCombinations;
using monitor::Prediction;

class CountingTest : public testing::Test {
protected:
    // How many combinations of the variables there are with these values.
    std::optional<double> count(const std::vector<std::string>& given,
                                const std::vector<std::string>& variables)
    {
        if (!active_) {
            active_ = model_.activate();
        }
        Prediction labels(*active_->plant);
        for (const std::string& id : given) {
            EXPECT_TRUE(labels.assume(active_->index(id)));
        }
        EXPECT_TRUE(labels.propagate());
        std::vector<plant::VariableIndex> counted;
        for (const std::string& value : variables) {
            counted.push_back(active_->plant->variableOf(active_->index(value)));
        }
        return countCombinations(*active_->plant, labels, counted);
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(CountingTest, OfVariablesThatNothingConnectsIsTheProductOfTheirValues)
{
    model_.condition("a.v", {"0", "1"});
    model_.condition("b.v", {"0", "1", "2"});
    EXPECT_EQ(count({}, {"a.v=0", "b.v=0"}), 6.0);
    EXPECT_EQ(count({"a.v=1"}, {"a.v=0", "b.v=0"}), 3.0);
    EXPECT_EQ(count({}, {}), 1.0);
}

TEST_F(CountingTest, LeavesOutValuesThatALawExcludes)
{
    model_.condition("a.v", {"0", "1", "2"});
    model_.law("!a.v=0");
    EXPECT_EQ(count({}, {"a.v=0"}), 2.0);
}

TEST_F(CountingTest, FollowsWhatAnOpenVariableConnects)
{
    model_.condition("a.v", {"0", "1"});
    model_.condition("b.v", {"0", "1"});
    model_.condition("c.v", {"0", "1"});
    for (const char* law : {"!a.v=0 b.v=0", "!a.v=1 b.v=1", "!b.v=0 c.v=0", "!b.v=1 c.v=1"}) {
        model_.law(law);
    }
    EXPECT_EQ(count({}, {"a.v=0", "c.v=0"}), 2.0);
}

// x and y exclude each other three ways out of four, which propagation does not see.
TEST_F(CountingTest, SeesWhatFollowsOnlyByCases)
{
    model_.condition("x.v", {"0", "1"});
    model_.condition("y.v", {"0", "1"});
    model_.law("x.v=1 y.v=1");
    model_.law("x.v=1 y.v=0");
    EXPECT_EQ(count({}, {"x.v=0"}), 1.0);
    EXPECT_EQ(count({}, {"x.v=0", "y.v=0"}), 2.0);
}

TEST_F(CountingTest, IsNoneWhereTheLawsAllowNothing)
{
    model_.condition("x.v", {"0", "1"});
    model_.condition("y.v", {"0", "1"});
    for (const char* law : {"x.v=1 y.v=1", "x.v=1 y.v=0", "x.v=0 y.v=1", "x.v=0 y.v=0"}) {
        model_.law(law);
    }
    EXPECT_EQ(count({}, {"x.v=0"}), 0.0);
}

// Twenty free variables have 2^20 combinations, which are not tried one by one.
TEST_F(CountingTest, MultipliesComponents)
{
    std::vector<std::string> all;
    for (int i = 0; i < 20; ++i) {
        const std::string name = "c" + std::to_string(i) + ".v";
        model_.condition(name, {"0", "1"});
        all.push_back(name + "=0");
    }
    EXPECT_EQ(count({}, all), 1048576.0);
}

TEST_F(CountingTest, GivesUpWhereTooManyValuesWouldHaveToBeTried)
{
    std::vector<std::string> all;
    std::string law;
    for (int i = 0; i < 20; ++i) {
        const std::string name = "c" + std::to_string(i) + ".v";
        model_.condition(name, {"0", "1"});
        all.push_back(name + "=0");
        law += name + "=0 ";
    }
    model_.law(law);
    for (int i = 1; i < 20; ++i) {
        model_.law("c0.v=0 c" + std::to_string(i) + ".v=0 c" + std::to_string((i + 7) % 20) + ".v=1");
    }
    EXPECT_EQ(count({}, all), std::nullopt);
}

TEST_F(CountingTest, AgreesWithTryingEverythingOnRandomPlants)
{
    int several = 0;
    int counted = 0;
    for (std::uint64_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const ActivePlant active(
            randomModel(random, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed));
        Prediction labels(*active.plant);
        std::vector<const Atom*> given;
        std::vector<plant::VariableIndex> variables;
        std::vector<const StateVar*> tried;
        for (std::size_t i = 0; i < active.plant->variables().size(); ++i) {
            const plant::PlantVariable& variable = active.plant->variables()[i];
            if (variable.isMode || (variable.isCommand && random.chance(70))) {
                const plant::AtomIndex value = random.pick(variable.values);
                labels.assume(value);
                given.push_back(active.plant->atom(value));
            } else if (tried.size() < 5 && random.chance(50)) {
                variables.push_back(static_cast<plant::VariableIndex>(i));
                tried.push_back(variable.variable);
            }
        }
        if (!labels.propagate() || !BruteForceDiagnosis::world(given)) {
            continue;
        }
        const auto number = countCombinations(*active.plant, labels, variables);
        ASSERT_TRUE(number);
        EXPECT_EQ(*number, BruteForceDiagnosis::combinations(given, tried));
        ++counted;
        several += *number > 1.0 ? 1 : 0;
    }
    EXPECT_GT(counted, 500);
    EXPECT_GT(several, 300);
}

} // namespace
