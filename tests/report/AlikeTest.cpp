// Explanations that cannot be told apart are one row of a table.
#include "report/Alike.h"
#include "tests/report/Steps.h"
#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gmock/gmock.h>

using monitor::TrackStatus;
using report::grouped;
using report::TrackedExplanation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using Explanations = std::vector<TrackedExplanation>;

namespace {

TrackedExplanation looking(std::size_t appearance, double probability,
                           std::vector<report::DeviatingMode> modes)
{
    TrackedExplanation made = deviating(probability, std::move(modes));
    made.appearance = appearance;
    return made;
}

// With blanks where no line is to be broken.
std::string words(const Explanations& explanations, bool withProbabilities = true)
{
    std::string text = inWords(grouped(explanations).front(), explanations, withProbabilities);
    std::replace(text.begin(), text.end(), report::unbreakable, ' ');
    return text;
}

// A torn belt and a shut damper both stop the flow; only the belt is heard.
class Fan : public testing::Test {
protected:
    Fan()
    {
        model_.mode("belt.mode", {"whole", "torn!"});
        model_.mode("damper.mode", {"open", "shut!"});
        model_.condition("fan.flow", {"no", "yes"});
        model_.condition("fan.noise", {"no", "yes"});
        model_.fault("belt.mode=whole", "belt.mode=torn", 1.0 / 64);
        model_.fault("damper.mode=open", "damper.mode=shut", 1.0 / 64);
        model_.law("!belt.mode=whole | !damper.mode=open | fan.flow=yes");
        model_.law("!belt.mode=torn | fan.flow=no");
        model_.law("!damper.mode=shut | fan.flow=no");
        model_.law("!belt.mode=torn | fan.noise=yes");
        model_.law("!belt.mode=whole | fan.noise=no");
        active_ = model_.activate();
    }

    // Of a step without flow, when these variables were read so far, this step included.
    report::StepReport withoutFlow(const std::vector<std::string>& values)
    {
        monitor::Tracker tracker(active_->engine, *active_->plant, {});
        monitor::TrackInput input;
        input.step = 1;
        input.values = ::input(*active_, {}, {"fan.flow=no"});
        const monitor::TrackAnswer& answer = tracker.advance(input);
        report::StepReport report = report::stepReport(*active_->plant, answer);
        std::vector<plant::VariableIndex> read;
        for (const std::string& value : values) {
            read.push_back(active_->plant->variableOf(active_->index(value)));
        }
        noteAppearance(report, *active_->plant, answer, read);
        return report;
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
};

} // namespace

TEST_F(Fan, LooksTheSameWhereNothingThatIsReadDiffers)
{
    const report::StepReport report = withoutFlow({"fan.flow=no"});
    ASSERT_THAT(report.explanations, SizeIs(2));
    EXPECT_EQ(words(report.explanations),
              "one of belt.mode = torn (50.0 %), damper.mode = shut (50.0 %) since step 1");
}

TEST_F(Fan, DoesNotLookTheSameWhereSomethingThatIsReadAtTimesDiffers)
{
    const report::StepReport report = withoutFlow({"fan.flow=no", "fan.noise=no"});
    ASSERT_THAT(report.explanations, SizeIs(2));
    EXPECT_THAT(grouped(report.explanations), SizeIs(2));
}

TEST(AlikeExplanations, AreOneGroupWithTheSumOfTheirProbabilities)
{
    const auto groups = grouped({looking(0, 0.5, {{"x.mode", "open", 2}}),
                                 looking(1, 0.375, {{"a.mode", "stuck", 3}}),
                                 looking(1, 0.25, {{"b.mode", "dead", 3}})});
    ASSERT_THAT(groups, SizeIs(2));
    EXPECT_DOUBLE_EQ(groups.front().probability, 0.625);
    EXPECT_THAT(groups.front().members, ElementsAre(1, 2));
    EXPECT_THAT(groups.back().members, ElementsAre(0));
}

TEST(AlikeExplanations, SayOnceWhatAllOfThemHave)
{
    EXPECT_EQ(words({looking(1, 0.5, {{"a.mode", "stuck", 3}, {"m.mode", "dead", 2}}),
                     looking(1, 0.25, {{"b.mode", "dead", 3}, {"m.mode", "dead", 2}})}),
              "one of a.mode = stuck (50.0 %), b.mode = dead (25.0 %) since step 3; m.mode = dead "
              "since step 2");
}

TEST(AlikeExplanations, AreWordedWithoutNumbersInTheOrderOfNames)
{
    EXPECT_EQ(
        words({looking(1, 0.5, {{"b.mode", "dead", 3}}), looking(1, 0.25, {{"a.mode", "stuck", 3}})},
              false),
        "one of a.mode = stuck, b.mode = dead since step 3");
}

TEST(AlikeExplanations, AreNamedUpToEightOfThem)
{
    Explanations many;
    for (int i = 0; i < 12; ++i) {
        many.push_back(looking(1, 1.0 / 12, {{"g" + std::to_string(i) + ".mode", "dead", 3}}));
    }
    EXPECT_THAT(words(many), HasSubstr("g7.mode = dead (8.33 %), 4 more since step 3"));
}

TEST(AlikeExplanations, BeganAtTheSameStep)
{
    EXPECT_THAT(grouped({looking(1, 0.5, {{"a.mode", "stuck", 3}}),
                         looking(1, 0.25, {{"b.mode", "dead", 4}})}),
                SizeIs(2));
}

TEST(AlikeExplanations, HaveTheSameNumberOfFaults)
{
    TrackedExplanation missed = looking(1, 0.5, {{"a.mode", "closed", 3}});
    missed.faults = 0;
    EXPECT_THAT(grouped({missed, looking(1, 0.25, {{"a.mode", "stuck", 3}})}), SizeIs(2));
}

TEST(AlikeExplanations, LeaveTheSameUnexplained)
{
    TrackedExplanation other = looking(1, 0.5, {{"a.mode", "stuck", 3}});
    other.unexplained = {"f.flow=no"};
    EXPECT_THAT(grouped({other, looking(1, 0.25, {{"b.mode", "dead", 3}})}), SizeIs(2));
}

TEST(AlikeExplanations, AreEachAloneWhereAppearanceWasNotCompared)
{
    EXPECT_THAT(grouped({deviating(0.5, {{"a.mode", "stuck", 3}}),
                         deviating(0.25, {{"b.mode", "dead", 3}})}),
                SizeIs(2));
}
