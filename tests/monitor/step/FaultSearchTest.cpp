#include "monitor/step/FaultSearch.h"

#include "tests/monitor/step/StepFixture.h"

namespace {

using monitor::Deviations;
using monitor::FaultSearch;

class FaultSearchTest : public StepFixture {
protected:
    FaultSearch search(const Names& observations, int faultBudget, std::uint64_t threshold,
                       const SearchLimits& limits = {})
    {
        if (!active_) {
            active_ = model_.activate();
        }
        frame_ = std::make_unique<monitor::StepFrame>(
            makeFrame(*active_->plant, before(), input(*active_, {}, observations)));
        FaultSearch result(active_->engine, *frame_, limits, threshold);
        result.run(faultBudget);
        return result;
    }
    std::set<Names> found(const FaultSearch& search) const
    {
        std::set<Names> result;
        for (const Deviations& deviations : search.found()) {
            Names names = active_->ids(deviations);
            std::sort(names.begin(), names.end());
            result.insert(names);
        }
        return result;
    }

    std::unique_ptr<monitor::StepFrame> frame_;
};

using Sets = std::set<Names>;

TEST_F(FaultSearchTest, FindsTheSameWhereverItIsTakenApart)
{
    makeRow(3);
    for (const std::uint64_t threshold : {0, 1, 2, 5000}) {
        const FaultSearch done = search({"in.v=1", "f2.out=0"}, 1, threshold);
        EXPECT_EQ(found(done), (Sets{{"f0.mode=broken"}, {"f1.mode=broken"}, {"f2.mode=broken"}}));
        EXPECT_TRUE(done.complete());
        EXPECT_EQ(done.work().candidates, 3u);
    }
}

TEST_F(FaultSearchTest, WithoutADiscrepancyFindsThePredictionAtNoCost)
{
    makeRow(3);
    const FaultSearch done = search({"in.v=1", "f2.out=1"}, 2, 5000);
    EXPECT_EQ(found(done), (Sets{{}}));
    EXPECT_TRUE(done.complete());
    EXPECT_EQ(done.work().records, 0u);
}

// Whatever v and w are, `ok` leaves nothing for them.
TEST_F(FaultSearchTest, TakesApartWhatOnlyTryingValuesShows)
{
    model_.mode("m.mode", {"ok", "bad!", "worse!"});
    model_.fault("m.mode=ok", "m.mode=bad", 1.0 / 64);
    model_.fault("m.mode=ok", "m.mode=worse", 1.0 / 64);
    for (const std::string variable : {"x.v", "x.w"}) {
        model_.condition(variable, {"0", "1"});
    }
    for (const std::string v : {"0", "1"}) {
        for (const std::string w : {"0", "1"}) {
            model_.law("!m.mode=ok | x.v=" + v + " | x.w=" + w);
        }
    }
    const FaultSearch done = search({}, 1, 5000);
    EXPECT_EQ(found(done), (Sets{{"m.mode=bad"}, {"m.mode=worse"}}));
    EXPECT_TRUE(done.complete());
}

TEST_F(FaultSearchTest, IsCompleteThoughAtomsAreUnknown)
{
    // The input is not observed.
    makeRow(2);
    model_.condition("loose.x", {"0", "1"});
    model_.mode("g.mode", {"ok", "broken!"});
    model_.condition("g.out", {"0", "1"});
    model_.law("!g.mode=ok | g.out=1");
    model_.fault("g.mode=ok", "g.mode=broken", 0.125);
    const FaultSearch done = search({"g.out=0"}, 1, 5000);
    EXPECT_EQ(found(done), (Sets{{"g.mode=broken"}}));
    EXPECT_TRUE(done.complete());
}

TEST_F(FaultSearchTest, CountsWhatItTakesApartAsRecords)
{
    makeRow(3);
    EXPECT_GE(search({"in.v=1", "f2.out=0"}, 1, 0).work().records, 1u);
}

TEST_F(FaultSearchTest, UnderALimitTellsWhichOneCutIt)
{
    makeRow(3);
    SearchLimits records;
    records.maxRecords = 1;
    for (const std::uint64_t threshold : {0, 1, 5000}) {
        const FaultSearch cut = search({"in.v=1", "f2.out=0"}, 1, threshold, records);
        EXPECT_FALSE(cut.complete());
        EXPECT_EQ(cut.limit(), SearchLimit::records);
        SearchLimits candidates;
        candidates.maxCandidates = 1;
        const FaultSearch first = search({"in.v=1", "f2.out=0"}, 1, threshold, candidates);
        EXPECT_FALSE(first.complete());
        EXPECT_EQ(first.limit(), SearchLimit::candidates);
        EXPECT_EQ(first.found().size(), 1u);
        SearchLimits seconds;
        seconds.maxSeconds = 0.0;
        const FaultSearch late = search({"in.v=1", "f2.out=0"}, 1, threshold, seconds);
        EXPECT_FALSE(late.complete());
        EXPECT_EQ(late.limit(), SearchLimit::seconds);
        EXPECT_TRUE(late.found().empty());
    }
}

TEST_F(FaultSearchTest, UnderALimitOfZeroFindsNothingAndSaysSo)
{
    makeRow(1);
    SearchLimits none;
    none.maxRecords = 0;
    const FaultSearch cut = search({"in.v=1"}, 1, 5000, none);
    EXPECT_TRUE(cut.found().empty());
    EXPECT_FALSE(cut.complete());
    EXPECT_EQ(cut.limit(), SearchLimit::records);
}

TEST_F(FaultSearchTest, EndsWhenItIsToldToStop)
{
    makeRow(3);
    const std::atomic<bool> stop = true;
    SearchLimits limits;
    limits.stop = &stop;
    const FaultSearch cut = search({"in.v=1", "f2.out=0"}, 1, 5000, limits);
    EXPECT_TRUE(cut.found().empty());
    EXPECT_FALSE(cut.complete());
    EXPECT_EQ(cut.limit(), SearchLimit::stopped);
}

TEST_F(FaultSearchTest, UnderALimitThatIsNotMetIsComplete)
{
    makeRow(3);
    SearchLimits ample;
    ample.maxRecords = 1000;
    ample.maxCandidates = 1000;
    ample.maxSeconds = 1000.0;
    const FaultSearch done = search({"in.v=1", "f2.out=0"}, 1, 5000, ample);
    EXPECT_TRUE(done.complete());
    EXPECT_EQ(done.limit(), SearchLimit::none);
    EXPECT_EQ(done.found().size(), 3u);
}

} // namespace
