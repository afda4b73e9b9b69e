// The examples in docs/language.md are read, those of model files and those in JSON. One that a ```text block follows is wrong in
// the way that the block says.
#include "language/Reader.h"

#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>

namespace {

struct Example {
    std::size_t line = 0;
    std::string name;
    std::string text;
    std::optional<std::string> reported;
};

std::vector<Example> examples()
{
    std::vector<Example> found;
    std::ifstream in(ITMS_ROOT "/docs/language.md");
    std::string line;
    std::size_t number = 0;
    std::string* block = nullptr;
    bool justEnded = false;
    while (std::getline(in, line)) {
        ++number;
        if (block && line == "```") {
            justEnded = block != (found.back().reported ? &*found.back().reported : nullptr);
            block = nullptr;
        } else if (block) {
            *block += line + "\n";
        } else if (line == "```itms" || line == "```json") {
            found.push_back({number, "example." + line.substr(3), {}, {}});
            block = &found.back().text;
        } else if (line == "```text" && justEnded) {
            block = &found.back().reported.emplace();
        } else if (!line.empty()) {
            justEnded = false;
        }
    }
    return found;
}

TEST(Documentation, HasExamplesThatAreReadAsItSays)
{
    std::size_t wrong = 0;
    for (const Example& example : examples()) {
        language::ReadOptions options;
        options.systemNeeded = false;
        const language::ReadResult result =
            language::readModelText(example.name, example.text, options);
        std::string reported;
        for (const text::Diagnostic& error : result.errors) {
            reported += error.format();
        }
        EXPECT_EQ(reported, example.reported.value_or(""))
            << "docs/language.md, line " << example.line;
        wrong += example.reported ? 1 : 0;
    }
    EXPECT_GE(examples().size(), 4U);
    EXPECT_GE(wrong, 1U);
}

} // namespace
