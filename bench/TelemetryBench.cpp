// What channels cost at a step: those that are read as they are, and those that are computed over windows.
#include "language/Reader.h"
#include "session/Session.h"
#include "telemetry/LineSource.h"
#include "telemetry/SoundSteps.h"
#include "telemetry/StepReader.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cmath>

namespace {

constexpr int rows = 2000;

/// Channels of a plant of as many sensors, each computed from two columns of the table.
enum class Kind { plain, difference, windows };

std::string channelText(Kind kind, int i)
{
    switch (kind) {
    case Kind::plain: return fmt::format("\"A-{}\"", i);
    case Kind::difference: return fmt::format("(\"A-{0}\" - \"B-{0}\") / max(\"A-{0}\", 1)", i);
    case Kind::windows: break;
    }
    static constexpr const char* functions[] = {"mean", "min", "max", "spread", "rate"};
    return fmt::format("{0}(\"A-{1}\" - \"B-{1}\") over 30 min", functions[i % 5], i);
}

std::string modelText(Kind kind, int channels)
{
    std::string text =
        "component Sensor {\n    cond reading: low, high\n"
        "    mode state { good initial, stuck fault }\n"
        "    law state = good -> reading = high\n    fault good -> stuck : 1 per year\n}\n"
        "system Plant {\n    step 10 s\n";
    for (int i = 0; i < channels; ++i) {
        text += fmt::format(
            "    s{0}: Sensor\n    observe s{0}.reading from {1} : low < -1e6 <= high\n", i,
            channelText(kind, i));
    }
    return text + "}\n";
}

std::vector<std::string> table(int channels)
{
    std::vector<std::string> lines{"t"};
    for (int i = 0; i < channels; ++i) {
        lines.front() += fmt::format(",A-{0},B-{0}", i);
    }
    for (int row = 0; row < rows; ++row) {
        std::string& line = lines.emplace_back(std::to_string(row * 10));
        for (int i = 0; i < channels; ++i) {
            line += fmt::format(",{:.2f},{:.2f}", 20 + std::sin(row * 0.01 + i),
                                10 + std::cos(row * 0.02 + i));
        }
    }
    return lines;
}

void readSteps(benchmark::State& run, Kind kind, bool advance)
{
    const auto channels = static_cast<int>(run.range(0));
    const std::string model = modelText(kind, channels);
    const std::vector<std::string> lines = table(channels);
    for ([[maybe_unused]] auto _ : run) {
        run.PauseTiming();
        session::Session session =
            session::Session::open(language::readModelText("plant.itms", model));
        run.ResumeTiming();
        telemetry::StepReader reader(std::make_unique<telemetry::LineVector>(lines),
                                     session.model(), session.bindings());
        telemetry::SoundSteps steps(reader);
        while (const auto step = steps.next()) {
            if (advance) session.advance(*step);
            benchmark::DoNotOptimize(step->observations.data());
        }
    }
    run.counters["per_step"] =
        benchmark::Counter(static_cast<double>(run.iterations()) * rows,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void readPlain(benchmark::State& run)
{
    readSteps(run, Kind::plain, false);
}
void readDifferences(benchmark::State& run)
{
    readSteps(run, Kind::difference, false);
}
void readWindows(benchmark::State& run)
{
    readSteps(run, Kind::windows, false);
}
void followWindows(benchmark::State& run)
{
    readSteps(run, Kind::windows, true);
}

BENCHMARK(readPlain)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(readDifferences)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(readWindows)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(followWindows)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);

} // namespace
