// Diagnoses of one circuit: the model is built once, then problem after problem is solved.
#pragma once

#include "app/Problem.h"
#include "engine/itms.h"
#include "monitor/step/Step.h"
#include "netlist/CircuitModel.h"
#include "report/Diagnosis.h"

#include <functional>

namespace app {

/// How to search.
struct SolverSettings {
    std::optional<int> maxRank; ///< look at once for explanations with up to so many faults
    int upTo = 3;        ///< without maxRank: 1, then 2, ... up to this, until something is found
    SearchLimits limits; ///< for all searches of a problem together
};

/// Holds the circuit's model as the active one, so there can be only one at a time.
class CircuitSolver {
public:
    /// The circuit outlives the solver.
    CircuitSolver(const netlist::Circuit& circuit, double faultProbability);

    /// Solves a problem. Calls `started` before each search with its bound on the number of faults.
    report::Diagnosis solve(const Problem& problem, const SolverSettings& settings,
                            const std::function<void(int)>& started);

private:
    monitor::StepInput stepInput(const Problem& problem) const;
    void fillOutputs(const Problem& problem, const monitor::StepAnswer& answer,
                     report::Diagnosis& diagnosis) const;

    // In the order in which they have to happen.
    struct Activated {
        explicit Activated(plant::Model& model) { model.activate(); }
    };
    struct ReadyEngine : itms {
        ReadyEngine() { rtInit(); }
    };

    const netlist::Circuit& circuit_;
    netlist::CircuitModel model_;
    Activated activated_;
    ReadyEngine engine_;
    plant::Plant plant_;
    monitor::Prediction before_;
    monitor::StepSolver solver_;
};

} // namespace app
