#include "report/Diagnosis.h"

#include <algorithm>

namespace report {

namespace {

Explanation explanation(const netlist::Circuit& circuit, const session::CircuitExplanation& found)
{
    Explanation result{found.probability, static_cast<int>(found.gates.size()), {}};
    for (const std::size_t gate : found.gates) {
        result.modes.push_back({circuit.signals[circuit.gates[gate].output], "mode", "faulty"});
    }
    return result;
}

} // namespace

Diagnosis diagnosis(const session::CircuitSession& session, const session::CircuitProblem& problem,
                    const session::CircuitAnswer& answer)
{
    Diagnosis made;
    made.id = problem.id;
    made.status = answer.status;
    made.complete = answer.complete;
    made.limit = answer.limit;
    made.faultBound = answer.faultBound;
    made.work = answer.work;
    for (const session::CircuitExplanation& found : answer.explanations) {
        made.explanations.push_back(explanation(session.circuit(), found));
    }
    for (const auto& [signal, value] : problem.outputs) {
        const bool differs = std::find(answer.differing.begin(), answer.differing.end(), signal) !=
                             answer.differing.end();
        made.outputs.push_back({session.circuit().signals[signal], value != differs, value});
    }
    made.outputCount = session.circuit().outputs.size();
    return made;
}

} // namespace report
