#include "report/Moment.h"

#include <gtest/gtest.h>

using report::Clock;
using report::duration;
using report::moment;

TEST(Moment, IsANumberOfSecondsOrADateInUtc)
{
    EXPECT_EQ(moment(1714564800, Clock::seconds), "1714564800");
    EXPECT_EQ(moment(1714564800, Clock::wall), "2024-05-01T12:00:00Z");
    EXPECT_EQ(moment(1714564800.25, Clock::wall), "2024-05-01T12:00:00.25Z");
    EXPECT_EQ(moment(-0.5, Clock::wall), "1969-12-31T23:59:59.5Z");
}

TEST(Moment, IsANumberWhereTheCalendarEnds)
{
    EXPECT_EQ(moment(1e15, Clock::wall), "1e+15");
}

TEST(Duration, HasTwoUnitsAtMost)
{
    EXPECT_EQ(duration(0), "0 s");
    EXPECT_EQ(duration(35.25), "35.2 s");
    EXPECT_EQ(duration(450), "7.5 min");
    EXPECT_EQ(duration(3600), "1 h");
    EXPECT_EQ(duration(7800), "2 h 10 min");
    EXPECT_EQ(duration(86400), "1 day");
    EXPECT_EQ(duration(2 * 86400 + 4 * 3600), "2 days 4 h");
}

TEST(Duration, RoundsUpToTheNextUnit)
{
    EXPECT_EQ(duration(3599.9), "1 h");
    EXPECT_EQ(duration(86399), "1 day");
}
