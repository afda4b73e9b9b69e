// What is computed from channels, as the plant has it; and what waits.
#include "language/Reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace {

using language::ReadResult;
using plant::ChannelBinding;
using testing::ElementsAre;

ReadResult readTanks(const std::string& members)
{
    ReadResult result = language::readModelText(
        "test.itms",
        "const half = 0.5\ncomponent Tank {\n cond level: low, high\n cond flow: no, yes\n}\n"
        "system S {\n tank[2]: Tank\n" +
            members + "\n}\n");
    for (const text::Diagnostic& error : result.errors) {
        ADD_FAILURE() << error.format();
    }
    if (!result.model) throw std::runtime_error("there is no model");
    return result;
}

std::string computed(const std::string& expression)
{
    const ReadResult result =
        readTanks("observe tank[0].level from " + expression + " : low < 1 <= high");
    const ChannelBinding& binding = result.bindings.channels.front();
    EXPECT_TRUE(binding.computed);
    if (!binding.computed) return {};
    EXPECT_EQ(binding.channel, plant::textOf(*binding.computed));
    return binding.channel;
}

TEST(ComputedChannelsOfAModel, AreMadeOfChannelsAndNumbers)
{
    EXPECT_EQ(computed("\"A\" - \"B\" * 2 + 1"), "(\"A\" - (\"B\" * 2)) + 1");
    EXPECT_EQ(computed("-(\"A\" - half) / (half * 4)"), "(-(\"A\" - 0.5)) / 2");
    EXPECT_EQ(computed("abs(\"A\") + min(\"A\", 2 - 1, \"B\")"),
              "abs(\"A\") + min(\"A\", 1, \"B\")");
    EXPECT_EQ(computed("max(\"A \\\" B\", 1) - 0"), "max(\"A \\\" B\", 1) - 0");
}

TEST(ComputedChannelsOfAModel, LookBackInTime)
{
    EXPECT_EQ(computed("mean(\"A\") over 5 min"), "mean(\"A\") over 300 s");
    EXPECT_EQ(computed("min(\"A\") over 2 * half h"), "min(\"A\") over 3600 s");
    EXPECT_EQ(computed("spread(rate(\"A\") over 1 min) over 1 week"),
              "spread(rate(\"A\") over 60 s) over 604800 s");
    EXPECT_EQ(computed("\"A\" ago 10 min - \"A\""), "\"A\" ago 600 s - \"A\"");
    EXPECT_EQ(computed("(\"A\" + 1) ago 2 s / 3"), "(\"A\" + 1) ago 2 s / 3");
}

TEST(ComputedChannelsOfAModel, AreNoneWhereAChannelStandsAlone)
{
    const ReadResult result = readTanks("observe tank[0].level from (\"A\")");
    EXPECT_FALSE(result.bindings.channels.front().computed);
    EXPECT_EQ(result.bindings.channels.front().channel, "A");
}

TEST(ComputedChannelsOfAModel, HaveTheIndicesOfLoops)
{
    const ReadResult result = readTanks(
        "for i in 0..1: observe tank[i].level from \"L-{i+1}\" - i : low < \"S-{i}\" <= high");
    ASSERT_EQ(result.bindings.channels.size(), 2U);
    const ChannelBinding& last = result.bindings.channels.back();
    EXPECT_EQ(last.channel, "\"L-2\" - 1");
    const auto& table = std::get<plant::ThresholdTable>(last.translation);
    ASSERT_TRUE(table.limits.front().computed);
    EXPECT_EQ(plant::textOf(*table.limits.front().computed), "\"S-1\"");
}

TEST(ComputedChannelsOfAModel, MayBeLimitsBesideNumbers)
{
    const ReadResult result =
        readTanks("observe tank[0].level from \"A\" : low < min(2, 3) <= high within 0.1");
    const auto& table =
        std::get<plant::ThresholdTable>(result.bindings.channels.front().translation);
    EXPECT_FALSE(table.isComputed());
    EXPECT_EQ(table.limits.front().number, 2);
}

TEST(ComputedChannelsOfAModel, MayBeSeveralOfAVariable)
{
    const ReadResult result = readTanks("observe tank[0].level from \"A\"\n"
                                        "observe tank[0].level from \"B\" : low < 1 <= high\n"
                                        "observe tank[1].level from \"A\"");
    ASSERT_EQ(result.bindings.channels.size(), 3U);
    EXPECT_EQ(result.bindings.channels[0].variable, result.bindings.channels[1].variable);
}

TEST(Waiting, IsWrittenBehindHold)
{
    const ReadResult result =
        readTanks("observe tank[0].level from \"A\" : low < 1 <= high hold 5 s for 2 min "
                  "settled 15 min after \"C\", \"D\" varies 0.5");
    const ChannelBinding& binding = result.bindings.channels.front();
    EXPECT_EQ(binding.holdSeconds, 5);
    EXPECT_EQ(binding.persistSeconds, 120);
    ASSERT_TRUE(binding.settling);
    EXPECT_EQ(binding.settling->seconds, 900);
    EXPECT_THAT(binding.settling->channels, ElementsAre("C", "D"));
    EXPECT_EQ(binding.varies, 0.5);
    EXPECT_TRUE(binding.isLate());
}

TEST(Waiting, IsNotTakenForALoop)
{
    const ReadResult result = readTanks("observe tank[0].level from \"A\"\n"
                                        "for i in 0..1: observe tank[i].flow\n"
                                        "const_: Extra\n}\ncomponent Extra { cond x: a, b }\n"
                                        "component More {");
    ASSERT_EQ(result.bindings.channels.size(), 3U);
    EXPECT_FALSE(result.bindings.channels.front().persistSeconds);
}

TEST(Waiting, HasWordsThatAreNamesElsewhere)
{
    const ReadResult result = language::readModelText(
        "test.itms", "const settled = 1\nconst mean = 2\ncomponent Over { cond ago: min, max }\n"
                     "system S {\n after: Over\n over: Over\n"
                     " observe after.ago from \"A\" : min < mean + settled <= max\n}\n");
    EXPECT_TRUE(result.model);
}

TEST(Rates, MayBePerWeekMonthOrYear)
{
    const ReadResult result = language::readModelText(
        "test.itms", "component C {\n mode m { a initial, b fault, c fault, d fault }\n"
                     " fault a -> b : 2 per week\n fault a -> c : 2 per month\n"
                     " fault a -> d : 2 per year\n}\nsystem S {\n c: C\n step 1 h\n}\n");
    ASSERT_TRUE(result.model);
    const auto& transitions = result.model->transitions();
    ASSERT_EQ(transitions.size(), 3U);
    EXPECT_DOUBLE_EQ(transitions[0]->proba, -std::expm1(-2.0 / (7 * 24)));
    EXPECT_DOUBLE_EQ(transitions[1]->proba, -std::expm1(-2.0 / (30 * 24)));
    EXPECT_DOUBLE_EQ(transitions[2]->proba, -std::expm1(-2.0 / (365 * 24)));
}

} // namespace
