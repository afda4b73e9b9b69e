// docs/limits.md, row by row: each test has the name of its row, and does what the row says.
#include "tests/app/Program.h"
#include "tests/app/Workshop.h"
#include "tests/support/Sanitized.h"

#include <cctype>
#include <chrono>
#include <gmock/gmock.h>
#include <set>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class Limits : public Workshop {
protected:
    /// A chain of so many parts, at whose end something is wrong from the second step on.
    void writeChain(const std::string& name, int parts) const
    {
        const std::string last = std::to_string(parts - 1);
        write(name, R"(component Link {
    cond a: no, yes
    cond b: no, yes
    mode state { good initial, broken fault, stuck fault }
    law state = good  -> a = b
    law state = stuck -> b = no
    fault good -> broken : 0.001
    fault good -> stuck  : 0.001
}
system Chain {
    link[)" + std::to_string(parts) +
                        R"(]: Link
    for i in 0..)" + std::to_string(parts - 2) +
                        R"(: law link[i].b = link[i+1].a
    input link[0].a from "IN"
    observe link[)" + last +
                        R"(].b from "OUT"
}
)");
        write("chain.jsonl", chainSteps);
    }
    /// What `itms run` says of the second and the third step of a chain of 60 parts.
    std::string chainRun(const std::string& options) const
    {
        writeChain("chain.itms", 60);
        return shell("itms run chain.itms chain.jsonl -q -n 1 " + options + " | tail -n +2");
    }
    /// What `itms check` says of a system, with a component `C` beside it.
    std::string check(const std::string& system) const
    {
        write("model.itms", "component C { cond v: low, high }\nsystem S { " + system + " }\n");
        return shell("itms check model.itms");
    }

    /// What `itms calibrate` says of so many readings of a channel, beside five commands.
    std::string calibration(int readings) const
    {
        write("five.itms", R"(component C {
    command go: a, b
    cond v: low, high
}
system S {
    c[5]: C
    for i in 0..4: command c[i].go from "G{i}" : b = 1, a otherwise
    observe c[0].v from "V" : low < 5 <= high
}
)");
        std::string log = "t,V,G0,G1,G2,G3,G4\n";
        for (int t = 0; t < readings; ++t) {
            const int state = t / 100 % 20;
            log += std::to_string(t) + ',' + std::to_string(t * 7919LL % 1000) + "e-2";
            for (int bit = 0; bit < 5; ++bit) {
                log += (state >> bit & 1) == 1 ? ",1" : ",0";
            }
            log += '\n';
        }
        write("five.csv", log);
        return shell("itms calibrate five.itms five.csv -q --format json");
    }

    static constexpr const char* chainSteps =
        "{\"t\": 0, \"observations\": {\"IN\": \"yes\", \"OUT\": \"yes\"}}\n"
        "{\"t\": 1, \"observations\": {\"IN\": \"yes\", \"OUT\": \"no\"}}\n"
        "{\"t\": 2, \"observations\": {\"IN\": \"yes\", \"OUT\": \"no\"}}\n";
};

// Of the first cell up to a colon: "a step's length" is AStepsLength.
std::string testOf(const std::string& row)
{
    const std::size_t begin = row.find_first_not_of("| ");
    std::string name;
    bool starts = true;
    for (const char letter : row.substr(begin, row.find_first_of("|:", begin) - begin)) {
        if (std::isalnum(static_cast<unsigned char>(letter)) != 0) {
            name += starts ? static_cast<char>(std::toupper(letter)) : letter;
        }
        starts = letter == ' ';
    }
    return name;
}

std::set<std::string> testsOfLimits()
{
    std::set<std::string> names;
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int test = 0; std::string(suite.name()) == "Limits" && test < suite.total_test_count();
             ++test) {
            names.insert(suite.GetTestInfo(test)->name());
        }
    }
    return names;
}

} // namespace

TEST(LimitsInTheDocumentation, HaveATestEach)
{
    std::set<std::string> rows;
    for (const std::string& line : projectLines("docs/limits.md")) {
        if (line.starts_with("| ") && !line.starts_with("| What ")) rows.insert(testOf(line));
    }
    EXPECT_GT(rows.size(), 10U);
    EXPECT_EQ(rows, testsOfLimits());
}

TEST_F(Limits, RecordsOfAStepsSearches)
{
    EXPECT_THAT(chainRun("--max-records 1"),
                AllOf(HasSubstr(R"("complete":false)"), HasSubstr(R"("limit":"records")")));
    EXPECT_THAT(shell("itms run --help"), HasSubstr("records\n                            (default "
                                                    "100000; 0: no limit)"));
}

TEST_F(Limits, WorkOfAStep)
{
    const std::string cut = chainRun("--max-work 1");
    EXPECT_THAT(cut, AllOf(HasSubstr(R"("complete":false)"), HasSubstr(R"("limit":"work")")));
    EXPECT_EQ(chainRun("--max-work 1"), cut) << "the same bytes every time";
}

TEST_F(Limits, SecondsOfAStep)
{
    EXPECT_THAT(chainRun("--max-seconds 0.00001"),
                AllOf(HasSubstr(R"("complete":false)"), HasSubstr(R"("limit":"seconds")")));
    EXPECT_THAT(shell("itms diagnose --help"), HasSubstr("(default 60;"));
}

TEST_F(Limits, MemoryInUse)
{
    const std::string cut = chainRun("--max-memory 1");
    EXPECT_THAT(cut, HasSubstr(R"("step":2,"t":1.0,"status":"ambiguous")"));
    EXPECT_THAT(cut, AllOf(HasSubstr(R"("step":3,)"), HasSubstr(R"("limit":"memory")")));
}

// Variables of many values, about which the laws have much to say.
TEST_F(Limits, StepsOfASimulation)
{
    const std::string values = ": v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11\n";
    write("chain.itms", "component Link { cond a" + values + "cond b" + values + "law a = b }\n" +
                            R"(system Chain {
    link[100]: Link
    for i in 0..98: law link[i].b = link[i+1].a
    input link[0].a from "IN"
    observe link[99].b from "OUT"
})");
    const std::string simulation = "itms simulate chain.itms -q --steps 2 --input 'link[0].a=v1' ";
    EXPECT_EQ(shell(simulation + "--max-work 1"),
              "itms simulate: before the first step: cut short (limit: work)\n"
              "  hint: --max-work sets the limit; 0 is none\n[3]\n");
    EXPECT_THAT(shell(simulation + "--max-seconds 0.00001"),
                HasSubstr("cut short (limit: seconds)\n"));
    EXPECT_THAT(shell(simulation + "--max-memory 1"), HasSubstr("cut short (limit: memory)\n"));
    EXPECT_EQ(shell(simulation + "| wc -l"), "2\n");
}

// The step would take a minute and more.
TEST_F(Limits, Patience)
{
    writeChain("chain.itms", 1600);
    const std::vector<std::string> run{
        "run", path("chain.itms"), "-", "-q",           "--format", "jsonl", "--max-work",
        "0",   "--max-records",    "0", "--max-memory", "0"};
    const auto start = std::chrono::steady_clock::now();
    const ProgramRun ended = runUntilSignal(run, chainSteps, SIGTERM);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(ended.status, 130);
    EXPECT_THAT(ended.out, HasSubstr(R"("limit":"interrupted")"));
    EXPECT_LT(took.count(), 20.0);

    std::vector<std::string> withCheckpoint = run;
    withCheckpoint.insert(withCheckpoint.end(), {"--checkpoint", path("memory")});
    const ProgramRun left = runUntilSignal(withCheckpoint, chainSteps, SIGTERM);
    EXPECT_EQ(left.status, 130);
    EXPECT_THAT(left.out, Not(HasSubstr("interrupted")));
    EXPECT_THAT(read("memory"), HasSubstr("\"steps\":1,"));
}

TEST_F(Limits, HypothesesThatAreKept)
{
    EXPECT_THAT(chainRun(""), HasSubstr(R"("kept":8,"dropped":)"));
    EXPECT_THAT(chainRun("--keep 3"), HasSubstr(R"("kept":3,"dropped":)"));
    EXPECT_THAT(chainRun(""), Not(HasSubstr(R"("missing":0.0,)")));
}

TEST_F(Limits, CommandsThatAreLostAtOnce)
{
    write("lamps.itms", R"(component Lamp {
    command go: none, on lost 0.1
    cond light: no, yes
    mode state { off initial, lit }
    law state = lit <-> light = yes
    nominal off -> lit when go = on
}
system Lamps {
    lamp[3]: Lamp
    for i in 0..2 {
        observe lamp[i].light from "L{i}"
        command lamp[i].go from "C{i}" : on = 1, none otherwise
    }
}
)");
    const std::string asked = R"({"t": 0, "commands": {"C0": 1, "C1": 1, "C2": 1}, )";
    write("three.jsonl", asked + R"("observations": {"L0": "no", "L1": "no", "L2": "no"}})");
    write("two.jsonl", asked + R"("observations": {"L0": "no", "L1": "no"}})");
    EXPECT_THAT(shell("itms run lamps.itms two.jsonl"),
                AllOf(HasSubstr(R"("complete":true)"), HasSubstr(R"("status":"faulty")")));
    EXPECT_THAT(shell("itms run lamps.itms three.jsonl"), HasSubstr(R"("complete":false)"));
}

TEST_F(Limits, FaultsOfAnExplanation)
{
    write("lamps.itms", R"(component Lamp {
    cond light: no, yes
    mode state { lit initial, broken fault }
    law state = lit <-> light = yes
    fault lit -> broken : 0.01
}
system Lamps {
    lamp[4]: Lamp
    for i in 0..3: observe lamp[i].light from "L{i}"
}
)");
    write("dark.jsonl",
          R"({"t": 0, "observations": {"L0": "no", "L1": "no", "L2": "no", "L3": "no"}})");
    EXPECT_THAT(shell("itms run lamps.itms dark.jsonl"), HasSubstr(R"("status":"inconsistent")"));
    EXPECT_THAT(shell("itms run lamps.itms dark.jsonl --max-rank 4"),
                HasSubstr(R"("status":"faulty")"));
}

TEST_F(Limits, ALineOfTelemetry)
{
    constexpr std::size_t most = std::size_t{16} << 20U;
    write("log.jsonl", R"({"t": 0, "x": ")" + std::string(most, 'a') + "\"}\n");
    EXPECT_THAT(shell("itms run pipe.itms log.jsonl"),
                StartsWith("log.jsonl:1:1: this line has more than 16777216 bytes\n"));
}

TEST_F(Limits, ARowOfATableThatGoesOverSeveralLines)
{
    std::string lines;
    for (int i = 1; i < 70; ++i) {
        lines += std::to_string(i) + ",1,1\n";
    }
    write("log.csv", "t,FT-1,FT-2\n0,1,\"1\n" + lines);
    EXPECT_THAT(shell("itms run pipe.itms log.csv"),
                StartsWith("log.csv:2:5: this quote is not closed within 64 lines\n"));
    EXPECT_EQ(shell("itms run pipe.itms log.csv --skip-bad 2>/dev/null | wc -l"), "69\n");
    write("log.csv", "t,FT-1,FT-2\n0,1,\"" + std::string((1U << 20U) + 1U, '1') + "\n" + lines);
    EXPECT_THAT(shell("itms run pipe.itms log.csv"),
                AllOf(StartsWith("log.csv:2:"), HasSubstr("[2]")));
}

TEST_F(Limits, AModelFile)
{
    EXPECT_THAT(shell("truncate -s 257M huge.itms; itms check huge.itms; rm huge.itms"),
                HasSubstr("\n  expected: at most 268435456\n"));
    EXPECT_THAT(check("law " + std::string(101, '(') + "a = b" + std::string(101, ')')),
                HasSubstr("nested deeper than 100 levels"));
    std::string laws;
    for (int i = 0; i < 150; ++i) {
        laws += "law x" + std::to_string(i) + " = y\n";
    }
    EXPECT_THAT(check(laws), HasSubstr("50 more errors are not shown"));
}

TEST_F(Limits, AWindowOfAComputedChannel)
{
    const std::string observed = "c: C observe c.v from mean(\"A\") over ";
    EXPECT_THAT(check(observed + "1000001 s : low < 1 <= high"), HasSubstr("a window of "));
    EXPECT_THAT(check(observed + "1000000 s : low < 1 <= high"), Not(HasSubstr("error")));
}

TEST_F(Limits, ReadingsThatACalibrationKeepsOfAChannel)
{
    EXPECT_THAT(calibration(4000), HasSubstr("\"count\":4000,\"rankError\":0.0,"));
    EXPECT_THAT(calibration(20000), AllOf(HasSubstr("\"count\":20000,\"rankError\":0.000"),
                                          Not(HasSubstr("\"rankError\":0.0,"))));
}

// Each of 20 combinations for a twentieth of the time.
TEST_F(Limits, CombinationsOfCommandsOfACalibration)
{
    EXPECT_THAT(calibration(20000), HasSubstr("\"inOtherStates\":4000"));
}

TEST_F(Limits, ARowOfLabels)
{
    const std::string evaluation = "itms evaluate pipe.itms log.csv --labels labels.csv";
    write("log.csv", "t,FT-1\n0,1\n");
    std::string labels = "start,end,what\n";
    for (int i = 0; i < 30; ++i) {
        labels += "1,2,nothing\n";
    }
    write("labels.csv", labels);
    EXPECT_THAT(shell(evaluation), HasSubstr("labels.csv: 20 errors\n[2]\n"));
    write("labels.csv", "start,end,what\n1,2," + std::string(std::size_t{1} << 20U, 'x') + "\n");
    EXPECT_THAT(shell(evaluation),
                HasSubstr("labels.csv:2:1: this line has more than 1048576 bytes"));
}

TEST_F(Limits, AModel)
{
    EXPECT_THAT(check("c[1000001]: C"), HasSubstr("expected: a whole number from 0 to 1000000"));
    write("million.itms", "component C { cond v: low, high }\nsystem S { c[1000000]: C }\n");
    if (!underSanitizers) { // which take much more memory than they use
        EXPECT_THAT(shell("ulimit -v 1500000; itms check million.itms"),
                    HasSubstr("not enough memory: 1,000,000 parts need about "));
    }
}

TEST_F(Limits, AStepsLength)
{
    for (const char* length : {"1e-10", "1e13"}) {
        EXPECT_THAT(check(std::string("c: C step ") + length + " s"),
                    HasSubstr("expected: from 1e-09 to 1e+12 s"));
    }
}

TEST_F(Limits, Imports)
{
    ASSERT_EQ(shell("mkdir below"), "");
    write("other.itms", "component C { cond v: low, high }\n");
    write("below/main.itms", "import \"../other.itms\"\nsystem S { c: C }\n");
    EXPECT_THAT(shell("itms check below/main.itms"),
                HasSubstr("expected: a file below the folder of the model"));
    EXPECT_EQ(shell("itms check below/main.itms --allow-imports-anywhere >out; echo $?"), "0\n");
    EXPECT_EQ(shell("itms check below/main.itms -I . >out; echo $?"), "0\n");
}
