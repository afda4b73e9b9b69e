// Diagnoses of one circuit: it is prepared once, then problem after problem is solved.
#pragma once

#include "monitor/step/FlipSearch.h"
#include "monitor/step/Step.h"
#include "netlist/Circuit.h"
#include "session/CircuitCells.h"
#include "session/CircuitProblem.h"

#include <functional>
#include <memory>
#include <optional>

namespace session {

/// What looks for explanations.
enum class CircuitSearch {
    conflicts, ///< monitor::FlipSearch; a model of the circuit is made only for more than monitor::mostCountedCells faults
    engine     ///< monitor::EngineExplanations over its model
};

/// How to search.
struct CircuitSettings {
    std::optional<int> maxRank; ///< look at once for explanations with up to so many faults
    int upTo = 3;        ///< without maxRank: 1, then 2, ... up to this, until something is found
    SearchLimits limits; ///< for all searches of a problem together
    monitor::WorkLimits work = {}; ///< the same
};

/// Gates that explain the outputs if all of them are faulty.
struct CircuitExplanation {
    std::vector<std::size_t> gates; ///< indices, ordered by name; none: every gate works
    double probability = 0.0;       ///< normalised over the answer's explanations
};

/// What was found out about a problem.
struct CircuitAnswer {
    monitor::StepStatus status = monitor::StepStatus::inconsistent;
    bool complete = true; ///< the explanations are all the minimal ones within the bound
    SearchLimit limit = SearchLimit::none; ///< what cut the search, if it is not complete for that
    std::vector<CircuitExplanation> explanations; ///< most probable first, ties by name
    std::vector<netlist::SignalIndex>
        differing;      ///< outputs that are not what the circuit gives when every gate works
    int faultBound = 1; ///< the number of faults up to which the last search looked
    SearchWork work;    ///< summed over the searches
};

/// Once a problem was left to the model, this is the active one, so that there can be only one at a time, and no Session beside it.
class CircuitSession {
public:
    /// The circuit outlives the session. Requires a probability above 0 and below 1, that of a gate to be faulty.
    CircuitSession(const netlist::Circuit& circuit, double faultProbability,
                   CircuitSearch search = CircuitSearch::conflicts);
    ~CircuitSession();
    CircuitSession(const CircuitSession&) = delete;
    CircuitSession& operator=(const CircuitSession&) = delete;

    /// Solves a problem of this circuit. Calls `started` before each search with its bound on the number of faults.
    CircuitAnswer solve(const CircuitProblem& problem, const CircuitSettings& settings,
                        const std::function<void(int)>& started);

    const netlist::Circuit& circuit() const { return circuit_; }

private:
    class Model;

    CircuitAnswer solveWithin(const CircuitProblem& problem, int faultBound,
                              const SearchLimits& limits);
    CircuitAnswer solveByCells(const CircuitProblem& problem, int faultBound,
                               const SearchLimits& limits) const;
    monitor::NetworkQuestion questionOf(const CircuitProblem& problem) const;
    monitor::Candidate weighed(const monitor::FaultyCells& cells, int outcomes) const;

    const netlist::Circuit& circuit_;
    double faultProbability_;
    CircuitSearch search_;
    std::optional<CircuitCells> cells_;
    std::unique_ptr<Model> model_; ///< made when it is needed for the first time
};

} // namespace session
