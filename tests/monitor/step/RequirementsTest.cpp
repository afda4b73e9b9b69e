// What readings require is compared with what explains them, deviation by deviation.
#include "monitor/step/Requirements.h"

#include "monitor/track/RuledOut.h"
#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

namespace {

using monitor::Hypothesis;
using monitor::ModeOption;
using monitor::ModeStep;
using monitor::Requirements;
using monitor::StepFrame;
using monitor::Successors;
using monitor::TrackInput;

class RandomRequirements : public testing::Test {
protected:
    void compare(ActivePlant& active, const Hypothesis& before, const TrackInput& input)
    {
        const Successors successors(active.engine, *active.plant);
        const StepFrame frame = successors.frame(before, input, {});
        const Requirements required(frame);
        monitor::RuledOut ruledOut(*active.plant, input);
        Hypothesis predicted = successors.predicted(before, input);
        const bool expected = successors.explains(predicted);
        for (const ModeStep& step : frame.modes) {
            EXPECT_TRUE(!expected || required.allow(step.predicted));
            if (ruledOut.forGood(step.before)) {
                ++ruledOut_;
                EXPECT_EQ(step.predicted, step.before);
                EXPECT_FALSE(expected);
            }
            for (const ModeOption& option : step.options) {
                if (option.value != step.predicted && !required.allow(option.value)) {
                    ++notAllowed_;
                    EXPECT_FALSE(successors.deviating(before, input, {option.value}, {}));
                }
            }
        }
    }

    MutedTrace muted_;
    int notAllowed_ = 0;
    int ruledOut_ = 0;
};

TEST_F(RandomRequirements, AreMetByWhateverExplainsAStep)
{
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        followRandomPlant(seed, [this](ActivePlant& active, const Hypothesis& before,
                                       const TrackInput& input) { compare(active, before, input); });
    }
    EXPECT_GT(notAllowed_, 100);
    EXPECT_GT(ruledOut_, 10);
}

class TwoGates : public testing::Test {
protected:
    TwoGates()
    {
        model_.condition("s.in", {"0", "1"});
        model_.follower("a", "s.in");
        model_.follower("b", "a.out");
        active_ = model_.activate();
    }
    StepFrame frame(const std::vector<std::string>& observations) const
    {
        return makeFrame(*active_->plant, monitor::initialLabels(*active_->plant),
                         input(*active_, {}, observations));
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

TEST_F(TwoGates, AreRequiredToWorkByWhatComesOut)
{
    const StepFrame step = frame({"s.in=1", "b.out=1"});
    const Requirements required(step);
    EXPECT_TRUE(required.possible());
    for (const ModeStep& mode : step.modes) {
        EXPECT_TRUE(required.allow(mode.predicted));
        for (const ModeOption& option : mode.options) {
            EXPECT_EQ(required.allow(option.value), option.value == mode.predicted);
        }
    }
}

TEST_F(TwoGates, MayEachHaveFailedWhereNothingComesOut)
{
    const StepFrame step = frame({"s.in=1", "b.out=0"});
    Requirements required(step);
    const std::size_t mark = required.mark();
    for (const ModeStep& mode : step.modes) {
        for (const ModeOption& option : mode.options) {
            EXPECT_TRUE(required.allow(option.value));
        }
    }
    for (const ModeStep& mode : step.modes) {
        required.require(mode.predicted);
    }
    EXPECT_FALSE(required.possible());
    required.undo(mark);
    EXPECT_TRUE(required.possible());
}

TEST_F(TwoGates, CannotGiveWhatDoesNotGoIn)
{
    EXPECT_FALSE(Requirements(frame({"s.in=0", "b.out=1"})).possible());
}

} // namespace
