#include "assess/Evaluator.h"

#include "tests/assess/Lamps.h"

#include <gtest/gtest.h>

namespace {

assess::Evaluation evaluated(const std::string& labels, const std::string& table,
                             assess::EvaluationSettings settings = {})
{
    session::Session session = lamps();
    assess::Evaluator evaluator(
        session.plant(), assess::readLabels(*lines(labels), session.plant()).labels, settings);
    follow(session, table,
           [&](const auto& step, const auto& answer) { evaluator.take(step, answer); });
    return evaluator.evaluation();
}

// The lamp of the hall is dark from 3 to 6.
const char* const darkHall = "t,L-1,L-2\n0,20,20\n1,20,20\n2,20,20\n3,1,20\n4,1,20\n5,1,20\n6,20,"
                             "20\n7,20,20\n8,20,20\n9,20,20\n";

} // namespace

TEST(Evaluator, CountsFromTheStartOfALabelToTheFirstAlarm)
{
    const auto found = evaluated("start,end,what\n2,6,hall.lamp\n", darkHall);
    ASSERT_EQ(found.events.size(), 1U);
    EXPECT_EQ(found.events[0].steps, 4U);
    EXPECT_EQ(found.events[0].alarmSteps, 3U);
    EXPECT_EQ(found.events[0].detectedAfter, 1.0);
    EXPECT_EQ(found.events[0].isolatedAfter, 1.0);
    EXPECT_EQ(found.events[0].mostProbable, "hall/lamp.state = burnt");
    EXPECT_EQ(found.detected, 1U);
    EXPECT_EQ(found.isolated, 1U);
    EXPECT_EQ(found.detectionDelay.mean, 1.0);
}

TEST(Evaluator, IsolatesTheValueThatIsLabelledOnly)
{
    const auto found = evaluated("start,end,what\n3,6,hall.lamp.state = dim\n", darkHall);
    EXPECT_EQ(found.detected, 1U);
    EXPECT_EQ(found.isolable, 1U);
    EXPECT_EQ(found.isolated, 0U);
    EXPECT_FALSE(found.events[0].isolatedAfter);
}

TEST(Evaluator, ShowsWhatAnExplanationNamesThatIsNotTheFirst)
{
    const auto found =
        evaluated("start,end,what\n3,6,hall.lamp.state = dim\n", darkHall, {.mass = 1.0});
    EXPECT_EQ(found.named, 1U);
    EXPECT_EQ(found.events[0].namedAfter, 0.0);
}

TEST(Evaluator, DoesNotDetectAFaultInAnotherPlaceAsThatOne)
{
    const auto found = evaluated("start,end,what\n3,6,yard\n", darkHall);
    EXPECT_EQ(found.detected, 1U);
    EXPECT_EQ(found.isolated, 0U);
    EXPECT_EQ(found.named, 0U);
    EXPECT_EQ(found.events[0].mostProbable, "hall/lamp.state = burnt");
}

TEST(Evaluator, DoesNotAskForTheIsolationOfAFaultOfWhichNobodyKnowsWhere)
{
    const auto found = evaluated("start,end,what\n3,6,fault\n", darkHall);
    EXPECT_EQ(found.detected, 1U);
    EXPECT_EQ(found.isolable, 0U);
}

TEST(Evaluator, CountsAStretchOfAlarmsOutsideLabelsAsOneFalseAlarm)
{
    const auto found = evaluated("start,end,what\n9,,fault\n", darkHall);
    EXPECT_EQ(found.falseAlarms, 1U);
    EXPECT_EQ(found.freeAlarms, 3U);
    EXPECT_EQ(found.freeSteps, 9U);
    EXPECT_EQ(found.freeSeconds, 9.0);
    EXPECT_EQ(found.lingering, 0U);
    EXPECT_EQ(found.detected, 0U);
}

TEST(Evaluator, CountsAnAlarmThatOutlastsItsFaultAsLingering)
{
    const auto found = evaluated("start,end,what\n3,5,fault\n", darkHall);
    EXPECT_EQ(found.falseAlarms, 1U);
    EXPECT_EQ(found.lingering, 1U);
}

TEST(Evaluator, CountsTheGraceAfterALabelNeitherWay)
{
    const auto found = evaluated("start,end,what\n3,5,fault\n", darkHall, {.grace = 1});
    EXPECT_EQ(found.falseAlarms, 0U);
    EXPECT_EQ(found.freeSteps, 7U);
    EXPECT_EQ(found.freeSeconds, 7.0);
    EXPECT_EQ(found.faultySteps, 2U);
}

TEST(Evaluator, TellsAnAlarmThatWasOnBeforeItsFault)
{
    EXPECT_TRUE(evaluated("start,end,what\n4,6,fault\n", darkHall).events[0].wasOnBefore);
    EXPECT_FALSE(evaluated("start,end,what\n3,6,fault\n", darkHall).events[0].wasOnBefore);
}

TEST(Evaluator, LeavesALabelWithoutAStepOutOfTheRates)
{
    const auto found = evaluated("start,end,what\n100,200,fault\n3,6,fault\n", darkHall);
    EXPECT_EQ(found.labelled, 1U);
    EXPECT_EQ(found.detected, 1U);
    EXPECT_EQ(found.events[0].steps, 0U);
}

TEST(Evaluator, TakesAStepLengthForTheTimeBeforeAGap)
{
    const auto found =
        evaluated("start,end,what\n1000,,fault\n", "t,L-1\n0,20\n1,20\n500,20\n501,20\n");
    EXPECT_EQ(found.freeSeconds, 4.0);
}
