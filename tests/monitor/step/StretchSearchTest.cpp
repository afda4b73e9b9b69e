// What is found between readings is compared with what is found in the whole plant.
#include "monitor/step/StretchSearch.h"

#include "monitor/step/EngineExplanations.h"
#include "monitor/step/FaultSearch.h"
#include "monitor/step/Judge.h"
#include "monitor/step/NearConflict.h"
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using monitor::EngineExplanations;
using monitor::Explanations;
using monitor::FaultSearch;
using monitor::Hypothesis;
using monitor::Judgement;
using monitor::StepFrame;
using monitor::TrackInput;

class RandomStretches : public testing::Test {
protected:
    void compare(ActivePlant& active, const StepFrame& frame, int faults)
    {
        monitor::Budget budget({});
        const auto explanations = monitor::searchStretches(frame, faults, budget);
        if (!explanations) {
            expectSpent(active, frame, faults, budget.work().records);
            return;
        }
        FaultSearch plain(active.engine, frame, {});
        plain.run(faults);
        ++compared_;
        EXPECT_TRUE(explanations->complete);
        EXPECT_TRUE(plain.complete());
        const Judgement found = judge(frame, explanations->found, {}, explanations->labels);
        const Judgement wanted = judge(frame, plain.found());
        EXPECT_EQ(found.sure, wanted.sure);
        ASSERT_EQ(found.candidates.size(), wanted.candidates.size());
        for (std::size_t i = 0; i < found.candidates.size(); ++i) {
            EXPECT_EQ(found.candidates[i].modes, wanted.candidates[i].modes);
            EXPECT_EQ(found.candidates[i].logProbability, wanted.candidates[i].logProbability);
        }
        several_ += found.candidates.size() > 1 ? 1 : 0;
        double_ += faults == 2 && !found.candidates.empty() && found.candidates.back().faults == 2;
    }

    // What was tried in vain counts beside what the other search takes.
    void expectSpent(ActivePlant& active, const StepFrame& frame, int faults, std::uint64_t inVain)
    {
        if (inVain == 0) {
            return;
        }
        ++inVain_;
        EngineExplanations usual(active.engine);
        usual.narrowAbove(frame.plant.modes().size());
        EngineExplanations narrowing(active.engine);
        narrowing.narrowAbove(0);
        EXPECT_EQ(narrowing.search(frame, faults, {}).work.records,
                  inVain + usual.search(frame, faults, {}).work.records);
        SearchLimits limits;
        limits.maxRecords = inVain;
        const Explanations cut = narrowing.search(frame, faults, limits);
        EXPECT_FALSE(cut.complete);
        EXPECT_EQ(cut.work.records, inVain);
    }

    MutedTrace muted_;
    int compared_ = 0;
    int inVain_ = 0;
    int several_ = 0;
    int double_ = 0;
};

TEST_F(RandomStretches, HaveTheExplanationsOfTheWholePlant)
{
    for (std::uint64_t seed = 0; seed < 80; ++seed) {
        followRandomPlant(
            seed, [this](ActivePlant& active, const Hypothesis& before, const TrackInput& input) {
                const StepFrame frame = frameAfter(*active.plant, before, input, {});
                for (int faults = 0; faults <= 2; ++faults) {
                    compare(active, frame, faults);
                }
            });
    }
    EXPECT_GT(compared_, 300);
    EXPECT_GT(several_, 50);
    EXPECT_GT(double_, 10);
    EXPECT_GT(inVain_, 10);
}

// Gates one behind the other, of which every fourth one is read.
class RowOfGates : public testing::Test {
protected:
    static constexpr int gates = 12;

    RowOfGates()
    {
        model_.mode("tank.state", {"full", "empty!"});
        model_.condition("tank.out", {"0", "1"});
        model_.law("!tank.state=full | tank.out=1");
        model_.law("!tank.state=empty | tank.out=0");
        model_.fault("tank.state=full", "tank.state=empty", 1.0 / 512);
        for (int i = 0; i < gates; ++i) {
            model_.follower(name(i), i == 0 ? "tank.out" : name(i - 1) + ".out");
        }
        active_ = model_.activate();
        before_ = std::make_unique<monitor::Hypothesis>(monitor::initialHypothesis(*active_->plant));
        monitor::Successors successors(active_->engine, *active_->plant);
        before_ = std::make_unique<monitor::Hypothesis>(successors.predicted(*before_, input_));
    }
    static std::string name(int gate) { return "g" + std::to_string(gate); }

    // That gates from this one on show nothing.
    StepFrame silentFrom(int silent)
    {
        input_.step = 2;
        input_.values.observations = {};
        for (int i = 3; i < gates; i += 4) {
            input_.values.observations.push_back(
                active_->index(name(i) + (i >= silent ? ".out=0" : ".out=1")));
        }
        return frameAfter(*active_->plant, *before_, input_, {});
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    TrackInput input_;
    std::unique_ptr<monitor::Hypothesis> before_;
};

TEST_F(RowOfGates, IsInConflictBetweenTwoReadings)
{
    const StepFrame frame = silentFrom(5);
    monitor::StepLabels labels = before_->labels;
    labels.take(assumptionsOf(frame, {}), frame.observations, frame.inputs);
    const auto conflict = monitor::nearConflict(*active_->plant, labels);
    ASSERT_TRUE(conflict);
    std::vector<std::string> names;
    for (const plant::VariableIndex variable : *conflict) {
        names.push_back(active_->plant->atom(active_->plant->variable(variable).values.front())->id);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"g4.mode=ok", "g5.mode=ok", "g6.mode=ok",
                                               "g7.mode=ok"})); // from the farthest one on
}

TEST_F(RowOfGates, IsExplainedByEachGateBetweenTwoReadings)
{
    const StepFrame frame = silentFrom(5);
    monitor::Budget budget({});
    const auto explanations = monitor::searchStretches(frame, 2, budget);
    ASSERT_TRUE(explanations);
    EXPECT_EQ(explanations->found.size(), 4U);
    EXPECT_EQ(explanations->work.records, 2U);
    EXPECT_EQ(explanations->labels.size(), 4U);
}

TEST_F(RowOfGates, IsNotSearchedForWhatReadingsRuleOut)
{
    StepFrame frame = silentFrom(5);
    frame.observations.back() = active_->index("g11.out=1"); // behind one that shows nothing
    monitor::Budget budget({});
    const auto explanations = monitor::searchStretches(frame, 3, budget);
    ASSERT_TRUE(explanations);
    EXPECT_TRUE(explanations->complete);
    EXPECT_TRUE(explanations->found.empty());
    EXPECT_EQ(explanations->work.records, 1U);
}

TEST_F(RowOfGates, IsCutAtALimit)
{
    const StepFrame frame = silentFrom(5);
    SearchLimits limits;
    limits.maxCandidates = 2;
    monitor::Budget budget(limits);
    const auto explanations = monitor::searchStretches(frame, 1, budget);
    ASSERT_TRUE(explanations);
    EXPECT_EQ(explanations->found.size(), 2U);
    EXPECT_FALSE(explanations->complete);
    EXPECT_EQ(explanations->limit, SearchLimit::candidates);
}

} // namespace
