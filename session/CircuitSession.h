// Diagnoses of one circuit: the model is built once, then problem after problem is solved.
#pragma once

#include "monitor/step/Step.h"
#include "netlist/CircuitModel.h"
#include "session/CircuitProblem.h"

#include <functional>
#include <optional>

namespace session {

/// What looks for explanations.
enum class CircuitSearch {
    conflicts, ///< monitor::ConflictSearch; the engine is set up when it is asked for the first time
    engine     ///< monitor::EngineExplanations
};

/// How to search.
struct CircuitSettings {
    std::optional<int> maxRank; ///< look at once for explanations with up to so many faults
    int upTo = 3;        ///< without maxRank: 1, then 2, ... up to this, until something is found
    SearchLimits limits; ///< for all searches of a problem together
    monitor::WorkLimits work = {}; ///< the same
};

/// What was found out about a problem.
struct CircuitAnswer {
    monitor::StepAnswer step; ///< of the last search
    int faultBound = 1;       ///< the number of faults up to which that looked
    SearchWork work;          ///< summed over the searches
};

/// Once the engine was set up, the circuit's model is the active one, so there can be only one at a time, and no Session beside it.
class CircuitSession {
public:
    /// The circuit outlives the session. Requires a probability above 0 and below 1, that of a gate to be faulty.
    CircuitSession(const netlist::Circuit& circuit, double faultProbability,
                   CircuitSearch search = CircuitSearch::conflicts);

    /// Solves a problem of this circuit. Calls `started` before each search with its bound on the number of faults.
    CircuitAnswer solve(const CircuitProblem& problem, const CircuitSettings& settings,
                        const std::function<void(int)>& started);

    const netlist::Circuit& circuit() const { return circuit_; }
    const plant::Plant& plant() const { return plant_; }
    /// The signal having this value.
    plant::AtomIndex atom(netlist::SignalIndex signal, bool value) const
    {
        return plant_.indexOf(model_.out[signal][value]);
    }

private:
    monitor::StepInput stepInput(const CircuitProblem& problem) const;

    const netlist::Circuit& circuit_;
    netlist::CircuitModel model_;
    plant::Plant plant_;
    monitor::Prediction before_;
    monitor::StepSolver solver_;
};

} // namespace session
