// The seam for writers: one made here, and those that the formats stand for.
#include "report/Writers.h"
#include "tests/report/Steps.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace report;
using monitor::TrackStatus;

namespace {

/// A line of CSV a step: what somebody needs to have a format of their own.
class CsvWriter : public StepWriter<StepReport> {
public:
    explicit CsvWriter(Sink sink) : sink_(std::move(sink)) {}

    void begin() override { sink_("step,t,status,p\n"); }
    void step(const StepReport& report) override
    {
        const double p = report.explanations.empty() ? 0.0 : report.explanations.front().probability;
        sink_(std::to_string(report.step) + "," + std::to_string(report.t) + "," +
              monitor::name(report.status) + "," + std::to_string(p) + "\n");
    }

private:
    Sink sink_;
};

std::vector<StepReport> threeSteps()
{
    return {stepReport(1, TrackStatus::nominal, {deviating(1.0, {})}),
            stepReport(2, TrackStatus::nominal, {deviating(1.0, {})}),
            stepReport(3, TrackStatus::faulty, {deviating(0.75, {{"valve.position", "stuck", 3}})})};
}

/// What the writer that `make` gives makes of the three steps, with a new one in its place after so many.
template <typename Make> std::string written(const Make& make, std::size_t broken = 3)
{
    std::string text;
    const Sink sink = [&text](std::string_view piece) { text += piece; };
    auto writer = make(sink);
    writer->begin();
    for (const StepReport& report : threeSteps()) {
        if (report.step == broken + 1) {
            const WriterMemory memory = writer->memory();
            writer = make(sink);
            writer->resume(memory);
        }
        writer->step(report);
    }
    writer->end(0);
    return text;
}

auto formatted(Format format)
{
    return [format](const Sink& sink) {
        return Writers(format, Colours(false), sink).tracking({}, false);
    };
}

} // namespace

TEST(StepWriter, MayBeOneOfSomebodyElse)
{
    EXPECT_EQ(written([](const Sink& sink) { return std::make_unique<CsvWriter>(sink); }),
              "step,t,status,p\n"
              "1,10.000000,nominal,1.000000\n"
              "2,20.000000,nominal,1.000000\n"
              "3,30.000000,faulty,0.750000\n");
}

TEST(Writers, MakeALineOfJsonAStep)
{
    std::string expected;
    for (const StepReport& report : threeSteps()) {
        expected += stepJson(report, {});
    }
    EXPECT_EQ(written(formatted(Format::lines)), expected);
}

TEST(Writers, MakeOneArrayOfTheSameRecords)
{
    const auto array = nlohmann::json::parse(written(formatted(Format::array)));
    ASSERT_EQ(array.size(), 3U);
    for (std::size_t i = 0; i < array.size(); ++i) {
        EXPECT_EQ(array[i], nlohmann::json::parse(stepJson(threeSteps()[i], {})));
    }
}

TEST(Writers, MakeAnEmptyArrayOfNoSteps)
{
    std::string text;
    const auto writer = Writers(Format::array, Colours(false), [&](std::string_view piece) {
                            text += piece;
                        }).tracking({}, false);
    writer->begin();
    writer->end(0);
    EXPECT_EQ(text, "[]\n");
}

TEST(Writers, MakeATableOfWhatChanged)
{
    TrackingTable table(Colours(false), {}, false);
    std::string expected = table.heading();
    for (const StepReport& report : threeSteps()) {
        expected += table.rows(report);
    }
    EXPECT_EQ(written(formatted(Format::people)), expected + table.summary(0));
}

TEST(Writers, GoOnAsIfThereHadBeenOneRun)
{
    for (const Format format : {Format::people, Format::lines, Format::array}) {
        const std::string whole = written(formatted(format));
        for (const std::size_t broken : {1U, 2U}) {
            EXPECT_EQ(written(formatted(format), broken), whole);
        }
    }
}

TEST(Writers, KeepATablesMemoryWhereTheyMakeNone)
{
    std::string text;
    const auto writer = formatted(Format::lines)([&](std::string_view piece) { text += piece; });
    WriterMemory memory;
    memory.table.total = 7;
    writer->resume(memory);
    writer->step(threeSteps().front());
    EXPECT_EQ(writer->memory().table.total, 7U);
}
