// Each file in errors/json/ is a model in JSON that is none; the text beside it is all that is said about it.
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='*JsonErrorTexts*'
//
// writes the texts anew, to be read before they are committed.
#include "language/Reader.h"
#include "tests/language/Reported.h"
#include "tests/support/ExpectedTexts.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const char* const jsonErrors = "tests/language/errors/json";

// Read under the path from the root, which is where tests run.
language::ReadResult readBadJson(const fs::path& path)
{
    return language::readModelText((fs::path(jsonErrors) / path.filename()).string(),
                                   contents(path));
}

class JsonErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(JsonErrorTexts, AreAsExpected)
{
    const language::ReadResult result = readBadJson(GetParam());
    const fs::path expected = fs::path(GetParam()).replace_extension(".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported(result.errors);
    }
    EXPECT_FALSE(result.errors.empty());
    EXPECT_EQ(contents(expected), reported(result.errors));
}

TEST_P(JsonErrorTexts, ComeWithoutAModel)
{
    const language::ReadResult result = readBadJson(GetParam());
    EXPECT_FALSE(result.model);
    EXPECT_TRUE(result.bindings.channels.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, JsonErrorTexts, testing::ValuesIn(filesOf(jsonErrors, ".json")),
                         [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(JsonErrorTexts, EachHasItsFile)
{
    EXPECT_GE(filesOf(jsonErrors, ".json").size(), 60U);
    EXPECT_EQ(filesOf(jsonErrors, ".txt").size(), filesOf(jsonErrors, ".json").size());
}

TEST(JsonErrorTexts, OfOneRunAreAll)
{
    EXPECT_EQ(readBadJson(fs::path(ITMS_ROOT) / jsonErrors / "several-mistakes.json").errors.size(),
              6U);
}

} // namespace
