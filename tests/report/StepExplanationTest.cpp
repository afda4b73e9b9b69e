#include "report/StepExplanation.h"

#include "tests/report/FollowedPlant.h"

#include <gmock/gmock.h>

namespace {

using report::AppliedLaw;
using report::CandidateReasons;
using report::ExplainedConflict;
using report::StepExplanation;
using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;
using Numbers = std::vector<std::size_t>;

const Names openA{"valveA.request=open"};
const Names noFlow{"valveA.inflow=positive", "valveB.outflow=zero"};

/// The candidate in which exactly these variables deviate.
const CandidateReasons* candidate(const StepExplanation& explanation, const Names& values)
{
    for (const CandidateReasons& one : explanation.candidates) {
        Names own;
        for (const report::DeviatingMode& mode : one.explanation.modes) {
            own.push_back(mode.variable + "=" + mode.value);
        }
        if (own == values) return &one;
    }
    return nullptr;
}

Numbers resolvedBy(const CandidateReasons& reasons, std::size_t mode)
{
    Numbers numbers;
    for (const report::Resolution& one : reasons.ofModes.at(mode)) {
        numbers.push_back(one.conflict);
    }
    return numbers;
}

TEST(StepExplanation, OfAStepAsExpectedHasNoConflict)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, {"valveA.inflow=positive", "valveB.outflow=positive"});
    const StepExplanation explanation = plant.explain();
    EXPECT_THAT(explanation.conflicts, IsEmpty());
    ASSERT_EQ(explanation.candidates.size(), 1U);
    EXPECT_THAT(explanation.candidates.front().ofModes, IsEmpty());
}

TEST(StepExplanation, TellsForEachCandidateWhichConflictItResolves)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, noFlow);
    const StepExplanation explanation = plant.explain();
    ASSERT_EQ(explanation.conflicts.size(), 1U);
    ASSERT_EQ(explanation.candidates.size(), 3U);
    for (const CandidateReasons& one : explanation.candidates) {
        ASSERT_EQ(one.ofModes.size(), 1U);
        ASSERT_EQ(one.ofModes.front().size(), 1U);
        EXPECT_EQ(one.ofModes.front().front().conflict, 1U);
        EXPECT_EQ(one.ofModes.front().front().instead, "open");
        EXPECT_THAT(one.avoided, IsEmpty());
        EXPECT_EQ(one.over, 0);
    }
}

TEST(StepExplanation, NamesEverythingThatAConflictRestsOn)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, noFlow);
    const StepExplanation explanation = plant.explain();
    const ExplainedConflict& conflict = explanation.conflicts.at(0);
    EXPECT_EQ(conflict.number, 1U);
    EXPECT_EQ(conflict.step, 1U);
    EXPECT_EQ(conflict.rank, 1U);
    EXPECT_THAT(conflict.believed, IsEmpty());
    ASSERT_TRUE(conflict.observed);
    EXPECT_EQ(conflict.observed->variable, "valveB.outflow");
    EXPECT_EQ(conflict.observed->value, "zero");
    EXPECT_EQ(conflict.observed->channel, "FT-2");
    EXPECT_EQ(conflict.expected, "positive");
    ASSERT_EQ(conflict.modes.size(), 2U);
    EXPECT_EQ(conflict.modes[0].variable, "valveA.position");
    EXPECT_EQ(conflict.modes[0].before, "closed");
    EXPECT_THAT(conflict.modes[0].commands, ElementsAre("valveA.request=open"));
    EXPECT_EQ(conflict.modes[1].before, "open");
    EXPECT_THAT(conflict.modes[1].commands, IsEmpty());
    ASSERT_EQ(conflict.readings.size(), 1U);
    EXPECT_EQ(conflict.readings[0].channel, "FT-1");
    EXPECT_EQ(conflict.check, monitor::ConflictCheck::confirmed);
    EXPECT_EQ(conflict.everyValueCounts, true);
}

TEST(StepExplanation, GivesEachLawWithItsPlaceItsTextAndWhatFollowed)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, noFlow);
    const StepExplanation explanation = plant.explain();
    const std::vector<AppliedLaw>& laws = explanation.conflicts.at(0).laws;
    ASSERT_EQ(laws.size(), 3U);
    Names places;
    Names given;
    for (const AppliedLaw& law : laws) {
        places.push_back(law.file + ":" + std::to_string(law.line) + ":" +
                         std::to_string(law.column));
        given.push_back(law.variable + (law.excluded ? "!=" : "=") + law.value);
    }
    EXPECT_THAT(places, ElementsAre("plant.itms:10:5", "plant.itms:20:5", "plant.itms:10:5"));
    EXPECT_THAT(given, ElementsAre("valveA.outflow=positive", "valveB.inflow=positive",
                                   "valveB.outflow=positive"));
    EXPECT_EQ(laws[0].text, "law position = open -> outflow = inflow");
    EXPECT_EQ(laws[1].text, "law valveA.outflow = valveB.inflow");
    EXPECT_THAT(laws[1].clause, testing::HasSubstr(" | "));
}

TEST(StepExplanation, SaysWhichConflictsACandidateDoesNotComeTo)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, noFlow);
    plant.step({}, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    const StepExplanation explanation = plant.explain();
    ASSERT_EQ(explanation.conflicts.size(), 2U);
    EXPECT_EQ(explanation.conflicts[1].believed.size(), 1U);
    EXPECT_EQ(explanation.conflicts[1].modes.at(0).since, 1U);
    const CandidateReasons* stuck = candidate(explanation, {"valveB.position=stuckClosed"});
    ASSERT_TRUE(stuck);
    EXPECT_EQ(resolvedBy(*stuck, 0), Numbers{1});
    ASSERT_EQ(stuck->avoided.size(), 1U);
    EXPECT_EQ(stuck->avoided[0].conflict, 2U);
    EXPECT_EQ(stuck->avoided[0].variable, "valveA.position");
}

TEST(StepExplanation, SaysWhichConflictStaysWhereAnObservationIsNotExplained)
{
    FollowedPlant plant(twoValves, {.maxFaults = 0});
    plant.step(openA, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    const StepExplanation explanation = plant.explain();
    EXPECT_EQ(explanation.report.status, monitor::TrackStatus::inconsistent);
    ASSERT_EQ(explanation.candidates.size(), 1U);
    EXPECT_THAT(explanation.candidates[0].explanation.unexplained,
                ElementsAre("valveB.outflow=zero"));
    EXPECT_THAT(explanation.candidates[0].ofUnexplained, ElementsAre(Numbers{1}));
}

TEST(StepExplanation, LeavesOutEarlyStepsAndSaysSo)
{
    FollowedPlant plant(twoValves, {}, 1);
    plant.step(openA, noFlow);
    plant.step({}, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    const StepExplanation explanation = plant.explain();
    EXPECT_EQ(explanation.stepsLeftOut, 1U);
    ASSERT_EQ(explanation.conflicts.size(), 1U);
    EXPECT_EQ(explanation.conflicts[0].step, 2U);
    const CandidateReasons* stuck = candidate(explanation, {"valveB.position=stuckClosed"});
    ASSERT_TRUE(stuck);
    EXPECT_THAT(stuck->ofModes.at(0), IsEmpty());
}

const char* const lossyValve = R"(component Valve {
    command request: none, open lost 0.1
    cond    outflow: zero, positive
    mode    position { closed initial open stuck fault }
    law position = open -> outflow = positive
    law position != open -> outflow = zero
    nominal closed -> open when request = open : 0.999
    fault   closed -> stuck : 0.0005
    idle    any
}
system Station { valve: Valve }
)";

TEST(StepExplanation, TellsWhatALostCommandResolves)
{
    FollowedPlant plant(lossyValve);
    plant.step({"valve.request=open"}, {"valve.outflow=zero"});
    const StepExplanation explanation = plant.explain();
    const CandidateReasons& first = explanation.candidates.at(0);
    EXPECT_THAT(first.explanation.lost, ElementsAre("valve.request=open"));
    EXPECT_THAT(first.ofLost, ElementsAre(Numbers{1}));
    EXPECT_EQ(resolvedBy(first, 0), Numbers{1});
    EXPECT_EQ(first.over, 0);
}

TEST(StepExplanation, CountsLostCommandsOfEarlierSteps)
{
    FollowedPlant plant(lossyValve);
    plant.step({"valve.request=open"}, {"valve.outflow=zero"});
    plant.step({"valve.request=open"}, {"valve.outflow=positive"});
    const StepExplanation explanation = plant.explain();
    const CandidateReasons& first = explanation.candidates.at(0);
    EXPECT_THAT(first.explanation.lost, IsEmpty());
    EXPECT_EQ(first.explanation.faults, 1);
    EXPECT_EQ(first.over, 1);
    EXPECT_THAT(explanation.conflicts, testing::SizeIs(1));
}

// in -> first -> second; broken ones give zero.
const char* const row = R"(component Repeater {
    cond input: zero, one
    cond output: zero, one
    mode state { good initial broken fault }
    law state = good -> output = input
    law state = broken -> output = zero
    fault good -> broken : 0.01
    idle any
}
system Row {
    first: Repeater
    second: Repeater
    law first.output = second.input
}
)";

// At step 1 either may be broken, and it is the first. A second fault, of that one, came later.
TEST(StepExplanation, AddsAConflictOfAnotherHypothesisForACandidateThatCameFromIt)
{
    FollowedPlant plant(row);
    plant.step({}, {"first.input=one", "second.output=zero"});
    plant.step({}, {"first.input=one", "first.output=zero", "second.output=zero"});
    const StepExplanation one = plant.explain({1, 1.0});
    EXPECT_EQ(one.conflicts.size(), 1U);
    const StepExplanation explanation = plant.explain({0, 1.0});
    const CandidateReasons* both =
        candidate(explanation, {"first.state=broken", "second.state=broken"});
    ASSERT_TRUE(both);
    ASSERT_EQ(explanation.conflicts.size(), 2U);
    EXPECT_EQ(explanation.conflicts[0].rank, 1U);
    EXPECT_EQ(explanation.conflicts[1].rank, 2U);
    EXPECT_EQ(explanation.conflicts[1].step, 2U);
    EXPECT_EQ(resolvedBy(*both, 0), Numbers{2});
    EXPECT_EQ(resolvedBy(*both, 1), Numbers{1});
}

// Whatever is broken must have been so before, when nothing went through.
TEST(StepExplanation, CountsAsResolvedWhatDeviatesSinceAnEarlierStep)
{
    const std::string latch = R"(component Latch {
    command set: no, yes
    cond out: zero, one
    mode state { off initial on jammed fault }
    law state = on -> out = one
    law state in {off, jammed} -> out = zero
    nominal off -> on when set = yes : 0.9
    fault off -> jammed when set = no : 0.01
    idle on
}
system S { latch: Latch }
)";
    FollowedPlant plant(latch);
    plant.step({}, {"latch.out=zero"});
    plant.step({"latch.set=yes"}, {"latch.out=zero"});
    const StepExplanation explanation = plant.explain();
    ASSERT_EQ(explanation.conflicts.size(), 1U);
    EXPECT_EQ(explanation.conflicts[0].step, 2U);
    const CandidateReasons* jammed = candidate(explanation, {"latch.state=jammed"});
    ASSERT_TRUE(jammed);
    EXPECT_EQ(jammed->explanation.modes.at(0).since, 1U);
    EXPECT_EQ(resolvedBy(*jammed, 0), Numbers{1});
}

// As data, laws may have places in files that are not there, and no text.
TEST(StepExplanation, NamesLawsOfAModelThatWasReadAsDataByTheirClauses)
{
    const std::string components = R"("components": [{"name": "a", "variables": [
        {"name": "m", "kind": "mode", "values": [{"name": "on"}, {"name": "off", "fault": true}],
         "initial": "on"},
        {"name": "v", "kind": "cond", "values": [{"name": "0"}, {"name": "1"}]}]}])";
    const std::string law = R"({"owner": "a", "literals": ["!a.m=on", "a.v=1"])";
    const std::string head = R"({"format": "itms-model", "v": 1, "files": ["a.itms"], )";
    for (const std::string place : {"", R"(, "place": {"file": 0, "line": 7, "column": 3})"}) {
        FollowedPlant plant(head + components + R"(, "laws": [)" + law + place + "}]}", {}, 10,
                            "plant.json");
        plant.step({}, {"a.v=0"});
        const StepExplanation explanation = plant.explain();
        ASSERT_EQ(explanation.conflicts.size(), 1U);
        const AppliedLaw& applied = explanation.conflicts[0].laws.at(0);
        EXPECT_EQ(applied.text, applied.clause);
        EXPECT_EQ(applied.file, place.empty() ? "" : "a.itms");
        EXPECT_EQ(applied.line, place.empty() ? 0U : 7U);
    }
}

TEST(StepExplanation, ShowsNoMoreCandidatesThanAreAskedFor)
{
    FollowedPlant plant(twoValves);
    plant.step(openA, noFlow);
    EXPECT_EQ(plant.explain({2, 1.0}).candidates.size(), 2U);
    EXPECT_EQ(plant.explain({0, 0.5}).candidates.size(), 2U);
}

} // namespace
