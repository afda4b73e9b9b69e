#include "tests/monitor/step/StepFixture.h"

#include <cmath>

namespace {

using monitor::StepAnswer;
using monitor::StepStatus;
using Sets = std::set<Names>;

class StepTest : public StepFixture {};

TEST_F(StepTest, WithNothingObservedIsNominal)
{
    makeRow(2);
    const StepAnswer answer = solve({});
    EXPECT_EQ(answer.status, StepStatus::nominal);
    EXPECT_EQ(modes(answer), (Sets{{}}));
    EXPECT_TRUE(answer.complete);
    EXPECT_NEAR(std::exp(answer.candidates.front().logProbability),
                (Fraction(63, 64) * Fraction(63, 64)).value(), 1e-12);
}

TEST_F(StepTest, WithOnlyAdoptedObservationsIsNominal)
{
    makeRow(2);
    const StepAnswer answer = solve({"in.v=1"});
    EXPECT_EQ(answer.status, StepStatus::nominal);
    EXPECT_TRUE(answer.complete);
    EXPECT_EQ(answer.candidates.front().probability, 1.0);
}

TEST_F(StepTest, NamesTheFaultThatExplainsAReading)
{
    makeRow(1);
    const StepAnswer answer = solve({"in.v=1", "f0.out=0"});
    EXPECT_EQ(answer.status, StepStatus::faulty);
    EXPECT_EQ(modes(answer), (Sets{{"f0.mode=broken"}}));
    EXPECT_EQ(active_->ids(answer.discrepancies), (Names{"f0.out=0"}));
    EXPECT_EQ(answer.candidates.front().faults, 1);
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, IsAmbiguousWhereNoExplanationHasHalfOfTheProbability)
{
    makeRow(3);
    const StepAnswer answer = solve({"in.v=1", "f2.out=0"});
    EXPECT_EQ(answer.status, StepStatus::ambiguous);
    EXPECT_EQ(modes(answer), (Sets{{"f0.mode=broken"}, {"f1.mode=broken"}, {"f2.mode=broken"}}));
    for (const monitor::Candidate& candidate : answer.candidates) {
        EXPECT_NEAR(candidate.probability, Fraction(1, 3).value(), 1e-12);
    }
}

TEST_F(StepTest, IsAmbiguousWhereALimitCutsItBeforeAnythingIsFound)
{
    makeRow(3);
    settings_.limits.maxRecords = 1;
    const StepAnswer answer = solve({"in.v=1", "f2.out=0"});
    EXPECT_TRUE(answer.candidates.empty());
    EXPECT_EQ(answer.limit, SearchLimit::records);
    EXPECT_EQ(answer.status, StepStatus::ambiguous);
    EXPECT_FALSE(answer.complete);
}

TEST_F(StepTest, IsInconsistentWhereTooManyFaultsWouldBeNeeded)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    const StepAnswer one = solve({"in.v=1", "a.out=0", "b.out=0"});
    EXPECT_EQ(one.status, StepStatus::inconsistent);
    EXPECT_TRUE(one.complete);
    EXPECT_TRUE(one.candidates.empty());
    settings_.maxFaults = 2;
    EXPECT_EQ(modes(solve({"in.v=1", "a.out=0", "b.out=0"})),
              (Sets{{"a.mode=broken", "b.mode=broken"}}));
}

TEST_F(StepTest, WithoutFaultsAllowedExplainsALostCommand)
{
    model_.mode("p.mode", {"off", "on"});
    model_.command("p.request", {"none", "start"});
    model_.condition("p.flow", {"0", "1"});
    model_.law("!p.mode=off | p.flow=0");
    model_.law("!p.mode=on | p.flow=1");
    model_.nominal("p.mode=off", "p.mode=on", 0.75, "p.request=start");
    settings_.maxFaults = 0;
    const StepAnswer works = solve({"p.flow=1"}, {"p.request=start"});
    EXPECT_EQ(works.status, StepStatus::nominal);
    EXPECT_NEAR(std::exp(works.candidates.front().logProbability), 0.75, 1e-12);
    const StepAnswer lost = solve({"p.flow=0"}, {"p.request=start"});
    EXPECT_EQ(modes(lost), (Sets{{"p.mode=off"}}));
    EXPECT_EQ(lost.candidates.front().faults, 0);
    EXPECT_NEAR(std::exp(lost.candidates.front().logProbability), 0.25, 1e-12);
}

TEST_F(StepTest, CountsAnObservedFaultAmongTheFaults)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    const Names observations{"in.v=1", "a.mode=broken", "b.out=0"};
    EXPECT_TRUE(solve(observations).candidates.empty());
    settings_.maxFaults = 2;
    const StepAnswer answer = solve(observations);
    EXPECT_EQ(modes(answer), (Sets{{"a.mode=broken", "b.mode=broken"}}));
    EXPECT_EQ(answer.candidates.front().faults, 2);
    settings_.maxFaults = 0;
    const StepAnswer none = solve({"in.v=1", "a.mode=broken"});
    EXPECT_TRUE(none.candidates.empty());
    EXPECT_TRUE(none.complete);
}

TEST_F(StepTest, TakesAnObservedModeAsItIs)
{
    makeRow(2);
    const StepAnswer answer = solve({"f0.mode=ok", "in.v=1", "f1.out=0"});
    EXPECT_EQ(modes(answer), (Sets{{"f1.mode=broken"}}));
}

TEST_F(StepTest, DoesNotCountAFaultThatPersistsOrIsRepaired)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    model_.nominal("a.mode=broken", "a.mode=ok", 0.5);
    before_ = {"a.mode=broken"};
    // The repair is lost, and b breaks: one fault.
    const StepAnswer lost = solve({"in.v=1", "a.out=0", "b.out=0"});
    EXPECT_EQ(modes(lost), (Sets{{"a.mode=broken", "b.mode=broken"}}));
    EXPECT_EQ(lost.candidates.front().faults, 1);
    EXPECT_TRUE(lost.complete);
}

TEST_F(StepTest, ExplainsAFaultBesideARepairThatWasNotPredicted)
{
    model_.condition("in.v", {"0", "1"});
    model_.follower("a", "in.v");
    model_.follower("b", "in.v");
    // It happens by itself sometimes, and is not what is predicted.
    model_.fault("a.mode=broken", "a.mode=ok", 0.25);
    before_ = {"a.mode=broken"};
    const StepAnswer answer = solve({"in.v=1", "a.out=1", "b.out=0"});
    EXPECT_EQ(modes(answer), (Sets{{"a.mode=ok", "b.mode=broken"}}));
    EXPECT_EQ(answer.candidates.front().faults, 1);
}

TEST_F(StepTest, WithAnObservedCommandThatWasNotGivenHasNoExplanation)
{
    makeRow(1);
    model_.command("f0.request", {"none", "go"});
    const StepAnswer answer = solve({"f0.request=go", "in.v=1"}, {"f0.request=none"});
    EXPECT_EQ(answer.status, StepStatus::inconsistent);
    EXPECT_TRUE(answer.complete);
    EXPECT_EQ(solve({"f0.request=go", "in.v=1"}, {"f0.request=go"}).status, StepStatus::nominal);
    EXPECT_EQ(solve({"f0.request=go", "in.v=1"}).status, StepStatus::nominal);
}

TEST_F(StepTest, WithABlockedCommandObservedIsStillExplained)
{
    makeRow(1);
    auto* request = static_cast<CommandVar*>(model_.command("k.request", {"none", "go"}));
    request->commandBlocked = true;
    model_.mode("k.mode", {"ok", "loose!"});
    model_.law("!k.mode=ok | k.request=none");
    model_.fault("k.mode=ok", "k.mode=loose", 0.125);
    const StepAnswer answer = solve({"k.request=go", "in.v=1", "f0.out=1"});
    EXPECT_EQ(modes(answer), (Sets{{"k.mode=loose"}}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, FindsExplanationsThroughACommandThatFollowsFromAMode)
{
    // Nothing was commanded: when k is stuck it asks for "go" by itself, and the flow follows the request.
    model_.mode("k.mode", {"ok", "stuck!"});
    model_.command("k.request", {"none", "go"});
    model_.condition("k.flow", {"0", "1"});
    model_.law("!k.mode=ok | k.request=none");
    model_.law("!k.mode=stuck | k.request=go");
    model_.law("!k.request=none | k.flow=0");
    model_.law("!k.request=go | k.flow=1");
    model_.fault("k.mode=ok", "k.mode=stuck", 0.125);
    const StepAnswer answer = solve({"k.flow=1"});
    EXPECT_EQ(modes(answer), (Sets{{"k.mode=stuck"}}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, UnderContradictoryLawsHasNoExplanation)
{
    makeRow(1);
    model_.condition("x.v", {"0", "1"});
    model_.law("x.v=0");
    model_.law("x.v=1");
    const StepAnswer answer = solve({"in.v=1"});
    EXPECT_EQ(answer.status, StepStatus::inconsistent);
    EXPECT_TRUE(answer.candidates.empty());
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, UnderLawsWhoseContradictionPropagationDoesNotSeeHasNoExplanation)
{
    model_.condition("x.v", {"0", "1"});
    model_.condition("x.w", {"0", "1"});
    for (const std::string v : {"0", "1"}) {
        for (const std::string w : {"0", "1"}) {
            model_.law("x.v=" + v + " | x.w=" + w);
        }
    }
    const StepAnswer answer = solve({});
    EXPECT_TRUE(answer.candidates.empty());
    EXPECT_TRUE(answer.complete);
    EXPECT_EQ(answer.limit, SearchLimit::none);
}

TEST_F(StepTest, WithAReadingThatTheLawsRuleOutHasNoExplanation)
{
    makeRow(1);
    model_.condition("x.v", {"0", "1", "2"});
    model_.law("!x.v=2");
    const StepAnswer answer = solve({"x.v=2", "in.v=1"});
    EXPECT_EQ(answer.status, StepStatus::inconsistent);
    EXPECT_EQ(active_->ids(answer.discrepancies), (Names{"x.v=2"}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, WithAReadingThatTheLawsOfAModeRuleOutBlamesTheMode)
{
    model_.mode("m.mode", {"ok", "broken!"});
    model_.condition("m.x", {"0", "1"});
    model_.condition("m.y", {"0", "1"});
    model_.law("!m.mode=ok | !m.x=1 | m.y=0");
    model_.law("!m.mode=ok | !m.x=1 | m.y=1");
    model_.fault("m.mode=ok", "m.mode=broken", 0.125);
    const StepAnswer answer = solve({"m.x=1"});
    EXPECT_EQ(modes(answer), (Sets{{"m.mode=broken"}}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, WhereModesContradictTheLawsOneOfThemIsAtFault)
{
    makeRow(2);
    model_.law("!f0.mode=ok | !f1.mode=ok");
    const StepAnswer answer = solve({"in.v=1"});
    EXPECT_EQ(modes(answer), (Sets{{"f0.mode=broken"}, {"f1.mode=broken"}}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, AnInputThatAFaultContradictsDoesNotHideASecondFault)
{
    // Broken, a pulls its input down; the input was read as 1 all the same, for b keeps it up when broken.
    model_.condition("in.v", {"0", "1"});
    model_.mode("a.mode", {"ok", "broken!"});
    model_.condition("a.out", {"0", "1"});
    model_.mode("b.mode", {"ok", "broken!"});
    model_.law("!a.mode=ok | a.out=1");
    model_.law("!a.mode=broken | !b.mode=ok | in.v=0");
    model_.fault("a.mode=ok", "a.mode=broken", 0.125);
    model_.fault("b.mode=ok", "b.mode=broken", 0.125);
    settings_.maxFaults = 2;
    for (const std::uint64_t threshold : {0, 1, 5000}) {
        recordsBeforeSplit_ = threshold;
        const StepAnswer answer = solve({"in.v=1", "a.out=0"});
        EXPECT_EQ(modes(answer), (Sets{{"a.mode=broken", "b.mode=broken"}}));
        EXPECT_TRUE(answer.complete);
    }
}

TEST_F(StepTest, AReadingThatASecondFaultMakesPossibleIsNotSetAside)
{
    // c unknown leaves c.out open, which the law still ties to a; only with b unknown too can it be 1.
    model_.mode("c.mode", {"ok", "unknown!"});
    model_.condition("c.out", {"0", "1", "2"});
    model_.mode("b.mode", {"ok", "unknown!"});
    model_.law("!c.mode=ok | c.out=0");
    model_.law("!b.mode=ok | !c.out=1");
    model_.fault("c.mode=ok", "c.mode=unknown", 0.125);
    model_.fault("b.mode=ok", "b.mode=unknown", 0.125);
    settings_.maxFaults = 2;
    for (const std::uint64_t threshold : {0, 1, 5000}) {
        recordsBeforeSplit_ = threshold;
        const StepAnswer answer = solve({"c.out=1"});
        EXPECT_EQ(modes(answer), (Sets{{"b.mode=unknown", "c.mode=unknown"}}));
    }
}

TEST_F(StepTest, DoesNotFollowTheEnginesPrimeImplicates)
{
    makeRow(2);
    active_ = model_.activate();
    active_->engine.piTable = DataManager::newPiTable();
    const StepAnswer answer = solve({"in.v=1", "f1.out=0"});
    EXPECT_EQ(modes(answer), (Sets{{"f0.mode=broken"}, {"f1.mode=broken"}}));
    EXPECT_TRUE(answer.complete);
}

TEST_F(StepTest, LeavesTheRegistryAsItWas)
{
    makeRow(3);
    active_ = model_.activate();
    DataManager::searchLimits.maxRecords = 77;
    settings_.limits.maxRecords = 5;
    solve({"in.v=1", "f2.out=0"});
    EXPECT_EQ(DataManager::searchLimits.maxRecords, 77u);
    EXPECT_TRUE(DataManager::itmsBmkEntries.empty());
}

TEST_F(StepTest, GivesTheSameAnswerAgain)
{
    makeRow(4);
    const StepAnswer first = solve({"in.v=1", "f3.out=0"});
    const StepAnswer second = solve({"in.v=1", "f3.out=0"});
    ASSERT_EQ(first.candidates.size(), second.candidates.size());
    for (std::size_t i = 0; i < first.candidates.size(); ++i) {
        EXPECT_EQ(first.candidates[i].modes, second.candidates[i].modes);
        EXPECT_EQ(first.candidates[i].probability, second.candidates[i].probability);
    }
}

TEST_F(StepTest, InitialLabelsAreTheInitialValues)
{
    model_.mode("m.mode", {"ok", "broken!"});
    StateVar* level = model_.condition("m.level", {"0", "1"});
    level->initial = (*level->atomLinks)[1];
    model_.condition("m.open", {"0", "1"});
    active_ = model_.activate();
    const monitor::Prediction labels = monitor::initialLabels(*active_->plant);
    EXPECT_TRUE(labels.isTrue(active_->index("m.mode=ok")));
    EXPECT_TRUE(labels.isTrue(active_->index("m.level=1")));
    EXPECT_FALSE(labels.isKnown(active_->index("m.open=0")));
}

TEST_F(StepTest, StatusesAndLimitsHaveNames)
{
    EXPECT_STREQ(name(StepStatus::nominal), "nominal");
    EXPECT_STREQ(name(StepStatus::faulty), "faulty");
    EXPECT_STREQ(name(StepStatus::ambiguous), "ambiguous");
    EXPECT_STREQ(name(StepStatus::inconsistent), "inconsistent");
    EXPECT_STREQ(monitor::name(SearchLimit::none), "");
    EXPECT_STREQ(monitor::name(SearchLimit::records), "records");
    EXPECT_STREQ(monitor::name(SearchLimit::candidates), "candidates");
    EXPECT_STREQ(monitor::name(SearchLimit::seconds), "seconds");
    EXPECT_STREQ(monitor::name(SearchLimit::stopped), "interrupted");
}

} // namespace
