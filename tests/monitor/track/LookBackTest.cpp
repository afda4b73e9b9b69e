// Faults that happened at earlier steps and show only now.
#include "tests/monitor/track/TrackFixture.h"

#include "tests/monitor/track/RandomTrack.h"
#include "tests/support/Sanitized.h"

#include <cmath>

namespace {

using monitor::TrackAnswer;
using monitor::Tracker;
using monitor::TrackStatus;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// Valves that open for certain when they are told to, unless they got stuck before.
class LookBackTest : public TrackFixture {
protected:
    // It gets stuck only while nothing is asked of it, and that is not seen.
    void addSilentValve(const std::string& name, const Names& furtherModes = {})
    {
        Names modes{"closed", "open", "stuck!"};
        modes.insert(modes.end(), furtherModes.begin(), furtherModes.end());
        model_.mode(name + ".position", modes);
        model_.command(name + ".request", {"none", "open", "test"});
        model_.condition(name + ".flow", {"0", "1"});
        model_.law("!" + name + ".position=closed | " + name + ".flow=0");
        model_.law("!" + name + ".position=stuck | " + name + ".flow=0");
        model_.law("!" + name + ".position=open | " + name + ".flow=1");
        model_.fault(name + ".position=closed", name + ".position=stuck", 1.0 / 64,
                     name + ".request=none");
    }
    void opens(const std::string& name, double probability, const std::string& guard = "")
    {
        model_.nominal(name + ".position=closed", name + ".position=open", probability,
                       name + ".request=open " + guard);
    }

    // The sum over all sequences within one fault, followed beside the tracker.
    void alsoAdvance(BruteForceTrajectories& reference, const Names& observations,
                     const Names& commands)
    {
        TrajectoryStep made;
        for (const std::string& id : commands) {
            made.commands.push_back(active_->atom(id));
        }
        for (const std::string& id : observations) {
            made.observations.push_back(active_->atom(id));
        }
        reference.advance(made);
        step(observations, commands);
    }
    double exact(const BruteForceTrajectories& reference, const std::string& mode) const
    {
        return WholeNumber::ratio(reference.weights().at({active_->atom(mode)}), reference.total());
    }
};

TEST_F(LookBackTest, FindsAFaultThatShowsWhenItCanNoLongerHappen)
{
    addSilentValve("v");
    opens("v", 1.0);
    start();
    BruteForceTrajectories reference(BruteForceTrajectories::Which::all, 1);
    for (int i = 0; i < 3; ++i) {
        alsoAdvance(reference, {"v.flow=0"}, {"v.request=none"});
        EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
    }
    alsoAdvance(reference, {"v.flow=0"}, {"v.request=open"});
    EXPECT_TRUE(tracker_->answer().wentBack);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
    // The earlier, the more probable: no step is to be survived before.
    EXPECT_THAT(texts(), ElementsAre("v.position=stuck@1"));
    EXPECT_EQ(best().faultCount(), 1);
    double logScale = 0.0;
    for (const monitor::PastStep& past : tracker_->memory().past) {
        logScale += past.logScale;
    }
    EXPECT_NEAR(logScale, reference.total().log() - reference.logDenominator(), 1e-12);
    step({"v.flow=0"}, {"v.request=none"});
    EXPECT_THAT(texts(), ElementsAre("v.position=stuck@1"));
    EXPECT_FALSE(tracker_->answer().wentBack);
}

TEST_F(LookBackTest, RanksTheCheaperEarlierFaultAboveACostlyOneThatIsAlwaysPossible)
{
    addSilentValve("v", {"unknown!"});
    model_.fault("v.position=closed", "v.position=unknown", 1.0 / 1024);
    opens("v", 1023.0 / 1024);
    start();
    BruteForceTrajectories reference(BruteForceTrajectories::Which::all, 1);
    for (int i = 0; i < 3; ++i) {
        alsoAdvance(reference, {"v.flow=0"}, {"v.request=none"});
    }
    alsoAdvance(reference, {"v.flow=0"}, {"v.request=open"});
    EXPECT_THAT(texts(),
                ElementsAre("v.position=stuck@1", testing::StartsWith("v.position=unknown@")));
    EXPECT_NEAR(tracker_->answer().probabilities[0], exact(reference, "v.position=stuck"), 1e-12);
    EXPECT_NEAR(tracker_->answer().probabilities[1], exact(reference, "v.position=unknown"), 1e-12);
}

// A lamp flickered: by itself, or because the valve is in a mode in which anything may happen. That this unlikely mode
// goes on to predict everything must not keep the valve's earlier fault from being found.
TEST_F(LookBackTest, IsDoneEvenIfAnUnlikelyHypothesisPredictsTheStep)
{
    addSilentValve("v", {"unknown!"});
    model_.fault("v.position=closed", "v.position=unknown", 1.0 / 1024);
    opens("v", 1023.0 / 1024);
    model_.mode("g.mode", {"ok", "glitch!"});
    model_.condition("g.out", {"0", "1"});
    model_.law("!g.mode=ok | v.position=unknown | g.out=0");
    model_.law("!g.mode=glitch | v.position=unknown | g.out=1");
    model_.fault("g.mode=ok", "g.mode=glitch", 1.0 / 64);
    model_.nominal("g.mode=glitch", "g.mode=ok", 1.0);
    step({"g.out=1"}, {"v.request=none"});
    for (int i = 0; i < 3; ++i) {
        step({"v.flow=0", "g.out=0"}, {"v.request=none"});
    }
    EXPECT_THAT(texts(), ElementsAre("", "v.position=unknown@1"));
    step({"v.flow=0", "g.out=0"}, {"v.request=open"});
    EXPECT_TRUE(tracker_->answer().wentBack);
    EXPECT_EQ(texts().front(), "v.position=stuck@1"); // while the lamp flickered, or later
    EXPECT_GT(tracker_->answer().probabilities.front(), 0.9);
}

TEST_F(LookBackTest, FindsTwoFaultsThatShowOneAfterTheOther)
{
    for (const std::string name : {"a", "b"}) {
        addSilentValve(name);
        opens(name, 1.0);
    }
    const Names closed{"a.flow=0", "b.flow=0"};
    step(closed, {"a.request=none", "b.request=none"});
    step(closed, {"a.request=test", "b.request=none"});
    step(closed, {"a.request=open", "b.request=none"});
    EXPECT_THAT(texts(), ElementsAre("a.position=stuck@1"));
    step(closed, {"a.request=none", "b.request=test"});
    step(closed, {"a.request=none", "b.request=open"});
    // That of b beside that of a, or later; the earlier, the more probable.
    EXPECT_THAT(texts(), ElementsAre("a.position=stuck@1 b.position=stuck@1"));
    EXPECT_EQ(best().faultCount(), 2);
}

class LookBackAtTwo : public LookBackTest {
protected:
    LookBackAtTwo()
    {
        for (const std::string name : {"a", "b"}) {
            addSilentValve(name);
            opens(name, 1.0);
        }
    }
    void isTold(const std::string& a, const std::string& b)
    {
        step({"a.flow=0", "b.flow=0"}, {"a.request=" + a, "b.request=" + b});
    }
};

TEST_F(LookBackAtTwo, FindsTwoFaultsOfOneStepThatShowTogether)
{
    isTold("none", "none");
    isTold("test", "test");
    isTold("open", "open");
    EXPECT_THAT(texts(), ElementsAre("a.position=stuck@1 b.position=stuck@1"));
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
}

TEST_F(LookBackAtTwo, FindsTwoFaultsOfTwoStepsThatShowTogether)
{
    isTold("test", "none");
    isTold("none", "test");
    isTold("open", "open");
    EXPECT_THAT(texts(), ElementsAre("a.position=stuck@2 b.position=stuck@1"));
    EXPECT_EQ(best().faultCount(), 2);
}

TEST_F(LookBackAtTwo, FindsNoMoreFaultsThanAllowed)
{
    settings_.maxFaults = 1;
    isTold("none", "none");
    isTold("test", "test");
    isTold("open", "open");
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
}

TEST_F(LookBackAtTwo, GivesTheTwoTheirProbability)
{
    model_.fault("a.position=closed", "a.position=stuck", 1.0 / 8, "a.request=test");
    isTold("none", "none");
    isTold("test", "test");
    isTold("open", "open");
    // Of a: at the first step, or not then but at the second. Of b: at the first.
    const double a = 1.0 / 64 + 63.0 / 64 * 1.0 / 8;
    const double b = 1.0 / 64;
    double logScale = 0.0;
    for (const monitor::PastStep& past : tracker_->memory().past) {
        logScale += past.logScale;
    }
    EXPECT_NEAR(std::exp(logScale), a * b, 1e-12);
}

// The motor did not stop when it was told to, and the valve cracked as it was opened, which shows later.
TEST_F(LookBackTest, FindsAFaultOfAStepAtWhichSomethingElseDeviated)
{
    model_.mode("m.state", {"on", "off", "jammed!"});
    model_.command("m.go", {"none", "stop"});
    model_.condition("m.turns", {"no", "yes"});
    model_.law("!m.state=on | m.turns=yes");
    model_.law("!m.state=jammed | m.turns=yes");
    model_.law("!m.state=off | m.turns=no");
    model_.nominal("m.state=on", "m.state=off", 0.75, "m.go=stop");
    model_.fault("m.state=on", "m.state=jammed", 1.0 / 256);
    model_.mode("v.state", {"good", "cracked!"});
    model_.command("v.move", {"none", "open"});
    model_.condition("v.leaks", {"no", "yes"});
    model_.law("!v.state=good | v.leaks=no");
    model_.fault("v.state=good", "v.state=cracked", 1.0 / 64, "v.move=open");
    step({"m.turns=yes", "v.leaks=no"}, {"m.go=none", "v.move=none"});
    step({"m.turns=yes", "v.leaks=no"}, {"m.go=stop", "v.move=open"});
    step({"m.turns=yes", "v.leaks=no"}, {"m.go=none", "v.move=none"});
    step({"m.turns=yes", "v.leaks=yes"}, {"m.go=none", "v.move=none"});
    EXPECT_EQ(texts().front(), "m.state=on@2 v.state=cracked@2");
    EXPECT_GT(tracker_->answer().probabilities.front(), 0.9);
}

TEST_F(LookBackTest, FindsAnEarlierFaultBesideAPresentOne)
{
    addSilentValve("v");
    opens("v", 1.0);
    model_.condition("in.v", {"0", "1"});
    model_.follower("f", "in.v");
    step({"v.flow=0", "in.v=1", "f.out=1"}, {"v.request=none"});
    step({"v.flow=0", "in.v=1", "f.out=0"}, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre("f.mode=broken@2 v.position=stuck@1"));
    settings_.maxFaults = 1;
    tracker_.reset();
    step({"v.flow=0", "in.v=1", "f.out=1"}, {"v.request=none"});
    step({"v.flow=0", "in.v=1", "f.out=0"}, {"v.request=open"});
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
}

// A stuck gauge is followed, and shows. A pump may have cracked before, too, but nothing calls for that.
TEST_F(LookBackTest, LeavesOutWhatNothingCallsFor)
{
    model_.mode("g.state", {"good", "stuck!"});
    model_.condition("g.shown", {"0", "1"});
    model_.fault("g.state=good", "g.state=stuck", 1.0 / 8);
    model_.mode("p.state", {"on", "cracked!"});
    model_.condition("p.out", {"0", "1"});
    model_.fault("p.state=on", "p.state=cracked", 1.0 / 64);
    model_.law("!p.state=on | p.out=1");
    model_.law("!g.state=good | !p.out=1 | g.shown=1");
    model_.law("!g.state=good | !p.out=0 | g.shown=0");
    step({});
    step({});
    step({"g.shown=0", "p.out=1"});
    EXPECT_TRUE(tracker_->answer().wentBack);
    EXPECT_THAT(texts(), Each(StartsWith("g.state=stuck")));
    EXPECT_THAT(texts(), Each(Not(HasSubstr("p.state"))));
}

TEST_F(LookBackTest, FindsALostCommandThatShowsLater)
{
    addSilentValve("v");
    opens("v", 1.0);
    step({"v.flow=0"}, {"v.request=test"});
    step({}, {"v.request=open"}, {{"v.request=open", "v.request=none", 1.0 / 32}});
    EXPECT_THAT(texts(), ElementsAre(""));
    step({}, {"v.request=test"});
    step({"v.flow=0"}, {"v.request=test"});
    // Where it did not arrive the valve may get stuck as well: two things that no reading calls for.
    EXPECT_THAT(texts(), ElementsAre("v.position=closed@2"));
    EXPECT_EQ(best().faultCount(), 1);
    EXPECT_TRUE(tracker_->answer().wentBack);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::faulty);
}

TEST_F(LookBackTest, GoesBackNoFurtherThanToldTo)
{
    addSilentValve("v");
    opens("v", 1.0);
    for (const std::size_t lookBack : {std::size_t{0}, std::size_t{2}, std::size_t{3}}) {
        settings_.lookBack = lookBack;
        tracker_.reset();
        step({"v.flow=0"}, {"v.request=none"});
        step({"v.flow=0"}, {"v.request=test"});
        step({"v.flow=0"}, {"v.request=test"});
        EXPECT_LE(tracker_->memory().past.size(), lookBack);
        step({"v.flow=0"}, {"v.request=open"});
        EXPECT_EQ(tracker_->answer().status,
                  lookBack < 3 ? TrackStatus::inconsistent : TrackStatus::faulty);
        EXPECT_EQ(tracker_->answer().wentBack, lookBack > 0);
    }
}

TEST_F(LookBackTest, DoesNotTakeUpWhatAReadingRulesOut)
{
    addSilentValve("v");
    model_.condition("v.lamp", {"off", "on"});
    model_.law("!v.position=stuck | v.lamp=on");
    model_.law("v.position=stuck | v.lamp=off");
    opens("v", 1.0);
    step({"v.lamp=off"}, {"v.request=none"});
    step({}, {"v.request=none"});
    step({"v.flow=0"}, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre("v.position=stuck@2"));
}

// The supply failed just before the valve was told to open. That the valve is in an unknown mode explains it too, so only
// what the contradiction rests on is gone back to: the guard of the valve's transition, and what that rests on.
TEST_F(LookBackTest, FindsWhatAGuardRestedOnAtThePreviousStep)
{
    model_.mode("s.mode", {"ok", "broken!"});
    model_.condition("s.power", {"0", "1"});
    model_.law("!s.mode=ok | s.power=1");
    model_.law("!s.mode=broken | s.power=0");
    addSilentValve("v", {"unknown!"});
    model_.fault("v.position=closed", "v.position=unknown", 1.0 / 1024);
    opens("v", 1023.0 / 1024, "s.power=1");
    model_.fault("s.mode=ok", "s.mode=broken", 1.0 / 64, "v.request=test");
    step({}, {"v.request=test"});
    step({"v.flow=0"}, {"v.request=open"});
    const std::string both = "s.mode=broken@1 v.position=closed@2";
    EXPECT_THAT(texts(), testing::Contains(both));
    EXPECT_EQ(texts().front(), both);
}

void expectSameHypothesis(const monitor::Hypothesis& a, const monitor::Hypothesis& b)
{
    EXPECT_EQ(a.modes, b.modes);
    EXPECT_EQ(a.logWeight, b.logWeight);
    EXPECT_EQ(a.logStep, b.logStep);
    EXPECT_EQ(a.faultCount(), b.faultCount());
    EXPECT_EQ(a.lost, b.lost);
    EXPECT_EQ(a.unexplained, b.unexplained);
    EXPECT_EQ(a.since.size(), b.since.size());
    for (const auto& [variable, since] : a.since) {
        const auto other = b.since.find(variable);
        ASSERT_NE(other, b.since.end());
        EXPECT_EQ(since.value, other->second.value);
        EXPECT_EQ(since.step, other->second.step);
        EXPECT_EQ(since.t, other->second.t);
    }
}

void expectSameAnswer(const TrackAnswer& a, const TrackAnswer& b)
{
    EXPECT_EQ(a.step, b.step);
    EXPECT_EQ(a.t, b.t);
    EXPECT_EQ(a.status, b.status);
    EXPECT_EQ(a.complete, b.complete);
    EXPECT_EQ(a.limit, b.limit);
    EXPECT_EQ(a.probabilities, b.probabilities);
    EXPECT_EQ(a.dropped, b.dropped);
    EXPECT_EQ(a.wentBack, b.wentBack);
    EXPECT_EQ(a.work.records, b.work.records);
    ASSERT_EQ(a.hypotheses.size(), b.hypotheses.size());
    for (std::size_t i = 0; i < a.hypotheses.size(); ++i) {
        expectSameHypothesis(*a.hypotheses[i], *b.hypotheses[i]);
    }
}

TEST_F(LookBackTest, GoesOnFromAMemoryAsIfNothingHadHappened)
{
    int wentBack = 0;
    for (std::uint64_t seed = 0; seed < fewerUnderSanitizers(60U) && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        ActivePlant active(randomModel(random, PlantKind::mixed));
        RandomTrack track(random, {.deviating = 15, .observed = 30, .noise = 3, .lossy = 30});
        Tracker first(active.engine, *active.plant, {});
        std::unique_ptr<Tracker> second;
        for (std::size_t number = 1; number <= 10; ++number) {
            if (number % 4 == 0) {
                second = std::make_unique<Tracker>(active.engine, *active.plant,
                                                   monitor::TrackSettings{});
                second->restore(first.memory());
            }
            const monitor::TrackInput input = trackInput(active, track.next(), number);
            first.advance(input);
            if (second) {
                expectSameAnswer(first.answer(), second->advance(input));
            }
            wentBack += first.answer().wentBack ? 1 : 0;
        }
    }
    EXPECT_GT(wentBack, fewerUnderSanitizers(20));
}

} // namespace
