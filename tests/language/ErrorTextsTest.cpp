// Each bad file in errors/syntax/ has a text beside it: all that is said about it. After a change that is meant to be one,
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='*SyntaxErrorTexts*'
//
// writes the texts anew, to be read before they are committed.
#include "language/syntax/Parser.h"
#include "tests/support/ExpectedTexts.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

const char* const folder = "tests/language/errors/syntax";

class SyntaxErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(SyntaxErrorTexts, AreAsExpected)
{
    const fs::path path = GetParam();
    std::string reported;
    for (const text::Diagnostic& error :
         language::parse(text::SourceText(path.filename().string(), contents(path))).errors) {
        reported += error.format();
    }
    EXPECT_FALSE(reported.empty());
    const fs::path expected = fs::path(path).replace_extension(".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported;
    }
    EXPECT_EQ(contents(expected), reported);
}

INSTANTIATE_TEST_SUITE_P(Files, SyntaxErrorTexts, testing::ValuesIn(filesOf(folder, ".itms")),
                         [](const auto& file) {
                             std::string name = file.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(SyntaxErrorTexts, ThereAreAtLeastThirtyFiles)
{
    EXPECT_GE(filesOf(folder, ".itms").size(), 30U);
}

} // namespace
