#include "monitor/labels/GuardShares.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using monitor::GuardShare;

// The guard is that of the one change that leaves m.state=off.
class GuardSharesTest : public testing::Test {
protected:
    GuardSharesTest()
    {
        model_.mode("m.state", {"off", "on"});
        model_.command("m.request", {"none", "slow", "fast"});
        for (const std::string name : {"a", "b"}) {
            model_.condition("x." + name, {"0", "1", "2"});
        }
    }
    void guard(const std::string& literals)
    {
        model_.nominal("m.state=off", "m.state=on", 1.0, literals);
    }
    GuardShare share(const std::vector<std::string>& known = {},
                     const std::vector<std::string>& commands = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        std::vector<plant::AtomIndex> values;
        for (const std::string& id : known) {
            values.push_back(active_->index(id));
        }
        values.push_back(active_->index("m.state=off"));
        const monitor::Prediction before = monitor::concludedFrom(*active_->plant, values);
        monitor::GuardShares guards(
            *active_->plant, before,
            monitor::CommandValues(*active_->plant, input(*active_, commands, {}).commands));
        return guards.of(active_->plant->changesFrom(active_->index("m.state=off")).front());
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(GuardSharesTest, OneThatFollowsHoldsAndOneThatIsExcludedDoesNot)
{
    guard("x.a=1");
    EXPECT_EQ(share({"x.a=1"}).share, 1.0);
    EXPECT_EQ(share({"x.a=2"}).share, 0.0);
    EXPECT_EQ(share({"x.a=2"}).alternative, nullptr);
}

TEST_F(GuardSharesTest, AnOpenOneHasItsPartOfTheValues)
{
    guard("x.a=1");
    EXPECT_DOUBLE_EQ(share().share, 1.0 / 3);
    EXPECT_TRUE(share().exact);
    EXPECT_NE(share().alternative, nullptr);
}

TEST_F(GuardSharesTest, ANegatedLiteralHasTheOtherValues)
{
    guard("!x.a=1");
    EXPECT_DOUBLE_EQ(share().share, 2.0 / 3);
}

TEST_F(GuardSharesTest, TwoOpenLiteralsHoldTogetherInTheirCombinations)
{
    guard("x.a=1 x.b=2");
    EXPECT_DOUBLE_EQ(share().share, 1.0 / 9);
}

TEST_F(GuardSharesTest, AlternativesShareTheirCombinations)
{
    guard("x.a=1");
    model_.builder().alternative({{true, model_.atom("x.b=2")}});
    EXPECT_DOUBLE_EQ(share().share, 5.0 / 9);
}

// (0, 0), (0, 1), (0, 2), (1, 0), (2, 0): a is 0 in three of five.
TEST_F(GuardSharesTest, LawsLeaveWhatTheyAllow)
{
    model_.law("x.a=0 | x.b=0");
    guard("x.a=0");
    EXPECT_DOUBLE_EQ(share().share, 3.0 / 5);
}

TEST_F(GuardSharesTest, OneThatFollowsByCasesOnlyHolds)
{
    for (const std::string b : {"0", "1", "2"}) {
        model_.law("!x.b=" + b + " | x.a=1");
    }
    guard("x.a=1");
    EXPECT_EQ(share().share, 1.0);
}

TEST_F(GuardSharesTest, OneThatIsExcludedByCasesOnlyDoesNotHold)
{
    for (const std::string b : {"0", "1", "2"}) {
        model_.law("!x.b=" + b + " | x.a=1");
    }
    guard("!x.a=1");
    EXPECT_EQ(share().share, 0.0);
}

TEST_F(GuardSharesTest, ACommandThatIsNotGivenMayHaveAnyValue)
{
    guard("m.request=fast");
    EXPECT_DOUBLE_EQ(share().share, 1.0 / 3);
    EXPECT_EQ(share({}, {"m.request=fast"}).share, 1.0);
    EXPECT_EQ(share({}, {"m.request=slow"}).share, 0.0);
}

TEST_F(GuardSharesTest, ACommandThatWasGivenBeforeIsNotGiven)
{
    guard("m.request=fast");
    EXPECT_DOUBLE_EQ(share({"m.request=fast"}).share, 1.0 / 3);
}

TEST_F(GuardSharesTest, WhereThereAreTooManyCombinationsTheValuesCountByThemselves)
{
    std::string literals;
    for (int i = 0; i < 12; ++i) {
        model_.condition("y.c" + std::to_string(i), {"0", "1", "2"});
        literals += " y.c" + std::to_string(i) + "=1";
    }
    guard("x.a=1" + literals);
    EXPECT_FALSE(share().exact);
    EXPECT_NEAR(share().share * std::pow(3.0, 13), 1.0, 1e-9);
}

} // namespace
