// Each file in errors/semantic/ is well formed and makes no sense; the text beside it is all that is said about it.
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='*SemanticErrorTexts*'
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

const char* const folder = "tests/language/errors/semantic";

// Read under the path from the root, which is where tests run. With a lower bound on loops than usual: the file that goes
// beyond it takes minutes under sanitizers otherwise.
language::ReadResult readBad(const fs::path& path)
{
    language::ReadOptions options;
    options.expansion.repetitions = 100'000;
    return language::readModelText((fs::path(folder) / path.filename()).string(), contents(path),
                                   options);
}

std::string reported(const language::ReadResult& result)
{
    std::string text;
    for (const text::Diagnostic& error : result.errors) {
        text += error.format();
    }
    return text;
}

class SemanticErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(SemanticErrorTexts, AreAsExpected)
{
    const language::ReadResult result = readBad(GetParam());
    const fs::path expected = fs::path(GetParam()).replace_extension(".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported(result);
    }
    EXPECT_FALSE(result.errors.empty());
    EXPECT_EQ(contents(expected), reported(result));
}

TEST_P(SemanticErrorTexts, ComeWithoutAModel)
{
    const language::ReadResult result = readBad(GetParam());
    EXPECT_FALSE(result.model);
    EXPECT_TRUE(result.bindings.channels.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, SemanticErrorTexts, testing::ValuesIn(filesOf(folder, ".itms")),
                         [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(SemanticErrorTexts, EachHasItsFile)
{
    EXPECT_GE(filesOf(folder, ".itms").size(), 35U);
    EXPECT_EQ(filesOf(folder, ".txt").size(), filesOf(folder, ".itms").size());
}

TEST(SemanticErrorTexts, OfTenMistakesAreTen)
{
    EXPECT_EQ(readBad(fs::path(ITMS_ROOT) / folder / "ten-mistakes.itms").errors.size(), 10U);
}

} // namespace
