// Runs with a checkpoint over telemetry that is still being written.
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

class GrowingTelemetry : public Workshop {
protected:
    /// Runs over the first so many bytes of the text and then over all of it, and compares the answer with that of one run.
    void expectSameAnswer(const std::string& text, std::size_t length) const
    {
        SCOPED_TRACE("after " + std::to_string(length) + " bytes");
        const std::string run = "itms run pipe.itms log -q -o answer --checkpoint memory --resume";
        write("log", text.substr(0, length));
        ASSERT_EQ(shell("rm -f answer memory; " + run), "");
        write("log", text);
        ASSERT_EQ(shell(run + " --final; itms run pipe.itms log | cmp - answer"), "");
    }
};

const std::string longLog = "t,name,value\n0,FT-1,0.1\n0,FT-2,0.1\n1,FT-1,1.0\n1,FT-2,1.95\n";
const std::string wideLog = "t,FT-1,FT-2\n0,0.1,0.1\n1,1.0,1.95\n2,1.0,0.95";

} // namespace

TEST_F(GrowingTelemetry, AStepThatWasCutIsTakenWhenItIsComplete)
{
    for (const std::size_t cut : {24U, 25U, 35U, 36U, 47U, 48U, 55U, 57U, 59U}) {
        expectSameAnswer(longLog, cut);
    }
}

TEST_F(GrowingTelemetry, ACellThatWasCutIsTakenWhenItIsComplete)
{
    for (const std::size_t cut : {21U, 22U, 23U, 33U, 34U, 35U, 44U}) {
        expectSameAnswer(wideLog, cut);
    }
}

TEST_F(GrowingTelemetry, ALineOfJsonThatWasCutIsTakenWhenItIsComplete)
{
    const std::string day = read("day.jsonl");
    for (const std::size_t cut : {10UL, day.find('\n'), day.find('\n') + 1, day.size() - 1}) {
        expectSameAnswer(day, cut);
    }
}

TEST_F(GrowingTelemetry, WhatIsLeftIsTold)
{
    write("log", wideLog);
    EXPECT_EQ(shell("itms run pipe.itms log -o answer --checkpoint memory; wc -l <answer"),
              "log:4: from here on the telemetry may not be complete, and is left for --resume\n"
              "  hint: with --final it is taken as it is\n"
              "2\n");
    write("log", longLog);
    EXPECT_EQ(shell("itms run pipe.itms log -o answer --checkpoint memory; wc -l <answer"),
              "log:4: from here on the telemetry may not be complete, and is left for --resume\n"
              "  hint: with --final it is taken as it is\n"
              "1\n");
}

TEST_F(GrowingTelemetry, AllIsTakenOfOneThatIsFinal)
{
    write("log", wideLog);
    EXPECT_EQ(shell("itms run pipe.itms log -o answer --checkpoint memory --final; wc -l <answer"),
              "3\n");
    EXPECT_EQ(shell("itms run pipe.itms log -o answer --checkpoint memory --resume; wc -l <answer"),
              "3\n");
}

TEST_F(GrowingTelemetry, AllIsTakenWhereNothingGoesOn)
{
    write("log", wideLog);
    EXPECT_EQ(shell("itms run pipe.itms log | wc -l; itms run pipe.itms - <log | wc -l;"
                    "itms run pipe.itms - --checkpoint memory <log | wc -l;"
                    "itms run pipe.itms <(cat log) --checkpoint other | wc -l"),
              "3\n3\n3\n3\n");
}

TEST_F(GrowingTelemetry, ABadLineCountsOnce)
{
    const std::string run =
        "itms run pipe.itms log --format table --skip-bad --bad-readings error --checkpoint memory "
        "--resume";
    write("log", longLog + "1,FT-2,oh\n");
    EXPECT_THAT(shell(run), HasSubstr("log:6:8: "));
    EXPECT_THAT(shell(run + " --final"), HasSubstr("itms run: 1 bad line left out\n"));
}
