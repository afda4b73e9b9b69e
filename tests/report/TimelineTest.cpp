// What is kept of a run of any length.
#include "report/Timeline.h"

#include <gtest/gtest.h>

using namespace report;
using monitor::TrackStatus;

namespace {

TimelineRow rowAt(std::size_t step, TrackStatus status = TrackStatus::nominal)
{
    TimelineRow made;
    made.step = step;
    made.t = static_cast<double>(step) / 2;
    made.status = status;
    return made;
}

TimelineRow reading(std::size_t step, double number, TrackStatus status = TrackStatus::nominal)
{
    TimelineRow made = rowAt(step, status);
    ChannelState state;
    state.read = 0;
    state.low = state.high = number;
    made.channels.push_back(state);
    return made;
}

Timeline ofSteps(std::size_t steps, std::size_t mostPoints)
{
    Timeline timeline(mostPoints);
    for (std::size_t step = 1; step <= steps; ++step) {
        timeline.add(rowAt(step));
    }
    return timeline;
}

} // namespace

TEST(Timeline, HasAPointForEachStepWhileThereIsRoom)
{
    const Timeline timeline = ofSteps(8, 8);
    ASSERT_EQ(timeline.points().size(), 8U);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(timeline.points()[i]->first, i + 1);
        EXPECT_EQ(timeline.points()[i]->last, i + 1);
    }
}

TEST(Timeline, NeverHasMorePointsThanOneAboveItsBound)
{
    for (std::size_t steps = 1; steps < 200; ++steps) {
        EXPECT_LE(ofSteps(steps, 8).points().size(), 9U) << steps;
    }
}

TEST(Timeline, CoversEveryStepOnceWhateverTheirNumber)
{
    for (std::size_t steps = 1; steps < 200; ++steps) {
        const Timeline timeline = ofSteps(steps, 8);
        std::size_t next = 1;
        for (const TimelinePoint* point : timeline.points()) {
            if (point->first == steps && point->last == steps && next == steps + 1) continue;
            EXPECT_EQ(point->first, next) << steps;
            next = point->last + 1;
        }
        EXPECT_EQ(next, steps + 1) << steps;
    }
}

TEST(Timeline, HasTheTimesAtWhichAPointBeginsAndEnds)
{
    const Timeline timeline = ofSteps(16, 8);
    EXPECT_EQ(timeline.stepsPerPoint(), 2U);
    EXPECT_EQ(timeline.points().front()->from, 0.5);
    EXPECT_EQ(timeline.points().front()->to, 1.0);
}

TEST(Timeline, ShowsTheWorstStepOfAPointHoweverShortItWas)
{
    Timeline timeline(8);
    for (std::size_t step = 1; step <= 64; ++step) {
        timeline.add(rowAt(step, step == 21 ? TrackStatus::inconsistent : TrackStatus::nominal));
    }
    std::size_t found = 0;
    for (const TimelinePoint* point : timeline.points()) {
        found += point->shown.status == TrackStatus::inconsistent && point->shown.step == 21 ? 1 : 0;
    }
    EXPECT_EQ(found, 1U);
}

TEST(Timeline, ShowsTheLastOfSeveralStepsThatAreEquallyBad)
{
    const Timeline timeline = ofSteps(16, 8);
    EXPECT_EQ(timeline.points().front()->shown.step, 2U);
}

TEST(Timeline, KeepsTheSmallestAndTheLargestNumberOfAPoint)
{
    Timeline timeline(2);
    const std::vector<double> numbers = {3, -7, 5, 4};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        timeline.add(reading(i + 1, numbers[i], i == 2 ? TrackStatus::faulty : TrackStatus::nominal));
    }
    const ChannelState& first = timeline.points().front()->shown.channels.front();
    EXPECT_EQ(first.low, -7);
    EXPECT_EQ(first.high, 3);
    const ChannelState& second = timeline.points()[1]->shown.channels.front();
    EXPECT_EQ(second.low, 4);
    EXPECT_EQ(second.high, 5);
}

TEST(Timeline, KeepsANumberBesideAStepWithoutAny)
{
    Timeline timeline(2);
    timeline.add(reading(1, 3));
    timeline.add(rowAt(2));
    timeline.add(rowAt(3));
    EXPECT_EQ(timeline.points().front()->shown.channels.at(0).low, 3);
}

TEST(Timeline, EndsWithTheLastStepThoughAnEarlierOneWasWorse)
{
    Timeline timeline(2);
    for (std::size_t step = 1; step <= 8; ++step) {
        timeline.add(rowAt(step, step == 7 ? TrackStatus::faulty : TrackStatus::nominal));
    }
    EXPECT_EQ(timeline.points().back()->shown.step, 8U);
    EXPECT_EQ(timeline.points()[timeline.points().size() - 2]->shown.step, 7U);
}
