#include "report/Diagnosis.h"

#include <algorithm>

namespace report {

namespace {

Explanation explanation(const plant::Plant& plant, const monitor::Candidate& candidate)
{
    Explanation result{candidate.probability, candidate.faults, {}};
    for (const plant::AtomIndex index : candidate.modes) {
        const Atom& mode = *plant.atom(index);
        result.modes.push_back({mode.stateVar->comp->name, mode.stateVar->name, mode.value});
    }
    return result;
}

} // namespace

Diagnosis diagnosis(const session::CircuitSession& session, const session::CircuitProblem& problem,
                    const session::CircuitAnswer& answer)
{
    Diagnosis made;
    made.id = problem.id;
    made.status = answer.step.status;
    made.complete = answer.step.complete;
    made.limit = answer.step.limit;
    made.faultBound = answer.faultBound;
    made.work = answer.work;
    for (const monitor::Candidate& candidate : answer.step.candidates) {
        made.explanations.push_back(explanation(session.plant(), candidate));
    }
    const std::vector<plant::AtomIndex>& contradicted = answer.step.discrepancies;
    for (const auto& [signal, value] : problem.outputs) {
        const bool differs = std::find(contradicted.begin(), contradicted.end(),
                                       session.atom(signal, value)) != contradicted.end();
        made.outputs.push_back({session.circuit().signals[signal], value != differs, value});
    }
    made.outputCount = session.circuit().outputs.size();
    return made;
}

} // namespace report
