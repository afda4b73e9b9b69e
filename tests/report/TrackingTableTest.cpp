#include "report/Tracking.h"
#include "tests/report/Steps.h"

#include <gmock/gmock.h>

using monitor::TrackStatus;
using report::Colours;
using report::StepReport;
using report::TrackingTable;
using testing::HasSubstr;
using testing::Not;

namespace {

TrackingTable plainTable(bool everyStep = false)
{
    return {Colours(false), {}, everyStep};
}

StepReport nominal(std::size_t step)
{
    return stepReport(step, TrackStatus::nominal, {deviating(1.0, {})});
}

StepReport stuck(std::size_t step, double probability)
{
    return stepReport(step, TrackStatus::faulty,
                      {deviating(probability, {{"a.mode", "stuck", 2}}),
                       deviating(1.0 - probability, {{"b.mode", "dead", 2}})});
}

} // namespace

TEST(TrackingTable, HasARowForEachExplanation)
{
    TrackingTable table = plainTable();
    EXPECT_EQ(table.heading() + table.rows(stuck(2, 0.75)),
              "    step           t  status             p  explanation\n"
              "       2          20  faulty        75.0 %  a.mode = stuck since step 2\n"
              "                                    25.0 %  b.mode = dead since step 2\n");
}

TEST(TrackingTable, SaysThatNothingIsWrong)
{
    TrackingTable table = plainTable();
    EXPECT_THAT(table.rows(nominal(1)), HasSubstr("100 %  nothing is wrong\n"));
}

TEST(TrackingTable, HasNoRowWhereNothingChanged)
{
    TrackingTable table = plainTable();
    table.rows(nominal(1));
    EXPECT_EQ(table.rows(nominal(2)), "");
    EXPECT_NE(table.rows(stuck(3, 0.75)), "");
    EXPECT_EQ(table.rows(stuck(4, 0.76)), "");
}

TEST(TrackingTable, HasARowForEveryStepWhereThatIsWanted)
{
    TrackingTable table = plainTable(true);
    table.rows(nominal(1));
    EXPECT_NE(table.rows(nominal(2)), "");
}

TEST(TrackingTable, ShowsAGap)
{
    TrackingTable table = plainTable();
    table.rows(nominal(1));
    StepReport late = nominal(2);
    late.gap = 90.0;
    EXPECT_THAT(table.rows(late), HasSubstr("90 s without a step\n"));
}

TEST(TrackingTable, SaysThatASearchWasCut)
{
    TrackingTable table = plainTable();
    StepReport cut = stuck(2, 0.75);
    cut.complete = false;
    cut.limit = SearchLimit::records;
    EXPECT_THAT(table.rows(cut), HasSubstr("not complete (limit: records)\n"));
    EXPECT_THAT(table.summary(0), HasSubstr("At 1 step the search was not complete."));
}

TEST(TrackingTable, NamesWhatIsNotExplainedAndWhatDidNotArrive)
{
    TrackingTable table = plainTable();
    StepReport report = nominal(1);
    report.explanations.front().lost = {"a.request=open"};
    report.explanations.front().unexplained = {"a.flow=zero"};
    const std::string rows = table.rows(report);
    EXPECT_THAT(rows, HasSubstr("a.request=open did not arrive"));
    EXPECT_THAT(rows, HasSubstr("a.flow=zero"));
}

TEST(TrackingTable, KeepsItsLinesWithinTheWidth)
{
    TrackingTable table = plainTable();
    std::vector<report::DeviatingMode> many;
    for (int i = 0; i < 8; ++i) {
        many.push_back({"component" + std::to_string(i) + ".mode", "stuck", 7});
    }
    std::string rows = table.rows(stepReport(7, TrackStatus::faulty, {deviating(1.0, many)}));
    while (!rows.empty()) {
        const std::size_t end = rows.find('\n');
        EXPECT_LE(end, report::lineWidth) << rows;
        rows.erase(0, end + 1);
    }
}

TEST(TrackingTable, SummaryCountsTheStepsByStatus)
{
    TrackingTable table = plainTable();
    table.rows(nominal(1));
    table.rows(nominal(2));
    table.rows(stuck(3, 0.75));
    EXPECT_EQ(table.summary(1), "\n3 steps: 1 faulty, 2 nominal. 1 line in error was left out.\n");
}

TEST(TrackingTable, GoesOnWhereAnotherOneStopped)
{
    TrackingTable first = plainTable();
    first.rows(nominal(1));
    TrackingTable second = plainTable();
    second.restore(first.memory());
    EXPECT_EQ(second.rows(nominal(2)), "");
    EXPECT_THAT(second.summary(0), HasSubstr("2 steps"));
}
