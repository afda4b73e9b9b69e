#include "report/Events.h"

#include "tests/report/Steps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using report::EventReport;
using Phase = report::EventReport::Phase;
using Kind = report::EventReport::Kind;

// A step after which the valve is stuck with that probability, and the pump is dead with that.
report::StepReport believed(std::size_t step, double stuck, double dead = 0.0)
{
    report::StepReport made = stepReport(step, monitor::TrackStatus::ambiguous, {});
    if (stuck > 0) {
        made.explanations.push_back(deviating(stuck, {{"valve.position", "stuck", step - 1}}));
        made.marginals["valve.position"]["stuck"] = stuck;
    }
    if (dead > 0) {
        made.explanations.push_back(deviating(dead, {{"pump.state", "dead", step}}));
        made.marginals["pump.state"]["dead"] = dead;
    }
    made.fault = stuck + dead;
    return made;
}

// "begins valve.position = stuck", in short.
std::vector<std::string> told(const std::vector<EventReport>& events)
{
    std::vector<std::string> texts;
    for (const EventReport& event : events) {
        texts.push_back((event.phase == Phase::begins ? "begins " : "ends ") + report::nameOf(event));
    }
    return texts;
}

using testing::ElementsAre;
using testing::IsEmpty;

} // namespace

TEST(EventDetector, BeginsAnEventAtTheThreshold)
{
    report::EventDetector detector(0.5);
    EXPECT_THAT(told(detector.take(believed(1, 0.49))), IsEmpty());
    const auto events = detector.take(believed(2, 0.5));
    EXPECT_THAT(told(events), ElementsAre("begins valve.position = stuck"));
    EXPECT_EQ(events[0].number, 1U);
    EXPECT_EQ(events[0].since, 1U);
    EXPECT_EQ(events[0].t, 20.0);
}

TEST(EventDetector, EndsAnEventBelowHalfOfTheThreshold)
{
    report::EventDetector detector(0.5);
    detector.take(believed(1, 0.9));
    EXPECT_THAT(told(detector.take(believed(2, 0.25))), IsEmpty());
    const auto events = detector.take(believed(3, 0.24));
    EXPECT_THAT(told(events), ElementsAre("ends valve.position = stuck"));
    EXPECT_EQ(events[0].p, 0.9);
    EXPECT_EQ(events[0].start, 10.0);
    EXPECT_EQ(events[0].t, 30.0);
}

TEST(EventDetector, TellsThatSomethingIsWrongWhereNothingIsProbableByItself)
{
    report::EventDetector detector(0.5);
    const auto events = detector.take(believed(1, 0.4, 0.3));
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].kind, Kind::ambiguous);
    EXPECT_THAT(events[0].among, ElementsAre(std::pair("valve.position=stuck", 0.4),
                                             std::pair("pump.state=dead", 0.3)));
    EXPECT_THAT(told(detector.take(believed(2, 0.7, 0.1))),
                ElementsAre("ends something is wrong", "begins valve.position = stuck"));
}

TEST(EventDetector, TellsOfStepsThatNothingExplains)
{
    report::EventDetector detector(0.5);
    report::StepReport step = believed(1, 0);
    step.status = monitor::TrackStatus::inconsistent;
    EXPECT_THAT(told(detector.take(step)), ElementsAre("begins nothing explains what is observed"));
    EXPECT_THAT(told(detector.take(believed(2, 0))),
                ElementsAre("ends nothing explains what is observed"));
}

TEST(EventDetector, SumsUp)
{
    report::EventDetector detector(0.5);
    detector.take(believed(1, 0.9));
    detector.take(believed(2, 0));
    detector.take(believed(3, 0, 0.9));
    detector.take(believed(5, 0, 0.9));
    const EventReport summary = detector.summary();
    EXPECT_EQ(summary.all->steps, 4U);
    EXPECT_EQ(summary.all->events, 2U);
    EXPECT_EQ(summary.all->seconds, 30.0);
    EXPECT_THAT(summary.all->open, ElementsAre(std::pair(std::size_t{2}, "pump.state = dead")));
}

TEST(EventDetector, GoesOnFromItsMemory)
{
    report::EventDetector first(0.5);
    first.take(believed(1, 0.9));
    report::EventDetector second(0.5);
    second.restore(first.memory());
    const auto events = second.take(believed(2, 0));
    EXPECT_THAT(told(events), ElementsAre("ends valve.position = stuck"));
    EXPECT_EQ(events[0].start, 10.0);
}

TEST(EventJson, HasTimesOfTheCalendarWhereTheTelemetryHasThem)
{
    report::EventDetector detector(0.5);
    EventReport event = detector.take(believed(1, 0.9)).front();
    json record = json::parse(report::eventJson(event));
    EXPECT_EQ(record["event"], "begins");
    EXPECT_EQ(record["component"], "valve");
    EXPECT_EQ(record["end"], nullptr);
    EXPECT_FALSE(record.contains("startTime"));
    event = detector.take(believed(2, 0)).front();
    event.clock = report::Clock::wall;
    record = json::parse(report::eventJson(event));
    EXPECT_EQ(record["startTime"], "1970-01-01T00:00:10Z");
    EXPECT_EQ(record["endTime"], "1970-01-01T00:00:20Z");
    EXPECT_EQ(record["duration"], 10.0);
}
