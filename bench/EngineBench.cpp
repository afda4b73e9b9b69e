// What a record of the search costs: copying a state, rating a variable, expanding a conflict.
#include "bench/Ladder.h"

#include <benchmark/benchmark.h>

namespace {

using bench::Ladder;

int rungs(const benchmark::State& run)
{
    return static_cast<int>(run.range(0));
}

void release(ItmsRes* record)
{
    record->clear();
    delete record;
}

void copyState(benchmark::State& run)
{
    Ladder ladder(rungs(run));
    const std::unique_ptr<State> state = ladder.state();
    for ([[maybe_unused]] auto _ : run) {
        const State copy(state.get(), true);
        benchmark::DoNotOptimize(copy.elements);
    }
    run.SetComplexityN(run.range(0));
}

void branchState(benchmark::State& run)
{
    Ladder ladder(rungs(run));
    const std::unique_ptr<State> state = ladder.state();
    for ([[maybe_unused]] auto _ : run) {
        const std::unique_ptr<State> branch = State::branch(state.get());
        benchmark::DoNotOptimize(branch->elements);
    }
    run.SetComplexityN(run.range(0));
}

void rateVariable(benchmark::State& run)
{
    Ladder ladder(rungs(run));
    for ([[maybe_unused]] auto _ : run) {
        // A state keeps the distributions that a rating replaces, so each round rates a new one.
        run.PauseTiming();
        std::unique_ptr<State> state = ladder.state();
        run.ResumeTiming();
        benchmark::DoNotOptimize(
            ladder.engine().entropy(ladder.output(ladder.last()), state.get(), nullptr));
        run.PauseTiming();
        state.reset();
        run.ResumeTiming();
    }
    run.SetComplexityN(run.range(0));
}

void expandConflict(benchmark::State& run)
{
    Ladder ladder(rungs(run));
    std::size_t children = 0;
    for ([[maybe_unused]] auto _ : run) {
        run.PauseTiming();
        auto* record = new ItmsRes(ladder.state().release());
        for (const char* id : {"0", "1"}) {
            TrajEl* el =
                (*record->state->elements)[plant::value(ladder.output(ladder.last()), id)->getId()];
            el->setLabel(*id == '0' ? "true" : "false");
            (*record->already_changed)[el->getId()] = el;
        }
        std::stack<ItmsRes*> agenda;
        run.ResumeTiming();
        ItmsRes* first = ladder.engine().propagateThroughConflict(
            ladder.law(ladder.last()), record, &agenda, false, 1.0, &ladder.trajectory(), 0);
        run.PauseTiming();
        children += 1 + agenda.size();
        release(first);
        for (; !agenda.empty(); agenda.pop()) {
            release(agenda.top());
        }
        run.ResumeTiming();
    }
    run.counters["children"] =
        benchmark::Counter(static_cast<double>(children), benchmark::Counter::kAvgIterations);
    run.SetComplexityN(run.range(0));
}

BENCHMARK(copyState)->RangeMultiplier(4)->Range(8, 2048)->Complexity();
BENCHMARK(branchState)->RangeMultiplier(4)->Range(8, 2048)->Complexity();
BENCHMARK(rateVariable)->RangeMultiplier(4)->Range(8, 2048)->Complexity();
BENCHMARK(expandConflict)->RangeMultiplier(4)->Range(8, 2048)->Complexity();

} // namespace
