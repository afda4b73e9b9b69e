// Each bad file in errors/ has a text beside it: all that is reported about it when bad lines are left out. After a change that is meant
// to be one,
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_telemetry --gtest_filter='*ErrorTexts*'
//
// writes the texts anew, to be read before they are committed.
#include "tests/telemetry/Telemetry.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<fs::path> badFiles()
{
    std::vector<fs::path> files;
    for (const auto& entry :
         fs::directory_iterator(fs::path(ITMS_ROOT) / "tests/telemetry/errors")) {
        if (entry.path().extension() != ".txt") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

class TelemetryErrorTexts : public testing::TestWithParam<fs::path> {};

TEST_P(TelemetryErrorTexts, AreAsExpected)
{
    const fs::path path = GetParam();
    const language::ReadResult plant = readPlant();
    telemetry::StepReader reader(path.string(), *plant.model, plant.bindings, skipping);
    std::string reported;
    while (true) {
        auto next = reader.next();
        if (std::holds_alternative<telemetry::End>(next)) break;
        if (auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            mistake->error.file = path.filename().string();
            reported += mistake->error.format();
        }
    }
    EXPECT_FALSE(reported.empty());
    const fs::path expected = path.string() + ".txt";
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported;
    }
    EXPECT_EQ(contents(expected), reported);
}

INSTANTIATE_TEST_SUITE_P(Files, TelemetryErrorTexts, testing::ValuesIn(badFiles()),
                         [](const auto& file) {
                             std::string name = file.param.filename().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST(TelemetryErrorTexts, ThereAreAtLeastFifteenFiles)
{
    EXPECT_GE(badFiles().size(), 15U);
}

} // namespace
