// Files as loggers write them: names that the model does not have, cells that are no numbers, other separators and times.
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using telemetry::ReadSettings;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct LoggerRead {
    std::vector<std::string> steps;   ///< and mistakes
    std::vector<std::string> notes;   ///< without the name of the file
    std::vector<std::string> summary; ///< the same
};

std::vector<std::string> noteTexts(const std::vector<text::Diagnostic>& notes,
                                   const std::string& file)
{
    std::vector<std::string> all;
    for (const text::Diagnostic& note : notes) {
        EXPECT_EQ(note.file, file);
        all.push_back(note.format().substr(file.size() + 2));
    }
    return all;
}

LoggerRead readLogger(const std::string& text, const ReadSettings& settings = {})
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file(text);
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, settings);
    LoggerRead result;
    result.steps = readAll(reader);
    result.notes = noteTexts(reader.takeNotes(), file.path());
    result.summary = noteTexts(reader.noteSummary(), file.path());
    return result;
}

std::string sawOf(const std::string& step)
{
    const std::size_t begin = step.find("saw [");
    return begin == std::string::npos ? step
                                      : step.substr(begin + 5, step.find(']', begin) - begin - 5);
}

std::vector<std::string> seenLogger(const LoggerRead& result)
{
    std::vector<std::string> all;
    for (const std::string& step : result.steps) {
        all.push_back(sawOf(step));
    }
    return all;
}

std::vector<std::string> timesOf(const std::string& text, const ReadSettings& settings = {})
{
    std::vector<std::string> all;
    for (const std::string& step : readLogger(text, settings).steps) {
        const std::size_t begin = step.find("t=");
        all.push_back(
            begin == std::string::npos ? step : step.substr(begin, step.find(' ', begin) - begin));
    }
    return all;
}

TEST(LoggerFiles, HaveColumnsThatAreOfNoUseHere)
{
    const LoggerRead result = readLogger("t,PT-7,FT-1,,operator\n0,3,0.5,,Smith\n1,,2,,\n");
    EXPECT_THAT(seenLogger(result), ElementsAre("main.flow=zero", "main.flow=low"));
    EXPECT_THAT(result.notes, ElementsAre("3 columns are not known to the model, and are passed "
                                          "over: 'PT-7', '', 'operator'\n"));
}

TEST(LoggerFiles, AreToldOfColumnsThatAreNearlyThoseOfTheModel)
{
    const LoggerRead result = readLogger("t,FT-1,FT2\n0,0.5,1\n");
    EXPECT_THAT(result.notes,
                ElementsAre("column 'FT2' is not known\n  hint: did you mean 'FT-2'?\n",
                            StartsWith("1 column is not known to the model")));
}

TEST(LoggerFiles, AreNotToldOfColumnsThatAreNearToOneThatIsThere)
{
    const LoggerRead result = readLogger("t,FT-1,FT-2,FT-3\n0,0.5,1,1\n");
    EXPECT_THAT(result.notes, ElementsAre(StartsWith("1 column is not known to the model")));
}

TEST(LoggerFiles, OfWhichTheModelKnowsNothingAreMistakes)
{
    EXPECT_THAT(readLogger("t,A-1,A-2\n0,0.5,1\n").steps,
                ElementsAre(HasSubstr(":1:3: the model knows no column of this header\n")));
}

TEST(LoggerFiles, HaveKeysThatAreOfNoUseHere)
{
    const LoggerRead result =
        readLogger("{\"t\": 0, \"observations\": {\"FT-1\": 0.5, \"site\": {\"a\": [1, "
                   "{\"b\": null}], \"c\": true}, \"P\": [[], 2]}}\n"
                   "{\"t\": 1, \"observations\": {\"FT-1\": 2, \"P\": 7, \"ft_2\": \"x\"}}\n");
    EXPECT_THAT(seenLogger(result), ElementsAre("main.flow=zero", "main.flow=low"));
    EXPECT_THAT(result.notes, ElementsAre("'ft_2' is not known\n  hint: did you mean 'FT-2'?\n"));
    EXPECT_THAT(result.summary, ElementsAre("3 names are not known to the model, and are passed "
                                            "over: 'P', 'ft_2', 'site'\n"));
}

TEST(LoggerFiles, HaveRowsWithNamesThatAreOfNoUseHere)
{
    const LoggerRead result = readLogger("t,name,value\n0,FT-1,0.5\n0,P,x\n1,P,y\n2,FT-1,2\n");
    EXPECT_THAT(seenLogger(result), ElementsAre("main.flow=zero", "", "main.flow=low"));
    EXPECT_THAT(result.summary,
                ElementsAre("1 name is not known to the model, and is passed over: 'P'\n"));
}

TEST(LoggerFiles, HaveTheirHeaderAgainWhereTheLoggerWasStartedAnew)
{
    const LoggerRead wide = readLogger("t,FT-1,P\n0,0.5,1\nt,FT-1,P\n1,2,1\nt,FT-1,P\n2,0.5,1\n");
    EXPECT_THAT(seenLogger(wide), ElementsAre("main.flow=zero", "main.flow=low", "main.flow=zero"));
    EXPECT_THAT(wide.summary, ElementsAre("the header is there 2 times more, and is passed over; "
                                          "first in line 3\n"));
    const LoggerRead rows = readLogger("t,name,value\n0,FT-1,0.5\nt,name,value\n1,FT-1,2\n");
    EXPECT_THAT(seenLogger(rows), ElementsAre("main.flow=zero", "main.flow=low"));
    EXPECT_THAT(
        rows.summary,
        ElementsAre("the header is there once more, and is passed over; first in line 3\n"));
}

TEST(LoggerFiles, HaveColumnsThatAreCalledOtherwiseThanInTheModel)
{
    ReadSettings settings;
    settings.renamed = {{"Main flow", "FT-1"}, {"FT-1", "FT-2"}, {"Level", "no channel"}};
    const LoggerRead table = readLogger("t,Main flow,FT-1\n0,0.5,2\n", settings);
    EXPECT_THAT(seenLogger(table), ElementsAre("main.flow=zero branch/valve.flow=low"));
    const LoggerRead lines =
        readLogger("{\"observations\": {\"Main flow\": 2, \"Level\": 1}}\n", settings);
    EXPECT_THAT(seenLogger(lines), ElementsAre("main.flow=low"));
    EXPECT_THAT(lines.summary,
                ElementsAre("1 name is not known to the model, and is passed over: 'Level'\n"));
}

TEST(LoggerFiles, HaveCellsThatAreNoNumbers)
{
    const LoggerRead result =
        readLogger("t,FT-1,FT-2\n0,Bad Input,0.5\n1,NaN,low\n2,#N/A,inf\n3,2,2\n");
    EXPECT_THAT(seenLogger(result),
                ElementsAre("branch/valve.flow=zero", "branch/valve.flow=low",
                            "branch/valve.flow=low held", "main.flow=low branch/valve.flow=low"));
    EXPECT_THAT(result.summary,
                ElementsAre("3 readings of 'FT-1' are no number, and count as not observed; the "
                            "first is 'Bad Input'\n",
                            "1 reading of 'FT-2' is no number, and counts as not observed; the "
                            "first is 'inf'\n"));
}

TEST(LoggerFiles, HaveTextsThatAreNoNumbersInJsonToo)
{
    const LoggerRead result = readLogger("{\"observations\": {\"FT-1\": \"2.5\"}}\n"
                                         "{\"observations\": {\"FT-1\": false}}\n");
    EXPECT_THAT(seenLogger(result), ElementsAre("", ""));
    EXPECT_THAT(result.summary, ElementsAre(StartsWith("2 readings of 'FT-1' are no number")));
}

TEST(LoggerFiles, HaveNoOtherTextsForTextsAndNumbersThatMeanSomething)
{
    EXPECT_THAT(readLogger("t,TS-1\n0,Bad\n").steps,
                ElementsAre(HasSubstr("the value of 'TS-1' is 'Bad'")));
    EXPECT_THAT(readLogger("t,main.position\n0,3\n").steps,
                ElementsAre(HasSubstr("the value of 'main.position' is '3'")));
}

TEST(LoggerFiles, AreSeparatedBySemicolonsOrTabs)
{
    const LoggerRead semicolons = readLogger("t;FT-1;TS-1\n0;0.5;C\n1;\"2\" ;\n");
    EXPECT_THAT(seenLogger(semicolons),
                ElementsAre("main.flow=zero main.heat=cold", "main.flow=low"));
    EXPECT_THAT(semicolons.notes, ElementsAre("the cells are separated by semicolons\n"));
    const LoggerRead tabs = readLogger("t\tFT-1\tTS-1\n0\t0.5\tC\n1\t\tC\n");
    EXPECT_THAT(seenLogger(tabs), ElementsAre("main.flow=zero main.heat=cold", "main.heat=cold"));
    EXPECT_THAT(tabs.notes, ElementsAre("the cells are separated by tabs\n"));
}

TEST(LoggerFiles, AreSeparatedAsTheSettingsSay)
{
    const LoggerRead result = readLogger("t;FT,1\n0;1\n", {.separator = ','});
    EXPECT_THAT(result.steps, ElementsAre(HasSubstr("neither a step nor a header with 't'")));
    EXPECT_THAT(readLogger("\"t\";\"FT-1\"x\n", {.separator = ';'}).steps,
                ElementsAre(HasSubstr("expected: a semicolon, or the end of the line")));
}

TEST(LoggerFiles, HaveDecimalCommas)
{
    const ReadSettings comma{.decimal = ','};
    const LoggerRead result = readLogger("t;FT-1;XV-1\n0,5;0,5;1\n1;1.234;0\n2;+2,5;\n", comma);
    EXPECT_THAT(seenLogger(result), ElementsAre("main.flow=zero", "", "main.flow=low"));
    EXPECT_THAT(result.steps.front(), StartsWith("1 t=0.5 [main.request=open"));
    EXPECT_THAT(result.summary, ElementsAre(HasSubstr("the first is '1.234'")));
    EXPECT_THAT(readLogger("t;FT-1\n0;0,5\n").summary,
                ElementsAre(HasSubstr("\n  hint: with --decimal , it is one\n")));
}

TEST(LoggerFiles, HaveTheTimeInAColumnOfAnotherName)
{
    const LoggerRead found = readLogger("FT-1,TimeStamp\n0.5,3\n");
    EXPECT_THAT(found.steps, ElementsAre(StartsWith("1 t=3 ")));
    EXPECT_THAT(found.notes, ElementsAre("the times are read from column 'TimeStamp'\n"));
    const LoggerRead said = readLogger("FT-1,time,when\n0.5,7,3\n", {.timeColumn = "when"});
    EXPECT_THAT(said.steps, ElementsAre(StartsWith("1 t=3 ")));
    EXPECT_THAT(said.notes, ElementsAre(HasSubstr("passed over: 'time'")));
    EXPECT_THAT(readLogger("t,FT-1\n", {.timeColumn = "tt"}).steps,
                ElementsAre(HasSubstr("the header has no column 'tt'")));
    EXPECT_THAT(timesOf("{\"when\": 4}\n", {.timeColumn = "when"}), ElementsAre("t=4"));
    EXPECT_THAT(timesOf("time,name,value\n2,FT-1,1\n"), ElementsAre("t=2"));
}

TEST(LoggerFiles, HaveTimesInMilliseconds)
{
    EXPECT_THAT(timesOf("t,FT-1\n1500,1\n", {.timeFormat = "milliseconds"}), ElementsAre("t=1.5"));
    EXPECT_THAT(timesOf("{\"t\": 1500}\n", {.timeFormat = "milliseconds"}), ElementsAre("t=1.5"));
    EXPECT_THAT(timesOf("time,FT-1\n1714564800500,1\n"), ElementsAre("t=1714564800.5"));
    EXPECT_THAT(timesOf("t,FT-1\n1714564800500,1\n"), ElementsAre("t=1714564800500"));
}

TEST(LoggerFiles, HaveTimesInIso8601)
{
    const LoggerRead result =
        readLogger("t,FT-1\n1970-01-02T00:00:00Z,1\n1970-01-02 02:30:01.5+02:00,1\n"
                   "1970-01-03,1\n1970-01-03T01:00,1\n1970-01-03T00:30:00-0130,1\n");
    EXPECT_THAT(result.notes, ElementsAre("the times are read as ISO 8601\n"));
    EXPECT_THAT(timesOf("t,FT-1\n1970-01-02T00:00:00Z,1\n1970-01-02 02:30:01.5+02:00,1\n"
                        "1970-01-03,1\n1970-01-03T01:00,1\n1970-01-03T00:30:00-0130,1\n"),
                ElementsAre("t=86400", "t=88201.5", "t=172800", "t=176400", "t=180000"));
    EXPECT_THAT(
        readLogger("t,FT-1\n1970-01-02T00:00:00,1\n").notes,
        ElementsAre("the times are read as ISO 8601, and as UTC where they name no zone\n"));
    EXPECT_THAT(timesOf("{\"t\": \"1970-01-02T00:00:00Z\"}\n"), ElementsAre("t=86400"));
}

TEST(LoggerFiles, HaveNoTimesThatAreNone)
{
    for (const char* bad : {"1970-02-30T00:00:00Z", "1970-01-02T00:00:00Zx", "1970-01-02T24:61",
                            "1970-01-02T", "1970-1-", "1970-01-02T00:00:00+"}) {
        EXPECT_THAT(timesOf(std::string("t,FT-1\n") + bad + ",1\n", {.timeFormat = "iso8601"}),
                    ElementsAre(HasSubstr("expected: a date and time such as")))
            << bad;
    }
}

TEST(LoggerFiles, HaveTimesByAPattern)
{
    const ReadSettings american{.timeFormat = "%m/%d/%Y %H:%M:%S"};
    EXPECT_THAT(timesOf("t,FT-1\n1/2/1970 00:00:01,1\n01/02/1970 00:00:01.250,1\n", american),
                ElementsAre("t=86401", "t=86401.25"));
    EXPECT_THAT(timesOf("t,FT-1\n13/02/1970 00:00:01,1\n", american),
                ElementsAre(HasSubstr("expected: a date and time as '%m/%d/%Y %H:%M:%S' says")));
    EXPECT_THAT(timesOf("t,FT-1\n2. Jan 70 01:00:00 PM +0100,1\n",
                        {.timeFormat = "%d. %b %y %I:%M:%S %p %z"}),
                ElementsAre("t=129600"));
}

TEST(LoggerFiles, AreAskedWhetherTheMonthComesFirst)
{
    EXPECT_THAT(timesOf("t,FT-1\n01/02/1970 00:00:01,1\n"),
                ElementsAre(HasSubstr("hint: --time-format '%m/%d/%Y %H:%M:%S', or '%d/%m/%Y ")));
    EXPECT_THAT(timesOf("t,FT-1\n31/01/1970 00:00:01,1\n"),
                ElementsAre(HasSubstr("hint: --time-format '%d/%m/%Y %H:%M:%S'\n")));
    EXPECT_THAT(timesOf("t,FT-1\n31.01.1970 00:00:01,1\n"),
                ElementsAre(HasSubstr("hint: --time-format '%d.%m.%Y %H:%M:%S'\n")));
}

TEST(LoggerFiles, HavePatternsThatAreKnown)
{
    EXPECT_FALSE(telemetry::TimeFormat::mistakeIn("%FT%T"));
    EXPECT_TRUE(telemetry::TimeFormat::mistakeIn("%Q"));
    EXPECT_TRUE(telemetry::TimeFormat::mistakeIn("%Y %"));
    EXPECT_TRUE(telemetry::TimeFormat::mistakeIn("%s"));
    EXPECT_TRUE(telemetry::TimeFormat::mistakeIn("minutes"));
}

TEST(LoggerFiles, HaveMistakesOfPatternsShownByWholeCharacters)
{
    const auto shown = [](const char* format) {
        return telemetry::TimeFormat::mistakeIn(format).value_or(text::Message{}).message;
    };
    EXPECT_EQ(shown("%Y-%Q"), "'%Q' in a pattern of times");
    EXPECT_EQ(shown("%\u00fc"), "'%\u00fc' in a pattern of times");
    EXPECT_EQ(shown("%\xfc"), "'%?' in a pattern of times");
    EXPECT_EQ(shown("%\x1b"), "'%?' in a pattern of times");
    EXPECT_EQ(shown("%Y %"), "'%' in a pattern of times");
}

TEST(LoggerFiles, MayMissABeat)
{
    EXPECT_THAT(readLogger("{\"t\": 0}\n{\"t\": 2}\n", {.gapSteps = 1.5}).steps.back(),
                HasSubstr(" gap 2"));
    EXPECT_THAT(readLogger("{\"t\": 0}\n{\"t\": 3}\n{\"t\": 6.5}\n").steps,
                ElementsAre(testing::_, testing::Not(HasSubstr("gap")), HasSubstr(" gap 3.5")));
}

TEST(LoggerFiles, WithoutAnythingToTellHaveNoNotes)
{
    const LoggerRead result = readLogger("t,FT-1\n0,1\n");
    EXPECT_THAT(result.notes, IsEmpty());
    EXPECT_THAT(result.summary, IsEmpty());
}

} // namespace
