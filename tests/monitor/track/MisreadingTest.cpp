// Readings that may be wrong.
#include "tests/monitor/track/TrackFixture.h"

#include "tests/reference/Fraction.h"

#include <algorithm>
#include <cmath>

namespace {

using monitor::TrackStatus;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class MisreadingTest : public TrackFixture {
protected:
    // A step whose readings may be wrong, each with this probability; so many of the first ones are held. What is not commanded gets no
    // command.
    void read(const Names& observations, double probability, std::size_t held = 0,
              const Names& given = {})
    {
        start();
        Names commands = given;
        for (const auto& variable : active_->plant->variables()) {
            const std::string none = active_->plant->atom(variable.values.front())->id;
            const std::string name = none.substr(0, none.find('='));
            if (variable.isCommand && std::none_of(given.begin(), given.end(), [&](const auto& one) {
                    return one.starts_with(name);
                })) {
                commands.push_back(none);
            }
        }
        monitor::TrackInput made = makeInput(++number_, observations, commands);
        for (std::size_t i = 0; i < observations.size(); ++i) {
            const plant::AtomIndex value = active_->index(observations[i]);
            const auto& variable = active_->plant->variable(active_->plant->variableOf(value));
            if (i < held) {
                made.held.push_back(value);
            } else {
                made.lossy.push_back({value, monitor::Loss::nothing, probability,
                                      1.0 / static_cast<double>(variable.values.size())});
            }
        }
        std::sort(made.held.begin(), made.held.end());
        tracker_->advance(made);
    }
};

TEST_F(MisreadingTest, IsNotSeenWhereTheReadingIsExpected)
{
    addValve("v", 1.0);
    read({"v.flow=0"}, 1.0 / 64);
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_NEAR(std::exp(best().logStep), 63.0 / 64 * 63 / 64, 1e-12);
}

// A flow through a closed valve, which has no other reason: any of the two values is read then.
TEST_F(MisreadingTest, ExplainsAReadingThatNothingElseExplains)
{
    addValve("v", 1.0);
    read({"v.flow=1"}, 1.0 / 8);
    EXPECT_THAT(texts(), ElementsAre("!v.flow=1"));
    EXPECT_NEAR(std::exp(best().logStep), 1.0 / 16 * 63 / 64, 1e-12);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::nominal);
}

TEST_F(MisreadingTest, IsHeldAgainstAFaultByTheirProbabilities)
{
    addValve("v", 63.0 / 64);
    read({"v.flow=0"}, 1.0 / 8, 0, {"v.request=open"});
    EXPECT_THAT(texts(), ElementsAre("!v.flow=0", "v.position=stuck@1"));
    const Fraction wrong = Fraction(1, 16) * Fraction(63, 64);
    const Fraction stuck = Fraction(7, 8) * Fraction(1, 64);
    EXPECT_NEAR(probability("!v.flow=0"), (wrong / (wrong + stuck)).value(), 1e-12);
}

TEST_F(MisreadingTest, IsNoFaultAndNeedsNoRoomForOne)
{
    addValve("v", 1.0);
    settings_.maxFaults = 0;
    read({"v.flow=1"}, 1.0 / 8);
    EXPECT_THAT(texts(), ElementsAre("!v.flow=1"));
    EXPECT_EQ(best().faultCount(), 0);
    EXPECT_FALSE(best().isFaulty());
}

TEST_F(MisreadingTest, IsForgottenAtTheNextStep)
{
    addValve("v", 1.0);
    read({"v.flow=1"}, 1.0 / 64);
    read({"v.flow=0"}, 1.0 / 64);
    EXPECT_THAT(texts(), ElementsAre(""));
    EXPECT_THAT(best().lost, IsEmpty());
}

TEST_F(MisreadingTest, CostsNothingMoreWhereTheWrongReadingIsHeld)
{
    addValve("v", 1.0);
    read({"v.flow=1"}, 1.0 / 8);
    read({"v.flow=1"}, 1.0 / 8, 1);
    EXPECT_THAT(texts(), ElementsAre("!v.flow=1"));
    EXPECT_NEAR(std::exp(best().logStep), 63.0 / 64, 1e-12);
    read({"v.flow=1"}, 1.0 / 8);
    EXPECT_NEAR(std::exp(best().logStep), 1.0 / 16 * 63 / 64, 1e-12);
}

TEST_F(MisreadingTest, IsNotTriedOfAReadingThatIsHeldAndWasRight)
{
    addValve("v", 63.0 / 64);
    read({"v.flow=0"}, 1.0 / 64);
    read({"v.flow=0"}, 1.0 / 64, 1, {"v.request=open"});
    EXPECT_THAT(texts(), Each(StartsWith("v.position=stuck@")));
}

TEST_F(MisreadingTest, HappensTwiceAtAStepAtMost)
{
    for (const char* name : {"a", "b", "c"}) {
        addValve(name, 1.0);
    }
    read({"a.flow=1", "b.flow=1", "c.flow=0"}, 1.0 / 8);
    EXPECT_THAT(texts(), ElementsAre("!a.flow=1 !b.flow=1"));
    EXPECT_TRUE(tracker_->answer().complete);
    read({"a.flow=1", "b.flow=1", "c.flow=1"}, 1.0 / 8);
    EXPECT_EQ(tracker_->answer().status, TrackStatus::inconsistent);
    EXPECT_FALSE(tracker_->answer().complete);
}

// The pump starts where a level was read, and shows it at the next step only.
TEST_F(MisreadingTest, IsFoundByGoingBackToTheStepOfTheReading)
{
    model_.mode("p.mode", {"off", "on"});
    model_.condition("p.level", {"low", "middle", "high"});
    model_.condition("p.current", {"no", "yes"});
    model_.law("!p.mode=off | p.current=no");
    model_.law("!p.mode=on | p.current=yes");
    model_.nominal("p.mode=off", "p.mode=on", 1.0, "p.level=high");
    read({"p.level=low", "p.current=no"}, 1.0 / 64);
    read({"p.level=high", "p.current=no"}, 1.0 / 64);
    EXPECT_THAT(texts(), ElementsAre(""));
    read({"p.level=low", "p.current=no"}, 1.0 / 64);
    EXPECT_THAT(texts(), UnorderedElementsAre("", "!p.current=no"));
    read({"p.level=low", "p.current=no"}, 1.0 / 64);
    EXPECT_EQ(texts().front(), "");
    EXPECT_THAT(active_->ids(best().modes.toVector()), ElementsAre("p.mode=off"));
}

// A reading of another plant, so to speak, is not tried.
TEST_F(MisreadingTest, IsTriedWhereLawsConnectItWithTheContradiction)
{
    for (int i = 0; i < 100; ++i) {
        addValve("v" + std::to_string(i), 1.0);
    }
    Names readings{"v0.flow=1"};
    for (int i = 1; i < 100; ++i) {
        readings.push_back("v" + std::to_string(i) + ".flow=0");
    }
    read(readings, 1.0 / 1024);
    EXPECT_THAT(texts(), ElementsAre("!v0.flow=1"));
    EXPECT_LE(tracker_->answer().work.records, 10U);
}

// That `x=1` cannot be shows only when values of y and z are tried; that there is no flow through a closed valve shows at once.
TEST_F(MisreadingTest, IsFoundBesideAnotherOneThatShowsInAnotherWay)
{
    addValve("v", 1.0);
    model_.mode("m.mode", {"on"});
    for (const char* name : {"m.x", "m.y", "m.z"}) {
        model_.condition(name, {"0", "1"});
    }
    for (const char* rest : {"m.y=0 | m.z=0", "m.y=0 | m.z=1", "m.y=1 | m.z=0", "m.y=1 | m.z=1"}) {
        model_.law(std::string("!m.mode=on | m.x=0 | ") + rest);
    }
    read({"v.flow=1", "m.x=1"}, 1.0 / 8);
    EXPECT_THAT(texts(), ElementsAre("!m.x=1 !v.flow=1"));
}

} // namespace
