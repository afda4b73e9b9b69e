// A mistake does not change how reading goes on.
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

TEST(Mistakes, EndTheReading)
{
    EXPECT_THAT(readText("{}\n{]\n{}\n"),
                ElementsAre(HasSubstr("1 t=0"), HasSubstr("this is not JSON")));
    EXPECT_THAT(readText("t,FT-1\n0,1\n1,x\n2,1\n"),
                ElementsAre(HasSubstr("1 t=0"), HasSubstr("the value of 'FT-1'")));
}

TEST(Mistakes, AreLeftOutWhereThatIsAskedFor)
{
    EXPECT_THAT(readText("{}\n{]\n{}\n", skipping),
                ElementsAre(HasSubstr("1 t=0"), HasSubstr("this is not JSON"), HasSubstr("2 t=1")));
}

TEST(Mistakes, OfAHeaderEndTheReadingAnyway)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file("t,FT-9\n0,1\n1,1\n");
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, skipping);
    const auto first = reader.next();
    ASSERT_TRUE(std::holds_alternative<telemetry::Mistake>(first));
    EXPECT_TRUE(std::get<telemetry::Mistake>(first).endsReading);
    EXPECT_TRUE(std::holds_alternative<telemetry::End>(reader.next()));
}

TEST(Mistakes, ChangeNothingThatTheReaderRemembers)
{
    const language::ReadResult plant = readPlant();
    const std::vector<std::string> badLines{
        R"({"t": 9, "commands": {"XV-1": 1}, "observations": {"FT-1": 9, "FT-2": 9, "TS-1": "D"}})",
        R"({"t": 9, "observations": {"FT-1": 9, "FT-2": 9}, "more": 1})",
        R"({"t": 9, "observations": {"FT-1": 9, "FT-2": 9})",
        R"({"t": 1, "observations": {"FT-1": 9, "FT-2": 9}})"};
    for (const std::string& bad : badLines) {
        const TemporaryFile file("{\"t\": 1, \"observations\": {\"FT-1\": 0.5, \"FT-2\": 2}}\n" +
                                 bad + "\n{\"observations\": {\"FT-1\": 1.1}}\n");
        telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, skipping);
        const std::vector<std::string> all = readAll(reader);
        ASSERT_THAT(all, SizeIs(3)) << bad;
        EXPECT_EQ(all[2], "2 t=2 [main.request=none branch/valve.request=none] given [] saw "
                          "[main.flow=zero branch/valve.flow=low held]");
    }
}

TEST(Mistakes, OfAWideRowTakeNothingOfIt)
{
    EXPECT_THAT(
        readText("t,FT-1,FT-2,TS-1\n0,0.5,2,C\n1,9,9,D\n2,1.1,,\n", skipping),
        ElementsAre(HasSubstr("1 t=0"), HasSubstr("the value of 'TS-1' is 'D'"),
                    HasSubstr("2 t=2 [main.request=none branch/valve.request=none] given [] saw "
                              "[main.flow=zero branch/valve.flow=low held]")));
}

TEST(Mistakes, OfALongRowLeaveTheRestOfTheStep)
{
    EXPECT_THAT(
        readText("t,name,value\n0,FT-1,0.5\n0,FT-2,x\n0,TS-1,C\n5,FT-1,?\n1,FT-1,2\n", skipping),
        ElementsAre(HasSubstr("the value of 'FT-2'"), HasSubstr("the value of 'FT-1'"),
                    HasSubstr("1 t=0 [main.request=none branch/valve.request=none] given [] saw "
                              "[main.flow=zero main.heat=cold]"),
                    HasSubstr("2 t=1 ")));
}

TEST(Mistakes, OfReadingsThatContradictEachOtherTakeTheFirstOfALongTable)
{
    EXPECT_THAT(readText("t,name,value\n0,FT-1,0.5\n0,main.flow,high\n", skipping),
                ElementsAre(HasSubstr("'main.flow' is both zero and high"),
                            HasSubstr("saw [main.flow=zero]")));
}

TEST(Mistakes, OfAFileThatIsNotThereAreFailures)
{
    const language::ReadResult plant = readPlant();
    try {
        telemetry::StepReader reader("no-such-file", *plant.model, plant.bindings);
        FAIL() << "nothing was thrown";
    } catch (const telemetry::ReadFailure& failure) {
        EXPECT_STREQ(failure.what(), "no-such-file: cannot be read: No such file or directory\n");
    }
    telemetry::StepReader folder(ITMS_ROOT, *plant.model, plant.bindings);
    EXPECT_THROW(folder.next(), telemetry::ReadFailure);
}

TEST(Mistakes, AreToldOfAnyNumberOfLevels)
{
    EXPECT_THAT(readText(std::string(100000, '{')), SizeIs(1));
    EXPECT_THAT(readText("{\"t\":" + std::string(100000, '[')), SizeIs(1));
}

TEST(Mistakes, OfNamesThatAreBoundBothWaysAreToldInTablesOnly)
{
    const language::ReadResult plant =
        readPlant("component C {\n cond v: a, b\n command w: c, d\n}\nsystem S {\n c: C\n"
                  " observe c.v from \"X\"\n command c.w from \"X\"\n}\n");
    const TemporaryFile lines("{\"observations\": {\"X\": \"a\"}, \"commands\": {\"X\": \"d\"}}\n");
    telemetry::StepReader reader(lines.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader), ElementsAre(HasSubstr("[c.w=d] given [c.w=d] saw [c.v=a]")));
    const TemporaryFile table("t,X\n0,a\n");
    telemetry::StepReader other(table.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(other),
                ElementsAre(":1:3: 'X' is a channel of an observation and of a command\n"
                            "  t,X\n    ^\n"
                            "  expected: COMPONENT.VARIABLE, which says which of them is meant\n"
                            "  hint: 'c.v' or 'c.w'\n"));
}

} // namespace
