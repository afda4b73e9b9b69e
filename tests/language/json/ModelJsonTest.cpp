// Models written as JSON and read back.
#include "language/json/ModelJson.h"

#include "tests/language/ModelDump.h"
#include "tests/language/Reported.h"
#include "tests/support/ExpectedTexts.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

namespace fs = std::filesystem;

using language::ReadResult;
using testing::HasSubstr;

ReadResult readText(const std::string& text)
{
    ReadResult read = language::readModelText("plants/test.itms", text);
    EXPECT_EQ(reported(read.errors), "");
    return read;
}

ReadResult readJson(const std::string& json)
{
    ReadResult read = language::readModelText("else/where.json", json);
    EXPECT_EQ(reported(read.errors), "");
    return read;
}

/// Every model of the documentation and the examples that is right, and one with what they lack.
std::vector<std::string> models()
{
    std::vector<std::string> texts{contents(fs::path(ITMS_ROOT) / "examples/models/valve.itms")};
    std::istringstream document(contents(fs::path(ITMS_ROOT) / "docs/language.md"));
    std::string block;
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        if (line == "```itms") {
            inside = true;
            block.clear();
        } else if (inside && line == "```") {
            inside = false;
            if (language::readModelText("test.itms", block).model) texts.push_back(block);
        } else if (inside) {
            block += line + "\n";
        }
    }
    texts.push_back(R"(
component Pump {
    command request: stop, start lost 0.01
    cond flow: zero, low, high
    mode state { off initial on broken fault }
    mode seal { tight initial leaking fault }
    law state = off or seal = leaking or flow = low
    nominal state = off -> on when request = start or flow = high : 0.3
    nominal state = on -> off when request = stop and not flow = zero : 1 / 3
    fault state = any -> broken when not seal = leaking : 3e-7 per hour
    fault seal = tight -> leaking : 0.1
    repair state = broken -> off when request = start : 1 per day
    repair seal = any -> tight : 0.01
    idle state = any
}
system Plant {
    cond sun: up, down
    pump[2]: Pump { initially state = on }
    law pump[0].flow = pump[1].flow
    law sun = up -> not pump[1].state = on
    initially pump[1].state = off
    step 0.1 s
    observe pump[0].flow from "a \"b\" \\ ü" : zero <= 0.1 < low < 2.5 <= high within 0.3 hold 2 min
    observe pump[1].flow : zero = 1, low = "LOW", high otherwise varies 2 per hour
    input sun hold 1 h
    measurable pump[1].flow
    measurable pump[0].seal
    command pump[1].request from "R" : start = 1, stop = "off"
}
)");
    return texts;
}

TEST(ModelJson, IsReadAsTheSameModel)
{
    ASSERT_GE(models().size(), 4U);
    for (const std::string& text : models()) {
        const ReadResult original = readText(text);
        ASSERT_TRUE(original.model);
        const ReadResult again = readJson(language::modelJson(original));
        ASSERT_TRUE(again.model) << text;
        EXPECT_EQ(modelDump(again), modelDump(original)) << text;
    }
}

TEST(ModelJson, IsWrittenAgainWithTheSameBytes)
{
    for (const std::string& text : models()) {
        const std::string written = language::modelJson(readText(text));
        EXPECT_EQ(language::modelJson(readJson(written)), written);
    }
}

TEST(ModelJson, KeepsTheOrderOfLiteralsOfMixedSigns)
{
    const ReadResult original =
        readText("component C { cond a: x, y\n cond b: x, y\n cond c: x, y\n cond d: x, y\n"
                 "law a = x and not b = x and c = y -> d = y or b = y }\nsystem S { c: C }\n");
    EXPECT_EQ(modelDump(readJson(language::modelJson(original))), modelDump(original));
}

TEST(ModelJson, WritesNumbersThatAreReadAsTheSameDoubles)
{
    const double probability = std::nextafter(0.1, 1.0);
    const std::string json = language::modelJson(
        readText("component C { mode m { a initial b fault }\n fault a -> b : 0.10000000000000002 }"
                 "\nsystem S { c: C }\n"));
    EXPECT_EQ(readJson(json).model->transitions()[0]->proba, probability);
}

TEST(ModelJson, IsJson)
{
    for (const std::string& text : models()) {
        const auto json = nlohmann::json::parse(language::modelJson(readText(text)));
        EXPECT_EQ(json.at("format"), "itms-model");
        EXPECT_EQ(json.at("v"), 1);
    }
}

constexpr const char* byAProgram = R"({"format": "itms-model", "v": 1,
  "components": [{"name": "lamp#1", "variables": [
      {"name": "state", "kind": "mode", "values": [{"name": "ok"}, {"name": "dead", "fault": true}], "initial": "ok"},
      {"name": "light", "kind": "cond", "values": [{"name": "off"}, {"name": "on"}]},
      {"name": "switch", "kind": "command", "values": [{"name": "none"}, {"name": "press"}]}]}],
  "laws": [{"literals": ["!lamp#1.state=ok", "lamp#1.light=on"]}],
  "transitions": [{"kind": "fault", "from": "lamp#1.state=ok", "to": "lamp#1.state=dead", "probability": 0.125}]})";

TEST(ModelJson, MadeByAProgramNeedsNoMoreThanComponents)
{
    const ReadResult read = readJson(byAProgram);
    ASSERT_TRUE(read.model);
    EXPECT_EQ(read.model->name(), "else/where");
    EXPECT_EQ(read.bindings.stepSeconds, 1);
    EXPECT_EQ(read.model->ownerOf(0), nullptr);
    EXPECT_EQ(read.lawPlaces.at(0).line, 0U);
    EXPECT_EQ(read.files, std::vector<std::string>{"else/where.json"});
}

TEST(ModelJson, BeginsCommandsWithTheirFirstValue)
{
    const ReadResult read = readJson(byAProgram);
    const StateVar* command = read.model->components()[0]->stateVars->at(2);
    EXPECT_EQ(command->initial, command->atomLinks->at(0));
}

TEST(ModelJson, MadeByAProgramIsWrittenWithoutPlaces)
{
    const std::string written = language::modelJson(readJson(byAProgram));
    EXPECT_THAT(written, testing::Not(HasSubstr("place")));
    EXPECT_EQ(language::modelJson(readJson(written)), written);
}

TEST(ModelJson, CountsWhatThereIs)
{
    const ReadResult read = readJson(byAProgram);
    EXPECT_EQ(read.size.components, 1U);
    EXPECT_EQ(read.size.variables, 3U);
    EXPECT_EQ(read.size.atoms, 6U);
    EXPECT_EQ(read.size.laws, 1U);
    EXPECT_EQ(read.size.clauses, 7U);
    EXPECT_EQ(read.size.transitions, 1U);
}

// In a model file one statement with two alternatives; its probability counts once.
TEST(ModelJson, TakesTheProbabilityOfAlternativesOnce)
{
    const ReadResult original = readText("component C { cond a: x, y\n cond b: x, y\n"
                                         "mode m { on initial off }\n"
                                         "nominal on -> off when a = x or b = x : 0.9 }\n"
                                         "system S { c: C }\n");
    EXPECT_EQ(original.model->transitions().size(), 2U);
    EXPECT_TRUE(readJson(language::modelJson(original)).model);
}

TEST(ModelJson, SaysWhatIsAnInputAndWhatVariesOnlyWhereItIs)
{
    const auto channels = nlohmann::json::parse(language::modelJson(
        readText("system S {\n cond a: x, y\n cond b: x, y\n cond c: x, y\n"
                 "input a\n observe b varies 0.1\n observe c\n}\n")))["channels"];
    const auto common = [](const std::string& name) {
        return nlohmann::json{
            {"kind", "observe"}, {"channel", "S." + name}, {"variable", "S." + name}};
    };
    auto expected = nlohmann::json::array({common("a"), common("b"), common("c")});
    expected[0]["input"] = true;
    expected[1]["varies"] = 0.1;
    EXPECT_EQ(channels, expected);
}

TEST(ModelJson, StopsCountingErrorsWhenThereAreMany)
{
    std::string json = R"({"format": "itms-model", "v": 1, "components": [], "laws": [)";
    for (int i = 0; i < 300; ++i) {
        json += std::string(i > 0 ? "," : "") + R"({"literals": ["a.b=c"]})";
    }
    const ReadResult read = language::readModelText("many.json", json + "]}");
    EXPECT_EQ(read.errors.size(), 101U);
    EXPECT_EQ(read.errors.back().message, "200 more errors are not shown");
}

TEST(ModelJson, IsReadHoweverDeepItIs)
{
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_THAT(reported(language::readModelText("deep.json", deep).errors),
                HasSubstr("found an array"));
}

} // namespace
