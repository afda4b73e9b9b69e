// Several sessions in one process: each says what it says alone.
#include "tests/session/ExampleRun.h"

#include "model/DataManager.h"

#include <gtest/gtest.h>
#include <memory>

namespace {

using Records = std::vector<std::string>;

Records waterAlone()
{
    return ExampleRun(waterModel, waterTelemetry).rest();
}

Records powerAlone()
{
    return ExampleRun(powerModel, powerTelemetry).rest();
}

TEST(SeveralSessions, OneAfterTheOther)
{
    const Records water = waterAlone();
    const Records power = powerAlone();
    ASSERT_GT(water.size(), 20U);
    ASSERT_GT(power.size(), 20U);
    EXPECT_EQ(waterAlone(), water);
    EXPECT_EQ(powerAlone(), power);
}

TEST(SeveralSessions, InTurns)
{
    const Records water = waterAlone();
    const Records power = powerAlone();
    ExampleRun first(waterModel, waterTelemetry);
    ExampleRun second(powerModel, powerTelemetry);
    Records ofFirst;
    Records ofSecond;
    for (std::size_t i = 0; i < std::max(water.size(), power.size()); ++i) {
        if (i < power.size()) ofSecond.push_back(second.next());
        if (i < water.size()) ofFirst.push_back(first.next());
    }
    EXPECT_EQ(ofFirst, water);
    EXPECT_EQ(ofSecond, power);
}

TEST(SeveralSessions, OfTheSameModel)
{
    const Records water = waterAlone();
    ExampleRun ahead(waterModel, waterTelemetry);
    ahead.skip(12);
    ExampleRun behind(waterModel, waterTelemetry);
    Records records;
    for (std::size_t i = 0; i < water.size(); ++i) {
        ahead.next();
        records.push_back(behind.next());
    }
    EXPECT_EQ(records, water);
}

TEST(SeveralSessions, GoOnWhenAnotherOneIsGone)
{
    const Records water = waterAlone();
    ExampleRun run(waterModel, waterTelemetry);
    Records records;
    for (std::size_t i = 0; i < water.size(); ++i) {
        auto other = std::make_unique<ExampleRun>(powerModel, powerTelemetry);
        if (i % 5 == 0) other->skip(6);
        records.push_back(run.next());
        other.reset();
    }
    EXPECT_EQ(records, water);
}

TEST(SeveralSessions, LeaveTheFirstRegistryAlone)
{
    DataManager::reset();
    DataManager::searchLimits.maxRecords = 7;
    {
        ExampleRun first(waterModel, waterTelemetry);
        ExampleRun second(powerModel, powerTelemetry);
        first.skip(12);
        second.skip(12);
        EXPECT_FALSE(DataManager::active_comps->empty());
    }
    EXPECT_TRUE(DataManager::active_comps->empty());
    EXPECT_EQ(DataManager::searchLimits.maxRecords, 7U);
    DataManager::reset();
}

} // namespace
