// The whole texts of the errors. Each errors/NAME.bench is read, and what is reported must be errors/NAME.txt.
// After a change of the texts, write them anew and read the difference:
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_netlist --gtest_filter='Files/BenchError.*' && git diff tests/netlist/errors
#include "netlist/BenchReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

const std::filesystem::path folder = std::filesystem::path(ITMS_ROOT) / "tests/netlist/errors";

std::string contents(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> namesOf(const std::string& extension)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == extension) names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string reported(const netlist::BenchResult& result)
{
    std::string text;
    for (const text::Diagnostic& error : result.errors) {
        text += error.format();
    }
    return text;
}

class BenchError : public testing::TestWithParam<std::string> {};

TEST_P(BenchError, IsReportedAsWritten)
{
    const std::string name = GetParam();
    const netlist::BenchResult result =
        netlist::readBench(contents(folder / (name + ".bench")), name + ".bench");
    const std::filesystem::path expected = folder / (name + ".txt");
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(expected, std::ios::binary) << reported(result);
    }
    EXPECT_FALSE(result.circuit);
    EXPECT_FALSE(result.errors.empty());
    EXPECT_EQ(reported(result), contents(expected));
}

INSTANTIATE_TEST_SUITE_P(Files, BenchError, testing::ValuesIn(namesOf(".bench")),
                         [](const auto& tested) {
                             std::string name = tested.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(BenchErrors, HaveATextForEachFile)
{
    EXPECT_FALSE(namesOf(".bench").empty());
    EXPECT_EQ(namesOf(".txt"), namesOf(".bench"));
}

TEST(BenchErrors, OfATextWithANulByteAreThatAlone)
{
    const netlist::BenchResult result =
        netlist::readBench(std::string_view("INPUT(a)\nb\0d = (\n\0", 17), "raw.bench");
    EXPECT_EQ(reported(result),
              "raw.bench:2:2: found a NUL byte: this is not a text file\n"
              "  b?d = (\n"
              "   ^\n"
              "  expected: a circuit in the .bench format, as UTF-8 text\n"
              "  hint: if it is UTF-16 text, save it as UTF-8; if it is compressed, unpack it\n");
}

TEST(BenchErrors, OfAMissingFileNameIt)
{
    const netlist::BenchResult result = netlist::readBenchFile("no/such/file.bench");
    EXPECT_FALSE(result.circuit);
    EXPECT_EQ(reported(result), "no/such/file.bench: cannot be read: No such file or directory\n");
}

TEST(BenchErrors, OfAFolderSayThatItIsOne)
{
    EXPECT_EQ(reported(netlist::readBenchFile(folder.string())),
              folder.string() + ": cannot be read: Is a directory\n");
}

TEST(BenchErrors, AreInTheOrderOfTheirPlaces)
{
    const netlist::BenchResult result =
        netlist::readBench(contents(folder / "everything-at-once.bench"), "x.bench");
    EXPECT_GE(result.errors.size(), 6U);
    EXPECT_TRUE(std::is_sorted(result.errors.begin(), result.errors.end(),
                               [](const auto& a, const auto& b) { return a.place < b.place; }));
}

TEST(BenchErrors, SpeakOfLinesInFilesWithCarriageReturns)
{
    const netlist::BenchResult result =
        netlist::readBench("INPUT(a)\r\nOUTPUT(y)\r\ny = not(b)\r\n", "x.bench");
    EXPECT_EQ(reported(result), "x.bench:3:9: signal 'b' is not defined\n"
                                "  y = not(b)\n"
                                "          ^\n"
                                "  expected: an INPUT or the output of a gate\n"
                                "  hint: declare it INPUT, or add the gate that drives it\n");
}

TEST(BenchErrors, CountColumnsAfterAByteOrderMark)
{
    const netlist::BenchResult result = netlist::readBench("\xEF\xBB\xBFOUTPUT(y)\n", "x.bench");
    ASSERT_EQ(result.errors.size(), 1U);
    EXPECT_EQ(result.errors[0].place, (text::Place{1, 8}));
}

} // namespace
