#include "report/Query.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using monitor::Truth;
using nlohmann::json;

report::QueryReport step(std::size_t number, Truth best, double probability, double open = 0.0)
{
    report::QueryReport report;
    report.step = number;
    report.t = 0.5 * static_cast<double>(number);
    report.answer = {best, probability, open};
    return report;
}

TEST(QueryJson, HasOneLineWithTheAnswer)
{
    const std::string text = report::queryJson(step(3, Truth::isTrue, 0.93, 0.05));
    EXPECT_EQ(text, "{\"v\":1,\"step\":3,\"t\":1.5,\"best\":\"true\",\"p\":0.93,\"unknown\":0.05,"
                    "\"status\":\"nominal\",\"complete\":true,\"limit\":null}\n");
}

TEST(QueryJson, SaysWhatWasCut)
{
    report::QueryReport report = step(1, Truth::open, 0.0, 1.0);
    report.complete = false;
    report.limit = SearchLimit::records;
    report.status = monitor::TrackStatus::inconsistent;
    const json record = json::parse(report::queryJson(report));
    EXPECT_EQ(record["best"], "unknown");
    EXPECT_EQ(record["complete"], false);
    EXPECT_EQ(record["limit"], "records");
    EXPECT_EQ(record["status"], "inconsistent");
}

TEST(QueryJson, ShowsSixDigitsOfAProbability)
{
    EXPECT_EQ(json::parse(report::queryJson(step(1, Truth::isTrue, 1.0 / 3)))["p"], 0.333333);
}

TEST(QueryTable, ShowsAStepWhereTheAnswerChanges)
{
    report::QueryTable table(report::Colours(false), false);
    EXPECT_EQ(table.heading(), "    step           t  best         true  unknown  status\n");
    EXPECT_EQ(table.rows(step(1, Truth::isFalse, 0.0)),
              "       1         0.5  false         0 %      0 %  nominal\n");
    EXPECT_EQ(table.rows(step(2, Truth::isFalse, 0.0)), "");
    EXPECT_EQ(table.rows(step(3, Truth::isFalse, 0.25)),
              "       3         1.5  false      25.0 %      0 %  nominal\n");
    EXPECT_EQ(table.rows(step(4, Truth::isTrue, 1.0)),
              "       4           2  true        100 %      0 %  nominal\n");
}

TEST(QueryTable, ShowsEveryStepOnRequest)
{
    report::QueryTable table(report::Colours(false), true);
    EXPECT_NE(table.rows(step(1, Truth::isFalse, 0.0)), "");
    EXPECT_NE(table.rows(step(2, Truth::isFalse, 0.0)), "");
}

TEST(QueryTable, CountsTheSteps)
{
    report::QueryTable table(report::Colours(false), false);
    table.rows(step(1, Truth::isFalse, 0.0));
    table.rows(step(2, Truth::isFalse, 0.0));
    table.rows(step(3, Truth::isTrue, 1.0));
    report::QueryReport cut = step(4, Truth::open, 0.0, 1.0);
    cut.complete = false;
    EXPECT_EQ(table.rows(cut),
              "       4           2  unknown       0 %    100 %  nominal, not complete\n");
    EXPECT_EQ(table.summary(2),
              "\n4 steps: in the best explanation true at 1, false at 2, unknown at 1. At 1 step\n"
              "the search was not complete. 2 lines in error were left out.\n");
}

} // namespace
