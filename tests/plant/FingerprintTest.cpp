#include "plant/Fingerprint.h"
#include "language/Reader.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const std::string room = R"(component Lamp {
    command request: none, light
    cond glow: no, yes
    mode state { off initial on broken fault }
    law state = on -> glow = yes
    law state in {off, broken} -> glow = no
    nominal off -> on when request = light : 0.9
    fault any -> broken : 0.01
}
system Room {
    lamp: Lamp
    observe lamp.glow from "L-1" : no < 0.5 <= yes
    command lamp.request from "S-1" : light = 1, none otherwise
}
)";

std::string fingerprintOf(std::string text, const std::string& from = "", const std::string& to = "")
{
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
    const language::ReadResult read = language::readModelText("room.itms", text);
    EXPECT_TRUE(read.errors.empty());
    read.model->activate();
    return plant::fingerprint(plant::Plant(*read.model), read.bindings);
}

class EachChange : public testing::TestWithParam<std::pair<const char*, const char*>> {};

} // namespace

TEST(Fingerprint, OfAModelDoesNotDependOnLayoutAndComments)
{
    EXPECT_EQ(fingerprintOf(room), fingerprintOf(room, "system", "\n\n// The room.\nsystem"));
}

// Checkpoints hold it: a program that gives another one refuses those of the program before.
TEST(Fingerprint, OfAModelIsTheSameInEveryVersion)
{
    EXPECT_EQ(fingerprintOf(room), "c241a3688cc6d72a");
}

TEST_P(EachChange, ChangesTheFingerprintOfAModel)
{
    EXPECT_NE(fingerprintOf(room), fingerprintOf(room, GetParam().first, GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    Fingerprint, EachChange,
    testing::Values(
        std::pair{": 0.01", ": 0.02"}, std::pair{": 0.9", ": 0.8"},
        std::pair{"state = on -> glow = yes", "state = on -> glow = no"},
        std::pair{"lamp: Lamp", "light: Lamp\n    law light.glow = no | light.glow = yes"
                                "\n    lamp: Lamp"},
        std::pair{"\"L-1\"", "\"L-2\""}, std::pair{"< 0.5 <=", "<= 0.5 <"},
        std::pair{"< 0.5 <=", "< 0.6 <="}, std::pair{"light = 1", "light = 2"},
        std::pair{", none otherwise", ", none = 0"}, std::pair{"observe lamp", "input lamp"},
        std::pair{"<= yes", "<= yes varies 0.1"}, std::pair{"<= yes", "<= yes misread 0.1"},
        std::pair{"fault any", "repair broken -> off : 0.01\n    fault any"},
        std::pair{"nominal off -> on when request = light",
                  "repair off -> on when request = light"},
        std::pair{"request: none, light", "request: none, light lost 0.1"},
        std::pair{"<= yes", "<= yes hold 5 s"}, std::pair{"<= yes", "<= yes within 0.1"},
        std::pair{"lamp: Lamp", "step 5 s\n    lamp: Lamp"}));

TEST(Fingerprint, OfAModelTellsARepairFromAFaultThatIsCalledSo)
{
    const std::string fault =
        "component C {\n mode m { a initial Repair }\n fault a -> Repair : 0.1\n}\n"
        "system S { c: C }\n";
    EXPECT_NE(fingerprintOf(fault), fingerprintOf(fault, "fault", "repair"));
}

TEST(Fingerprint, WithoutProbabilitiesIsTheSameForOthers)
{
    const auto structureOf = [](const std::string& from, const std::string& to) {
        std::string text = room;
        text.replace(text.find(from), from.size(), to);
        const language::ReadResult read = language::readModelText("room.itms", text);
        read.model->activate();
        return plant::structure(plant::Plant(*read.model), read.bindings);
    };
    const std::string own = structureOf("", "");
    EXPECT_EQ(structureOf(": 0.01", ": 0.02"), own);
    EXPECT_EQ(structureOf(": 0.9", ": 0.8"), own);
    EXPECT_EQ(structureOf("<= yes", "<= yes varies 0.1"), own);
    EXPECT_EQ(structureOf("<= yes", "<= yes misread 0.1"), own);
    EXPECT_EQ(structureOf("request: none, light", "request: none, light lost 0.1"), own);
    EXPECT_NE(structureOf("< 0.5 <=", "< 0.6 <="), own);
    EXPECT_NE(structureOf("state = on -> glow = yes", "state = on -> glow = no"), own);
}

TEST(Fingerprint, OfAModelKnowsInputsAndHowOftenReadingsChange)
{
    const language::ReadResult read = language::readModelText("room.itms", room);
    const plant::Plant plant(*read.model);
    plant::Bindings bindings = read.bindings;
    plant::ChannelBinding& channel = bindings.channels.front();
    std::set<std::string> seen{plant::fingerprint(plant, bindings)};
    channel.input = true;
    seen.insert(plant::fingerprint(plant, bindings));
    channel.input = false;
    for (const double varies : {0.1, 0.2}) {
        channel.varies = varies;
        seen.insert(plant::fingerprint(plant, bindings));
    }
    EXPECT_EQ(seen.size(), 4U);
}

TEST(Fingerprint, OfAModelKnowsWhatIsComputedAndWhatWaits)
{
    const language::ReadResult read = language::readModelText("room.itms", room);
    const plant::Plant plant(*read.model);
    plant::Bindings bindings = read.bindings;
    plant::ChannelBinding& channel = bindings.channels.front();
    std::set<std::string> seen{plant::fingerprint(plant, bindings)};
    using Expression = plant::ChannelExpression;
    const Expression input{Expression::Kind::channel, 0, "A", {}};
    for (const double seconds : {60.0, 61.0}) {
        channel.computed = Expression{Expression::Kind::mean, seconds, {}, {input}};
        seen.insert(plant::fingerprint(plant, bindings));
    }
    channel.computed.reset();
    for (const double seconds : {60.0, 61.0}) {
        channel.persistSeconds = seconds;
        seen.insert(plant::fingerprint(plant, bindings));
    }
    channel.persistSeconds.reset();
    for (const char* name : {"A", "B"}) {
        channel.settling = plant::Settling{60, {name}};
        seen.insert(plant::fingerprint(plant, bindings));
    }
    EXPECT_EQ(seen.size(), 7U);
}

TEST(Fingerprint, OfTextsTellsThemApart)
{
    EXPECT_NE(plant::fingerprint("a"), plant::fingerprint("b"));
    EXPECT_EQ(plant::fingerprint("a").size(), 16U);
}
