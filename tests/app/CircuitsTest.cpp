// Every problem of examples/circuits through the program: its explanations are exactly the listed smallest diagnoses.
#include "tests/app/Program.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using Json = nlohmann::json;
using GateSet = std::set<std::string>;

std::set<GateSet> listed(const Json& problem)
{
    std::set<GateSet> sets;
    for (const Json& diagnosis : problem.at("diagnoses")) {
        sets.insert(diagnosis.get<GateSet>());
    }
    return sets;
}

std::set<GateSet> answered(const Json& record)
{
    std::set<GateSet> sets;
    for (const Json& candidate : record.at("candidates")) {
        GateSet gates;
        for (const auto& [mode, value] : candidate.at("modes").items()) {
            EXPECT_EQ(value, "faulty");
            EXPECT_TRUE(mode.ends_with(".mode")) << mode;
            gates.insert(mode.substr(0, mode.size() - 5));
        }
        EXPECT_EQ(candidate.at("rank"), gates.size());
        EXPECT_TRUE(sets.insert(gates).second) << candidate;
    }
    return sets;
}

double totalProbability(const Json& record)
{
    double total = 0.0;
    for (const Json& candidate : record.at("candidates")) {
        total += candidate.at("p").get<double>();
    }
    return total;
}

class Circuits : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(Circuits, HaveExactlyTheListedDiagnoses)
{
    const std::string base = "examples/circuits/" + GetParam();
    std::vector<std::string> problems = projectLines(base + ".jsonl");
    ASSERT_FALSE(problems.empty());
    if (underSanitizers) {
        problems.resize(1); // the others are solved in the release tests
    }
    std::string given;
    for (const std::string& problem : problems) {
        given += problem + '\n';
    }
    ProgramSetting setting;
    setting.input = given;
    const ProgramRun run = runProgram(
        {"diagnose", base + ".bench", "--problems", "/dev/stdin", "-n", "0", "--max-seconds", "0"},
        setting);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    std::istringstream records(run.out);
    for (const std::string& line : problems) {
        const Json problem = Json::parse(line);
        std::string text;
        ASSERT_TRUE(std::getline(records, text)) << problem.at("id");
        const Json record = Json::parse(text);
        EXPECT_EQ(record.at("id"), problem.at("id"));
        EXPECT_EQ(record.at("complete"), true) << problem.at("id");
        EXPECT_EQ(record.at("limit"), nullptr) << problem.at("id");
        EXPECT_EQ(record.at("rank"), problem.at("min_card")) << problem.at("id");
        EXPECT_EQ(record.at("found"), problem.at("n_min_card")) << problem.at("id");
        EXPECT_EQ(answered(record), listed(problem)) << problem.at("id");
        EXPECT_NEAR(totalProbability(record), 1.0, 1e-3) << problem.at("id");
    }
    std::string further;
    EXPECT_FALSE(std::getline(records, further)) << further;
}

INSTANTIATE_TEST_SUITE_P(, Circuits, testing::Values("c17", "74181", "c432", "c880"),
                         [](const auto& given) { return "Of" + given.param; });
