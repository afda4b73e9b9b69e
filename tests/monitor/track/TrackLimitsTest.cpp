// Following along time under limits: less may be found, and it is said.
#include "tests/monitor/track/TrackFixture.h"

#include "monitor/step/EngineExplanations.h"
#include "tests/monitor/track/RandomTrack.h"

namespace {

using monitor::TrackAnswer;
using monitor::Tracker;
using monitor::TrackSettings;
using monitor::TrackStatus;
using testing::ElementsAre;

class TrackLimits : public TrackFixture {
protected:
    TrackLimits()
    {
        model_.condition("in.v", {"0", "1"});
        model_.follower("a", "in.v");
        model_.follower("b", "a.out");
    }
};

TEST_F(TrackLimits, CutNothingWhereThePredictionIsTheExplanation)
{
    settings_.limits.maxRecords = 0;
    step({"in.v=1", "b.out=1"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
    EXPECT_TRUE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::none);
}

TEST_F(TrackLimits, OfNoRecordsAreNamed)
{
    settings_.limits.maxRecords = 0;
    step({"in.v=1", "b.out=0"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::records);
    step({"in.v=1", "b.out=1"});
    EXPECT_TRUE(tracker_->answer().complete);
}

TEST_F(TrackLimits, NeverSayThatNothingExplainsTheStep)
{
    settings_.limits.maxRecords = 0;
    step({"in.v=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::ambiguous);
    EXPECT_EQ(tracker_->answer().hypotheses.front()->unexplained.size(), 1u);
    EXPECT_GT(tracker_->answer().missing, 0.0);
}

TEST_F(TrackLimits, OfOneRecordAreNamed)
{
    settings_.limits.maxRecords = 1;
    step({"in.v=1", "b.out=0"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::records);
}

TEST_F(TrackLimits, OfTimeAreNamed)
{
    settings_.limits.maxSeconds = 0.0;
    step({"in.v=1", "b.out=0"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::seconds);
}

TEST_F(TrackLimits, OfWorkAreNamedAndLeaveAnAnswer)
{
    settings_.work.maxWork = 100;
    step({"in.v=1", "b.out=0"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::work);
    EXPECT_EQ(tracker_->answer().hypotheses.size(), 1u);
    EXPECT_GT(tracker_->answer().missing, 0.0);
}

TEST_F(TrackLimits, OfWorkCutAtTheSamePlaceEveryTime)
{
    std::string first;
    for (int run = 0; run < 3; ++run) {
        settings_.work.maxWork = 20000;
        tracker_.reset();
        number_ = 0;
        step({"in.v=1", "b.out=0"});
        std::ostringstream told;
        told << tracker_->answer().work.records << " " << tracker_->answer().missing << " "
             << tracker_->answer().hypotheses.size();
        if (run == 0) first = told.str();
        EXPECT_EQ(told.str(), first);
    }
}

TEST_F(TrackLimits, AreNotSpentOnGoingBackBehindWhatNothingExplains)
{
    settings_.maxFaults = 0;
    step({"in.v=1", "b.out=1"});
    step({"in.v=1", "b.out=0"});
    ASSERT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    ASSERT_TRUE(tracker_->answer().wentBack);
    step({"in.v=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_FALSE(tracker_->answer().wentBack);
}

TEST_F(TrackLimits, AreNotSpentOnTheSameQuestionAgain)
{
    settings_.maxFaults = 0;
    start();
    const auto search = std::make_shared<monitor::EngineExplanations>(active_->engine);
    tracker_ = std::make_unique<Tracker>(search, *active_->plant, settings_);
    step({"in.v=1", "b.out=0"});
    ASSERT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    const SearchWork first = tracker_->answer().work;
    ASSERT_GT(first.records, 0u);
    const std::uint64_t searches = search->searches();
    step({"in.v=1", "b.out=0"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_EQ(search->searches(), searches);
    EXPECT_EQ(tracker_->answer().work.records, first.records);
}

TEST_F(TrackLimits, AreThereForWhoeverWantsNoFurtherAnswer)
{
    const std::atomic<bool> stop = true;
    settings_.limits.stop = &stop;
    step({"in.v=1", "b.out=1"});
    EXPECT_TRUE(tracker_->answer().complete);
    step({"in.v=1", "b.out=0"});
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::stopped);
}

// Two hypotheses are searched, and the limit is for both together.
TEST_F(TrackLimits, OfCandidatesAreForTheWholeStep)
{
    model_.condition("x.v", {"0", "1"});
    model_.follower("c", "x.v");
    step({"in.v=1", "b.out=0", "x.v=1", "c.out=1"});
    ASSERT_EQ(tracker_->answer().hypotheses.size(), 2u);
    const monitor::TrackMemory memory = tracker_->memory();
    settings_.limits.maxCandidates = 1;
    tracker_.reset();
    start();
    tracker_->restore(memory);
    step({"in.v=1", "b.out=0", "x.v=1", "c.out=0"});
    EXPECT_EQ(tracker_->answer().hypotheses.size(), 1u);
    EXPECT_FALSE(tracker_->answer().complete);
    EXPECT_EQ(tracker_->answer().limit, SearchLimit::candidates);
}

// Each step is taken without limits, and before that under limits from the same memory.
class RandomTrackLimits : public testing::Test {
protected:
    void compare(std::uint64_t seed, const std::vector<SearchLimits>& limits)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, PlantKind::mixed));
        RandomTrack track(random, {.deviating = 20, .observed = 30, .noise = 0, .lossy = 30});
        Tracker tracker(active.engine, *active.plant, {});
        for (std::size_t number = 1; number <= 6; ++number) {
            SCOPED_TRACE("step " + std::to_string(number));
            const monitor::TrackInput input = trackInput(active, track.next(), number);
            const monitor::TrackMemory memory = tracker.memory();
            const TrackAnswer& answer = tracker.advance(input);
            for (const SearchLimits& limit : limits) {
                SCOPED_TRACE("limit " + std::to_string(limit.maxRecords));
                Tracker limited(active.engine, *active.plant, {.limits = limit});
                limited.restore(memory);
                compareAnswers(limited.advance(input), answer);
            }
        }
    }

    // Whoever claims to be complete has found the same.
    void compareAnswers(const TrackAnswer& limited, const TrackAnswer& answer)
    {
        if (limited.limit != SearchLimit::none) {
            EXPECT_FALSE(limited.complete);
            ++cut_;
            return;
        }
        EXPECT_EQ(limited.complete, answer.complete);
        EXPECT_EQ(limited.status, answer.status);
        EXPECT_EQ(limited.probabilities, answer.probabilities);
        EXPECT_EQ(limited.dropped, answer.dropped);
        ASSERT_EQ(limited.hypotheses.size(), answer.hypotheses.size());
        for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
            EXPECT_EQ(limited.hypotheses[i]->modes, answer.hypotheses[i]->modes);
        }
        uncut_ += answer.work.records > 0 ? 1 : 0;
    }

    MutedTrace muted_;
    int cut_ = 0;
    int uncut_ = 0;
};

TEST_F(RandomTrackLimits, LeaveNothingOutWithoutSayingSo)
{
    std::vector<SearchLimits> limits;
    for (const std::uint64_t most : {0, 1, 2, 3, 5, 8, 13, 21, 34, 55}) {
        limits.emplace_back().maxRecords = most;
    }
    for (const std::uint64_t most : {0, 1, 2, 3, 4, 6}) {
        limits.emplace_back().maxCandidates = most;
    }
    for (std::uint64_t seed = 0; seed < 60 && !HasFailure(); ++seed) {
        compare(seed, limits);
    }
    EXPECT_GT(cut_, 300);
    EXPECT_GT(uncut_, 150);
}

// The earlier fault and the present one need a search within a replay, the last thing that is tried.
TEST_F(TrackLimits, AreNamedWhereTheyCutASearchOfAReplay)
{
    addValve("v", 63.0 / 64);
    model_.mode("w.position", {"closed", "open", "stuck!"});
    model_.command("w.request", {"none", "open"});
    model_.condition("w.flow", {"0", "1"});
    model_.law("!w.position=closed | w.flow=0");
    model_.law("!w.position=stuck | w.flow=0");
    model_.law("!w.position=open | w.flow=1");
    model_.fault("w.position=closed", "w.position=stuck", 1.0 / 64, "w.request=none");
    model_.nominal("w.position=closed", "w.position=open", 1.0, "w.request=open");
    const Names first{"w.flow=0", "in.v=1", "b.out=1"};
    const Names second{"w.flow=0", "in.v=1", "b.out=0"};
    int found = 0;
    int cut = 0;
    for (std::uint64_t most = 0; most < 80; ++most) {
        SCOPED_TRACE(most);
        settings_.limits.maxRecords = most;
        tracker_.reset();
        step(first, {"w.request=none", "v.request=none"});
        step(second, {"w.request=open", "v.request=none"});
        if (tracker_->answer().complete) {
            EXPECT_EQ(tracker_->answer().hypotheses.size(), 2u);
            ++found;
        } else {
            EXPECT_EQ(tracker_->answer().limit, SearchLimit::records);
            ++cut;
        }
    }
    EXPECT_GT(found, 0);
    EXPECT_GT(cut, 0);
}

} // namespace
