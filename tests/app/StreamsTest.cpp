// What goes where: terminals, colours, the trace, signals, readers that go away.
#include "monitor/step/Step.h"
#include "netlist/BenchReader.h"
#include "netlist/CircuitModel.h"
#include "tests/app/Program.h"
#include "tests/support/TestModel.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string c17 = "examples/circuits/c17.bench";
const std::string c17Inputs = "G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0";
const std::vector<std::string> oneProblem{"diagnose", c17,         "--inputs",
                                          c17Inputs,  "--outputs", "G22gat=1,G23gat=1"};

std::vector<std::string> with(std::vector<std::string> arguments,
                              const std::vector<std::string>& more)
{
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// Addresses differ from run to run.
std::string withoutAddresses(std::string trace)
{
    for (std::size_t at = 0; (at = trace.find("0x", at)) != std::string::npos; ++at) {
        const std::size_t end = trace.find_first_not_of("0123456789abcdef", at + 2);
        trace.replace(at, end - at, "ADDRESS");
    }
    return trace;
}

// The same problem by the library alone, its trace kept.
std::string libraryTrace()
{
    CapturedTrace trace;
    const netlist::BenchResult read = netlist::readBenchFile(ITMS_ROOT "/" + c17);
    const netlist::CircuitModel circuitModel = netlist::buildModel(*read.circuit);
    circuitModel.model->activate();
    itms engine;
    engine.rtInit();
    const plant::Plant plant(*circuitModel.model);
    monitor::StepSolver solver(engine, plant);
    monitor::StepInput input;
    const std::vector<std::pair<std::string, bool>> readings{
        {"G1gat", true},  {"G2gat", false}, {"G3gat", false}, {"G6gat", false},
        {"G7gat", false}, {"G22gat", true}, {"G23gat", true}};
    for (const auto& [signal, bit] : readings) {
        input.observations.push_back(
            plant.indexOf(netlist::outAtom(*read.circuit, circuitModel, signal, bit)));
    }
    solver.solve(monitor::initialLabels(plant), input, {});
    return trace.take();
}

} // namespace

TEST(Streams, ATraceIsTheLibrarysOwnAndNothingElse)
{
    const ProgramRun run = runProgram(with(oneProblem, {"--trace"}));
    const std::string expected = libraryTrace();
    EXPECT_THAT(expected, HasSubstr("sol added !"));
    EXPECT_EQ(withoutAddresses(run.out), withoutAddresses(expected));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
}

TEST(Streams, WithoutTraceTheEngineIsNotHeard)
{
    const ProgramRun run = runProgram(oneProblem);
    EXPECT_THAT(run.out, StartsWith("{\"v\":1,"));
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1);
    EXPECT_EQ(run.err, "");
}

TEST(Streams, ATerminalGetsATableInColour)
{
    const ProgramRun run =
        runProgram(oneProblem, {.input = {}, .environment = {}, .terminal = true});
    EXPECT_THAT(run.out, StartsWith("\x1b[1mc17\x1b[0m: 5 inputs"));
    EXPECT_EQ(run.err, "");
}

TEST(Streams, ATerminalGetsNoColourUnderNoColor)
{
    const ProgramRun run =
        runProgram(oneProblem, {.input = {},
                                .environment = {{"NO_COLOR", "1"}, {"CLICOLOR_FORCE", "1"}},
                                .terminal = true});
    EXPECT_THAT(run.out, StartsWith("c17: 5 inputs"));
    EXPECT_THAT(run.out, Not(HasSubstr("\x1b[")));
}

TEST(Streams, AnEmptyNoColorCountsForNothing)
{
    const ProgramRun run =
        runProgram(oneProblem, {.input = {}, .environment = {{"NO_COLOR", ""}}, .terminal = true});
    EXPECT_THAT(run.out, HasSubstr("\x1b["));
}

TEST(Streams, ATerminalGetsNoColourWhereClicolorIsZero)
{
    const ProgramRun run =
        runProgram(oneProblem, {.input = {}, .environment = {{"CLICOLOR", "0"}}, .terminal = true});
    EXPECT_THAT(run.out, Not(HasSubstr("\x1b[")));
}

TEST(Streams, TheOptionIsStrongerThanTheEnvironment)
{
    const ProgramSetting noColour{.input = {}, .environment = {{"NO_COLOR", "1"}}, .terminal = false};
    EXPECT_THAT(
        runProgram(with(oneProblem, {"--format", "table", "--color", "always"}), noColour).out,
        HasSubstr("\x1b["));
    const ProgramSetting force{
        .input = {}, .environment = {{"CLICOLOR_FORCE", "1"}}, .terminal = false};
    EXPECT_THAT(runProgram(with(oneProblem, {"--format", "table", "--color", "never"}), force).out,
                Not(HasSubstr("\x1b[")));
    EXPECT_THAT(runProgram(with(oneProblem, {"--format", "table"}), force).out, HasSubstr("\x1b["));
}

TEST(Streams, StandardErrorThatIsNoTerminalShowsNoProgress)
{
    const ProgramRun run = runProgram({"diagnose", c17, "--problems", "examples/circuits/c17.jsonl"},
                                      {.input = {}, .environment = {}, .terminal = true});
    EXPECT_EQ(run.err, "");
}

TEST(Streams, TheSameInputGivesTheSameBytes)
{
    const std::vector<std::string> all{"diagnose", c17, "--problems", "examples/circuits/c17.jsonl",
                                       "-n",       "0"};
    EXPECT_EQ(runProgram(all).out, runProgram(all).out);
}

class Signals : public testing::TestWithParam<int> {};

// The input stays open, so that without the signal the program would wait for ever: its first answer came at once.
TEST_P(Signals, EndTheWaitForInputWithWhatWasPrinted)
{
    const std::string line = projectLines("examples/circuits/c17.jsonl").front() + "\n";
    const ProgramRun run = runUntilSignal({"diagnose", c17, "--problems", "-"}, line, GetParam());
    EXPECT_EQ(run.status, 130);
    EXPECT_THAT(run.out, HasSubstr("\"id\":\"c17-01\""));
    EXPECT_EQ(run.err, "");
}

// The same for a plant that is followed live.
TEST_P(Signals, EndARunThatWaitsForTheNextStep)
{
    const ProgramRun run =
        runUntilSignal({"run", "examples/water/station.itms", "-"},
                       "{\"t\": 0, \"observations\": {\"PT-121\": 4}}\n", GetParam());
    EXPECT_EQ(run.status, 130);
    EXPECT_THAT(run.out, StartsWith("{\"v\":2,\"step\":1,\"t\":0.0,\"status\":\"nominal\""));
    EXPECT_EQ(run.err, "");
}

TEST_P(Signals, LeaveAReportThatSaysSo)
{
    const std::string page =
        testing::TempDir() + "itms-interrupted-" + std::to_string(getpid()) + ".html";
    const ProgramRun run =
        runUntilSignal({"run", "examples/water/station.itms", "-", "--report", page},
                       "{\"t\": 0, \"observations\": {\"PT-121\": 4}}\n", GetParam());
    EXPECT_EQ(run.status, 130);
    std::ifstream file(page);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(text, HasSubstr("\"interrupted\":true,"));
    EXPECT_THAT(text, HasSubstr("\"steps\":1,"));
    EXPECT_EQ(std::remove(page.c_str()), 0);
}

// The first problem is one without a fault, and answered at once. The second one takes for ever by itself: all
// explanations of up to seven faults, without a limit.
TEST_P(Signals, EndALongSearchAndSaySo)
{
    const std::vector<std::string> lines = projectLines("examples/circuits/c432.jsonl");
    nlohmann::json nominal = nlohmann::json::parse(lines.at(0));
    nominal["observed"] = {{"G329gat", 0}};
    const ProgramRun run = runUntilSignal({"diagnose", "examples/circuits/c432.bench", "--problems",
                                           "-", "--max-rank", "7", "--max-seconds", "0"},
                                          nominal.dump() + "\n" + lines.at(5) + "\n", GetParam());
    EXPECT_EQ(run.status, 130);
    EXPECT_THAT(run.out, HasSubstr("\"status\":\"nominal\""));
    EXPECT_THAT(run.out, HasSubstr("\"id\":\"c432-06\",\"status\":"));
    EXPECT_THAT(run.out, HasSubstr("\"complete\":false,\"limit\":\"interrupted\""));
}

INSTANTIATE_TEST_SUITE_P(, Signals, testing::Values(SIGINT, SIGTERM, SIGHUP), [](const auto& given) {
    return given.param == SIGINT ? "Int" : given.param == SIGTERM ? "Term" : "Hup";
});
