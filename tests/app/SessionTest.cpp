// Sessions: files of commands and what they print. A line `$ COMMAND` is run by a shell at the root of the project, with
// itms in PATH; what follows up to the next one is its standard output and error, and `[STATUS]` when that is not 0. The
// whole file has to come out again. After a change that is meant:
//
//     ITMS_REGENERATE=1 build/check/bin/itms_tests_app --gtest_filter='Sessions*'
#include "tests/app/Program.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

std::string shell(const std::string& command)
{
    const std::string folder = std::filesystem::path(ITMS_PROGRAM).parent_path().string();
    const std::string script = "cd '" ITMS_ROOT
                               "'; unset NO_COLOR CLICOLOR CLICOLOR_FORCE; PATH='" +
                               folder + "':$PATH; { " + command + "\n} 2>&1 </dev/null";
    std::FILE* pipe = popen(script.c_str(), "r");
    if (!pipe) return "no shell\n";
    std::string text;
    std::array<char, 4096> buffer{};
    for (std::size_t got = 0; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        text.append(buffer.data(), got);
    }
    const int status = pclose(pipe);
    if (WEXITSTATUS(status) != 0) text += "[" + std::to_string(WEXITSTATUS(status)) + "]\n";
    return text;
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
