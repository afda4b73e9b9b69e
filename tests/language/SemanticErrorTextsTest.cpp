// Each file in errors/semantic/ is well formed and makes no sense; the text beside it is all that is said about it.
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_language --gtest_filter='*SemanticErrorTexts*'
//
// writes the texts anew, to be read before they are committed.
#include "language/Reader.h"
#include "tests/language/Reported.h"
#include "tests/support/ExpectedTexts.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace {

namespace fs = std::filesystem;

const char* const semanticErrors = "tests/language/errors/semantic";

// Read under the path from the root, which is where tests run. With a lower bound on loops than usual: the file that goes
// beyond it takes minutes under sanitizers otherwise.
language::ReadResult readAnew(const fs::path& path)
{
    language::ReadOptions options;
    options.expansion.repetitions = 100'000;
    return language::readModelText((fs::path(semanticErrors) / path.filename()).string(),
                                   contents(path), options);
}

// Once for all tests: the largest take seconds.
const language::ReadResult& readBad(const fs::path& path)
{
    static std::map<fs::path, language::ReadResult> known;
    const auto found = known.find(path);
    return found != known.end() ? found->second : known.emplace(path, readAnew(path)).first->second;
}

class SemanticErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(SemanticErrorTexts, AreAsExpected)
{
    const language::ReadResult& result = readBad(GetParam());
    const fs::path expected = fs::path(GetParam()).replace_extension(".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported(result.errors);
    }
    EXPECT_FALSE(result.errors.empty());
    EXPECT_EQ(contents(expected), reported(result.errors));
}

TEST_P(SemanticErrorTexts, ComeWithoutAModel)
{
    const language::ReadResult& result = readBad(GetParam());
    EXPECT_FALSE(result.model);
    EXPECT_TRUE(result.bindings.channels.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, SemanticErrorTexts,
                         testing::ValuesIn(filesOf(semanticErrors, ".itms")), [](const auto& tested) {
                             std::string name = tested.param.stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(SemanticErrorTexts, EachHasItsFile)
{
    EXPECT_GE(filesOf(semanticErrors, ".itms").size(), 35U);
    EXPECT_EQ(filesOf(semanticErrors, ".txt").size(), filesOf(semanticErrors, ".itms").size());
}

TEST(SemanticErrorTexts, OfTenMistakesAreTen)
{
    EXPECT_EQ(readBad(fs::path(ITMS_ROOT) / semanticErrors / "ten-mistakes.itms").errors.size(),
              10U);
}

} // namespace
