// A whole step: circuits of growing size, and the problems of c880, from one fault to hundreds of pairs of faults.
#include "engine/itms.h"
#include "monitor/step/Step.h"
#include "netlist/BenchReader.h"
#include "netlist/CircuitModel.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace {

using nlohmann::json;

/// A circuit of examples/circuits, active and set up, with its problems.
class Workplace {
public:
    explicit Workplace(const std::string& name)
        : circuit_(netlist::readBenchFile(folder() + name + ".bench").circuit.value()),
          model_(netlist::buildModel(circuit_))
    {
        model_.model->activate();
        engine_.rtInit();
        plant_ = std::make_unique<plant::Plant>(*model_.model);
        std::ifstream lines(folder() + name + ".jsonl");
        for (std::string line; std::getline(lines, line);) {
            problems_.push_back(json::parse(line));
        }
    }

    monitor::StepAnswer solve(std::size_t problem)
    {
        monitor::StepInput input;
        add(input, problems_.at(problem).at("inputs"));
        add(input, problems_.at(problem).at("observed"));
        monitor::StepSolver solver(engine_, *plant_);
        monitor::StepAnswer answer;
        for (int faults = 1; answer.candidates.empty(); ++faults) {
            answer = solver.solve(monitor::initialLabels(*plant_), input, {.maxFaults = faults});
        }
        return answer;
    }

private:
    static std::string folder() { return std::string(ITMS_ROOT) + "/examples/circuits/"; }

    void add(monitor::StepInput& input, const json& values) const
    {
        for (const auto& [signal, bit] : values.items()) {
            input.observations.push_back(
                plant_->indexOf(netlist::outAtom(circuit_, model_, signal, bit.get<int>() == 1)));
        }
    }

    netlist::Circuit circuit_;
    netlist::CircuitModel model_;
    itms engine_;
    std::unique_ptr<plant::Plant> plant_;
    std::vector<json> problems_;
};

void solve(benchmark::State& run, const std::string& circuit, std::size_t problem)
{
    Workplace workplace(circuit);
    monitor::StepAnswer answer;
    for ([[maybe_unused]] auto _ : run) {
        answer = workplace.solve(problem);
        benchmark::DoNotOptimize(answer.candidates.data());
    }
    run.counters["candidates"] = static_cast<double>(answer.candidates.size());
    run.counters["records"] = static_cast<double>(answer.work.records);
}

void stepBySize(benchmark::State& run)
{
    static const char* const circuits[] = {"c17", "74181", "c432", "c880"};
    solve(run, circuits[run.range(0)], 1);
    run.SetLabel(circuits[run.range(0)]);
}

void stepOnC880(benchmark::State& run)
{
    solve(run, "c880", static_cast<std::size_t>(run.range(0)));
}

BENCHMARK(stepBySize)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(stepOnC880)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

} // namespace
