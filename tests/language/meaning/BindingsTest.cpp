// Readings and commands as values, and what a reader warns of.
#include "language/Reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace {

using language::ReadResult;
using plant::ChannelBinding;
using testing::ElementsAre;
using testing::IsEmpty;

ReadResult readSystem(const std::string& members)
{
    ReadResult result = language::readModelText(
        "test.itms", "component Tank {\n command fill: none, open, close lost 0.25\n"
                     " cond level: low, middle, high\n}\n"
                     "system S {\n tank[2]: Tank\n" +
                         members + "\n}\n");
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.model) throw std::runtime_error("there is no model");
    return result;
}

std::string read(const ReadResult& result, double number, const char* last = nullptr)
{
    const ChannelBinding& binding = result.bindings.channels.front();
    const Atom* before = nullptr;
    for (const Atom* atom : *binding.variable->atomLinks) {
        if (last && atom->value == last) before = atom;
    }
    const Atom* atom = binding.read(number, before);
    return atom ? atom->value : "";
}

std::vector<std::string> warnings(const std::string& text)
{
    std::vector<std::string> messages;
    const ReadResult result = language::readModelText("test.itms", text);
    EXPECT_TRUE(result.model);
    for (const text::Diagnostic& warning : result.warnings) {
        messages.push_back(std::to_string(warning.place.line) + ": " + warning.message);
    }
    return messages;
}

TEST(Thresholds, PutTheNumberOfALimitOnTheSideOfItsEqualsSign)
{
    const ReadResult result =
        readSystem(R"(observe tank[0].level from "L" : low < 1 <= middle <= 2 < high)");
    EXPECT_EQ(read(result, 0.99), "low");
    EXPECT_EQ(read(result, 1), "middle");
    EXPECT_EQ(read(result, 2), "middle");
    EXPECT_EQ(read(result, 2.01), "high");
}

TEST(Thresholds, AreLeftOnlyByMoreThanTheHysteresis)
{
    const ReadResult result =
        readSystem(R"(observe tank[0].level from "L" : low < 1 <= middle < 2 <= high within 0.1)");
    EXPECT_EQ(read(result, 1.05, "low"), "low");
    EXPECT_EQ(read(result, 1.11, "low"), "middle");
    EXPECT_EQ(read(result, 0.95, "middle"), "middle");
    EXPECT_EQ(read(result, 0.89, "middle"), "low");
    EXPECT_EQ(read(result, 2.05, "low"), "middle");
    EXPECT_EQ(read(result, 3, "low"), "high");
    EXPECT_EQ(read(result, 0, "high"), "low");
}

TEST(Readings, StandForValues)
{
    const ReadResult result =
        readSystem(R"(command tank[0].fill from "V" : open = 1, close = "CLOSE", none otherwise)");
    const ChannelBinding& binding = result.bindings.channels.front();
    EXPECT_EQ(read(result, 1), "open");
    EXPECT_EQ(read(result, 7), "none");
    EXPECT_EQ(binding.read("CLOSE")->value, "close");
    EXPECT_EQ(binding.read("open")->value, "open");
    EXPECT_EQ(binding.kind, ChannelBinding::Kind::command);
}

TEST(Readings, WithoutATranslationAreTheNamesOfValues)
{
    const ReadResult result = readSystem("observe tank[1].level hold 2 min");
    const ChannelBinding& binding = result.bindings.channels.front();
    EXPECT_EQ(binding.channel, "tank[1].level");
    EXPECT_EQ(binding.read("high")->id, "tank[1].level=high");
    EXPECT_EQ(binding.read("High"), nullptr);
    EXPECT_EQ(binding.read(1.0), nullptr);
    EXPECT_EQ(binding.holdSeconds, 120.0);
}

TEST(Bindings, OfInputsAreObservationsThatSaySo)
{
    const ReadResult result = readSystem("for i in 0..1: input tank[i].level from \"L-{i}\" : low "
                                         "< 1 <= middle <= 2 < high hold 5 s\n");
    ASSERT_EQ(result.bindings.channels.size(), 2U);
    const ChannelBinding& binding = result.bindings.channels.back();
    EXPECT_EQ(binding.kind, ChannelBinding::Kind::observation);
    EXPECT_TRUE(binding.input);
    EXPECT_EQ(binding.channel, "L-1");
    EXPECT_EQ(binding.read(1.0)->id, "tank[1].level=middle");
    EXPECT_EQ(binding.holdSeconds, 5.0);
    EXPECT_FALSE(binding.varies.has_value());
}

TEST(Bindings, OfObservationsAreNoInputs)
{
    const ReadResult result = readSystem("observe tank[0].level");
    EXPECT_FALSE(result.bindings.channels.front().input);
    EXPECT_FALSE(result.bindings.channels.front().varies.has_value());
}

TEST(Bindings, SayHowOftenAReadingChangesPerStep)
{
    const ReadResult result = readSystem("step 10 s\nobserve tank[0].level varies 0.25\n"
                                         "observe tank[1].level from \"L\" varies 36 per hour\n");
    EXPECT_EQ(result.bindings.channels[0].varies, 0.25);
    ASSERT_TRUE(result.bindings.channels[1].varies.has_value());
    EXPECT_DOUBLE_EQ(*result.bindings.channels[1].varies, 1 - std::exp(-0.1));
}

TEST(Bindings, SayHowProbableAWrongReadingIs)
{
    const ReadResult result = readSystem("observe tank[0].level misread 0.25\n"
                                         "input tank[1].level hold 5 s misread 1 / 8\n");
    EXPECT_EQ(result.bindings.channels[0].misread, 0.25);
    EXPECT_EQ(result.bindings.channels[1].misread, 0.125);
}

TEST(Bindings, SayWhatCanBeReadAndHowItScatters)
{
    const ReadResult result = readSystem(
        "observe tank[0].level : low < 1 <= middle < 2 <= high within 0.1 within 0..4 noise 0.5\n"
        "observe tank[1].level : low < 1 <= middle < 2 <= high within -1..4 "
        "noise high = 3..4, low = -1..2 * 0.25\n");
    const ChannelBinding& first = result.bindings.channels[0];
    EXPECT_EQ(std::get<plant::ThresholdTable>(first.translation).hysteresis, 0.1);
    EXPECT_EQ(first.physical->from, 0);
    EXPECT_EQ(first.physical->to, 4);
    EXPECT_EQ(first.noise->deviation, 0.5);
    const ChannelBinding& second = result.bindings.channels[1];
    EXPECT_EQ(std::get<plant::ThresholdTable>(second.translation).hysteresis, 0);
    EXPECT_EQ(second.physical->from, -1);
    ASSERT_EQ(second.noise->ranges.size(), 2U);
    EXPECT_EQ(second.noise->ranges[0].first->value, "low");
    EXPECT_EQ(second.noise->ranges[0].second.to, 0.5);
    EXPECT_EQ(second.noise->ranges[1].first->value, "high");
}

TEST(Bindings, InALoopHaveIndicesInTheNamesOfTheirChannels)
{
    const ReadResult result = readSystem(R"(for i in 0..1: observe tank[i].level from "L-{i + 1}")");
    ASSERT_EQ(result.bindings.channels.size(), 2U);
    EXPECT_EQ(result.bindings.channels[0].channel, "L-1");
    EXPECT_EQ(result.bindings.channels[1].channel, "L-2");
    EXPECT_EQ(result.bindings.channels[1].variable->comp->name, "tank[1]");
}

TEST(Bindings, TellWhichCommandsCanBeLostAndHowLongAStepIs)
{
    const ReadResult result = readSystem("step 0.5 min");
    EXPECT_EQ(result.bindings.stepSeconds, 30.0);
    ASSERT_EQ(result.bindings.lost.size(), 2U);
    EXPECT_EQ(result.bindings.lost.begin()->second, 0.25);
}

const std::string valve = "component Valve {\n mode m { ok initial stuck fault }\n"
                          " cond flow: zero, positive\n fault ok -> stuck : 0.1\n}\n";

TEST(Warnings, AreNoneForASoundModel)
{
    EXPECT_THAT(warnings(valve + "system S {\n a: Valve\n b: Valve\n law a.flow = b.flow\n}\n"),
                IsEmpty());
}

TEST(Warnings, NamePartsThatNothingMentions)
{
    EXPECT_THAT(warnings(valve + "system S {\n a: Valve\n b: Valve\n c: Valve\n"
                                 " law a.flow = b.flow\n}\n"),
                ElementsAre("9: part 'c' is not connected with anything"));
}

TEST(Warnings, NameModesThatNothingLeadsTo)
{
    EXPECT_THAT(warnings("component C {\n mode m { a initial b c d fault }\n nominal b -> c\n"
                         " fault a -> d : 0.1\n}\nsystem S {\n c: C\n}\n"),
                ElementsAre("2: nothing leads to 'm = b'", "2: nothing leads to 'm = c'"));
}

TEST(Warnings, DoNotNameModesThatARepairLeadsTo)
{
    const std::string modes = "component C {\n mode m { a initial b c fault }\n"
                              " fault a -> c : 0.1\n";
    const std::string system = "}\nsystem S {\n c: C\n}\n";
    EXPECT_THAT(warnings(modes + " repair any -> b : 0.1\n" + system), IsEmpty());
    EXPECT_THAT(warnings("component C {\n mode m { a initial b c fault }\n"
                         " repair any -> b : 0.1\n" +
                         system),
                ElementsAre("2: nothing leads to 'm = b'", "2: nothing leads to 'm = c'"));
}

TEST(Warnings, DoNotNameModesThatAnInstanceBeginsWith)
{
    EXPECT_THAT(warnings("component C {\n mode m { a initial b c }\n nominal b -> c\n}\n"
                         "system S {\n c[2]: C\n initially c[1].m = b\n}\n"),
                IsEmpty());
}

TEST(Warnings, NameUnusedComponentsConstantsAndParameters)
{
    EXPECT_THAT(warnings("const p = 1\ncomponent Pipe(q = 2) {\n cond v: a, b\n}\n" + valve +
                         "system S {\n a: Valve\n}\n"),
                ElementsAre("1: constant 'p' is not used", "2: component 'Pipe' is not used",
                            "2: parameter 'q' is not used"));
}

TEST(Warnings, NameLawsThatAlwaysHold)
{
    EXPECT_THAT(warnings("component C {\n cond v: a, b\n law v = a | v = b\n}\n"
                         "system S {\n c: C\n}\n"),
                ElementsAre("3: this law says nothing: it always holds"));
}

} // namespace
