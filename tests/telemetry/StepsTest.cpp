// The contents of steps, whatever the format.
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Steps, HaveACommandOfEveryVariableAndWhatWasObserved)
{
    EXPECT_THAT(
        readText(
            R"({"t": 0, "commands": {"XV-1": 1}, "observations": {"branch.level": "full", "FT-1": 0.5}})"
            "\n"),
        ElementsAre("1 t=0 [main.request=open branch/valve.request=none] "
                    "given [main.request=open] saw [main.flow=zero branch.level=full]"));
}

TEST(Steps, DoNotDependOnTheOrderOfKeys)
{
    EXPECT_EQ(
        readText(
            R"({"t": 4, "commands": {"XV-1": 1, "branch.valve.request": "close"}, "observations": {"TS-1": "C", "FT-1": 7, "main.position": "open"}})"),
        readText(
            R"({"observations": {"main.position": "open", "FT-1": 7, "TS-1": "C"}, "commands": {"branch.valve.request": "close", "XV-1": 1}, "t": 4})"));
}

TEST(Steps, AreOfTheSameEventsTheSameInAllFormats)
{
    const std::vector<std::string> lines =
        readText("{\"t\": 0, \"commands\": {\"XV-1\": 1}, \"observations\": {\"FT-1\": 0.5}}\n"
                 "{\"t\": 1.5, \"observations\": {\"FT-1\": 1.1, \"TS-1\": \"C\"}}\n"
                 "{\"t\": 2, \"commands\": {\"XV-1\": \"close\"}}\n"
                 "{\"t\": 7, \"observations\": {\"FT-1\": 1.3, \"FT-2\": 6}}\n");
    EXPECT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines,
              readText("t,XV-1,FT-1,TS-1,FT-2\n0,1,0.5,,\n1.5,,1.1,C,\n2,close,,,\n7,,1.3,,6\n"));
    EXPECT_EQ(lines, readText("t,name,value\n0,FT-1,0.5\n0,XV-1,1\n1.5,TS-1,C\n1.5,FT-1,1.1\n"
                              "2,XV-1,close\n7,FT-2,6\n7,FT-1,1.3\n"));
}

TEST(Steps, NameVariablesOfPartsWithSlashesOrDots)
{
    EXPECT_THAT(observed(R"({"observations": {"branch/valve.position": "open"}})"
                         "\n"
                         R"({"observations": {"branch.valve.position": "open"}})"),
                ElementsAre("branch/valve.position=open", "branch/valve.position=open"));
}

TEST(Steps, ReadAVariableThatIsBoundLikeItsChannel)
{
    EXPECT_THAT(observed(R"({"observations": {"main.flow": 2, "main.heat": "warm"}})"),
                ElementsAre("main.flow=low main.heat=warm"));
}

TEST(Steps, KeepTheNumbersThatChannelsGaveButNoneForAHeldOrNamedReading)
{
    const language::ReadResult plant = readPlant();
    const auto numbers = [&](const std::vector<std::string>& lines) {
        telemetry::StepReader reader(std::make_unique<telemetry::LineVector>(lines), *plant.model,
                                     plant.bindings);
        std::vector<std::optional<double>> found;
        while (true) {
            const auto next = reader.next();
            const auto* step = std::get_if<telemetry::Step>(&next);
            if (!step) return found;
            for (const telemetry::Observation& one : step->observations)
                found.push_back(one.number);
        }
    };
    const std::vector<std::optional<double>> expected = {6.25, std::nullopt, std::nullopt};
    EXPECT_EQ(numbers({R"({"t": 0, "observations": {"FT-2": 6.25}})",
                       R"({"t": 1, "observations": {"TS-1": "C"}})"}),
              expected);
    EXPECT_EQ(numbers({"t,FT-2,TS-1", "0,6.25,", "1,,C"}), expected);
}

TEST(Steps, HaveNothingOfWhatIsNullOrEmpty)
{
    EXPECT_THAT(observed(R"({"t": 0, "commands": null, "observations": {"FT-1": null}})"),
                ElementsAre(""));
    EXPECT_THAT(observed("t,FT-1,TS-1\n0,,\n1,\"\",C\n"), ElementsAre("", "main.heat=cold"));
    EXPECT_THAT(observed("t,name,value\n0,FT-1,\n"), ElementsAre(""));
}

TEST(Steps, WithoutATimeAreAStepLengthApart)
{
    EXPECT_THAT(readText("{}\n{}\n{\"t\": 2.5}\n{}\n"),
                ElementsAre(HasSubstr("1 t=0 "), HasSubstr("2 t=1 "), HasSubstr("3 t=2.5 "),
                            HasSubstr("4 t=3.5 ")));
}

TEST(Steps, TellOfAGapOfMoreThanThreeStepLengths)
{
    EXPECT_THAT(observed("{}"), ElementsAre(""));
    const std::vector<std::string> steps =
        readText("{\"t\": 10}\n{\"t\": 13}\n{\"t\": 16.25}\n{\"t\": 16.5}\n");
    ASSERT_EQ(steps.size(), 4U);
    EXPECT_THAT(steps[0], testing::Not(HasSubstr("gap")));
    EXPECT_THAT(steps[1], testing::Not(HasSubstr("gap")));
    EXPECT_THAT(steps[2], HasSubstr(" gap 3.25"));
    EXPECT_THAT(steps[3], testing::Not(HasSubstr("gap")));
}

TEST(Steps, LeaveAValueOnlyByMoreThanTheHysteresis)
{
    EXPECT_THAT(
        observed("t,FT-1\n0,0.5\n1,1.1\n2,1.3\n3,0.9\n4,0.7\n5,4.9\n6,\n7,5.1\n8,6\n9,4.9\n"),
        ElementsAre("main.flow=zero", "main.flow=zero", "main.flow=low", "main.flow=low",
                    "main.flow=zero", "main.flow=low", "", "main.flow=low", "main.flow=high",
                    "main.flow=high"));
}

TEST(Steps, TakeTheHysteresisFromATextToo)
{
    EXPECT_THAT(observed("t,FT-1\n0,low\n1,0.9\n"), ElementsAre("main.flow=low", "main.flow=low"));
}

TEST(Steps, HoldAReadingUpToItsAge)
{
    EXPECT_THAT(observed("t,FT-2\n0,2\n1,\n3,\n3.1,\n4,0\n7,\n"),
                ElementsAre("branch/valve.flow=low", "branch/valve.flow=low held",
                            "branch/valve.flow=low held", "", "branch/valve.flow=zero",
                            "branch/valve.flow=zero held"));
}

// 0.8 - 0.6 is a little more than 0.2.
TEST(Steps, HoldAReadingInSpiteOfRounding)
{
    const language::ReadResult plant = readPlant(
        "component C {\n cond v: a, b\n}\nsystem S {\n c: C\n observe c.v hold 0.2 s\n}\n");
    const TemporaryFile file("t,c.v\n0.6,a\n0.8,\n");
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader),
                ElementsAre(HasSubstr("saw [c.v=a]"), HasSubstr("saw [c.v=a held]")));
}

TEST(Steps, HoldCommandsThatSayIt)
{
    EXPECT_THAT(readText("t,branch.valve.request,XV-1\n0,open,1\n2,,\n3,,\n"),
                ElementsAre(HasSubstr("[main.request=open branch/valve.request=open] given "
                                      "[main.request=open branch/valve.request=open]"),
                            HasSubstr("[main.request=none branch/valve.request=open] given []"),
                            HasSubstr("[main.request=none branch/valve.request=none] given []")));
}

TEST(Steps, TakeReadingsThatSayTheSame)
{
    EXPECT_THAT(observed(R"({"observations": {"FT-1": 0.5, "main.flow": "zero"}})"),
                ElementsAre("main.flow=zero"));
    EXPECT_THAT(observed("t,name,value\n0,FT-1,0.1\n0,FT-1,0.2\n"), ElementsAre("main.flow=zero"));
}

TEST(Steps, TakeACellAsATextThatIsMappedBeforeANumber)
{
    const language::ReadResult plant =
        readPlant("component C {\n cond v: a, b\n}\nsystem S {\n c: C\n"
                  " observe c.v from \"X\" : a = \"1\", b = 1\n}\n");
    const TemporaryFile table("t,X\n0,1\n1,1.0\n");
    telemetry::StepReader reader(table.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader), ElementsAre(HasSubstr("c.v=a"), HasSubstr("c.v=b")));
}

TEST(Steps, GiveAChannelOfSeveralVariablesToAllOfThem)
{
    const language::ReadResult plant = readPlant(
        "component C {\n cond v: a, b\n cond w: c, d\n}\nsystem S {\n c: C\n"
        " observe c.v from \"X\" : a < 1 <= b\n observe c.w from \"X\" : c < 2 <= d\n}\n");
    const TemporaryFile table("t,X\n0,1.5\n1,oops\n");
    telemetry::StepReader reader(table.path(), *plant.model, plant.bindings, strict);
    const std::vector<std::string> all = readAll(reader);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_THAT(all[0], HasSubstr("saw [c.v=b c.w=c]"));
    EXPECT_THAT(all[1], HasSubstr("the value of 'X' is 'oops'"));
}

TEST(Steps, TakeTrueAndFalseForTexts)
{
    const language::ReadResult plant =
        readPlant("component C {\n cond v: off, on\n}\nsystem S {\n c: C\n"
                  " observe c.v : off = \"false\", on = \"true\"\n}\n");
    const TemporaryFile file(
        "{\"observations\": {\"c.v\": true}}\n{\"observations\": {\"c.v\": false}}\n");
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader), ElementsAre(HasSubstr("c.v=on"), HasSubstr("c.v=off")));
}

TEST(Steps, OfAnEmptyInputAreNone)
{
    EXPECT_THAT(readText(""), IsEmpty());
    EXPECT_THAT(readText("\n  \n\n"), IsEmpty());
    EXPECT_THAT(readText("t,FT-1\n"), IsEmpty());
    EXPECT_THAT(readText("t,name,value\n"), IsEmpty());
}

} // namespace
