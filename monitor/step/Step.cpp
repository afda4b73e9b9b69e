#include "monitor/step/Step.h"

#include "monitor/labels/StepLabels.h"
#include "monitor/step/EngineExplanations.h"
#include "monitor/step/Judge.h"

#include <algorithm>
#include <utility>

namespace monitor {

StepStatus statusOf(const std::vector<Candidate>& candidates, SearchLimit limit)
{
    if (candidates.empty()) {
        // What a limit cut says nothing about what explains the step.
        return limit == SearchLimit::none ? StepStatus::inconsistent : StepStatus::ambiguous;
    }
    if (candidates.front().modes.empty()) {
        return StepStatus::nominal;
    }
    // Two of equal probability are ambiguous, whatever the last bit of their sum.
    return candidates.front().probability > 0.5 + 1e-9 ? StepStatus::faulty : StepStatus::ambiguous;
}

StepSolver::StepSolver(itms& engine, const Plant& plant,
                       std::optional<std::uint64_t> recordsBeforeSplit)
    : StepSolver(std::make_shared<EngineExplanations>(
                     engine, recordsBeforeSplit.value_or(FaultSearch::usualRecordsBeforeSplit)),
                 plant)
{
}

StepAnswer StepSolver::solve(const Prediction& before, const StepInput& input,
                             const StepSettings& settings)
{
    std::optional<Meter> own;
    if (!Meter::current()) {
        own.emplace(settings.limits, settings.work);
    }
    const auto [frame, discrepancies] = [&] {
        const Meter::Free needed; // whatever is cut
        StepFrame made = makeFrame(plant_, before, input);
        StepLabels predicted(plant_);
        predicted.take(assumptionsOf(made, {}), made.observations, made.inputs);
        return std::pair(std::move(made), predicted.contradicted());
    }();
    const Explanations explanations = search_->search(frame, settings.maxFaults, settings.limits);
    Judgement judgement = judge(frame, explanations.found, explanations.logLikelihoods);

    StepAnswer answer;
    answer.discrepancies = discrepancies;
    answer.candidates = std::move(judgement.candidates);
    answer.complete = explanations.complete && judgement.sure;
    answer.limit = judgement.limit != SearchLimit::none ? judgement.limit : explanations.limit;
    answer.status = statusOf(answer.candidates, answer.limit);
    answer.work = explanations.work;
    return answer;
}

Prediction initialLabels(const Plant& plant)
{
    Prediction labels(plant);
    for (const PlantVariable& variable : plant.variables()) {
        const Atom* initial = variable.variable->initial;
        if (initial) {
            labels.assume(plant.indexOf(initial));
        } else if (variable.isMode && !variable.values.empty()) {
            labels.assume(variable.values.front());
        }
    }
    return concluded(labels);
}

const char* name(StepStatus status)
{
    switch (status) {
    case StepStatus::nominal: return "nominal";
    case StepStatus::faulty: return "faulty";
    case StepStatus::ambiguous: return "ambiguous";
    case StepStatus::inconsistent: break;
    }
    return "inconsistent";
}

const char* name(SearchLimit limit)
{
    switch (limit) {
    case SearchLimit::records: return "records";
    case SearchLimit::candidates: return "candidates";
    case SearchLimit::seconds: return "seconds";
    case SearchLimit::stopped: return "interrupted";
    case SearchLimit::work: return "work";
    case SearchLimit::memory: return "memory";
    case SearchLimit::none: break;
    }
    return "";
}

} // namespace monitor
