// Runs that stop, orderly or not, and go on from their checkpoint.
#include "plant/Fingerprint.h"
#include "tests/app/Program.h"
#include "tests/reference/Random.h"
#include "tests/support/Sanitized.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

using testing::HasSubstr;

namespace {

namespace fs = std::filesystem;

const std::string model = "examples/water/station.itms";

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// A folder of its own, with the day of the example's stuck valve, and what comes after it, as telemetry.
class Checkpoints : public testing::Test {
protected:
    Checkpoints()
    {
        std::string name = (fs::temp_directory_path() / "itms-checkpoint-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        folder_ = name;
    }
    ~Checkpoints() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    void writeTelemetry(std::size_t steps)
    {
        std::ofstream file(path("day.jsonl"));
        std::vector<std::string> lines = projectLines("examples/water/stuck-valve.jsonl");
        nlohmann::json last;
        double t = 0.0;
        for (std::size_t step = 0; step < steps; ++step) {
            if (step < lines.size()) last = nlohmann::json::parse(lines[step]);
            last["t"] = t;
            t += 60.0;
            file << last.dump() << "\n";
        }
    }

    std::vector<std::string> arguments(const std::vector<std::string>& more) const
    {
        std::vector<std::string> all{"run", model, path("day.jsonl")};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    std::vector<std::string> withCheckpoint(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> all =
            arguments({"-o", path("answer"), "--checkpoint", path("memory"), "--checkpoint-every",
                       "5", "--resume"});
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    std::string uninterrupted(const std::vector<std::string>& more = {}) const
    {
        return runProgram(arguments(more)).out;
    }

private:
    fs::path folder_;
};

class CheckpointFormats : public Checkpoints, public testing::WithParamInterface<std::string> {};

} // namespace

TEST_F(Checkpoints, SurviveBeingKilledAtRandomMoments)
{
    constexpr std::size_t times = underSanitizers ? 10 : 50;
    constexpr std::uint64_t seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    writeTelemetry(400);
    const auto start = std::chrono::steady_clock::now();
    const std::string wanted = uninterrupted();
    const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - start;
    ASSERT_THAT(wanted, HasSubstr("stuckClosed"));

    std::size_t kills = 0;
    while (kills < times) {
        const double share = static_cast<double>(random.below(1000)) / 1000.0;
        if (runAndKill(withCheckpoint(), share * whole.count())) {
            ++kills;
            continue;
        }
        ASSERT_EQ(content(path("answer")), wanted) << "after " << kills << " kills";
        fs::remove(path("memory"));
    }
    EXPECT_EQ(runProgram(withCheckpoint()).status, 0);
    EXPECT_EQ(content(path("answer")), wanted);
}

TEST_P(CheckpointFormats, GoOnWithTheSameBytes)
{
    const std::vector<std::string> format{"--format", GetParam()};
    writeTelemetry(17);
    ASSERT_EQ(runProgram(withCheckpoint(format)).status, 0);
    writeTelemetry(40);
    ASSERT_EQ(runProgram(withCheckpoint(format)).status, 0);
    EXPECT_EQ(content(path("answer")), uninterrupted(format));
}

INSTANTIATE_TEST_SUITE_P(, CheckpointFormats, testing::Values("table", "jsonl", "json"));

TEST_F(Checkpoints, OfComputedChannelsGoOnWhereverTheyAreCut)
{
    const std::vector<std::string> lines = projectLines("tests/app/models/coil.csv");
    const std::string plant = "tests/app/models/coil.itms";
    const ProgramRun whole =
        runProgram({"run", plant, "tests/app/models/coil.csv", "--format", "jsonl"});
    EXPECT_EQ(whole.status, 0) << whole.err;
    for (const std::size_t cut : {2U, 13U, 18U, 27U, 44U}) {
        const auto write = [&](std::size_t count) {
            std::ofstream file(path("log.csv"));
            for (std::size_t i = 0; i < count; ++i) {
                file << lines[i] << "\n";
            }
        };
        const std::vector<std::string> arguments{
            "run", plant,          path("log.csv"), "--format",     "jsonl",
            "-o",  path("answer"), "--checkpoint",  path("memory"), "--resume"};
        fs::remove(path("memory"));
        fs::remove(path("answer"));
        write(cut);
        runProgram(arguments);
        write(lines.size());
        const ProgramRun rest = runProgram(arguments);
        EXPECT_EQ(rest.status, 0) << rest.err;
        EXPECT_EQ(content(path("answer")), whole.out) << cut;
    }
}

TEST_F(Checkpoints, OfAnotherWayOfReadingAreRefused)
{
    writeTelemetry(3);
    runProgram(withCheckpoint());
    const ProgramRun run = runProgram(withCheckpoint({"--gap", "4"}));
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("was made with --gap \"3\""));
}

TEST_F(Checkpoints, OnStandardOutputGoOnWithTheNextStep)
{
    writeTelemetry(17);
    const std::vector<std::string> saving{"--checkpoint", path("memory"), "--resume"};
    const std::string first = runProgram(arguments(saving)).out;
    writeTelemetry(40);
    EXPECT_EQ(first + runProgram(arguments(saving)).out, uninterrupted());
}

TEST_F(Checkpoints, AreRefusedWithoutTheFile)
{
    writeTelemetry(2);
    const ProgramRun run = runProgram(arguments({"--resume"}));
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("--resume needs the checkpoint"));
}

TEST_F(Checkpoints, OfAnotherModelAreRefusedAndLeftAsTheyAre)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const std::string before = content(path("memory"));
    std::string other = content(fs::path(ITMS_ROOT) / model);
    const std::string name = "seized";
    for (std::size_t at = other.find(name); at != std::string::npos; at = other.find(name, at)) {
        other.replace(at, name.size(), "jammed");
    }
    std::ofstream(path("other.itms")) << other;
    std::vector<std::string> more = withCheckpoint();
    more[1] = path("other.itms");
    const ProgramRun run = runProgram(more);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("was made with another model"));
    EXPECT_EQ(content(path("memory")), before);
}

TEST_F(Checkpoints, OfAModelWithOtherProbabilitiesAreAdoptedOnDemand)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    std::string other = content(fs::path(ITMS_ROOT) / model);
    const std::string probability = "ok -> seized  : 0.01";
    other.replace(other.find(probability), probability.size(), "ok -> seized  : 0.02");
    std::ofstream(path("other.itms")) << other;
    writeTelemetry(15);
    std::vector<std::string> more = withCheckpoint();
    more[1] = path("other.itms");
    const ProgramRun refused = runProgram(more);
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("was made with other probabilities in the model"));
    EXPECT_THAT(refused.err, HasSubstr("hint: --adopt-model"));
    more.emplace_back("--adopt-model");
    const ProgramRun adopted = runProgram(more);
    EXPECT_EQ(adopted.status, 0);
    EXPECT_THAT(adopted.err, HasSubstr("the run goes on with those of"));
    EXPECT_THAT(content(path("answer")), HasSubstr("\"step\":15"));
}

TEST_F(Checkpoints, OfAModelWithOtherLawsAreNotAdopted)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    std::string other = content(fs::path(ITMS_ROOT) / model);
    for (std::size_t at = other.find("seized"); at != std::string::npos;
         at = other.find("seized", at)) {
        other.replace(at, 6, "jammed");
    }
    std::ofstream(path("other.itms")) << other;
    std::vector<std::string> more = withCheckpoint({"--adopt-model"});
    more[1] = path("other.itms");
    const ProgramRun run = runProgram(more);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("was made with another model"));
}

TEST_F(Checkpoints, OfOtherSettingsAreRefused)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const ProgramRun run = runProgram(withCheckpoint({"--keep", "3"}));
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("was made with --keep 8"));
}

TEST_F(Checkpoints, WithADamagedByteAreRefusedAndLeftAsTheyAre)
{
    constexpr std::uint64_t seed = 7;
    Random random(seed);
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const std::string whole = content(path("memory"));
    const std::string answer = content(path("answer"));
    for (int i = 0; i < 20; ++i) {
        std::string damaged = whole;
        damaged[random.below(damaged.size())] ^= 1;
        std::ofstream(path("memory"), std::ios::binary) << damaged;
        const ProgramRun run = runProgram(withCheckpoint());
        ASSERT_EQ(run.status, 2) << "seed " << seed << ", " << i;
        ASSERT_THAT(run.err, HasSubstr("memory: "));
        ASSERT_EQ(content(path("memory")), damaged);
        ASSERT_EQ(content(path("answer")), answer);
    }
}

TEST_F(Checkpoints, CutShortAreRefused)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const std::string whole = content(path("memory"));
    for (const std::size_t length : {std::size_t{0}, std::size_t{10}, whole.size() / 2}) {
        std::ofstream(path("memory"), std::ios::binary) << whole.substr(0, length);
        EXPECT_EQ(runProgram(withCheckpoint()).status, 2) << length;
    }
}

TEST_F(Checkpoints, WithAnotherOutputAreRefused)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const std::string whole = content(path("answer"));
    std::string other = whole;
    other[whole.size() / 2] ^= 1;
    const std::string length = std::to_string(whole.size());
    const std::string expected = "\n  expected: the output of the run that is resumed\n"
                                 "  hint: the file is left as it is\n";
    for (const auto& [text, what] :
         {std::pair(std::string("short\n"), "has 6 bytes, but " + length +
                                                " had been written when the checkpoint was made"),
          {other, "its first " + length +
                      " bytes are not those that had been written when the checkpoint was made"}}) {
        std::ofstream(path("answer"), std::ios::binary) << text;
        const ProgramRun run = runProgram(withCheckpoint());
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, path("answer") + ": " + what + expected);
        EXPECT_EQ(content(path("answer")), text);
    }
}

TEST_F(Checkpoints, WithAnOutputThatIsNotThereAreRefused)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    fs::remove(path("answer"));
    const ProgramRun run = runProgram(withCheckpoint());
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("has 0 bytes, but"));
    EXPECT_FALSE(fs::exists(path("answer")));
}

TEST_F(Checkpoints, OfARunThatPrintedDoNotEmptyAFile)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(arguments({"--checkpoint", path("memory")})).status, 0);
    std::ofstream(path("answer")) << "precious\n";
    const ProgramRun run = runProgram(withCheckpoint());
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err,
              path("answer") +
                  ": has 9 bytes, but the run that is resumed had written nothing to a file\n"
                  "  expected: the output of the run that is resumed\n"
                  "  hint: the file is left as it is\n");
    EXPECT_EQ(content(path("answer")), "precious\n");
}

TEST_F(Checkpoints, WithoutADigestAreStillRead)
{
    writeTelemetry(12);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    const std::string whole = content(path("memory"));
    nlohmann::json body = nlohmann::json::parse(whole.substr(whole.find('\n') + 1));
    ASSERT_EQ(body.erase("outputDigest"), 1U);
    const std::string text = body.dump();
    std::ofstream(path("memory"), std::ios::binary)
        << nlohmann::json{{"format", "itms-checkpoint"},
                          {"v", 2},
                          {"bytes", text.size()},
                          {"hash", plant::fingerprint(text)}}
               .dump()
        << "\n"
        << text;
    writeTelemetry(40);
    ASSERT_EQ(runProgram(withCheckpoint()).status, 0);
    EXPECT_EQ(content(path("answer")), uninterrupted());
    EXPECT_THAT(content(path("memory")), HasSubstr("outputDigest"));
}
