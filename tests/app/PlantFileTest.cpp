// The file beside a model that says how the telemetry of its plant is written.
#include "tests/app/Program.h"
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PlantFile : public Workshop {
protected:
    void SetUp() override
    {
        write("tank.itms", "component Tank {\n    cond level: low, high\n}\n"
                           "system House {\n    tank: Tank\n"
                           "    observe tank.level from \"L\" : low < 1 <= high\n}\n");
        write("log.csv",
              "Date;Level sensor;operator\n05/01/2024 10:00;0,5;x\n05/01/2024 10:01;1,5;y\n");
        write("plant.toml",
              "[telemetry]\ntime-column = \"Date\"\ntime-format = \"%m/%d/%Y %H:%M\"\n"
              "decimal = \",\"\ngap = 70\n\n[rename]\n\"Level sensor\" = \"L\"\n");
    }
    ProgramRun query(const std::vector<std::string>& more = {})
    {
        std::vector<std::string> all{
            "query", path("tank.itms"), path("log.csv"), "tank.level = high", "--format", "jsonl"};
        all.insert(all.end(), more.begin(), more.end());
        return runProgram(all);
    }
};

TEST_F(PlantFile, SaysHowTelemetryIsWrittenAndColumnsAreCalled)
{
    const ProgramRun run = query();
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.out, HasSubstr("\"time\":\"2024-05-01T10:00:00Z\",\"best\":\"false\""));
    EXPECT_THAT(run.out, HasSubstr("\"time\":\"2024-05-01T10:01:00Z\",\"best\":\"true\""));
}

TEST_F(PlantFile, GivesWayToTheCommandLine)
{
    const ProgramRun run = query({"--time-format", "%d/%m/%Y %H:%M"});
    EXPECT_THAT(run.out, HasSubstr("2024-01-05T10:00:00Z"));
}

TEST_F(PlantFile, IsNotReadWhereItIsNotWanted)
{
    const ProgramRun run = query({"--plant-file", "none"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err,
                HasSubstr("log.csv:1:1: the first line is neither a step nor a header with 't'"));
}

TEST_F(PlantFile, HasItsNamesReplacedByThoseOfAnother)
{
    write("names.toml", "\"operator\" = \"L\"\n");
    write("plant.toml", "[telemetry]\ntime-column = \"Date\"\ntime-format = \"%m/%d/%Y %H:%M\"\n");
    const ProgramRun run = query({"--rename", path("names.toml")});
    EXPECT_THAT(run.err, HasSubstr("2 readings of 'operator' are no number"));
}

TEST_F(PlantFile, WithMistakesIsRefusedWithAllOfThem)
{
    write("plant.toml", "[telemetry]\ntime-colum = \"x\"\ngap = \"many\"\n[renam]\n");
    const ProgramRun run = query();
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, HasSubstr("plant.toml:2:1: found the key 'time-colum'"));
    EXPECT_THAT(run.err, HasSubstr("hint: did you mean 'time-column'?"));
    EXPECT_THAT(run.err, HasSubstr("plant.toml:3:7: found 'many'; expected a number, 1 or more"));
    EXPECT_THAT(run.err, HasSubstr("plant.toml:4:2: found the key 'renam'"));
}

TEST_F(PlantFile, HasNoInfiniteGap)
{
    write("plant.toml", "[telemetry]\ngap = inf\n");
    const ProgramRun fromFile = query();
    EXPECT_EQ(fromFile.status, 2);
    EXPECT_THAT(fromFile.err,
                HasSubstr("plant.toml:2:7: found 'inf'; expected a number, 1 or more"));
    const ProgramRun fromOption = query({"--plant-file", "none", "--gap", "inf"});
    EXPECT_EQ(fromOption.status, 2);
    EXPECT_THAT(fromOption.err, HasSubstr("--gap: found 'inf'; expected a number, 1 or more"));
}

TEST_F(PlantFile, NamesChannelsOfTheModel)
{
    write("plant.toml", "[rename]\n\"Level sensor\" = \"LL\"\n");
    const ProgramRun run = query();
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("plant.toml:2:18: 'LL' is not known"));
    EXPECT_THAT(run.err, HasSubstr("hint: did you mean 'L'?"));
}

TEST_F(PlantFile, ThatIsNoTomlIsRefusedWithItsPlace)
{
    write("plant.toml", "[telemetry\n");
    const ProgramRun run = query();
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("plant.toml:1:"));
    EXPECT_THAT(run.err, HasSubstr("hint: a TOML file has lines such as  key = \"text\""));
}

TEST_F(PlantFile, ThatIsNamedHasToBeThere)
{
    const ProgramRun run = query({"--plant-file", path("none.toml")});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("none.toml: No such file or directory"));
}

TEST_F(PlantFile, IsNotWrittenOver)
{
    const std::string before = read("plant.toml");
    const ProgramRun run =
        runProgram({"run", path("tank.itms"), path("log.csv"), "-o", path("plant.toml")});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("is both the plant's file and the answer"));
    EXPECT_EQ(read("plant.toml"), before);
    EXPECT_THAT(before, Not(IsEmpty()));
}

} // namespace
