#include "monitor/ConflictHistory.h"

#include "tests/monitor/StepFixture.h"

namespace {

using monitor::ConflictHistory;
using monitor::Contradiction;
using monitor::Tracker;
using monitor::TrackInput;

class ConflictHistoryTest : public StepFixture {
protected:
    void follow(const std::vector<Names>& steps, std::size_t mostSteps, int maxFaults = 3)
    {
        active_ = model_.activate();
        Tracker tracker(active_->engine, *active_->plant, {.maxFaults = maxFaults});
        history_.emplace(mostSteps);
        for (const Names& observations : steps) {
            TrackInput step{tracker.answer().step + 1, 0.0, input(*active_, {}, observations), {}};
            history_->add(step, tracker.advance(step));
        }
    }
    static std::vector<std::size_t> steps(const std::deque<Contradiction>& contradictions)
    {
        std::vector<std::size_t> numbers;
        for (const Contradiction& one : contradictions) {
            numbers.push_back(one.input.step);
        }
        return numbers;
    }

    std::optional<ConflictHistory> history_;
};

using Numbers = std::vector<std::size_t>;
const Names fine{"in.v=1", "f0.out=1", "f1.out=1"};
const Names firstBroken{"in.v=1", "f0.out=0", "f1.out=0"};

TEST_F(ConflictHistoryTest, RemembersTheStepsThatContradictTheBestHypothesis)
{
    makeRow(2);
    follow({fine, firstBroken, firstBroken}, 10);
    EXPECT_EQ(steps(history_->ofBest()), Numbers{2});
    EXPECT_EQ(history_->ofBest().front().rank, 1U);
    EXPECT_TRUE(history_->ofBest().front().believed->since.empty());
    EXPECT_EQ(history_->leftOut(), 0U);
}

TEST_F(ConflictHistoryTest, TellsOtherHypothesesApart)
{
    makeRow(2);
    // One of the two is broken; then the first one is seen to work.
    follow({{"in.v=1", "f1.out=0"}, {"in.v=1", "f0.out=1", "f1.out=0"}}, 10);
    EXPECT_EQ(steps(history_->ofBest()), (Numbers{1, 2}));
    EXPECT_TRUE(history_->ofOthers().empty());
    EXPECT_EQ(history_->ofBest().back().believed->since.size(), 1U);
}

TEST_F(ConflictHistoryTest, RemembersNoMoreStepsThanItIsToldTo)
{
    makeRow(2);
    // No fault is allowed, so that nothing explains these steps.
    follow({firstBroken, firstBroken, fine, firstBroken, firstBroken}, 2, 0);
    EXPECT_EQ(steps(history_->ofBest()), (Numbers{4, 5}));
    EXPECT_EQ(history_->leftOut(), 2U);
}

TEST_F(ConflictHistoryTest, RemembersAllStepsWithoutABound)
{
    makeRow(2);
    follow({firstBroken, firstBroken, fine, firstBroken, firstBroken}, 0, 0);
    EXPECT_EQ(steps(history_->ofBest()), (Numbers{1, 2, 4, 5}));
    EXPECT_EQ(history_->leftOut(), 0U);
}

TEST_F(ConflictHistoryTest, ForgetsTheOldestStepOfOtherHypothesesAsAWhole)
{
    makeRow(3);
    // Any of three may be broken. Then nothing explains what is seen, at step after step.
    follow({{"in.v=1", "f2.out=0"},
            {"in.v=1", "f2.out=1"},
            {"in.v=1", "f2.out=1"},
            {"in.v=1", "f2.out=1"}},
           2);
    const Numbers others = steps(history_->ofOthers());
    ASSERT_FALSE(others.empty());
    EXPECT_EQ(std::set<std::size_t>(others.begin(), others.end()).size(), 2U);
    EXPECT_EQ(others.back(), 4U);
    for (const Contradiction& one : history_->ofOthers()) {
        EXPECT_GT(one.rank, 1U);
    }
}

TEST_F(ConflictHistoryTest, GivesTheConflictsWithTheWordOfTheCheck)
{
    makeRow(2);
    follow({fine, firstBroken}, 10);
    const auto conflicts = conflictsOf(*active_->plant, history_->ofBest().front());
    ASSERT_EQ(conflicts.size(), 2U);
    EXPECT_EQ(active_->plant->atom(*conflicts.front().conflict.observed)->id, "f0.out=0");
    for (const monitor::CheckedConflict& one : conflicts) {
        EXPECT_EQ(one.check, monitor::ConflictCheck::confirmed);
        EXPECT_EQ(one.everyValueCounts, true);
    }
}

} // namespace
