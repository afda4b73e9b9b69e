// What the readings of a simulated plant can be.
#include "plant/SimulatedReadings.h"

#include "language/Reader.h"
#include "tests/plant/NotedPlaces.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using plant::NumberRange;

constexpr double infinity = std::numeric_limits<double>::infinity();

class SimulatedReadings : public testing::Test {
protected:
    NumberRange readings(std::size_t value) const
    {
        return plant::readingsOf(binding_, (*binding_.variable->atomLinks)[value]);
    }

    language::ReadResult read_ = language::readModelText(
        "tank.itms",
        "component Tank { cond level: low, ok, high }\nsystem House {\n    tank: Tank\n"
        "    observe tank.level from \"L\" : low < 1 <= ok < 5 <= high within 0.25\n}\n");
    plant::ChannelBinding& binding_ = read_.bindings.channels.front();
    NotedPlaces places_;
};

TEST_F(SimulatedReadings, AreAHysteresisAwayFromTheLimits)
{
    EXPECT_EQ(readings(0).from, -infinity);
    EXPECT_EQ(readings(0).to, 0.75);
    EXPECT_EQ(readings(1).from, 1.25);
    EXPECT_EQ(readings(1).to, 4.75);
    EXPECT_EQ(readings(2).to, infinity);
}

TEST_F(SimulatedReadings, AreWhatCanBeReadAtAll)
{
    binding_.physical = NumberRange{0, 8};
    EXPECT_EQ(readings(0).from, 0);
    EXPECT_EQ(readings(2).to, 8);
    EXPECT_EQ(readings(1).to, 4.75);
}

TEST_F(SimulatedReadings, CanBeBoundedWhereEveryValueStaysReadable)
{
    EXPECT_TRUE(plant::checkPhysical(binding_, {0, 8}, places_.at(1)));
    EXPECT_EQ(places_.take(), "");
    EXPECT_FALSE(plant::checkPhysical(binding_, {2, 8}, places_.at(2)));
    EXPECT_FALSE(plant::checkPhysical(binding_, {8, 0}, places_.at(3)));
    EXPECT_EQ(places_.take(), "2: the range from 2 to 8 has no reading of 'low'\n"
                              "  expected: a range in which every value can be read\n"
                              "3: the range from 8 to 0\n"
                              "  expected: a range from a lower number to a higher one\n");
}

TEST_F(SimulatedReadings, ScatterWithinTheirValue)
{
    const Atom* ok = (*binding_.variable->atomLinks)[1];
    EXPECT_TRUE(plant::checkNoise(binding_, ok, {2, 3}, places_.at(1)));
    EXPECT_EQ(places_.take(), "");
    EXPECT_FALSE(plant::checkNoise(binding_, ok, {0.5, 3}, places_.at(2)));
    EXPECT_EQ(places_.take(), "2: the range from 0.5 to 3 has readings of other values than 'ok'\n"
                              "  expected: numbers between 1.25 and 4.75\n");
}

TEST_F(SimulatedReadings, AreNoneOfWhatIsComputed)
{
    EXPECT_TRUE(plant::checkHasReadings(binding_, "'noise'", places_.at(1)));
    binding_.computed.emplace();
    EXPECT_FALSE(plant::checkHasReadings(binding_, "'noise'", places_.at(2)));
    EXPECT_EQ(places_.take(),
              "2: a channel with 'noise'\n"
              "  expected: an observation of a channel, with limits that are numbers\n"
              "  hint: it says what 'itms simulate' writes: leave it out here\n");
}

} // namespace
