// What a step may cost is counted where it is spent.
#include "monitor/labels/Meter.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

using monitor::Meter;

SearchLimit metBy(std::uint64_t work)
{
    try {
        Meter::spend(work);
    } catch (const Meter::Cut& cut) {
        return cut.limit;
    }
    return SearchLimit::none;
}

TEST(Meter, CountsNothingWhereThereIsNone)
{
    EXPECT_EQ(metBy(SearchLimits::unlimited / 2), SearchLimit::none);
}

TEST(Meter, CutsWhenTheWorkIsSpent)
{
    const Meter meter({}, {.maxWork = 100});
    EXPECT_EQ(metBy(84), SearchLimit::none);
    EXPECT_EQ(metBy(1), SearchLimit::work);
    EXPECT_EQ(metBy(1), SearchLimit::work);
    EXPECT_EQ(meter.limit(), SearchLimit::work);
}

TEST(Meter, KeepsAPartBackForFinishing)
{
    const Meter meter({}, {.maxWork = 100});
    EXPECT_EQ(metBy(90), SearchLimit::work);
    {
        const Meter::Finishing finishing;
        EXPECT_EQ(metBy(9), SearchLimit::none);
        EXPECT_EQ(metBy(1), SearchLimit::work);
    }
}

TEST(Meter, CutsNothingThatIsFree)
{
    const Meter meter({}, {.maxWork = 100});
    {
        const Meter::Free needed;
        EXPECT_EQ(metBy(1000), SearchLimit::none);
    }
    EXPECT_EQ(metBy(84), SearchLimit::none);
    EXPECT_EQ(metBy(1), SearchLimit::work);
}

TEST(Meter, DoesNotCountWhatDependsOnWhatIsRemembered)
{
    const Meter meter({}, {.maxWork = 100});
    {
        const Meter::Uncounted uncounted;
        EXPECT_EQ(metBy(1000), SearchLimit::none);
    }
    EXPECT_EQ(meter.spent(), 0U);
    EXPECT_EQ(metBy(84), SearchLimit::none);
    EXPECT_EQ(metBy(1), SearchLimit::work);
}

TEST(Meter, LooksForAnInterruptionInTheMidstOfWork)
{
    const std::atomic<bool> stop = true;
    SearchLimits limits;
    limits.stop = &stop;
    const Meter meter(limits, {});
    EXPECT_EQ(metBy(1), SearchLimit::none);
    EXPECT_EQ(metBy(1'000'000), SearchLimit::stopped);
}

TEST(Meter, LetsAnAnswerBeMadeForASecondAfterAnInterruption)
{
    const std::atomic<bool> stop = true;
    SearchLimits limits;
    limits.stop = &stop;
    const Meter meter(limits, {});
    const Meter::Finishing finishing;
    EXPECT_EQ(metBy(1'000'000), SearchLimit::none);
    std::this_thread::sleep_for(std::chrono::milliseconds(1010));
    EXPECT_EQ(metBy(1'000'000), SearchLimit::stopped);
}

TEST(Meter, CutsWhereMoreMemoryIsUsedThanThereMayBe)
{
    const Meter meter({}, {.maxBytes = 1});
    EXPECT_EQ(metBy(1'000'000), SearchLimit::memory);
}

TEST(Meter, TellsTheEngineWithoutThrowing)
{
    Meter meter({}, {.maxWork = 100});
    EXPECT_EQ(meter.take(1), SearchLimit::none);
    EXPECT_EQ(meter.take(100), SearchLimit::work);
    EXPECT_EQ(meter.take(0), SearchLimit::work);
}

TEST(Meter, GivesWayToALaterOne)
{
    const Meter outer({}, {.maxWork = 100});
    {
        const Meter inner({}, {.maxWork = 1000});
        EXPECT_EQ(metBy(500), SearchLimit::none);
    }
    EXPECT_EQ(outer.spent(), 0U);
}

} // namespace
