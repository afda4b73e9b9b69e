// An input that may grow: wherever it was cut, reading goes on to the same steps.
#include "tests/telemetry/Telemetry.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace {

using telemetry::ReaderState;
using telemetry::StepReader;
using testing::ElementsAre;
using testing::IsEmpty;

const telemetry::ReadSettings growing{
    .skipBad = true, .mayGrow = true, .knownNamesOnly = true, .readableOnly = true};

struct Part {
    std::vector<std::string> steps;
    std::vector<std::string> mistakes;
    ReaderState state;
    std::optional<std::size_t> cutAt;
    std::size_t mistakesAhead = 0;
};

// Reads a text from a state on.
Part readPart(const language::ReadResult& plant, const std::string& text, const ReaderState& from,
              const telemetry::ReadSettings& settings)
{
    const TemporaryFile file(text);
    StepReader reader(file.path(), *plant.model, plant.bindings, settings);
    reader.restore(from);
    Part part;
    for (const std::string& one : readAll(reader)) {
        (one.find(": ") == std::string::npos ? part.steps : part.mistakes).push_back(one);
    }
    part.state = reader.state();
    part.cutAt = reader.cutAt();
    part.mistakesAhead = reader.mistakesAhead();
    return part;
}

const std::string cutLongTable = "t,name,value\n"
                                 "0,FT-1,10.0\n"
                                 "0,branch.level,\"full\"\n"
                                 "\n"
                                 "1,FT-1,0.95\n"
                                 "1,FT-2,nonsense\n"
                                 "1,TS-1,C\n"
                                 "2,FT-2,3.25\n";
const std::string cutWideTable = "t,FT-1,branch.level,FT-2\n"
                                 "0,10.0,full,0.5\n"
                                 "1,\"0.95\",,nonsense\n"
                                 "\n"
                                 "2,,empty,10.95\n";
const std::string cutLines = "{\"t\": 0, \"observations\": {\"FT-1\": 10}}\n"
                             "\n"
                             "{\"t\": 1, \"observations\": {\"FT-2\": \"nonsense\"}}\n"
                             "{\"t\": 2, \"observations\": {\"FT-1\": 0.95}}\n";

class GrowingInput : public testing::TestWithParam<std::string> {};

TEST_P(GrowingInput, GivesTheSameStepsWhereverItWasCut)
{
    const std::string& text = GetParam();
    const language::ReadResult plant = readPlant();
    const Part whole = readPart(plant, text, {}, skipping);
    ASSERT_FALSE(whole.steps.empty());
    ASSERT_EQ(whole.mistakes.size(), 1U);
    for (std::size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(fmt::format("cut after {} bytes", length));
        const Part first = readPart(plant, text.substr(0, length), {}, growing);
        const Part rest = readPart(plant, text, first.state, skipping);
        std::vector<std::string> steps = first.steps;
        steps.insert(steps.end(), rest.steps.begin(), rest.steps.end());
        EXPECT_EQ(steps, whole.steps);
        EXPECT_EQ(first.mistakes.size() - first.mistakesAhead + rest.mistakes.size(), 1U);
        EXPECT_EQ(rest.state, whole.state);
        if (length > 0 && text[length - 1] != '\n') {
            EXPECT_TRUE(first.cutAt);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, GrowingInput, testing::Values(cutLongTable, cutWideTable, cutLines),
                         [](const auto& given) {
                             return given.param == cutLongTable   ? "LongTable"
                                    : given.param == cutWideTable ? "WideTable"
                                                                  : "JsonLines";
                         });

TEST(GrowingInputs, SayWhereTheyWereCut)
{
    const language::ReadResult plant = readPlant();
    const auto cutAt = [&](const std::string& text) {
        return readPart(plant, text, {}, growing).cutAt;
    };
    EXPECT_EQ(cutAt("t,FT-1\n0,1\n\n1,2"), 4U);
    EXPECT_EQ(cutAt("t,FT-1\n0,1\n\n1,2\n"), std::nullopt);
    EXPECT_EQ(cutAt("t,FT-1"), 1U);
    EXPECT_EQ(cutAt("t,name,value\n0,FT-1,1\n\n1,FT-1,2\n1,FT-2,2\n"), 4U);
    EXPECT_EQ(cutAt("t,name,value\n"), std::nullopt);
    EXPECT_EQ(cutAt("{}\n{}"), 2U);
    EXPECT_EQ(cutAt("{}\n{}\n"), std::nullopt);
    EXPECT_EQ(cutAt(""), std::nullopt);
}

TEST(GrowingInputs, LeaveAQuotedCellThatIsCut)
{
    const language::ReadResult plant = readPlant();
    const Part part = readPart(plant, "t,FT-1\n0,1\n1,\"2\n3", {}, growing);
    EXPECT_EQ(part.steps.size(), 1U);
    EXPECT_THAT(part.mistakes, IsEmpty());
    EXPECT_EQ(part.state.lines, 2U);
    EXPECT_EQ(part.cutAt, 3U);
}

TEST(GrowingInputs, TakeNoLineTwiceThatWasTakenAsItWas)
{
    const language::ReadResult plant = readPlant();
    for (const std::string text : {"{\"t\": 3}", "t,FT-1\n0,1\n1,2", "t,name,value\n0,FT-1,1"}) {
        const Part all = readPart(plant, text, {}, {});
        const Part again = readPart(plant, text, all.state, growing);
        EXPECT_THAT(again.steps, IsEmpty()) << text;
        EXPECT_EQ(again.state, all.state) << text;
        EXPECT_EQ(again.cutAt, std::nullopt) << text;
    }
}

TEST(GrowingInputs, AreReadToTheirEndOtherwise)
{
    EXPECT_THAT(observed("t,FT-1\n0,0.5\n1,2"), ElementsAre("main.flow=zero", "main.flow=low"));
    EXPECT_THAT(observed("t,name,value\n0,FT-1,0.5\n1,FT-1,2\n"),
                ElementsAre("main.flow=zero", "main.flow=low"));
}

} // namespace
