#include "report/Advice.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

// Two explanations, and a measurement that tells them apart.
report::AdviceReport advice()
{
    report::AdviceReport report;
    report.step.step = 3;
    report.step.t = 1.5;
    report.step.status = monitor::TrackStatus::ambiguous;
    report.step.explanations = {{0.5, 1, {{"valve.position", "stuck", 3}}, {}, {}},
                                {0.5, 1, {{"pump.state", "off", 2}}, {}, {}}};
    report.bits = 1.0;
    report.measurements = {
        {"pump.flow", "FT-1", 0.0, {{"zero", 0.5, 0.0, {{2, 1.0}}}, {"some", 0.5, 0.0, {{1, 1.0}}}}},
        {"pump.noise", {}, 0.5, {{"loud", 1.0, 0.5, {{1, 0.75}, {2, 0.25}}}}}};
    report.useless = 7;
    return report;
}

TEST(AdviceJson, HasTheExplanationsAndWhatEachOutcomeLeavesOfThem)
{
    const std::string text = report::adviceJson(advice(), 0);
    EXPECT_EQ(text.find('\n'), text.size() - 1);
    const json record = json::parse(text);
    EXPECT_EQ(record["v"], 1);
    EXPECT_EQ(record["step"], 3);
    EXPECT_EQ(record["status"], "ambiguous");
    EXPECT_EQ(record["entropy"], 1.0);
    EXPECT_EQ(record["candidates"][0]["id"], 1);
    EXPECT_EQ(record["candidates"][0]["modes"], json({{"valve.position", "stuck"}}));
    const json& flow = record["measurements"][0];
    EXPECT_EQ(flow["variable"], "pump.flow");
    EXPECT_EQ(flow["channel"], "FT-1");
    EXPECT_EQ(flow["entropy"], 0.0);
    EXPECT_EQ(flow["gain"], 1.0);
    EXPECT_EQ(flow["outcomes"][0]["value"], "zero");
    EXPECT_EQ(flow["outcomes"][0]["candidates"], json::parse(R"([{"id":2,"p":1.0}])"));
    EXPECT_EQ(record["measurements"][1]["channel"], nullptr);
    EXPECT_EQ(record["useless"], 7);
}

TEST(AdviceJson, ShowsAsManyMeasurementsAsAreAskedForAndCountsAll)
{
    const json record = json::parse(report::adviceJson(advice(), 1));
    EXPECT_EQ(record["measurements"].size(), 1U);
    EXPECT_EQ(record["telling"], 2);
}

TEST(AdviceText, ReadsFromTheExplanationsToTheMeasurements)
{
    EXPECT_EQ(report::adviceText(advice(), 0, report::Colours(false)),
              R"(Step 3, t = 1.5: ambiguous.

   #        p  explanation
   1   50.0 %  valve.position = stuck since step 3
   2   50.0 %  pump.state = off since step 2

The explanations leave 1.000 bits of doubt. Best to measure next:

  measure                            bits left    gained
  pump.flow (FT-1)                       0.000     1.000
      zero                    50.0 %     0.000    #2 100 %
      some                    50.0 %     0.000    #1 100 %
  pump.noise                             0.500     0.500
      loud                     100 %     0.500    #1 75.0 %, #2 25.0 %

7 other variables would tell nothing.
)");
}

TEST(AdviceText, SaysHowManyMeasurementsAreNotShown)
{
    EXPECT_NE(report::adviceText(advice(), 1, report::Colours(false)).find("  and 1 more\n"),
              std::string::npos);
}

TEST(AdviceText, ShowsMeasurementsThatTellTheSameAsOne)
{
    report::AdviceReport report = advice();
    report::MeasurementReport same = report.measurements.front();
    same.variable = "pump.valve";
    same.channel.reset();
    same.outcomes = {{"shut", 0.5, 0.0, {{1, 1.0}}}, {"open", 0.5, 0.0, {{2, 1.0}}}};
    report.measurements.push_back(same);
    const std::string text = report::adviceText(report, 1, report::Colours(false));
    EXPECT_NE(text.find("#1 100 %\n      the same: pump.valve\n  and 1 more\n"), std::string::npos)
        << text;
}

TEST(AdviceText, NeverShowsSomeDoubtAsNone)
{
    report::AdviceReport report = advice();
    report.bits = 0.0001;
    EXPECT_NE(report::adviceText(report, 1, report::Colours(false))
                  .find("The explanations leave <0.001 bits of doubt."),
              std::string::npos);
}

TEST(AdviceText, SaysThatASingleExplanationNeedsNoMeasurement)
{
    report::AdviceReport report = advice();
    report.step.explanations.resize(1);
    report.measurements.clear();
    EXPECT_NE(report::adviceText(report, 0, report::Colours(false))
                  .find("There is one explanation: no measurement can tell it from others.\n"),
              std::string::npos);
}

TEST(AdviceText, SaysThatNothingTells)
{
    report::AdviceReport report = advice();
    report.measurements.clear();
    EXPECT_NE(
        report::adviceText(report, 0, report::Colours(false))
            .find("Nothing that is not observed would tell the explanations apart; 1.000 bits"),
        std::string::npos);
}

TEST(AdviceText, SaysWhatWasCutAndDropped)
{
    report::AdviceReport report = advice();
    report.step.complete = false;
    report.step.dropped = 2;
    const std::string text = report::adviceText(report, 0, report::Colours(false));
    EXPECT_EQ(text.substr(0, text.find("\n\n")),
              "Step 3, t = 1.5: ambiguous. The search was not complete: there may be other\n"
              "explanations. 2 explanations were not kept; --keep N keeps more.");
}

} // namespace
