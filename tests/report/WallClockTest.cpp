// Times of day and date.
#include "report/WallClock.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using report::wallClock;

TEST(WallClock, IsInUtc)
{
    EXPECT_EQ(wallClock(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(wallClock(1714557600), "2024-05-01T10:00:00Z");
    EXPECT_EQ(wallClock(951868799), "2000-02-29T23:59:59Z");
    EXPECT_EQ(wallClock(-1), "1969-12-31T23:59:59Z");
}

TEST(WallClock, HasAFractionOfASecondWhereThereIsOne)
{
    EXPECT_EQ(wallClock(1714557600.5), "2024-05-01T10:00:00.5Z");
    EXPECT_EQ(wallClock(1714557600.000001), "2024-05-01T10:00:00.000001Z");
    EXPECT_EQ(wallClock(0.9999999), "1970-01-01T00:00:01Z");
}

TEST(WallClock, HasYearsOfFourDigits)
{
    EXPECT_EQ(wallClock(253402300799), "9999-12-31T23:59:59Z");
    EXPECT_EQ(wallClock(253402300800), std::nullopt);
    EXPECT_EQ(wallClock(std::numeric_limits<double>::infinity()), std::nullopt);
    EXPECT_EQ(wallClock(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

TEST(WallClock, ComesApartIntoDateAndTimeOfDay)
{
    EXPECT_EQ(report::dateOf("2024-05-01T10:00:00.5Z"), "2024-05-01");
    EXPECT_EQ(report::timeOfDay("2024-05-01T10:00:00.5Z"), "10:00:00.5");
}

} // namespace
