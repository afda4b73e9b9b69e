#include "report/Evaluation.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

// Two faults, one of which was found, and one that is outside the telemetry.
report::EvaluationReport evaluation()
{
    report::EvaluationReport report;
    assess::Evaluation& all = report.evaluation;
    const auto event = [&](const char* what, double start, std::size_t steps) -> assess::EventScore& {
        assess::EventScore& made = all.events.emplace_back();
        made.label.what = what;
        made.label.start = start;
        made.label.modes = {0};
        made.steps = steps;
        return made;
    };
    assess::EventScore& found = event("valve", 100, 10);
    found.alarmSteps = 8;
    found.detectedAfter = 60;
    found.isolatedAfter = 120;
    found.namedAfter = 60;
    found.isolatedSteps = 7;
    event("pump", 500, 10);
    event("tank", 9000, 0);
    all.steps = 100;
    all.labelled = 2;
    all.detected = 1;
    all.isolable = 2;
    all.isolated = 1;
    all.named = 1;
    all.detectionDelay = {1, 60, 60, 60};
    all.isolationDelay = {1, 120, 120, 120};
    all.faultySteps = 20;
    all.faultyAlarms = 8;
    all.freeSteps = 80;
    all.freeAlarms = 2;
    all.falseAlarms = 1;
    all.freeSeconds = 43200;
    return report;
}

} // namespace

TEST(EvaluationJson, HasRatesDelaysAndEachEvent)
{
    const json record = json::parse(report::evaluationJson(evaluation()));
    EXPECT_EQ(record["detection"]["rate"], 0.5);
    EXPECT_EQ(record["isolation"]["delay"]["median"], 120.0);
    EXPECT_EQ(record["falseAlarms"]["perDay"], 2.0);
    EXPECT_EQ(record["falseAlarms"]["share"], 0.025);
    EXPECT_EQ(record["events"][0]["isolationDelay"], 120.0);
    EXPECT_EQ(record["events"][1]["detected"], false);
    EXPECT_EQ(record["events"][1]["detectionDelay"], nullptr);
    EXPECT_EQ(record["events"][2]["detected"], nullptr);
}

TEST(EvaluationTable, HasALineForEachEventAndTheSums)
{
    EXPECT_EQ(report::evaluationTable(evaluation(), report::Colours(false)),
              R"(start                  detected   isolated    alarm  fault
100                       1 min      2 min   80.0 %  valve
500                          no         no      0 %  pump
9000                    no step          -        -  tank

detection     1 of 2 faults, after 1 min on average (median 1 min, at most 1
              min)
isolation     1 of 2 faults, after 2 min on average (median 2 min, at most 2
              min); 1 shown
false alarms  1 alarm in 12 h without a fault: 2 a day; at 2.50 % of the steps
)");
}
