#include "assess/ChannelStatistics.h"

#include "tests/assess/Lamps.h"

#include <gtest/gtest.h>

namespace {

std::string readings(const std::vector<double>& hall)
{
    std::string table = "t,L-1\n";
    for (std::size_t i = 0; i < hall.size(); ++i) {
        table += std::to_string(i) + "," + std::to_string(hall[i]) + "\n";
    }
    return table;
}

assess::ChannelStatistics taken(session::Session& session, const std::string& table)
{
    assess::ChannelStatistics statistics(session.bindings());
    follow(session, table, [&](const auto& step, const auto&) { statistics.take(step); });
    return statistics;
}

std::vector<double> ramp(double from, double to)
{
    std::vector<double> all;
    for (int i = 0; i <= 100; ++i) {
        all.push_back(from + (to - from) * i / 100);
    }
    return all;
}

} // namespace

TEST(ChannelStatistics, SuggestALimitBelowReadingsThatAreAllAbove)
{
    session::Session session = lamps();
    const auto limits = taken(session, readings(ramp(20, 40))).channels()[0].limits();
    ASSERT_EQ(limits.size(), 1U);
    EXPECT_EQ(limits[0].shareBelow, 0);
    EXPECT_FALSE(limits[0].separates);
    EXPECT_NEAR(*limits[0].suggested, 20.2 - 0.5 * 9.8, 0.3);
}

TEST(ChannelStatistics, SuggestALimitAboveReadingsThatAreAllBelow)
{
    session::Session session = lamps();
    const auto limits = taken(session, readings(ramp(2, 4))).channels()[0].limits();
    EXPECT_EQ(limits[0].shareBelow, 1);
    EXPECT_NEAR(*limits[0].suggested, 3.98 + 0.5 * 0.98, 0.05);
}

TEST(ChannelStatistics, SuggestTheMiddleOfTheGapBetweenTwoGroupsOfReadings)
{
    session::Session session = lamps();
    std::vector<double> both = ramp(2, 4);
    const std::vector<double> high = ramp(30, 40);
    both.insert(both.end(), high.begin(), high.end());
    const auto limits = taken(session, readings(both)).channels()[0].limits();
    EXPECT_TRUE(limits[0].separates);
    EXPECT_NEAR(*limits[0].suggested, 17, 0.1);
}

TEST(ChannelStatistics, SuggestNoLimitWithinOneGroupOfReadings)
{
    session::Session session = lamps();
    const auto limits = taken(session, readings(ramp(5, 15))).channels()[0].limits();
    EXPECT_TRUE(limits[0].separates);
    EXPECT_FALSE(limits[0].suggested);
}

TEST(ChannelStatistics, SuggestNothingOfFewReadingsOrOfOneThatNeverChanges)
{
    session::Session session = lamps();
    const auto few = taken(session, readings({20, 21, 22, 23}));
    EXPECT_FALSE(few.channels()[0].limits()[0].suggested);
    EXPECT_FALSE(few.channels()[0].within());
    const auto same = taken(session, readings(std::vector<double>(200, 5)));
    EXPECT_EQ(same.channels()[0].limits()[0].shareBelow, 1);
    EXPECT_FALSE(same.channels()[0].limits()[0].suggested);
    EXPECT_FALSE(same.channels()[0].within());
}

TEST(ChannelStatistics, CountReadingsThatDoNotCountYet)
{
    session::Session session = lamps();
    const auto statistics = taken(session, "t,L-2\n0,20\n1,20\n2,20\n3,1\n4,20\n");
    const assess::ChannelReadings& yard = statistics.channels()[1];
    EXPECT_EQ(yard.all().count(), 5U);
    EXPECT_EQ(yard.all().least(), 1);
    EXPECT_EQ(statistics.values().at(yard.channel().variable).size(), 1U);
}

TEST(ChannelStatistics, TakeNoChangeAcrossAStepThatIsLeftOut)
{
    session::Session session = lamps();
    assess::ChannelStatistics statistics(session.bindings());
    follow(session, "t,L-1\n0,20\n1,21\n2,5\n3,30\n4,31\n", [&](const auto& step, const auto&) {
        if (step.number == 3) {
            statistics.passOver();
        } else {
            statistics.take(step);
        }
    });
    EXPECT_EQ(statistics.channels()[0].changes().greatest(), 1);
    EXPECT_EQ(statistics.steps(), 4U);
}
