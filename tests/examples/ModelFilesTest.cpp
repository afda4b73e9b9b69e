// The model files of examples/ are right: they are read without a complaint, and laid out in the one way.
#include "language/syntax/Formatter.h"
#include "tests/examples/ExamplePlant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

Names modelFiles()
{
    Names files;
    const std::filesystem::path folder = examplePath("");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        // The guide's first model has a mistake, which the reader is shown how to find.
        if (entry.path().extension() == ".itms" && entry.path().filename() != "first-try.itms") {
            files.push_back(entry.path().lexically_relative(folder).string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string content(const std::string& file)
{
    std::ostringstream text;
    text << std::ifstream(examplePath(file), std::ios::binary).rdbuf();
    return text.str();
}

class ModelFile : public testing::TestWithParam<std::string> {};

TEST_P(ModelFile, IsReadWithoutErrorsAndWarnings)
{
    language::ReadOptions options;
    options.systemNeeded = false;
    const language::ReadResult read = language::readModel(examplePath(GetParam()), options);
    for (const auto* messages : {&read.errors, &read.warnings}) {
        for (const text::Diagnostic& message : *messages) {
            ADD_FAILURE() << message.format();
        }
    }
}

TEST_P(ModelFile, IsLaidOutAsFormattingDoes)
{
    const std::string text = content(GetParam());
    EXPECT_EQ(language::format(text::SourceText(GetParam(), text)).text, text);
}

std::string testName(const testing::TestParamInfo<std::string>& file)
{
    std::string name = file.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Examples, ModelFile, testing::ValuesIn(modelFiles()), testName);

TEST(ModelFiles, AreFound)
{
    EXPECT_THAT(modelFiles(), testing::IsSupersetOf({"circuits/full-adder.itms", "power/grid.itms",
                                                     "power/library.itms", "water/station.itms"}));
}

} // namespace
