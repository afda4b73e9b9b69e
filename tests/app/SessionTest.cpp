// Sessions: files of commands and what they print. A line `$ COMMAND` is run by a shell at the root of the project, with
// itms in PATH; what follows up to the next one is its standard output and error, and `[STATUS]` when that is not 0. The
// whole file has to come out again. After a change that is meant:
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_app --gtest_filter='Sessions*'
#include "tests/app/Program.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

std::string shell(const std::string& command)
{
    return outputOf("cd '" ITMS_ROOT "'; unset NO_COLOR CLICOLOR CLICOLOR_FORCE; PATH='" +
                    programFolder() + "':$PATH; { " + command + "\n} 2>&1 </dev/null");
}

// The names of the files in tests/app/sessions.
std::vector<std::string> sessions()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ITMS_ROOT "/tests/app/sessions")) {
        names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class Sessions : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(Sessions, ComeOutAgain)
{
    const std::string path = "tests/app/sessions/" + GetParam() + ".txt";
    std::string wanted;
    std::string got;
    std::size_t commands = 0;
    for (const std::string& line : projectLines(path)) {
        wanted += line + "\n";
        if (line.starts_with("$ ")) {
            ++commands;
            got += line + "\n" + shell(line.substr(2));
        }
    }
    ASSERT_GT(commands, 0U) << path;
    if (std::getenv("ITMS_REGENERATE")) {
        std::ofstream(ITMS_ROOT "/" + path) << got;
        return;
    }
    EXPECT_EQ(got, wanted) << path;
}

INSTANTIATE_TEST_SUITE_P(, Sessions, testing::ValuesIn(sessions()),
                         [](const auto& given) { return given.param; });
