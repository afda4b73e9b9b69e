#include "monitor/step/Budget.h"

#include <atomic>
#include <gtest/gtest.h>
#include <limits>
#include <utility>
#include <vector>

namespace {

using monitor::Budget;

SearchWork work(std::uint64_t records, std::uint64_t candidates)
{
    SearchWork work;
    work.records = records;
    work.candidates = candidates;
    return work;
}

TEST(Budget, WithoutLimitsIsNeverExhausted)
{
    Budget budget({});
    budget.spend(work(1'000'000, 1'000'000));
    EXPECT_FALSE(budget.exhausted());
    EXPECT_EQ(budget.remaining().maxRecords, SearchLimits::unlimited);
    EXPECT_EQ(budget.remaining().maxCandidates, SearchLimits::unlimited);
    EXPECT_EQ(budget.remaining().maxSeconds, std::numeric_limits<double>::infinity());
}

TEST(Budget, LeavesWhatWasNotSpent)
{
    Budget budget({.maxRecords = 10, .maxCandidates = 5});
    budget.spend(work(3, 1));
    budget.spendRecord();
    budget.spendCandidate();
    EXPECT_EQ(budget.remaining().maxRecords, 6U);
    EXPECT_EQ(budget.remaining().maxCandidates, 3U);
    EXPECT_EQ(budget.work().records, 4U);
    EXPECT_EQ(budget.work().candidates, 2U);
    EXPECT_FALSE(budget.exhausted());
    EXPECT_EQ(budget.limit(), SearchLimit::none);
}

TEST(Budget, NeverLeavesLessThanNothing)
{
    Budget budget({.maxRecords = 10, .maxSeconds = 0.0});
    budget.spend(work(30, 0));
    EXPECT_EQ(budget.remaining().maxRecords, 0U);
    EXPECT_EQ(budget.remaining().maxSeconds, 0.0);
}

TEST(Budget, NamesTheLimitThatWasMet)
{
    const std::atomic<bool> stop = true;
    Budget records({.maxRecords = 1});
    records.spendRecord();
    Budget candidates({.maxCandidates = 1});
    candidates.spendCandidate();
    Budget seconds({.maxSeconds = 0.0});
    Budget stopped({.stop = &stop});
    const std::vector<std::pair<Budget*, SearchLimit>> expected{
        {&records, SearchLimit::records},
        {&candidates, SearchLimit::candidates},
        {&seconds, SearchLimit::seconds},
        {&stopped, SearchLimit::stopped}};
    for (const auto& [budget, limit] : expected) {
        EXPECT_TRUE(budget->exhausted());
        EXPECT_EQ(budget->limit(), limit);
    }
}

TEST(Budget, IsExhaustedWhenAPartOfTheWorkMetALimit)
{
    Budget budget({});
    budget.meet(SearchLimit::none);
    EXPECT_FALSE(budget.exhausted());
    budget.meet(SearchLimit::seconds);
    budget.meet(SearchLimit::none);
    EXPECT_TRUE(budget.exhausted());
    EXPECT_EQ(budget.limit(), SearchLimit::seconds);
}

} // namespace
