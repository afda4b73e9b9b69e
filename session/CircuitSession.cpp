#include "session/CircuitSession.h"

#include "engine/itms.h"
#include "monitor/step/Budget.h"
#include "monitor/step/ConflictSearch.h"
#include "monitor/step/EngineExplanations.h"

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

} // namespace

CircuitSession::CircuitSession(const netlist::Circuit& circuit, double faultProbability,
                               CircuitSearch search)
    : circuit_(circuit), model_(netlist::buildModel(circuit, {faultProbability})),
      plant_(*model_.model), before_(monitor::initialLabels(plant_)),
      solver_(makeSearch(search, *model_.model, plant_), plant_)
{
}

CircuitAnswer CircuitSession::solve(const CircuitProblem& problem, const CircuitSettings& settings,
                                    const std::function<void(int)>& started)
{
    monitor::Meter meter(settings.limits, settings.work);
    const monitor::StepInput input = stepInput(problem);
    const int last = settings.maxRank.value_or(settings.upTo);
    monitor::Budget budget(settings.limits);
    CircuitAnswer answer;
    answer.faultBound = settings.maxRank.value_or(1);
    for (;; ++answer.faultBound) {
        started(answer.faultBound);
        answer.step = solver_.solve(before_, input, {answer.faultBound, budget.remaining()});
        budget.spend(answer.step.work);
        answer.work = budget.work();
        if (!answer.step.candidates.empty() || !answer.step.complete || answer.faultBound >= last)
            return answer;
    }
}

monitor::StepInput CircuitSession::stepInput(const CircuitProblem& problem) const
{
    monitor::StepInput input;
    input.inputs = problem.inputs.size();
    for (const auto* readings : {&problem.inputs, &problem.outputs}) {
        for (const auto& [signal, value] : *readings) {
            input.observations.push_back(atom(signal, value));
        }
    }
    return input;
}

} // namespace session
