// How probable readings are after others, as exact fractions.
#include "monitor/labels/ReadingsInTime.h"

#include "tests/reference/Fraction.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using monitor::Prediction;
using testing::IsEmpty;
using testing::SizeIs;

using Names = std::vector<std::string>;

/// A reading by identifier, and how probable it is that it changes.
struct Read {
    std::string value;
    Fraction changing = Fraction(1, 4);
};

// A sensor a.v of three values, which shows anything unless m.mode is ok, and b.v of two, which no mode concerns. While the
// command ties them, a.v is 0 or 1, and b.v is not less.
class ReadingsInTimeTest : public testing::Test {
protected:
    ReadingsInTimeTest()
    {
        model_.mode("m.mode", {"ok", "odd!", "dead!"});
        model_.mode("n.mode", {"ok", "broken!"});
        model_.command("c.command", {"none", "tie"});
        model_.condition("a.v", {"0", "1", "2"});
        model_.condition("b.v", {"0", "1"});
        model_.law("!m.mode=ok | a.v=0");
        model_.law("!c.command=tie | !a.v=1 | b.v=1");
        model_.law("!c.command=tie | !a.v=2");
    }

    // The likelihood of the next step's readings.
    double step(const Names& given, const std::vector<Read>& readings, const Names& changed = {})
    {
        return stepOf(given, readings, changed, 0.0);
    }
    double stepOf(const Names& given, const std::vector<Read>& readings, const Names& changed,
                  double logEstimate)
    {
        if (!active_) {
            active_ = model_.activate();
        }
        const std::vector<plant::AtomIndex> values = input(*active_, given, {}).commands.toVector();
        const auto labels = [&] {
            ++asked_;
            return monitor::concludedFrom(*active_->plant, values);
        };
        std::vector<monitor::Reading> read;
        for (const Read& one : readings) {
            read.push_back({active_->index(one.value), one.changing.value(), logEstimate});
        }
        std::set<plant::VariableIndex> modes;
        for (const std::string& mode : changed) {
            modes.insert(active_->plant->variableOf(active_->index(mode)));
        }
        const monitor::ReadingsInTime result =
            monitor::readingsInTime(*active_->plant, values, labels, read, memory_, modes, answers_);
        memory_ = result.memory;
        exact_ = result.exact;
        return std::exp(result.log);
    }
    static void expectEqual(double found, const Fraction& expected)
    {
        EXPECT_NEAR(found, expected.value(), 1e-12);
    }

    const Names odd_{"m.mode=odd", "n.mode=ok", "c.command=none"};
    const Names dead_{"m.mode=dead", "n.mode=ok", "c.command=none"};
    const Names tied_{"m.mode=odd", "n.mode=ok", "c.command=tie"};

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    monitor::ReadingMemory memory_;
    monitor::LastOpenAnswers answers_{4};
    bool exact_ = false;
    int asked_ = 0; ///< how often the labels were
};

TEST_F(ReadingsInTimeTest, TakeTheFirstOneForOneOfAllThatArePossible)
{
    expectEqual(step(odd_, {{"a.v=1"}}), Fraction(1, 3));
    EXPECT_TRUE(exact_);
}

TEST_F(ReadingsInTimeTest, ExpectTheSameAgain)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(step(odd_, {{"a.v=1"}}), Fraction(3, 4));
}

TEST_F(ReadingsInTimeTest, ShareAChangeAmongTheOthers)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(step(odd_, {{"a.v=2"}}), Fraction(1, 4) * Fraction(1, 2));
}

TEST_F(ReadingsInTimeTest, CompareWithTheLastOne)
{
    step(odd_, {{"a.v=1"}});
    step(odd_, {{"a.v=2"}});
    expectEqual(step(odd_, {{"a.v=2"}}), Fraction(3, 4));
}

TEST_F(ReadingsInTimeTest, AreCertainOfAReadingThatNeverChanges)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(step(odd_, {{"a.v=1", 0}}), 1);
}

// A held reading is the last one of its channel, which an inconsistent step may have left unexplained.
TEST_F(ReadingsInTimeTest, TakeAHeldReadingThatWasNotRememberedForANewOne)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(step(odd_, {{"a.v=2", 0}}), Fraction(1, 3));
}

TEST_F(ReadingsInTimeTest, CountNothingForAReadingThatFollows)
{
    const Names ok{"m.mode=ok", "n.mode=ok", "c.command=none"};
    expectEqual(step(ok, {{"a.v=0"}}), 1);
    expectEqual(step(ok, {{"a.v=0"}}), 1);
    EXPECT_THAT(memory_.last, IsEmpty());
}

TEST_F(ReadingsInTimeTest, MultiplyWhereReadingsAreIndependent)
{
    expectEqual(step(odd_, {{"a.v=1"}, {"b.v=0", Fraction(1, 8)}}), Fraction(1, 6));
    expectEqual(step(odd_, {{"a.v=1"}, {"b.v=1", Fraction(1, 8)}}), Fraction(3, 4) * Fraction(1, 8));
}

// Of 0/0, 0/1 and 1/1, the two stay what they are when neither channel changes.
TEST_F(ReadingsInTimeTest, ExpectTwoThatHangTogetherToStayTogether)
{
    const Fraction stay = Fraction(3, 4) * Fraction(1, 2);
    const auto readings = [](const std::string& a, const std::string& b) {
        return std::vector<Read>{{a, Fraction(1, 4)}, {b, Fraction(1, 2)}};
    };
    expectEqual(step(tied_, readings("a.v=0", "b.v=0")), Fraction(1, 3));
    expectEqual(step(tied_, readings("a.v=0", "b.v=0")), stay);
    expectEqual(step(tied_, readings("a.v=1", "b.v=1")), Fraction(5, 8) * Fraction(1, 2));
}

TEST_F(ReadingsInTimeTest, ExpectNothingOfAGroupOfWhichNotAllIsRemembered)
{
    expectEqual(step(tied_, {{"b.v=1"}}), Fraction(1, 2));
    expectEqual(step(tied_, {{"a.v=0"}, {"b.v=1"}}), Fraction(1, 3));
    expectEqual(step(tied_, {{"a.v=0"}, {"b.v=1"}}), Fraction(9, 16));
}

// 1/0 is remembered, and does not go with the command.
TEST_F(ReadingsInTimeTest, ExpectNothingOfAGroupThatCannotBeAsItWas)
{
    step(odd_, {{"a.v=1"}, {"b.v=0"}});
    expectEqual(step(tied_, {{"a.v=0"}, {"b.v=0"}}), Fraction(1, 3));
}

TEST_F(ReadingsInTimeTest, ForgetWhatAChangedModeBearsOn)
{
    step(odd_, {{"a.v=1"}, {"b.v=1"}});
    expectEqual(step(dead_, {{"a.v=1"}}, {"m.mode=dead"}), Fraction(1, 3));
    expectEqual(step(dead_, {{"a.v=1"}}), Fraction(3, 4));
}

TEST_F(ReadingsInTimeTest, RememberWhatAChangedModeDoesNotBearOn)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(
        step({"m.mode=odd", "n.mode=broken", "c.command=none"}, {{"a.v=1"}}, {"n.mode=broken"}),
        Fraction(3, 4));
}

TEST_F(ReadingsInTimeTest, RememberWhileNothingIsRead)
{
    step(odd_, {{"a.v=1"}});
    expectEqual(step(odd_, {}), 1);
    expectEqual(step(odd_, {{"a.v=1"}}), Fraction(3, 4));
}

TEST_F(ReadingsInTimeTest, ForgetUnreadWhatAChangedModeBearsOn)
{
    step(odd_, {{"a.v=1"}});
    step(dead_, {}, {"m.mode=dead"});
    expectEqual(step(dead_, {{"a.v=1"}}), Fraction(1, 3));
}

// No mode changed: the caller says so, and the value follows for a step all the same.
TEST_F(ReadingsInTimeTest, ForgetWhatIsNoLongerOpen)
{
    const Names ok{"m.mode=ok", "n.mode=ok", "c.command=none"};
    for (const std::vector<Read>& between : {std::vector<Read>{{"a.v=0"}}, std::vector<Read>{}}) {
        memory_ = {};
        step(odd_, {{"a.v=0"}});
        expectEqual(step(ok, between), 1);
        expectEqual(step(odd_, {{"a.v=0"}}), Fraction(1, 3));
    }
}

TEST_F(ReadingsInTimeTest, AskForLabelsOnceWhileWhatIsGivenAndReadStays)
{
    step(odd_, {{"a.v=1"}});
    step(odd_, {{"a.v=1"}});
    step(odd_, {{"a.v=2"}});
    EXPECT_EQ(asked_, 1);
    step(odd_, {{"a.v=2"}, {"b.v=0"}});
    EXPECT_EQ(asked_, 2);
    step(tied_, {{"a.v=0"}, {"b.v=0"}});
    EXPECT_EQ(asked_, 3);
    step(tied_, {{"a.v=0"}, {"b.v=0"}});
    EXPECT_EQ(asked_, 3);
}

TEST_F(ReadingsInTimeTest, AskForLabelsOnceWhereWhatIsGivenComesAndGoes)
{
    const monitor::ReadingMemory none = memory_;
    for (int i = 0; i < 3; ++i) {
        memory_ = none;
        step(odd_, {{"a.v=1"}});
        memory_ = none;
        step(tied_, {{"a.v=1"}});
    }
    EXPECT_EQ(asked_, 2);
    step(odd_, {{"a.v=1"}}, {"m.mode=odd"});
    EXPECT_EQ(asked_, 3);
}

// Also when the second step is the first without a reading that is remembered.
TEST_F(ReadingsInTimeTest, AskForLabelsOnceWhileNothingIsRead)
{
    step(odd_, {{"a.v=1"}});
    step(odd_, {});
    EXPECT_EQ(asked_, 2);
    step(odd_, {});
    EXPECT_EQ(asked_, 2);
    EXPECT_THAT(memory_.last, SizeIs(1));
}

// At least one of eleven is 1; each of them counts as one of two.
TEST_F(ReadingsInTimeTest, EstimateWhereThereAreTooManyCombinations)
{
    std::string law;
    std::vector<Read> readings;
    for (int i = 0; i < 11; ++i) {
        const std::string name = "s" + std::to_string(i) + ".v";
        model_.condition(name, {"0", "1"});
        law += (i == 0 ? "" : " | ") + name + "=1";
        readings.push_back({name + "=1", Fraction(1, 2)});
    }
    model_.law(law);
    expectEqual(stepOf(odd_, readings, {}, std::log(0.5)), Fraction(1, 2048));
    EXPECT_FALSE(exact_);
    readings.front().changing = Fraction(3, 4);
    expectEqual(stepOf(odd_, readings, {}, std::log(0.5)), Fraction(1, 4096));
    EXPECT_FALSE(exact_);
}

} // namespace
