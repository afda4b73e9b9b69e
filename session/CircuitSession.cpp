#include "session/CircuitSession.h"

#include "engine/itms.h"
#include "monitor/step/Budget.h"
#include "monitor/step/ConflictSearch.h"
#include "monitor/step/EngineExplanations.h"
#include "monitor/step/Judge.h"
#include "netlist/CircuitModel.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace session {

namespace {

// The engine, set up over a model when it is asked for the first time.
class EngineOnDemand final : public monitor::ExplanationSearch {
public:
    explicit EngineOnDemand(plant::Model& model) : model_(model) {}

    monitor::Explanations search(const monitor::StepFrame& frame, int faultBudget,
                                 const SearchLimits& limits) override
    {
        if (!engine_) {
            model_.activate();
            engine_.emplace();
            engine_->rtInit();
            explanations_.emplace(*engine_);
        }
        return explanations_->search(frame, faultBudget, limits);
    }

private:
    plant::Model& model_;
    std::optional<itms> engine_;
    std::optional<monitor::EngineExplanations> explanations_;
};

std::shared_ptr<monitor::ExplanationSearch> makeSearch(CircuitSearch search, plant::Model& model,
                                                       const plant::Plant& plant)
{
    auto engine = std::make_shared<EngineOnDemand>(model);
    if (search == CircuitSearch::engine) return engine;
    return std::make_shared<monitor::ConflictSearch>(plant, std::move(engine));
}

CircuitExplanation explanationOf(const monitor::Candidate& candidate)
{
    return {{candidate.modes.begin(), candidate.modes.end()}, candidate.probability};
}

} // namespace

/// The circuit as a plant, and a solver of its steps.
class CircuitSession::Model {
public:
    Model(const netlist::Circuit& circuit, double faultProbability, CircuitSearch search)
        : made_(netlist::buildModel(circuit, {faultProbability})), plant_(*made_.model),
          before_(monitor::initialLabels(plant_)),
          solver_(makeSearch(search, *made_.model, plant_), plant_)
    {
        for (std::size_t gate = 0; gate < made_.faulty.size(); ++gate) {
            gateOf_[plant_.indexOf(made_.faulty[gate])] = static_cast<plant::AtomIndex>(gate);
        }
    }

    CircuitAnswer solve(const CircuitProblem& problem, int faultBound, const SearchLimits& limits)
    {
        monitor::StepAnswer step = solver_.solve(before_, inputOf(problem), {faultBound, limits});
        CircuitAnswer answer{step.status, step.complete, step.limit, {}, {}, faultBound, step.work};
        for (monitor::Candidate& candidate : step.candidates) {
            for (plant::AtomIndex& mode : candidate.modes) mode = gateOf_.at(mode);
            answer.explanations.push_back(explanationOf(candidate));
        }
        for (const auto& [signal, value] : problem.outputs) {
            const plant::AtomIndex seen = plant_.indexOf(made_.out[signal][value]);
            const auto& wrong = step.discrepancies;
            if (std::find(wrong.begin(), wrong.end(), seen) != wrong.end()) {
                answer.differing.push_back(signal);
            }
        }
        return answer;
    }

private:
    monitor::StepInput inputOf(const CircuitProblem& problem) const
    {
        monitor::StepInput input;
        input.inputs = problem.inputs.size();
        for (const auto* readings : {&problem.inputs, &problem.outputs}) {
            for (const auto& [signal, value] : *readings) {
                input.observations.push_back(plant_.indexOf(made_.out[signal][value]));
            }
        }
        return input;
    }

    netlist::CircuitModel made_;
    plant::Plant plant_;
    monitor::Prediction before_;
    monitor::StepSolver solver_;
    std::unordered_map<plant::AtomIndex, plant::AtomIndex> gateOf_; ///< by the mode's value
};

CircuitSession::CircuitSession(const netlist::Circuit& circuit, double faultProbability,
                               CircuitSearch search)
    : circuit_(circuit), faultProbability_(faultProbability), search_(search)
{
    if (search == CircuitSearch::conflicts) cells_ = cellsOf(circuit);
}

CircuitSession::~CircuitSession() = default;

CircuitAnswer CircuitSession::solve(const CircuitProblem& problem, const CircuitSettings& settings,
                                    const std::function<void(int)>& started)
{
    monitor::Meter meter(settings.limits, settings.work);
    const int last = settings.maxRank.value_or(settings.upTo);
    monitor::Budget budget(settings.limits);
    for (int bound = settings.maxRank.value_or(1);; ++bound) {
        started(bound);
        CircuitAnswer answer = solveWithin(problem, bound, budget.remaining());
        budget.spend(answer.work);
        if (!answer.explanations.empty() || !answer.complete || bound >= last) {
            answer.work = budget.work();
            return answer;
        }
    }
}

// A gate that is faulty as good as always is not one that works until something else is seen.
CircuitAnswer CircuitSession::solveWithin(const CircuitProblem& problem, int faultBound,
                                          const SearchLimits& limits)
{
    constexpr double mostProbable = 0.999;
    const int mostFaults = static_cast<int>(monitor::mostCountedCells);
    if (cells_ && faultBound <= mostFaults && faultProbability_ <= mostProbable) {
        return solveByCells(problem, faultBound, limits);
    }
    if (!model_) model_ = std::make_unique<Model>(circuit_, faultProbability_, search_);
    return model_->solve(problem, faultBound, limits);
}

CircuitAnswer CircuitSession::solveByCells(const CircuitProblem& problem, int faultBound,
                                           const SearchLimits& limits) const
{
    const monitor::NetworkQuestion question = questionOf(problem);
    monitor::FlipSearch search(cells_->network, question, limits);
    search.run(faultBound);
    CircuitAnswer answer;
    answer.complete = search.complete();
    answer.limit = search.limit();
    answer.work = search.work();
    answer.faultBound = faultBound;
    for (const std::size_t differing : search.differing()) {
        answer.differing.push_back(problem.outputs[differing].first);
    }
    std::vector<monitor::Candidate> candidates;
    try {
        const monitor::Meter::Finishing finishing;
        countOutcomes(cells_->network, question, search.found(),
                      [&](const monitor::FaultyCells& cells, int outcomes) {
                          candidates.push_back(weighed(cells, outcomes));
                      });
    } catch (const monitor::Meter::Cut& cut) {
        answer.complete = false;
        answer.limit = cut.limit;
    }
    monitor::normaliseAndRank(candidates, [&](plant::AtomIndex gate) {
        const netlist::Gate& named = circuit_.gates[static_cast<std::size_t>(gate)];
        return circuit_.signals[named.output] + ".mode";
    });
    answer.status = monitor::statusOf(candidates, answer.limit);
    for (const monitor::Candidate& candidate : candidates) {
        answer.explanations.push_back(explanationOf(candidate));
    }
    return answer;
}

monitor::NetworkQuestion CircuitSession::questionOf(const CircuitProblem& problem) const
{
    monitor::NetworkQuestion question{std::vector<bool>(cells_->network.sources()), {}, {}};
    for (const auto& [signal, value] : problem.inputs) {
        question.sources[cells_->signalOf[signal]] = value;
    }
    for (const auto& [signal, value] : problem.outputs) {
        question.seen.push_back({cells_->signalOf[signal], value});
    }
    for (const monitor::Cell& cell : cells_->network.cells()) {
        question.mayFail.push_back(cell.mode >= 0);
    }
    return question;
}

// Its modes are numbers of gates.
monitor::Candidate CircuitSession::weighed(const monitor::FaultyCells& cells, int outcomes) const
{
    const double logWorks = std::log1p(-faultProbability_);
    const double logFaulty = std::log(faultProbability_);
    const std::size_t faulty = cells.size();
    monitor::Candidate candidate;
    for (const monitor::CellNumber cell : cells) {
        candidate.modes.push_back(cells_->network.cells()[cell].mode);
    }
    candidate.faults = static_cast<int>(faulty);
    candidate.logProbability = static_cast<double>(circuit_.gates.size() - faulty) * logWorks +
                               static_cast<double>(faulty) * logFaulty - std::log(outcomes);
    return candidate;
}

} // namespace session
