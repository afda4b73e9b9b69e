#include "session/CircuitSession.h"

#include "monitor/step/Budget.h"

namespace session {

CircuitSession::CircuitSession(const netlist::Circuit& circuit, double faultProbability)
    : circuit_(circuit), model_(netlist::buildModel(circuit, {faultProbability})),
      activated_(*model_.model), plant_(*model_.model), before_(monitor::initialLabels(plant_)),
      solver_(engine_, plant_)
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
