#include "monitor/why/ConflictHistory.h"

#include "tests/monitor/step/StepFixture.h"
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/Sanitized.h"

namespace {

using monitor::ConflictHistory;
using monitor::Contradiction;
using monitor::Tracker;
using monitor::TrackInput;
using plant::AtomIndex;

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

// Whether the hypothesis assumes all that the conflict says cannot be.
bool assumesAllOf(const monitor::DerivedConflict& conflict, const monitor::Hypothesis& hypothesis)
{
    const auto arrived = [&](AtomIndex command) {
        return std::count(hypothesis.lost.begin(), hypothesis.lost.end(), command) == 0;
    };
    return std::all_of(conflict.commands.begin(), conflict.commands.end(), arrived) &&
           std::all_of(conflict.modes.begin(), conflict.modes.end(),
                       [&](const monitor::AssumedMode& mode) {
                           return std::count(hypothesis.modes.begin(), hypothesis.modes.end(),
                                             mode.value) != 0;
                       });
}

struct HistoryTally {
    int conflicts = 0;
    int ofOthers = 0;
    int kept = 0;
};

// The conflicts of a step are confirmed, and no explanation of the step is in conflict.
void examine(const ActivePlant& active, const Contradiction& one,
             const monitor::TrackAnswer& answer, HistoryTally& tally)
{
    const auto conflicts = conflictsOf(*active.plant, one);
    EXPECT_FALSE(conflicts.empty());
    for (const monitor::CheckedConflict& checked : conflicts) {
        ++tally.conflicts;
        tally.ofOthers += one.rank > 1 ? 1 : 0;
        EXPECT_EQ(checked.check, monitor::ConflictCheck::confirmed);
        EXPECT_TRUE(checked.everyValueCounts);
        for (const monitor::HypothesisPointer& hypothesis : answer.hypotheses) {
            if (answer.status != monitor::TrackStatus::inconsistent) {
                EXPECT_FALSE(assumesAllOf(checked.conflict, *hypothesis));
                ++tally.kept;
            }
        }
    }
}

TEST_F(ConflictHistoryTest, OfRandomTracksIsConfirmedAndResolvedByEveryExplanation)
{
    HistoryTally tally;
    for (std::uint64_t seed = 31000; seed < 31000 + fewerUnderSanitizers(300U) && !HasFailure();
         ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(
            randomModel(random, seed % 3 == 0 ? PlantKind::circuit : PlantKind::mixed));
        RandomTrack track(random, {.deviating = 15, .observed = 60, .noise = 3, .lossy = 20});
        Tracker tracker(active.engine, *active.plant, {.maxFaults = 3, .keep = 6});
        ConflictHistory history(0);
        std::size_t ofBest = 0;
        std::size_t ofOthers = 0;
        for (std::size_t step = 1; step <= 6; ++step) {
            const TrackInput input = trackInput(active, track.next(), step);
            const monitor::TrackAnswer& answer = tracker.advance(input);
            history.add(input, answer);
            for (; ofBest < history.ofBest().size(); ++ofBest) {
                examine(active, history.ofBest()[ofBest], answer, tally);
            }
            for (; ofOthers < history.ofOthers().size(); ++ofOthers) {
                examine(active, history.ofOthers()[ofOthers], answer, tally);
            }
        }
    }
    EXPECT_GT(tally.conflicts, fewerUnderSanitizers(500));
    EXPECT_GT(tally.ofOthers, fewerUnderSanitizers(100));
    EXPECT_GT(tally.kept, fewerUnderSanitizers(500));
}

} // namespace
