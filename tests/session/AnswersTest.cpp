// What is believed of small plants, and that it does not depend on how they are written.
#include "language/Reader.h"
#include "session/Session.h"
#include "telemetry/StepReader.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace {

using session::Session;

/// The values of modes that differ from what is expected, and the probability of each: "p.state=broken".
struct Believed {
    monitor::TrackStatus status = monitor::TrackStatus::nominal;
    bool complete = false;
    std::map<std::string, double> marginals;

    double of(const std::string& mode) const
    {
        const auto found = marginals.find(mode);
        return found == marginals.end() ? 0.0 : found->second;
    }
};

// Follows the steps, which are lines of JSON, and says what is believed after the last one.
Believed follow(const std::string& model, const std::vector<std::string>& steps)
{
    Session session = Session::open(language::readModelText("plant.itms", model));
    telemetry::StepReader reader(std::make_unique<telemetry::LineVector>(steps), session.model(),
                                 session.bindings());
    for (auto next = reader.next(); !std::holds_alternative<telemetry::End>(next);
         next = reader.next()) {
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            throw std::runtime_error(mistake->error.format());
        }
        session.advance(std::get<telemetry::Step>(next));
    }
    const monitor::TrackAnswer& answer = session.answer();
    Believed believed{answer.status, answer.complete, {}};
    for (std::size_t i = 0; i < answer.hypotheses.size(); ++i) {
        for (const auto& [variable, since] : answer.hypotheses[i]->since) {
            believed.marginals[session.plant().atom(since.value)->id] += answer.probabilities[i];
        }
    }
    return believed;
}

void expectSame(const Believed& one, const Believed& other)
{
    EXPECT_EQ(one.status, other.status);
    EXPECT_EQ(one.complete, other.complete);
    ASSERT_EQ(one.marginals.size(), other.marginals.size());
    for (const auto& [mode, probability] : one.marginals) {
        EXPECT_NEAR(probability, other.of(mode), 1e-12) << mode;
    }
}

// A pump against a blind flange: switched on, its modes contradict the laws before anything is read.
std::string pumpAgainstFlange(const std::string& spare = "")
{
    return R"(component Pump {
    command c: none, start
    cond flow: no, yes
    mode state { off initial on dead fault }
    law state = on -> flow = yes
    law state in {off, dead} -> flow = no
    nominal off -> on when c = start : 0.99
    fault any -> dead : 0.001
}
component Flange {
    cond flow: no, yes
    mode state { shut initial gone fault }
    law state = shut -> flow = no
    fault shut -> gone : 0.001
})" + spare +
           R"(
system Rig {
    a: Pump
    b: Flange
    law a.flow = b.flow
    command a.c
)" + (spare.empty() ? "" : "    s: Spare\n") +
           "}\n";
}

TEST(Answers, AreSearchedForWhereModesContradictTheLaws)
{
    const Believed believed =
        follow(pumpAgainstFlange(), {R"({"t": 1, "commands": {"a.c": "start"}})"});
    EXPECT_TRUE(believed.complete);
    EXPECT_NE(believed.status, monitor::TrackStatus::inconsistent);
    // The pump stays off with 0.009, is dead with 0.001, or turns and the flange is gone with 0.99 times 0.001; each other factor
    // is 0.999 or 1.
    const double off = 0.009 * 0.999;
    const double dead = 0.001 * 0.999;
    const double gone = 0.99 * 0.001;
    EXPECT_NEAR(believed.of("a.state=off"), off / (off + dead + gone), 1e-12);
    EXPECT_NEAR(believed.of("a.state=dead"), dead / (off + dead + gone), 1e-12);
    EXPECT_NEAR(believed.of("b.state=gone"), gone / (off + dead + gone), 1e-12);
}

TEST(Answers, DoNotDependOnAnOpenConditionThatNothingMentions)
{
    const std::vector<std::string> steps{R"({"t": 1, "commands": {"a.c": "start"}})"};
    expectSame(follow(pumpAgainstFlange(), steps),
               follow(pumpAgainstFlange("\ncomponent Spare { cond open: no, yes }"), steps));
}

// A sensor of three values, and one that may be broken and then shows anything.
std::string sensor(const std::string& laws)
{
    return R"(component Sensor {
    cond y: lo, mid, hi
    mode state { good initial broken fault }
)" + laws +
           R"(    fault good -> broken : 0.5
}
component Source {
    cond v: lo, mid, hi
    mode state { good initial odd fault }
    law state = good -> v != lo
    fault good -> odd : 0.25
}
system Rig {
    s: Sensor
    q: Source
    law q.v != hi -> s.y = q.v
    observe s.y
    observe q.v
}
)";
}

TEST(Answers, DoNotDependOnHowALawIsWritten)
{
    const std::vector<std::string> steps{R"({"t": 1, "observations": {"s.y": "lo", "q.v": "lo"}})",
                                         R"({"t": 2, "observations": {"s.y": "mid"}})"};
    const Believed believed = follow(sensor("    law state = good -> y in {lo, mid, hi}\n"), steps);
    EXPECT_GT(believed.of("q.state=odd"), 0.99);
    expectSame(believed, follow(sensor(""), steps));
    const Believed contrapositive =
        follow(sensor("    law state = good -> y in {mid, lo}\n"), steps);
    expectSame(contrapositive, follow(sensor("    law y = hi -> state != good\n"), steps));
    expectSame(contrapositive,
               follow(sensor("    law !(state = good & !(y = lo) & !(y = mid))\n"), steps));
}

// Both faults explain the reading: narrow leaves two values open and wide three.
TEST(Answers, CountWhatAModeLeavesOpen)
{
    const auto rig = [](const std::string& law) {
        return R"(component Sensor {
    cond y: lo, mid, hi
    mode state { good initial narrow fault wide fault }
    law state = good -> y = lo
)" + law + R"(
    fault good -> narrow : 0.25
    fault good -> wide : 0.25
}
system Rig {
    s: Sensor
    observe s.y
}
)";
    };
    const std::vector<std::string> steps{R"({"t": 1, "observations": {"s.y": "mid"}})"};
    const Believed one = follow(rig("    law state = narrow -> y in {mid, hi}"), steps);
    expectSame(one, follow(rig("    law state = narrow -> (!(y = mid) -> y = hi)"), steps));
    EXPECT_NEAR(one.of("s.state=narrow"), 0.6, 1e-12);
    EXPECT_NEAR(one.of("s.state=wide"), 0.4, 1e-12);
}

// The reading of the pipe tells nothing of the meter's, whichever comes first.
std::string meter(const std::string& observed)
{
    return R"(component Pipe { cond flow: none, low, high }
component Meter {
    cond shown: none, low, high
    mode state { good initial stuck fault drifting fault }
    law state = stuck -> shown = none
    law state = drifting -> shown != high
    fault good -> stuck : 0.001
    fault good -> drifting : 0.001
}
system Rig {
    p: Pipe
    m: Meter
    law m.state = good -> m.shown = p.flow
)" + observed +
           "}\n";
}

TEST(Answers, DoNotDependOnTheOrderOfWhatIsObserved)
{
    const std::vector<std::string> steps{
        R"({"t": 1, "observations": {"p.flow": "low", "m.shown": "low"}})",
        R"({"t": 2, "observations": {"p.flow": "high", "m.shown": "none"}})"};
    const Believed one = follow(meter("    observe p.flow\n    observe m.shown\n"), steps);
    expectSame(one, follow(meter("    observe m.shown\n    observe p.flow\n"), steps));
    // While it is good there are three combinations; stuck, the pipe has three values and the meter one; drifting, it has two. It
    // may have drifted at the first step, or at the second. If at the first, both readings were open before they changed: after
    // one reading without a change that has the probability (0 + 1/2) / (1 + 1), and the pipe has two values to change to.
    const double stuck = 0.998 / 3 * 0.001 / 3;
    const double drifting = 0.998 / 3 * 0.001 / 6 + 0.001 / 6 * (0.25 / 2) * 0.25;
    EXPECT_NEAR(one.of("m.state=stuck"), stuck / (stuck + drifting), 1e-12);
    EXPECT_NEAR(one.of("m.state=drifting"), drifting / (stuck + drifting), 1e-12);
}

TEST(Answers, CountOneGuardOnceThoughTwoOfItsAlternativesHold)
{
    const std::string model = R"(component Pump {
    command go: none, start
    command alarm: none, on
    cond turns: no, yes
    mode state { good initial slipping fault worn fault }
    law state = good -> turns = yes
    law state != good -> turns = no
    fault good -> slipping when go = start | alarm = on : 0.3
    fault good -> worn : 0.1
}
system Rig {
    p: Pump
    observe p.turns
    command p.go
    command p.alarm
}
)";
    const Believed believed = follow(
        model,
        {R"({"t": 1, "commands": {"p.go": "start", "p.alarm": "on"}, "observations": {"p.turns": "no"}})"});
    EXPECT_NEAR(believed.of("p.state=slipping"), 0.75, 1e-12);
    EXPECT_NEAR(believed.of("p.state=worn"), 0.25, 1e-12);
}

TEST(Answers, BeginWithWhatFollowsFromTheInitialValues)
{
    const std::string model = R"(component Heater {
    cond power: absent, present
    cond warm: no, yes
    mode state { off initial on }
    law power = present <-> warm = yes
    nominal off -> on when warm = yes : 1
    law state = on -> warm = yes
}
system Room {
    h: Heater
    initially h.power = present
    observe h.warm
}
)";
    Session session = Session::open(language::readModelText("room.itms", model));
    telemetry::StepReader reader(
        std::make_unique<telemetry::LineVector>(std::vector<std::string>{R"({"t": 1})"}),
        session.model(), session.bindings());
    session.advance(std::get<telemetry::Step>(reader.next()));
    const monitor::Hypothesis& best = *session.answer().hypotheses.front();
    EXPECT_EQ(session.plant().atom(best.modes.front())->id, "h.state=on");
}

// A dead sensor may show anything, a stuck one shows the middle; the dead one is ten times as probable.
std::string sensorThatMayDie(const std::string& varies)
{
    return R"(component Sensor {
    cond y: lo, mid, hi
    mode state { good initial dead fault stuck fault }
    law state = good -> y = lo
    law state = stuck -> y = mid
    fault good -> dead : 0.001
    fault good -> stuck : 0.0001
}
system Rig {
    s: Sensor
    observe s.y)" +
           varies + "\n}\n";
}

std::vector<std::string> constantReading(int steps)
{
    std::vector<std::string> lines;
    for (int step = 1; step <= steps; ++step) {
        lines.push_back(R"({"t": )" + std::to_string(step) + R"(, "observations": {"s.y": "mid"}})");
    }
    return lines;
}

TEST(Answers, TakeAConstantReadingForNoNewEvidence)
{
    const int steps = underSanitizers ? 200 : 2000;
    const Believed believed = follow(sensorThatMayDie(" varies 0.00001"), constantReading(steps));
    const double dead = 0.001 / 3 * std::pow(1.0 - 0.00001, steps - 1);
    EXPECT_NEAR(believed.of("s.state=dead"), dead / (dead + 0.0001), 1e-9);
}

TEST(Answers, LearnHowOftenAReadingChanges)
{
    const int steps = underSanitizers ? 200 : 2000;
    const Believed believed = follow(sensorThatMayDie(""), constantReading(steps));
    double dead = 0.001 / 3;
    for (int step = 2; step <= steps; ++step) {
        dead *= 1.0 - 0.5 / step;
    }
    EXPECT_NEAR(believed.of("s.state=dead"), dead / (dead + 0.0001), 1e-9);
}

TEST(Answers, TakeAReadingThatWandersForEvidence)
{
    const Believed believed =
        follow(sensorThatMayDie(" varies 0.5"), {R"({"t": 1, "observations": {"s.y": "mid"}})",
                                                 R"({"t": 2, "observations": {"s.y": "hi"}})"});
    EXPECT_NEAR(believed.of("s.state=dead"), 1.0, 1e-12);
}

// The reading of the supply says nothing of the lamp; scored, it would be one of two values that the broken lamp leaves open.
TEST(Answers, TakeADeclaredInputAsGiven)
{
    const auto room = [](const std::string& word) {
        return R"(component Lamp {
    cond power: no, yes
    cond light: no, yes
    mode state { good initial broken fault miswired fault }
    law state = good -> (power = light)
    law state = broken -> light = no
    law state = miswired -> power = yes & light = no
    fault good -> broken : 0.001
    fault good -> miswired : 0.001
}
system Room {
    l: Lamp
    observe l.light
    )" + word + " l.power\n}\n";
    };
    const std::vector<std::string> steps{
        R"({"t": 1, "observations": {"l.light": "no", "l.power": "yes"}})"};
    EXPECT_NEAR(follow(room("observe"), steps).of("l.state=broken"), 1.0 / 3, 1e-12);
    EXPECT_NEAR(follow(room("input"), steps).of("l.state=broken"), 0.5, 1e-12);
}

TEST(Answers, SayThatNothingIsWrongAfterARepair)
{
    const std::string model = R"(component Fan {
    cond air: no, yes
    command c: none, service
    mode state { turning initial broken fault }
    law state = turning <-> air = yes
    fault turning -> broken : 0.001
    repair broken -> turning when c = service : 0.9
}
system Rig {
    f: Fan
    observe f.air
    command f.c
}
)";
    std::vector<std::string> steps{R"({"t": 1, "observations": {"f.air": "no"}})"};
    EXPECT_EQ(follow(model, steps).status, monitor::TrackStatus::faulty);
    steps.emplace_back(
        R"({"t": 2, "commands": {"f.c": "service"}, "observations": {"f.air": "yes"}})");
    const Believed after = follow(model, steps);
    EXPECT_EQ(after.status, monitor::TrackStatus::nominal);
    EXPECT_TRUE(after.marginals.empty());
}

// A broken sensor may show anything, so nothing contradicts that it is broken still. But what it shows follows the feed again.
TEST(Answers, BelieveInARepairThatNoReadingCallsFor)
{
    const std::string model = R"(
        component Sensor {
            cond feed: no, yes
            cond out: no, yes
            mode state: good initial, broken fault
            law state = good -> out = feed
            fault good -> broken : 0.01
            repair broken -> good : 0.0001
        }
        system Rig {
            s: Sensor
            input s.feed
            observe s.out varies 0.1
        }
    )";
    std::vector<std::string> steps{R"({"t": 0, "observations": {"s.feed": "yes", "s.out": "no"}})"};
    EXPECT_EQ(follow(model, steps).of("s.state=broken"), 1.0);
    for (int i = 1; i <= 12; ++i) {
        const std::string both = i % 2 == 0 ? "yes" : "no";
        steps.push_back(R"({"t": )" + std::to_string(i) + R"(, "observations": {"s.feed": ")" +
                        both + R"(", "s.out": ")" + both + R"("}})");
    }
    EXPECT_LT(follow(model, steps).of("s.state=broken"), 1e-4);
}

} // namespace
