// What is reported of channels, and that what is right passes.
#include "plant/BindingRules.h"
#include "tests/plant/NotedPlaces.h"

#include <gtest/gtest.h>

namespace {

using namespace plant;

TEST(BindingRules, ObserveWhatIsNoCommand)
{
    using Kind = ChannelBinding::Kind;
    NotedPlaces places;
    EXPECT_TRUE(checkDirection(true, Kind::command, "v.request", places.at(1)));
    EXPECT_TRUE(checkDirection(false, Kind::observation, "v.flow", places.at(1)));
    EXPECT_EQ(places.take(), "");
    places.ownWords.commandObserved = {"", "a cond", "turn it round"};
    places.ownWords.commandAsInput = {"", "a cond", "no input"};
    EXPECT_FALSE(checkDirection(true, Kind::observation, "v.request", places.at(2)));
    EXPECT_FALSE(checkDirection(false, Kind::command, "v.flow", places.at(3)));
    EXPECT_FALSE(checkDirection(true, Kind::observation, "v.request", places.at(4), true));
    EXPECT_EQ(places.take(), "2: 'v.request' is a command: it is given, not observed\n"
                             "  expected: a cond\n  hint: turn it round\n"
                             "3: 'v.flow' is not a command\n"
                             "4: 'v.request' is a command: it is given, not observed\n"
                             "  expected: a cond\n  hint: no input\n");
}

TEST(BindingRules, LetOnlyVaryWhatIsScored)
{
    using Kind = ChannelBinding::Kind;
    NotedPlaces places;
    EXPECT_TRUE(checkVaryingKind(Kind::observation, false, places.at(1)));
    EXPECT_EQ(places.take(), "");
    EXPECT_FALSE(checkVaryingKind(Kind::observation, true, places.at(2)));
    EXPECT_FALSE(checkVaryingKind(Kind::command, false, places.at(3)));
    EXPECT_EQ(places.take(),
              "2: an input with 'varies'\n"
              "  hint: an input is not scored, however often it changes: leave out 'varies', or "
              "observe it\n"
              "3: a command with 'varies'\n"
              "  hint: 'varies' says how often a reading changes: leave it out\n");
}

TEST(BindingRules, WantReadingsThatChangeNeitherNeverNorAlways)
{
    NotedPlaces places;
    EXPECT_TRUE(checkVaries(0.5, places.at(1)));
    EXPECT_EQ(places.take(), "");
    EXPECT_FALSE(checkVaries(0, places.at(2)));
    EXPECT_FALSE(checkVaries(1, places.at(3)));
    EXPECT_EQ(places.take(), "2: the reading changes with probability 0 per step\n"
                             "  expected: more than 0 and less than 1\n"
                             "3: the reading changes with probability 1 per step\n"
                             "  expected: more than 0 and less than 1\n");
}

TEST(BindingRules, WantEachValueInTheRowOnce)
{
    NotedPlaces places;
    ThresholdRow row;
    EXPECT_TRUE(row.add("low", places.at(1)));
    EXPECT_FALSE(row.add("low", places.at(2)));
    EXPECT_EQ(places.take(), "2: 'low' is in the row twice\n  expected: each value once\n");
    ThresholdRow other;
    other.add("low", places.at(1));
    EXPECT_FALSE(other.checkComplete(3, "level", places.at(3), "some"));
    EXPECT_EQ(places.take(), "3: 1 of the 3 values of 'level' are in the row\n"
                             "  expected: all of them, from the lowest to the highest\n"
                             "  hint: some\n");
    EXPECT_EQ(other.missing({"low", "middle", "high"}),
              (std::vector<std::string_view>{"middle", "high"}));
}

TEST(BindingRules, WantRisingLimitsAndRoomForTheHysteresis)
{
    NotedPlaces places;
    places.ownWords.hysteresis = "it";
    ThresholdTable table;
    table.limits = {{1, true}, {4, true}, {4.5, true}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(checkLimit(table, i, places.at(1)));
    }
    table.hysteresis = 0.2;
    EXPECT_TRUE(checkHysteresis(table, places.at(1)));
    EXPECT_EQ(places.take(), "");
    table.hysteresis = 0.25;
    EXPECT_FALSE(checkHysteresis(table, places.at(2)));
    table.hysteresis = -1;
    EXPECT_FALSE(checkHysteresis(table, places.at(3)));
    table.limits[1].number = 1;
    EXPECT_FALSE(checkLimit(table, 1, places.at(4)));
    EXPECT_EQ(places.take(), "2: it is 0.25, and two limits are only 0.5 apart\n"
                             "  expected: less than half of the distance between two limits\n"
                             "3: it is -1\n  expected: 0 or more\n"
                             "4: the limit 1 is not above the one before it, 1\n"
                             "  expected: limits from the lowest to the highest\n");
}

TEST(BindingRules, TakeAReadingForOneValue)
{
    NotedPlaces places;
    ReadingSet readings;
    EXPECT_TRUE(readings.add(1.0, "1", places.at(1)));
    EXPECT_TRUE(readings.add("1", "\"1\"", places.at(2)));
    EXPECT_FALSE(readings.add(1.0, "1", places.at(3)));
    EXPECT_EQ(places.take(), "3: 1 stands for two values\n");
}

TEST(BindingRules, WantTimesThatCanPass)
{
    NotedPlaces places;
    EXPECT_TRUE(checkSeconds(0, places.at(1)));
    EXPECT_FALSE(checkSeconds(-1, places.at(1)));
    EXPECT_TRUE(checkStepLength(0.5, places.at(2)));
    EXPECT_FALSE(checkStepLength(0, places.at(2)));
    EXPECT_EQ(places.take(), "1: the time is -1\n  expected: 0 or more\n"
                             "2: the length of a step is 0\n  expected: more than 0\n");
}

} // namespace
