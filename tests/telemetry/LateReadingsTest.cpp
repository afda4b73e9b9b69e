// Values that are known only when all of a step was read: computed ones, limits that are computed, and those that wait.
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string tankText =
    "component Tank {\n cond level: low, ok, high\n cond flow: no, yes\n}\n"
    "system S {\n t: Tank\n step 1 s\n";

struct LateRead {
    std::vector<std::string> seen; ///< of each step; of a mistake its text
    std::vector<std::string> notes;
};

LateRead readLate(const std::string& bindings, const std::string& text,
                  const telemetry::ReadSettings& settings = {})
{
    const language::ReadResult plant = readPlant(tankText + bindings + "}\n");
    const TemporaryFile file(text);
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, settings);
    LateRead result;
    for (const std::string& step : readAll(reader)) {
        const std::size_t begin = step.find("saw [");
        result.seen.push_back(begin == std::string::npos
                                  ? step
                                  : step.substr(begin + 5, step.find(']', begin) - begin - 5));
    }
    for (const text::Diagnostic& note : reader.noteSummary()) {
        result.notes.push_back(note.message);
    }
    return result;
}

std::vector<std::string> seenLate(const std::string& bindings, const std::string& text)
{
    return readLate(bindings, text).seen;
}

// The numbers of each step's channels, "A 3, B 4".
std::vector<std::string> numbers(const std::string& bindings, const std::string& text)
{
    const language::ReadResult plant = readPlant(tankText + bindings + "}\n");
    const TemporaryFile file(text);
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    std::vector<std::string> all;
    for (auto next = reader.next(); std::holds_alternative<telemetry::Step>(next);
         next = reader.next()) {
        std::string& shown = all.emplace_back();
        for (const telemetry::ChannelNumber& one : std::get<telemetry::Step>(next).numbers) {
            shown += (shown.empty() ? "" : ", ") + one.channel->channel + " " +
                     std::to_string(static_cast<int>(one.number));
        }
    }
    return all;
}

TEST(LateReadings, AreAmongTheNumbersOfAStepOnceTheyHaveSettledWhetherOrNotTheyCountYet)
{
    EXPECT_THAT(numbers("observe t.level from \"A\" : low < 1 <= ok < 5 <= high for 2 s\n"
                        "observe t.flow from \"B\" : no < 1 <= yes settled 1 s after \"C\"\n",
                        "t,A,B,C\n0,3,4,1\n1,8,4,1\n2,,4,1\n3,3,4,2\n"),
                ElementsAre("A 3", "A 8, B 4", "B 4", "A 3"));
}

TEST(LateReadings, AreComputedFromChannels)
{
    const std::string binding =
        "observe t.level from (\"A\" - \"B\") / 2 : low < 1 <= ok < 5 <= high\n";
    EXPECT_THAT(seenLate(binding, "t,A,B\n0,3,2\n1,8,2\n2,8,\n3,20,2\n"),
                ElementsAre("t.level=low", "t.level=ok", "", "t.level=high"));
    EXPECT_THAT(seenLate(binding, "{\"observations\": {\"A\": 3, \"B\": 2}}\n"
                                  "{\"observations\": {\"A\": 8}, \"commands\": {\"B\": 2}}\n"),
                ElementsAre("t.level=low", "t.level=ok"));
    EXPECT_THAT(seenLate(binding, "t,name,value\n0,A,3\n0,B,2\n1,B,2\n1,A,8\n"),
                ElementsAre("t.level=low", "t.level=ok"));
}

TEST(LateReadings, AreNotThereWhereTheResultIsNoNumber)
{
    EXPECT_THAT(seenLate("observe t.flow from \"A\" / \"B\" : no < 1 <= yes\n",
                         "t,A,B\n0,1,0\n1,0,0\n2,4,2\n"),
                ElementsAre("", "", "t.flow=yes"));
}

TEST(LateReadings, HaveLimitsThatAreComputed)
{
    const std::string binding =
        "observe t.level from \"L\" : low < \"SP\" - 1 <= ok < \"SP\" + 1 <= high\n";
    EXPECT_THAT(seenLate(binding, "t,L,SP\n0,5,5\n1,5,7\n2,5,3\n3,5,\n4,,5\n"),
                ElementsAre("t.level=ok", "t.level=low", "t.level=high", "", ""));
}

TEST(LateReadings, AreNotThereWhereTheLimitsDoNotRise)
{
    EXPECT_THAT(seenLate("observe t.level from \"L\" : low < \"A\" <= ok < \"B\" <= high\n",
                         "t,L,A,B\n0,5,4,6\n1,5,6,4\n2,5,4,4\n"),
                ElementsAre("t.level=ok", "", ""));
}

TEST(LateReadings, MayBeGivenThemselves)
{
    const std::string binding = "observe t.flow from \"A\" + 1 : no < 2 <= yes\n";
    EXPECT_THAT(seenLate(binding, "t,A,t.flow\n0,5,\n1,5,no\n2,,1\n"),
                ElementsAre("t.flow=yes", "t.flow=no", "t.flow=no"));
}

TEST(LateReadings, OfAChannelThatIsObservedAreBothThere)
{
    EXPECT_THAT(seenLate("observe t.level from \"A\" : low < 1 <= ok < 5 <= high\n"
                         "observe t.flow from abs(\"A\") : no < 2 <= yes\n",
                         "t,A\n0,-5\n1,1\n"),
                ElementsAre("t.level=low t.flow=yes", "t.level=ok t.flow=no"));
}

TEST(LateReadings, AreHeldAsOthersAre)
{
    EXPECT_THAT(seenLate("observe t.flow from \"A\" + \"B\" : no < 2 <= yes hold 1 s\n",
                         "t,A,B\n0,5,5\n1,5,\n2,5,\n"),
                ElementsAre("t.flow=yes", "t.flow=yes held", ""));
}

TEST(LateReadings, OfOperandsThatAreNoNumbersAreNotThere)
{
    const std::string binding = "observe t.flow from \"A\" + \"B\" : no < 2 <= yes\n";
    const LateRead result = readLate(binding, "t,A,B\n0,5,Bad\n");
    EXPECT_THAT(result.seen, ElementsAre(""));
    EXPECT_THAT(result.notes, ElementsAre(HasSubstr("1 reading of 'B' is no number")));
    EXPECT_THAT(readLate(binding, "t,A,B\n0,5,Bad\n", strict).seen,
                ElementsAre(HasSubstr("the value of 'B' is 'Bad'")));
}

TEST(LateReadings, CountOnlyWhenTheyLast)
{
    const std::string binding = "observe t.flow from \"A\" : no < 2 <= yes for 2 s\n";
    EXPECT_THAT(
        seenLate(binding, "t,A\n0,1\n1,1\n2,1\n3,5\n4,1\n5,5\n6,5\n7,5\n8,5\n"),
        ElementsAre("", "", "t.flow=no", "", "t.flow=no", "", "", "t.flow=yes", "t.flow=yes"));
}

TEST(LateReadings, ThatDoNotLastAreNotHeld)
{
    EXPECT_THAT(seenLate("observe t.flow from \"A\" : no < 2 <= yes hold 9 s for 1 s\n",
                         "t,A\n0,1\n1,1\n2,5\n3,\n6,5\n7,5\n"),
                ElementsAre("", "t.flow=no", "", "t.flow=no held", "", "t.flow=yes"));
}

TEST(LateReadings, LastOnlyWithoutAHole)
{
    EXPECT_THAT(seenLate("observe t.flow from \"A\" : no < 2 <= yes for 4 s\n",
                         "t,A\n0,1\n1,1\n5,1\n6,1\n7,1\n8,1\n9,1\n"),
                ElementsAre("", "", "", "", "", "", "t.flow=no"));
}

TEST(LateReadings, WaitUntilOtherChannelsHaveSettled)
{
    const std::string binding =
        "observe t.flow from \"A\" : no < 2 <= yes settled 2 s after \"C\", \"D\"\n";
    EXPECT_THAT(
        seenLate(binding, "t,A,C,D\n0,5,1,\n1,5,1,\n2,5,,\n3,5,1,on\n4,5,0,on\n5,5,0,\n6,5,0,on\n"),
        ElementsAre("", "", "t.flow=yes", "", "", "", "t.flow=yes"));
}

TEST(LateReadings, BeginToLastWhenTheOthersHaveSettled)
{
    EXPECT_THAT(
        seenLate("observe t.flow from \"A\" : no < 2 <= yes for 1 s settled 2 s after \"C\"\n",
                 "t,A,C\n0,5,1\n1,5,1\n2,5,1\n3,5,1\n"),
        ElementsAre("", "", "", "t.flow=yes"));
}

TEST(LateReadings, WaitForACommandThatIsBound)
{
    const language::ReadResult plant =
        readPlant("component P {\n command go: no, yes\n cond flow: no, yes\n}\nsystem S {\n p: "
                  "P\n step 1 s\n"
                  " command p.go from \"C\" : yes = 1, no otherwise\n"
                  " observe p.flow from \"A\" : no < 2 <= yes settled 2 s after \"C\"\n}\n");
    const TemporaryFile file("{\"commands\": {\"C\": 1}, \"observations\": {\"A\": 5}}\n"
                             "{\"observations\": {\"A\": 5}}\n{\"observations\": {\"A\": 5}}\n");
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    EXPECT_THAT(readAll(reader), ElementsAre(HasSubstr("saw []"), HasSubstr("saw []"),
                                             HasSubstr("saw [p.flow=yes]")));
}

const std::string twoChannels = "observe t.flow from \"A\" : no < 2 <= yes hold 1 s\n"
                                "observe t.flow from \"B\" : no < 20 <= yes\n";

TEST(SeveralChannels, OfAVariableAreOneObservation)
{
    EXPECT_THAT(seenLate(twoChannels, "t,A,B\n0,5,\n1,,50\n2,5,50\n3,,\n4,,\n"),
                ElementsAre("t.flow=yes", "t.flow=yes", "t.flow=yes", "t.flow=yes held", ""));
}

TEST(SeveralChannels, ThatSayDifferentThingsAreNoObservation)
{
    const LateRead result = readLate(twoChannels, "t,A,B\n0,5,5\n1,1,5\n2,1,50\n");
    EXPECT_THAT(result.seen, ElementsAre("", "t.flow=no", ""));
    EXPECT_THAT(result.notes,
                ElementsAre("the channels of 't.flow' say different things in 2 steps, and "
                            "it counts as not observed there; at first they are yes and no"));
}

TEST(SeveralChannels, LetAHeldReadingGiveWay)
{
    EXPECT_THAT(seenLate(twoChannels, "t,A,B\n0,5,\n1,,5\n"),
                ElementsAre("t.flow=yes", "t.flow=no"));
}

TEST(SeveralChannels, OfAVariableThatIsNamedItselfAreItsFirst)
{
    EXPECT_THAT(seenLate(twoChannels, "t,t.flow\n0,5\n1,no\n"),
                ElementsAre("t.flow=yes", "t.flow=no"));
}

TEST(LateReadings, GoOnFromTheStateOfAReader)
{
    const language::ReadResult plant = readPlant(
        tankText + "observe t.level from mean(\"A\") over 2 s : low < 1 <= ok < 5 <= high for 1 s\n" +
        twoChannels +
        "observe t.flow from rate(\"A\") over 1 s : no < 3 <= yes settled 1 s after \"C\"\n}\n");
    std::string text = "t,A,B,C\n";
    for (int i = 0; i < 40; ++i) {
        text += fmt::format("{},{},{},{}\n", i, (i * 7) % 11, i % 3 == 0 ? "" : std::to_string(i),
                            i % 13 < 5 ? 1 : 2);
    }
    const TemporaryFile file(text);
    telemetry::StepReader whole(file.path(), *plant.model, plant.bindings);
    std::vector<std::string> all = readAll(whole);
    ASSERT_EQ(all.size(), 40U);
    for (std::size_t cut = 0; cut < all.size(); ++cut) {
        telemetry::StepReader first(file.path(), *plant.model, plant.bindings);
        for (std::size_t i = 0; i < cut; ++i) {
            first.next();
        }
        telemetry::StepReader rest(file.path(), *plant.model, plant.bindings);
        rest.restore(first.state());
        EXPECT_EQ(readAll(rest), std::vector<std::string>(
                                     all.begin() + static_cast<std::ptrdiff_t>(cut), all.end()))
            << cut;
        EXPECT_EQ(rest.state(), whole.state()) << cut;
    }
}

TEST(LateReadings, RefuseAStateThatIsNotTheirs)
{
    const language::ReadResult plant = readPlant(
        tankText + "observe t.flow from mean(\"A\") over 2 s : no < 2 <= yes for 2 s\n}\n");
    telemetry::ReaderState state;
    const auto restore = [&] {
        telemetry::StepReader reader(
            std::make_unique<telemetry::LineVector>(std::vector<std::string>()), *plant.model,
            plant.bindings);
        reader.restore(state);
    };
    EXPECT_THROW(restore(), std::invalid_argument);
    state.windows.emplace_back();
    EXPECT_NO_THROW(restore());
    state.pending.push_back({"t.flow", 1, "no", 0, 0});
    EXPECT_THROW(restore(), std::invalid_argument);
    state.pending.front().binding = 0;
    EXPECT_NO_THROW(restore());
    state.settling.push_back({"A2", "1", 0});
    EXPECT_THROW(restore(), std::invalid_argument);
}

} // namespace
