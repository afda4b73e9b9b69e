// What the engine's work costs, and what the plain second engine takes for it: set-up, copying a state, rating a variable,
// finding a conflict, expanding one, and whole searches.
#include "bench/Ladder.h"
#include "tests/reference/PlainEngine.h"

#include <benchmark/benchmark.h>

namespace {

using bench::Ladder;

template <class Engine> struct Plant {
    explicit Plant(const benchmark::State& run) : ladder(static_cast<int>(run.range(0)))
    {
        engine.rtInit();
    }

    Ladder ladder;
    Engine engine;
};

void release(ItmsRes* record)
{
    record->clear();
    delete record;
}

template <class Engine> void setUp(benchmark::State& run)
{
    for ([[maybe_unused]] auto _ : run) {
        run.PauseTiming();
        auto ladder = std::make_unique<Ladder>(static_cast<int>(run.range(0)));
        auto engine = std::make_unique<Engine>();
        run.ResumeTiming();
        engine->rtInit();
        run.PauseTiming();
        engine.reset();
        ladder.reset();
        run.ResumeTiming();
    }
}

void copyState(benchmark::State& run)
{
    Plant<itms> plant(run);
    const std::unique_ptr<State> state = plant.ladder.state();
    for ([[maybe_unused]] auto _ : run) {
        const State copy(state.get(), true);
        benchmark::DoNotOptimize(copy.elements);
    }
}

void branchState(benchmark::State& run)
{
    Plant<itms> plant(run);
    const std::unique_ptr<State> state = plant.ladder.state();
    for ([[maybe_unused]] auto _ : run) {
        const std::unique_ptr<State> branch = State::branch(state.get());
        benchmark::DoNotOptimize(branch->elements);
    }
}

template <class Engine> void rateVariable(benchmark::State& run)
{
    Plant<Engine> plant(run);
    for ([[maybe_unused]] auto _ : run) {
        // A state keeps the distributions that a rating replaces, so each round rates a new one.
        run.PauseTiming();
        std::unique_ptr<State> state = plant.ladder.state();
        run.ResumeTiming();
        benchmark::DoNotOptimize(
            plant.engine.entropy(plant.ladder.output(plant.ladder.last()), state.get(), nullptr));
        run.PauseTiming();
        state.reset();
        run.ResumeTiming();
    }
}

// The last output is 0 although its input is 1: which clauses around it are violated?
template <class Engine> void findConflict(benchmark::State& run)
{
    Plant<Engine> plant(run);
    Ladder& ladder = plant.ladder;
    const std::unique_ptr<State> state = ladder.state();
    ElMap focus;
    for (const char* bit : {"0", "1"}) {
        TrajEl* el = ladder.outputIs(ladder.last(), bit, *state);
        el->setLabel(*bit == '0' ? "true" : "false");
        focus[el->getId()] = el;
    }
    for ([[maybe_unused]] auto _ : run) {
        std::queue<Clause*> found;
        plant.engine.checkForFocusedInternalConflicts(&focus, &found, state.get(),
                                                      &ladder.trajectory(), 0);
        plant.engine.checkForFocusedConflicts(&focus, &found, state.get(), &ladder.trajectory(), 0);
        benchmark::DoNotOptimize(found.size());
    }
}

// Resolves the conflict around the last output; its input may have been otherwise, or not.
template <class Engine> void expand(benchmark::State& run, bool inputHeld)
{
    Plant<Engine> plant(run);
    Ladder& ladder = plant.ladder;
    std::size_t children = 0;
    for ([[maybe_unused]] auto _ : run) {
        run.PauseTiming();
        auto* record = new ItmsRes(ladder.state().release());
        for (const char* bit : {"0", "1"}) {
            TrajEl* el = ladder.outputIs(ladder.last(), bit, *record->state);
            el->setLabel(*bit == '0' ? "true" : "false");
            (*record->already_changed)[el->getId()] = el;
        }
        if (inputHeld) {
            ladder.hold(ladder.last() - 1, *record->state);
        }
        std::stack<ItmsRes*> agenda;
        run.ResumeTiming();
        ItmsRes* first = plant.engine.propagateThroughConflict(
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
}

template <class Engine> void expandConflict(benchmark::State& run)
{
    expand<Engine>(run, false);
}

template <class Engine> void forcedFlip(benchmark::State& run)
{
    expand<Engine>(run, true);
}

// Explains that the last output is 0 by what happened in so many of the last rungs.
template <class Engine> void explain(benchmark::State& run, int rungsInDoubt, double maxFaults)
{
    Plant<Engine> plant(run);
    Ladder& ladder = plant.ladder;
    std::size_t candidates = 0;
    std::size_t records = 0;
    for ([[maybe_unused]] auto _ : run) {
        run.PauseTiming();
        State* state = ladder.state().release();
        SignedEls propositions;
        for (const char* bit : {"0", "1"}) {
            TrajEl* el = ladder.outputIs(ladder.last(), bit, *state);
            el->lock = *bit == '0' ? 0 : 1;
            propositions.insert({*bit == '0', el});
        }
        ladder.hold(ladder.last() - rungsInDoubt, *state);
        std::vector<ItmsRes*> found;
        run.ResumeTiming();
        plant.engine.addPropositions(&propositions, nullptr, state, &found, false, maxFaults, 0.0,
                                     &ladder.trajectory(), 0, false);
        run.PauseTiming();
        candidates += found.size();
        records += DataManager::searchWork.records;
        for (ItmsRes* record : found) {
            release(record);
        }
        run.ResumeTiming();
    }
    const auto each = [](std::size_t count) {
        return benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
    };
    run.counters["candidates"] = each(candidates);
    run.counters["records"] = each(records);
}

// One conflict, one way out.
template <class Engine> void localConflict(benchmark::State& run)
{
    explain<Engine>(run, 1, 1.0);
}

template <class Engine> void search(benchmark::State& run)
{
    explain<Engine>(run, 6, 1.0);
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(100)->Arg(1000)->Arg(10000);
}

BENCHMARK(copyState)->Apply(sizes);
BENCHMARK(branchState)->Apply(sizes);
BENCHMARK_TEMPLATE(setUp, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(setUp, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(rateVariable, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(rateVariable, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(findConflict, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(findConflict, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(forcedFlip, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(forcedFlip, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(expandConflict, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(expandConflict, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(localConflict, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(localConflict, PlainEngine)->Apply(sizes);
BENCHMARK_TEMPLATE(search, itms)->Apply(sizes);
BENCHMARK_TEMPLATE(search, PlainEngine)->Apply(sizes);

} // namespace
