// Runs that are killed at random moments while their telemetry is still being written, into one file after the other, and go on:
// they say what one run over all of it says.
#include "tests/app/Program.h"
#include "tests/app/Workshop.h"
#include "tests/reference/Random.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <thread>

namespace {

using nlohmann::json;
using Texts = std::vector<std::string>;

const std::string station = "examples/water/station.itms";
constexpr std::size_t files = 3;
constexpr std::size_t stepsPerFile = 60;

// The day of the example's stuck valve, and what comes after it.
std::vector<json> day()
{
    std::vector<json> steps;
    const Texts lines = projectLines("examples/water/stuck-valve.jsonl");
    for (std::size_t i = 0; i < files * stepsPerFile; ++i) {
        json step = i < lines.size() ? json::parse(lines[i]) : steps.back();
        step["t"] = 60.0 * static_cast<double>(i);
        steps.push_back(std::move(step));
    }
    return steps;
}

std::string cell(const json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::map<std::string, std::string> readings(const json& step)
{
    std::map<std::string, std::string> cells;
    for (const char* side : {"commands", "observations"}) {
        const json named = step.value(side, json::object());
        for (const auto& [name, value] : named.items()) {
            cells[name] = cell(value);
        }
    }
    return cells;
}

std::string asLines(const std::vector<json>& steps)
{
    std::string text;
    for (const json& step : steps) {
        text += step.dump() + "\n";
    }
    return text;
}

std::string asLongTable(const std::vector<json>& steps)
{
    std::string text = "t,name,value\n";
    for (const json& step : steps) {
        for (const auto& [name, value] : readings(step)) {
            text += step["t"].dump() + "," + name + "," + value + "\n";
        }
    }
    return text;
}

std::string asWideTable(const std::vector<json>& steps)
{
    std::map<std::string, std::string> columns;
    for (const json& step : day()) {
        columns.merge(readings(step));
    }
    std::string text = "t";
    for (const auto& [name, value] : columns) {
        text += "," + name;
    }
    text += "\n";
    for (const json& step : steps) {
        text += step["t"].dump();
        const auto cells = readings(step);
        for (const auto& [name, value] : columns) {
            const auto found = cells.find(name);
            text += "," + (found == cells.end() ? "" : found->second);
        }
        text += "\n";
    }
    return text;
}

struct Format {
    const char* name;
    std::string (*write)(const std::vector<json>& steps);
};

/// How many kills each format takes. ITMS_KILLS asks for more.
std::size_t kills()
{
    const char* wanted = std::getenv("ITMS_KILLS");
    return wanted ? static_cast<std::size_t>(std::atol(wanted)) : underSanitizers ? 5 : 15;
}

class KilledRuns : public Workshop, public testing::WithParamInterface<Format> {
protected:
    KilledRuns()
    {
        const std::vector<json> steps = day();
        for (std::size_t i = 0; i < files; ++i) {
            const auto begin = steps.begin() + static_cast<std::ptrdiff_t>(i * stepsPerFile);
            texts_.push_back(GetParam().write({begin, begin + stepsPerFile}));
        }
    }

    /// Over all that there is of the telemetry; the file that is written last is named `log`, and stands first.
    Texts arguments(const Texts& more) const
    {
        Texts all{"run", station, path("log")};
        for (std::size_t i = 0; i < file_; ++i) {
            all.push_back(path("log." + std::to_string(i)));
        }
        for (const char* option : {"--format", "jsonl", "-q"}) {
            all.emplace_back(option);
        }
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    Texts resumed(const Texts& more = {}) const
    {
        Texts all = arguments({"-o", path("answer"), "--checkpoint", path("memory"),
                               "--checkpoint-every", "7", "--resume"});
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    /// So many more bytes of the telemetry are written, perhaps in the middle of a cell.
    void grow(std::size_t bytes)
    {
        std::ofstream log(path("log"), std::ios::binary | std::ios::app);
        log << texts_[file_].substr(written_, bytes);
        written_ = std::min(texts_[file_].size(), written_ + bytes);
    }
    /// The file that is complete gets another name, and the next one is begun.
    void rotate()
    {
        std::filesystem::rename(path("log"), path("log." + std::to_string(file_)));
        ++file_;
        written_ = 0;
        write("log", "");
    }
    bool fileIsComplete() const { return written_ == texts_[file_].size(); }
    bool isComplete() const { return file_ + 1 == files && fileIsComplete(); }
    void beginAnew()
    {
        for (const std::string& name : names()) {
            std::filesystem::remove(path(name));
        }
        file_ = written_ = 0;
        write("log", "");
    }

    std::string uninterrupted()
    {
        beginAnew();
        while (true) {
            grow(texts_[file_].size());
            if (isComplete()) break;
            rotate();
        }
        const auto start = std::chrono::steady_clock::now();
        std::string answer = runProgram(arguments({})).out;
        seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return answer;
    }

    /// Runs on while the telemetry grows. Returns whether the run was killed before its end.
    bool runAndGrow(Random& random)
    {
        const double share = static_cast<double>(random.below(1000)) / 1000.0;
        const std::size_t bytes = random.below(texts_[file_].size() / 2);
        std::thread logger([&] {
            for (int piece = 0; piece < 4; ++piece) {
                std::this_thread::sleep_for(std::chrono::duration<double>(share * seconds_ / 5));
                grow(bytes / 4);
            }
        });

        const bool wasKilled = runAndKill(resumed(), share * seconds_);
        logger.join();
        return wasKilled;
    }

private:
    Texts texts_;
    std::size_t file_ = 0;
    std::size_t written_ = 0;
    double seconds_ = 0.0; // that a run over all takes
};

} // namespace

TEST_P(KilledRuns, SayWhatAnUndisturbedOneSays)
{
    constexpr std::uint64_t seed = 20261122;
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    const std::string wanted = uninterrupted();
    ASSERT_EQ(std::count(wanted.begin(), wanted.end(), '\n'),
              static_cast<std::ptrdiff_t>(files * stepsPerFile));
    beginAnew();
    for (std::size_t killed = 0; killed < kills();) {
        if (runAndGrow(random)) ++killed;
        if (fileIsComplete() && !isComplete()) rotate();
        if (!isComplete()) continue;
        const ProgramRun last = runProgram(resumed({"--final"}));
        ASSERT_EQ(last.status, 0) << last.err;
        ASSERT_EQ(read("answer"), wanted) << "after " << killed << " kills";
        beginAnew();
    }
    for (grow(1U << 20U); !isComplete(); grow(1U << 20U)) {
        rotate();
    }
    const ProgramRun last = runProgram(resumed({"--final"}));
    ASSERT_EQ(last.status, 0) << last.err;
    EXPECT_EQ(read("answer"), wanted);
}

INSTANTIATE_TEST_SUITE_P(, KilledRuns,
                         testing::Values(Format{"Lines", asLines}, Format{"WideTable", asWideTable},
                                         Format{"LongTable", asLongTable}),
                         [](const auto& tested) { return tested.param.name; });
