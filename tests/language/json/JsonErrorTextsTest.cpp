// Each file in errors/json/ is a model in JSON that is none; the text beside it is all that is said about it.
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='*JsonErrorTexts*'
//
// writes the texts anew, to be read before they are committed.
#include "language/Reader.h"
#include "tests/support/ExpectedTexts.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const char* const folder = "tests/language/errors/json";

// Read under the path from the root, which is where tests run.
language::ReadResult readBad(const fs::path& path)
{
    return language::readModelText((fs::path(folder) / path.filename()).string(), contents(path));
}

std::string reported(const language::ReadResult& result)
{
    std::string text;
    for (const text::Diagnostic& error : result.errors) {
        text += error.format();
    }
    return text;
}

class JsonErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(JsonErrorTexts, AreAsExpected)
{
    const language::ReadResult result = readBad(GetParam());
    const fs::path expected = fs::path(GetParam()).replace_extension(".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported(result);
    }
    EXPECT_FALSE(result.errors.empty());
    EXPECT_EQ(contents(expected), reported(result));
}

TEST_P(JsonErrorTexts, ComeWithoutAModel)
{
    const language::ReadResult result = readBad(GetParam());
    EXPECT_FALSE(result.model);
    EXPECT_TRUE(result.bindings.channels.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, JsonErrorTexts, testing::ValuesIn(filesOf(folder, ".json")),
                         [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(JsonErrorTexts, EachHasItsFile)
{
    EXPECT_GE(filesOf(folder, ".json").size(), 60U);
    EXPECT_EQ(filesOf(folder, ".txt").size(), filesOf(folder, ".json").size());
}

TEST(JsonErrorTexts, OfOneRunAreAll)
{
    EXPECT_EQ(readBad(fs::path(ITMS_ROOT) / folder / "several-mistakes.json").errors.size(), 6U);
}

} // namespace
