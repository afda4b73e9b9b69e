// Reading model files: a chain of cells of growing length, from its text, and from its JSON, to the model.
#include "language/Reader.h"
#include "language/json/ModelJson.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <stdexcept>
#include <string>

namespace {

// Each cell of 4 variables, 9 atoms, 2 laws and 5 transitions; one text line a cell, so that text and plant grow alike.
std::string plantText(std::int64_t cells)
{
    std::string text = R"(
component Cell {
    cond left:  zero, positive
    cond right: zero, positive
    command request: none, open
    mode state { on initial off broken fault }
    law state = on -> right = left
    law state = off -> right = zero
    nominal on -> off when left = zero : 0.9
    nominal off -> on when request = open : 0.9
    fault any -> broken : 1e-5
    idle any
}
system Chain {
)";
    for (std::int64_t i = 0; i < cells; ++i) {
        const std::string name = "cell" + std::to_string(i);
        text += "    " + name + ": Cell\n";
        if (i > 0) text += "    law cell" + std::to_string(i - 1) + ".right = " + name + ".left\n";
    }
    return text + "}\n";
}

language::ReadResult read(const char* name, const std::string& text)
{
    language::ReadResult result = language::readModelText(name, text);
    if (!result.model) throw std::runtime_error(result.errors.front().format());
    return result;
}

double allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

void perComponent(benchmark::State& run)
{
    using benchmark::Counter;
    run.counters["per_component"] = Counter(static_cast<double>(run.range(0)),
                                            Counter::kIsIterationInvariantRate | Counter::kInvert);
    run.SetComplexityN(run.range(0));
}

// `model_bytes` is what the heap holds for a model that was read, `peak_bytes` the most that the process ever had resident: of
// use where a benchmark is run alone.
void measureMemory(benchmark::State& run, const char* name, const std::string& text)
{
    const double before = allocatedBytes();
    const language::ReadResult held = read(name, text);
    run.counters["model_bytes"] = allocatedBytes() - before;
    run.counters["text_bytes"] = static_cast<double>(text.size());
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) run.counters["peak_bytes"] = kilobytes * 1024;
    }
}

void readText(benchmark::State& run)
{
    const std::string text = plantText(run.range(0));
    for ([[maybe_unused]] auto _ : run) {
        benchmark::DoNotOptimize(read("chain.itms", text));
    }
    perComponent(run);
    measureMemory(run, "chain.itms", text);
}

void readJson(benchmark::State& run)
{
    const std::string text = language::modelJson(read("chain.itms", plantText(run.range(0))));
    for ([[maybe_unused]] auto _ : run) {
        benchmark::DoNotOptimize(read("chain.json", text));
    }
    perComponent(run);
    measureMemory(run, "chain.json", text);
}

void writeJson(benchmark::State& run)
{
    const language::ReadResult model = read("chain.itms", plantText(run.range(0)));
    for ([[maybe_unused]] auto _ : run) {
        benchmark::DoNotOptimize(language::modelJson(model));
    }
    perComponent(run);
}

BENCHMARK(readText)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(readJson)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);
BENCHMARK(writeJson)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);

} // namespace
