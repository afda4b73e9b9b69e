#include "report/StepExplanation.h"

#include "tests/report/FollowedPlant.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class StepExplanationJsonTest : public testing::Test {
protected:
    static json explained()
    {
        FollowedPlant plant(twoValves);
        plant.step({"valveA.request=open"}, {"valveA.inflow=positive", "valveB.outflow=zero"});
        plant.step({}, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
        return json::parse(explanationJson(plant.explain()));
    }
};

TEST_F(StepExplanationJsonTest, HasTheStep)
{
    const json record = explained();
    EXPECT_EQ(record["v"], 1);
    EXPECT_EQ(record["step"], 2);
    EXPECT_EQ(record["t"], 1.0);
    EXPECT_EQ(record["status"], "faulty");
    EXPECT_EQ(record["complete"], true);
    EXPECT_EQ(record["limit"], nullptr);
    EXPECT_EQ(record["earlier"], 0);
}

TEST_F(StepExplanationJsonTest, TellsWhyACandidateIsThere)
{
    const json candidate = explained()["candidates"].at(0);
    EXPECT_EQ(candidate["modes"], json({{"valveB.position", "stuckClosed"}}));
    EXPECT_EQ(candidate["since"], json({{"valveB.position", 1}}));
    EXPECT_EQ(candidate["rank"], 1);
    EXPECT_EQ(candidate["over"], 0);
    EXPECT_EQ(candidate["because"], json::parse(R"({
        "modes": {"valveB.position": [{"conflict": 1, "instead": "open"}]},
        "lost": {},
        "without": [{"conflict": 2, "variable": "valveA.position", "value": "closed"}],
        "unexplained": {}})"));
}

TEST_F(StepExplanationJsonTest, HasTheConflictWithItsLaws)
{
    const json conflict = explained()["conflicts"].at(1);
    EXPECT_EQ(conflict, json::parse(R"({
        "conflict": 2, "step": 2, "t": 1.0,
        "believed": {"rank": 1, "modes": {"valveA.position": "closed"},
                     "since": {"valveA.position": 1}},
        "observed": {"variable": "valveB.inflow", "value": "positive", "channel": null},
        "expected": "zero",
        "modes": [{"variable": "valveA.position", "value": "closed", "before": "closed",
                   "commands": [], "since": 1}],
        "commands": [], "readings": [],
        "laws": [
            {"file": "plant.itms", "line": 11, "column": 5,
             "text": "law position in {closed, stuckClosed} -> outflow = zero",
             "clause": "!valveA.position=closed | valveA.outflow=zero",
             "gives": {"variable": "valveA.outflow", "value": "zero", "holds": true}},
            {"file": "plant.itms", "line": 20, "column": 5,
             "text": "law valveA.outflow = valveB.inflow",
             "clause": "!valveA.outflow=zero | valveB.inflow=zero",
             "gives": {"variable": "valveB.inflow", "value": "zero", "holds": true}}],
        "cases": false, "verified": true, "minimal": true})"));
}

TEST_F(StepExplanationJsonTest, SaysWhenTheCheckDidNotSettleOrConfirmIt)
{
    report::StepExplanation explanation;
    explanation.conflicts.resize(2);
    explanation.conflicts[1].check = monitor::ConflictCheck::refuted;
    const json record = json::parse(explanationJson(explanation));
    EXPECT_EQ(record["conflicts"][0]["verified"], nullptr);
    EXPECT_EQ(record["conflicts"][0]["minimal"], nullptr);
    EXPECT_EQ(record["conflicts"][0]["observed"], nullptr);
    EXPECT_EQ(record["conflicts"][1]["verified"], false);
}

} // namespace
