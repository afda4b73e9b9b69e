#include "report/Tracking.h"
#include "tests/report/Steps.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using monitor::TrackStatus;
using report::StepReport;

namespace {

nlohmann::json record(const StepReport& report, const report::Shown& shown = {})
{
    return nlohmann::json::parse(report::stepJson(report, shown));
}

StepReport threeExplanations()
{
    return stepReport(3, TrackStatus::faulty,
                      {deviating(0.9, {{"a.mode", "stuck", 2}}),
                       deviating(0.095, {{"b.mode", "dead", 3}}), deviating(0.005, {})});
}

} // namespace

TEST(StepJson, IsOneLine)
{
    StepReport report = stepReport(3, TrackStatus::faulty,
                                   {deviating(1.0, {{"valveB.position", "stuckClosed", 2}})});
    report.marginals["valveB.position"]["stuckClosed"] = 1.0;
    report.fault = 1.0;
    report.components["valveB"] = 1.0;
    report.missing = 0.25;
    report.work.records = 12;
    EXPECT_EQ(report::stepJson(report, {}),
              R"({"v":2,"step":3,"t":30.0,"status":"faulty","fault":1.0,"complete":true,)"
              R"("approximate":false,"limit":null,"gap":null,)"
              R"("held":[],"kept":1,"dropped":0,"missing":0.25,"silent":0.0,)"
              R"("candidates":[{"p":1.0,"rank":1,)"
              R"("modes":{"valveB.position":"stuckClosed"},"since":{"valveB.position":2},"lost":[],)"
              R"("unexplained":[]}],"marginals":{"valveB.position":{"stuckClosed":1.0}},)"
              R"("components":{"valveB":1.0},)"
              R"("work":{"records":12,"flips":0,"components":0}})"
              "\n");
}

TEST(StepJson, ShowsNoMoreExplanationsThanAskedFor)
{
    EXPECT_EQ(record(threeExplanations(), {1, 1.0}).at("candidates").size(), 1U);
    EXPECT_EQ(record(threeExplanations(), {0, 1.0}).at("candidates").size(), 3U);
}

TEST(StepJson, ShowsNoMoreThanHasTheMassAskedFor)
{
    EXPECT_EQ(record(threeExplanations(), {5, 0.99}).at("candidates").size(), 2U);
    EXPECT_EQ(record(threeExplanations(), {5, 0.0}).at("candidates").size(), 1U);
}

TEST(StepJson, CountsAllThatIsKeptHoweverManyAreShown)
{
    EXPECT_EQ(record(threeExplanations(), {1, 1.0}).at("kept"), 3);
}

TEST(StepJson, NamesTheLimitThatCutTheSearch)
{
    StepReport report = stepReport(1, TrackStatus::inconsistent, {deviating(1.0, {})});
    report.complete = false;
    report.approximate = true;
    report.limit = SearchLimit::records;
    EXPECT_EQ(record(report).at("complete"), false);
    EXPECT_EQ(record(report).at("approximate"), true);
    EXPECT_EQ(record(report).at("limit"), "records");
}

TEST(StepJson, NamesWhatIsLostHeldAndUnexplained)
{
    StepReport report = stepReport(1, TrackStatus::inconsistent, {deviating(1.0, {})});
    report.gap = 12.5;
    report.held = {"a.flow=zero"};
    report.explanations.front().lost = {"a.request=open"};
    report.explanations.front().unexplained = {"a.flow=positive"};
    const nlohmann::json made = record(report);
    EXPECT_EQ(made.at("gap"), 12.5);
    EXPECT_EQ(made.at("held").dump(), R"(["a.flow=zero"])");
    EXPECT_EQ(made.at("candidates").at(0).at("lost").dump(), R"(["a.request=open"])");
    EXPECT_EQ(made.at("candidates").at(0).at("unexplained").dump(), R"(["a.flow=positive"])");
}
