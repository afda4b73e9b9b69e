#include "session/Session.h"

#include "language/Reader.h"
#include "monitor/step/ExplanationSearch.h"
#include "tests/session/ExampleRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>

namespace {

using session::Session;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const lamp = R"(
component Lamp {
    mode state { good initial broken fault }
    cond light: on, off
    law state = good -> light = on
    law state = broken -> light = off
    fault good -> broken : 0.01
}
system room {
    lamp: Lamp
    observe lamp.light from "L-1" : on = 1, off = 0
}
)";

language::ReadResult readLamp()
{
    return language::readModelText("lamp.itms", lamp);
}

telemetry::Step step(const Session& session, std::size_t number, const std::string& value)
{
    for (const auto& atom : session.model().atoms()) {
        if (atom->id == value) {
            telemetry::Step step;
            step.number = number;
            step.t = static_cast<double>(number);
            step.observations.push_back({atom.get(), false});
            return step;
        }
    }
    throw std::runtime_error("no value " + value);
}

/// What was written to std::cout while it lives.
class Captured {
public:
    Captured() : before_(std::cout.rdbuf(text_.rdbuf())) {}
    ~Captured() { std::cout.rdbuf(before_); }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;
    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* before_;
};

TEST(Session, ExplainsWhatIsSeen)
{
    Session session = Session::open(readLamp());
    EXPECT_EQ(session.advance(step(session, 1, "lamp.light=on")).status,
              monitor::TrackStatus::nominal);
    const monitor::TrackAnswer& answer = session.advance(step(session, 2, "lamp.light=off"));
    EXPECT_EQ(answer.status, monitor::TrackStatus::faulty);
    EXPECT_EQ(&answer, &session.answer());
    EXPECT_EQ(session.input().step, 2U);
    const monitor::Hypothesis& best = *answer.hypotheses.front();
    ASSERT_EQ(best.modes.size(), 1U);
    EXPECT_EQ(session.plant().atom(best.modes.front())->id, "lamp.state=broken");
}

TEST(Session, TellsWhy)
{
    Session session = Session::open(readLamp());
    session.advance(step(session, 1, "lamp.light=on"));
    EXPECT_THAT(session.explain().steps, IsEmpty());
    session.advance(step(session, 2, "lamp.light=off"));
    const session::Explained explained = session.explain();
    ASSERT_EQ(explained.steps.size(), 1U);
    EXPECT_EQ(explained.steps.front().contradiction.input.step, 2U);
    ASSERT_EQ(explained.steps.front().conflicts.size(), 1U);
    const monitor::CheckedConflict& conflict = explained.steps.front().conflicts.front();
    EXPECT_EQ(conflict.check, monitor::ConflictCheck::confirmed);
    ASSERT_EQ(conflict.conflict.modes.size(), 1U);
    EXPECT_EQ(session.plant().atom(conflict.conflict.modes.front().value)->id, "lamp.state=good");
}

TEST(Session, KeepsNoHistoryThatIsNotWanted)
{
    session::Settings settings;
    settings.history = 0;
    Session session = Session::open(readLamp(), settings);
    session.advance(step(session, 1, "lamp.light=off"));
    EXPECT_THAT(session.explain().steps, IsEmpty());
}

TEST(Session, AnswersFormulas)
{
    Session session = Session::open(readLamp());
    EXPECT_EQ(session.query("lamp.state = good").best, monitor::Truth::open); // before any step
    const monitor::StateQuery broken = session.formula("lamp.state = broken");
    session.advance(step(session, 1, "lamp.light=on"));
    EXPECT_EQ(broken.evaluate(session.answer()).best, monitor::Truth::isFalse);
    session.advance(step(session, 2, "lamp.light=off"));
    EXPECT_EQ(broken.evaluate(session.answer()).best, monitor::Truth::isTrue);
    EXPECT_EQ(session.query("lamp.state = good").best, monitor::Truth::isFalse);
    try {
        session.query("lamp.stat = good");
        FAIL();
    } catch (const session::FormulaErrors& errors) {
        EXPECT_EQ(errors.errors().size(), 1U);
        EXPECT_THAT(errors.what(), HasSubstr("lamp.stat"));
    }
}

TEST(Session, AdvisesAsTheMonitorDoes)
{
    ExampleRun run(waterModel, waterTelemetry);
    run.skip(11);
    const Session& session = run.session();
    const monitor::Advice advice = session.advise();
    const monitor::Advice expected =
        monitor::advise(session.plant(), session.answer(), session.input().values.observations, {});
    EXPECT_EQ(advice.entropy, expected.entropy);
    EXPECT_EQ(advice.useless, expected.useless);
    EXPECT_EQ(advice.measurements.size(), expected.measurements.size());
}

TEST(Session, KnowsWhatHasAChannelOrIsDeclaredMeasurable)
{
    const auto measurable = [](const std::string& declarations) {
        const Session session = Session::open(language::readModelText(
            "lamp.itms",
            "component Lamp { cond light: off, on\n cond heat: low, high\n cond hum: no, yes\n"
            "mode state { good initial burnt fault }\n law state = good -> light = on\n"
            "fault good -> burnt : 0.1 }\nsystem Room { lamp: Lamp\n" +
                declarations + "\n}\n"));
        std::vector<std::string> names;
        const std::vector<bool> found = session.measurable();
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (found[i]) names.push_back(session.plant().variables()[i].variable->name);
        }
        return names;
    };
    EXPECT_THAT(measurable(""), testing::IsEmpty());
    EXPECT_THAT(measurable("observe lamp.light\nmeasurable lamp.heat\nmeasurable lamp.state"),
                testing::UnorderedElementsAre("light", "heat", "state"));
    EXPECT_THAT(measurable("observe lamp.light\nobserve lamp.state"),
                testing::ElementsAre("light"));
}

TEST(Session, CanBeMoved)
{
    Session first = Session::open(readLamp());
    first.advance(step(first, 1, "lamp.light=on"));
    const monitor::TrackAnswer* answer = &first.answer();
    const plant::Plant* plant = &first.plant();
    Session second = std::move(first);
    EXPECT_EQ(&second.answer(), answer);
    EXPECT_EQ(&second.plant(), plant);
    EXPECT_EQ(second.advance(step(second, 2, "lamp.light=off")).status,
              monitor::TrackStatus::faulty);
    second = Session::open(readLamp());
    EXPECT_EQ(second.advance(step(second, 1, "lamp.light=on")).status,
              monitor::TrackStatus::nominal);
}

TEST(Session, KeepsTheTraceOffStandardOutput)
{
    const Captured captured;
    Session session = Session::open(readLamp());
    session.advance(step(session, 1, "lamp.light=off"));
    EXPECT_TRUE(std::cout.good());
    EXPECT_EQ(captured.text(), "");
}

TEST(Session, LetsTheEngineTraceOnRequest)
{
    const Captured captured;
    Session session = Session::open(readLamp(), {}, {.trace = true});
    session.advance(step(session, 1, "lamp.light=off"));
    EXPECT_NE(captured.text(), "");
}

TEST(Session, ThrowsAllThatIsWrongInAModel)
{
    try {
        Session::open(language::readModelText("bad.itms",
                                              "component A {\n    cond x: a, b\n    law x = c\n  "
                                              "  law y = a\n}\nsystem s { a: A }\n"),
                      {}, {}, "bad.itms");
        FAIL();
    } catch (const session::ModelErrors& errors) {
        EXPECT_EQ(errors.file(), "bad.itms");
        EXPECT_GE(errors.errors().size(), 2U);
        EXPECT_THAT(errors.what(), HasSubstr(errors.errors().back().format()));
    }
    EXPECT_THROW(Session::open("nowhere.itms"), session::ModelErrors);
}

TEST(Session, ThrowsForAModelWithoutASystem)
{
    language::ReadOptions options;
    options.systemNeeded = false;
    EXPECT_THROW(Session::open(language::readModelText("part.itms",
                                                       "component A { cond x: 0, 1 }\n", options)),
                 session::ModelErrors);
}

/// Believes in the prediction, and counts how often it is asked.
class Believer final : public monitor::ExplanationSearch {
public:
    monitor::Explanations search(const monitor::StepFrame&, int, const SearchLimits&) override
    {
        ++asked;
        return {};
    }
    int asked = 0;
};

TEST(Session, SearchesAsItIsAskedTo)
{
    session::Settings settings;
    const auto believer = std::make_shared<Believer>();
    settings.search = believer;
    Session session = Session::open(readLamp(), settings);
    session.advance(step(session, 1, "lamp.light=on"));
    EXPECT_EQ(believer->asked, 0);
    EXPECT_EQ(session.advance(step(session, 2, "lamp.light=off")).status,
              monitor::TrackStatus::inconsistent);
    EXPECT_EQ(believer->asked, 1);
}

} // namespace
