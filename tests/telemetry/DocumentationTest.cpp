// The examples in docs/telemetry.md are read, and give what stands below them.
#include "tests/telemetry/Telemetry.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

struct Block {
    std::size_t line = 0;
    std::string kind;
    std::string text;
};

std::vector<Block> blocks()
{
    std::vector<Block> found;
    std::ifstream in(ITMS_ROOT "/docs/telemetry.md");
    bool inside = false;
    std::size_t number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.starts_with("```")) {
            inside = !inside;
            if (inside) found.push_back({number, line.substr(3), {}});
        } else if (inside) {
            found.back().text += line + "\n";
        }
    }
    return found;
}

TEST(Documentation, OfTelemetryHasExamplesThatAreReadAsItSays)
{
    std::vector<Block> all = blocks();
    std::erase_if(all, [](const Block& block) { return block.kind == "toml"; });
    ASSERT_FALSE(all.empty());
    ASSERT_EQ(all.front().kind, "itms");
    const language::ReadResult plant = readPlant(all.front().text);
    std::size_t examples = 0;
    for (std::size_t i = 1; i + 1 < all.size(); i += 2) {
        ASSERT_TRUE(all[i].kind == "jsonl" || all[i].kind == "csv") << "line " << all[i].line;
        ASSERT_EQ(all[i + 1].kind, "steps") << "line " << all[i + 1].line;
        const TemporaryFile file(all[i].text);
        telemetry::StepReader reader(file.path(), *plant.model, plant.bindings, {.skipBad = true});
        std::string reported;
        for (const std::string& each : readAll(reader)) {
            reported += each.starts_with(':') ? "example" + each : each + "\n";
        }
        EXPECT_EQ(reported, all[i + 1].text) << "docs/telemetry.md, line " << all[i].line;
        ++examples;
    }
    EXPECT_EQ(all.size(), 2 * examples + 1);
    EXPECT_GE(examples, 5U);
}

} // namespace
