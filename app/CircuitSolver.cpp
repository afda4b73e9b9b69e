#include "app/CircuitSolver.h"

#include "monitor/step/Budget.h"

#include <algorithm>

namespace app {

namespace {

report::ModeValue modeValue(const Atom& atom)
{
    return {atom.stateVar->comp->name, atom.stateVar->name, atom.value};
}

report::Explanation explanation(const plant::Plant& plant, const monitor::Candidate& candidate)
{
    report::Explanation result{candidate.probability, candidate.faults, {}};
    for (const plant::AtomIndex mode : candidate.modes) {
        result.modes.push_back(modeValue(*plant.atom(mode)));
    }
    return result;
}

} // namespace

CircuitSolver::CircuitSolver(const netlist::Circuit& circuit, double faultProbability)
    : circuit_(circuit), model_(netlist::buildModel(circuit, {faultProbability})),
      activated_(*model_.model), plant_(*model_.model), before_(monitor::initialLabels(plant_)),
      solver_(engine_, plant_)
{
}

report::Diagnosis CircuitSolver::solve(const Problem& problem, const SolverSettings& settings,
                                       const std::function<void(int)>& started)
{
    const monitor::StepInput input = stepInput(problem);
    const int last = settings.maxRank.value_or(settings.upTo);
    monitor::Budget budget(settings.limits);
    monitor::StepAnswer answer;
    int bound = settings.maxRank.value_or(1);
    for (;; ++bound) {
        started(bound);
        answer = solver_.solve(before_, input, {bound, budget.remaining()});
        budget.spend(answer.work);
        if (!answer.candidates.empty() || !answer.complete || bound >= last) break;
    }

    report::Diagnosis diagnosis;
    diagnosis.id = problem.id;
    diagnosis.status = answer.status;
    diagnosis.complete = answer.complete;
    diagnosis.limit = answer.limit;
    diagnosis.faultBound = bound;
    for (const monitor::Candidate& candidate : answer.candidates) {
        diagnosis.explanations.push_back(explanation(plant_, candidate));
    }
    fillOutputs(problem, answer, diagnosis);
    diagnosis.work = budget.work();
    return diagnosis;
}

// Inputs first: nothing predicts an output before they are adopted.
monitor::StepInput CircuitSolver::stepInput(const Problem& problem) const
{
    monitor::StepInput input;
    for (const auto* readings : {&problem.inputs, &problem.outputs}) {
        for (const auto& [signal, value] : *readings) {
            input.observations.push_back(plant_.indexOf(model_.out[signal][value]));
        }
    }
    return input;
}

void CircuitSolver::fillOutputs(const Problem& problem, const monitor::StepAnswer& answer,
                                report::Diagnosis& diagnosis) const
{
    const auto contradicted = [&](const Atom* observed) {
        return std::find(answer.discrepancies.begin(), answer.discrepancies.end(),
                         plant_.indexOf(observed)) != answer.discrepancies.end();
    };
    for (const auto& [signal, value] : problem.outputs) {
        const bool differs = contradicted(model_.out[signal][value]);
        diagnosis.outputs.push_back({circuit_.signals[signal], value != differs, value});
    }
    diagnosis.outputCount = circuit_.outputs.size();
}

} // namespace app
