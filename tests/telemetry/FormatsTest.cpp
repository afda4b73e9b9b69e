// How bytes become lines and cells, as far as the formats allow.
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

const std::string reading = R"({"t": 0, "observations": {"FT-1": 0.5}})";

TEST(Formats, AcceptAByteOrderMarkAndCarriageReturnsAndAMissingLastLineEnd)
{
    EXPECT_THAT(observed("\xEF\xBB\xBF" + reading + "\r\n\r\n{\"t\": 1}"),
                ElementsAre("main.flow=zero", ""));
    EXPECT_THAT(observed("\xEF\xBB\xBF\r\nt,FT-1\r\n0,0.5\r\n1,2"),
                ElementsAre("main.flow=zero", "main.flow=low"));
    EXPECT_THAT(observed("\xEF\xBB\xBFt,name,value\r\n0,FT-1,0.5\r\n1,FT-1,2"),
                ElementsAre("main.flow=zero", "main.flow=low"));
}

TEST(Formats, PassOverBlankLines)
{
    EXPECT_THAT(observed("\n \n" + reading + "\n\n\t\n{\"t\": 1}\n\n"), SizeIs(2));
    EXPECT_THAT(observed("\n\nt,FT-1\n\n0,0.5\n\n1,\n\n"), SizeIs(2));
}

TEST(Formats, HaveTheTimeInAnyColumn)
{
    EXPECT_THAT(readText("FT-1,t\n0.5,3\n"), ElementsAre(HasSubstr("t=3 ")));
}

TEST(Formats, PassOverBlanksAroundCells)
{
    EXPECT_THAT(observed("t, FT-1 ,\tTS-1\n0, 0.5 ,\tC \n"),
                ElementsAre("main.flow=zero main.heat=cold"));
}

TEST(Formats, KnowQuotedCells)
{
    const language::ReadResult plant =
        readPlant("component C {\n cond v: a, b\n}\nsystem S {\n c: C\n"
                  " observe c.v from \"X, \\\"1\\\"\" : a = \"x,\\\"y\\\"\", b otherwise\n}\n");
    const TemporaryFile file("\"t\",\"X, \"\"1\"\"\"\n\"0\",\"x,\"\"y\"\"\"\n1,\"two\nlines\"\n");
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader), ElementsAre(HasSubstr("t=0 [] given [] saw [c.v=a]"),
                                             HasSubstr("t=1 [] given [] saw [c.v=b]")));
}

TEST(Formats, ReadNumbersOfAllShapes)
{
    EXPECT_THAT(observed("t,FT-1\n-1,+2\n0.,.5\n1e0,2E+0\n2,1e-999\n"),
                ElementsAre("main.flow=low", "main.flow=zero", "main.flow=low", "main.flow=zero"));
    EXPECT_THAT(observed("{\"t\": -1, \"observations\": {\"FT-1\": 2}}\n"
                         "{\"t\": 1e1, \"observations\": {\"FT-1\": -2e0}}\n"
                         "{\"t\": 1e2, \"observations\": {\"FT-1\": 123456789012345678901}}\n"),
                ElementsAre("main.flow=low", "main.flow=zero", "main.flow=high"));
}

TEST(Formats, HaveABoundOnTheLengthOfALine)
{
    telemetry::ReadSettings settings;
    settings.skipBad = true;
    settings.mostBytes = 1000;
    const std::string blanks(2000, ' ');
    const std::string longLine = R"({"t": 1)" + blanks + "}";
    std::vector<std::string> all = readText(reading + "\n" + longLine + "\n{\"t\": 2}\n", settings);
    ASSERT_THAT(all, SizeIs(3));
    EXPECT_THAT(all[1], HasSubstr(":2:1: this line has more than 1000 bytes\n"));
    EXPECT_THAT(all[2], HasSubstr("2 t=2 "));

    all = readText("t,FT-1\n0,1\n1," + blanks + "2\n2,1\n", settings);
    ASSERT_THAT(all, SizeIs(3));
    EXPECT_THAT(all[1], HasSubstr(":3:1: this line has more than 1000 bytes\n"));
    EXPECT_THAT(all[2], HasSubstr("2 t=2 "));

    EXPECT_THAT(readText(std::string(2000, 'x') + "\nt,FT-1\n0,1\n", settings),
                ElementsAre(HasSubstr(":1:1: this line has more than 1000 bytes\n")));
}

TEST(Formats, ReadLinesLongerThanAnyBuffer)
{
    const std::string blanks(300000, ' ');
    EXPECT_THAT(observed("{\"t\": 0," + blanks + "\"observations\": {\"FT-1\": 2}}\n{}\n"),
                ElementsAre("main.flow=low", ""));
    EXPECT_THAT(observed("t,FT-1\n0," + blanks + "2\n1,\n"), ElementsAre("main.flow=low", ""));
}

TEST(Formats, HaveABoundOnWhatAQuoteThatIsNotClosedTakes)
{
    telemetry::ReadSettings settings;
    settings.skipBad = true;
    settings.mostBytes = 100;
    std::string text = "t,FT-1\n0,\"1\n";
    for (int t = 1; t <= 50; ++t) {
        text += std::to_string(t) + ",2\n";
    }
    const std::vector<std::string> all = readText(text, settings);
    ASSERT_THAT(all, SizeIs(51));
    EXPECT_THAT(all[0], HasSubstr(":2:3: this quote is not closed within 100 bytes\n"));
    EXPECT_THAT(all[1], HasSubstr("1 t=1 "));
    EXPECT_THAT(all[50], HasSubstr("50 t=50 "));
}

TEST(Formats, GiveAQuoteThatIsNotClosedUpAfterSixtyFourLines)
{
    telemetry::ReadSettings settings;
    settings.skipBad = true;
    std::string text = "t,FT-1\n0,\"1\n";
    for (int t = 1; t <= 70; ++t) {
        text += std::to_string(t) + ",2\n";
    }
    // Nothing tells whether more will come: a live stream has to hear of it now.
    const std::vector<std::string> all = readText(text + "71,\"2\"\n", settings);
    ASSERT_THAT(all, SizeIs(72));
    EXPECT_THAT(all[0], HasSubstr(":2:3: this quote is not closed within 64 lines\n"));
    EXPECT_THAT(all[1], HasSubstr("1 t=1 "));
}

TEST(Formats, TakeACellOfSixtyFourLines)
{
    const std::string blanks(63, '\n');
    EXPECT_THAT(readText("t,TS-1\n0,\"" + blanks + "\"\n"),
                ElementsAre(testing::Not(HasSubstr("is not closed"))));
}

TEST(Formats, GiveAQuoteThatIsNotClosedUpAfterOneMebibyte)
{
    const std::string line(300000, 'x');
    EXPECT_THAT(readText("t,FT-1\n0,\"" + line + "\n" + line + "\n" + line + "\n" + line + "\n" +
                         line + "\n"),
                ElementsAre(HasSubstr(":2:3: this quote is not closed within 1048576 bytes\n")));
}

TEST(Formats, HaveNoByteZeroInALine)
{
    const std::string zero(1, '\0');
    EXPECT_THAT(readText("{\"t\": 0}" + zero + "{\"t\": 1}\n"),
                ElementsAre(HasSubstr(":1:9: this is not JSON: it has a byte 0\n")));
}

TEST(Formats, HaveNoTimeSoFarAwayThatNoNumberSaysHowFar)
{
    EXPECT_THAT(
        readText("{\"t\": -1e308}\n{\"t\": 1e308}\n"),
        ElementsAre(HasSubstr("1 t="), HasSubstr(":2:7: the time is 1e+308, and what has passed "
                                                 "since -1e+308 is too long for a number\n")));
    EXPECT_THAT(readText("t,FT-1\n-1e308,1\n1e308,1\n"),
                ElementsAre(HasSubstr("1 t="), HasSubstr(":3:1: the time is 1e+308")));
}

TEST(Formats, GoOnInTheNextLineAfterAQuoteThatIsNotClosed)
{
    telemetry::ReadSettings settings;
    settings.skipBad = true;
    EXPECT_THAT(readText("t,FT-1\n0,\"1\n1,2\n2,2\n", settings),
                ElementsAre(HasSubstr(":2:3: this quote is not closed\n"), HasSubstr("1 t=1 "),
                            HasSubstr("2 t=2 ")));
    EXPECT_THAT(readText("t,FT-1\n0,\"1\n1,2\n2,\"2\"\n", settings),
                ElementsAre(HasSubstr(":4:4: text after a closing quote\n"), HasSubstr("1 t=1 "),
                            HasSubstr("2 t=2 ")));
}

} // namespace
