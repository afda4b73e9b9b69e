// One step of the monitor: predict, adopt, compare, search, judge.
//
//     plant::Plant plant(model);                          // over which the engine is set up
//     StepSolver solver(engine, plant);
//     StepAnswer answer = solver.solve(initialLabels(plant), input, {.maxFaults = 2});
//
// 1. Predict. Each mode variable follows its nominal transition whose guard holds, else stays. Conditions follow
//    from modes, commands and laws by unit propagation.
// 2. Adopt. An observation of a variable that nothing predicts is taken as its label, and propagated.
// 3. Compare. An observation that differs from its predicted label is a discrepancy; without any, the prediction
//    is the explanation.
// 4. Search. The engine looks for the mode changes that explain the discrepancies; where it is not sure to find them
//    all, conflicts are taken apart one by one (monitor/step/FaultSearch.h). Another search can take its place
//    (monitor/step/ExplanationSearch.h).
// 5. Judge. Each candidate's modes are predicted anew. One that contradicts an observation, or for which what stays
//    open cannot be given values within the laws, is dropped. What is left is ranked by probability.
//
// Probability of a candidate: the product, over the mode variables, of the probability of the transition taken (of staying: what the
// enabled transitions leave), times the likelihood of the observations: 1/N, where N is the number of combinations of values of
// the observed variables that the laws allow with modes, commands and inputs ("Diagnosing multiple faults", Artificial
// Intelligence 32, 1987). Computed in logarithms and normalised over the candidates.
#pragma once

#include "monitor/labels/Meter.h"
#include "monitor/step/ExplanationSearch.h"

#include <memory>
#include <optional>

class itms;

namespace monitor {

struct StepSettings {
    int maxFaults = 1;        ///< faults that an explanation may have, >= 0
    SearchLimits limits = {}; ///< of the step as a whole
    WorkLimits work = {}; ///< the same; where a meter counts already, its limits hold (labels/Meter.h)
};

/// An explanation of the step.
struct Candidate {
    std::vector<AtomIndex> modes; ///< mode values other than predicted, ordered by identifier
    int faults = 0;               ///< how many of them are faults
    double logProbability = 0.0;  ///< natural logarithm of the joint probability, not normalised
    double probability = 0.0;     ///< normalised over the answer's candidates
};

enum class StepStatus {
    nominal, ///< the prediction explains the observations
    faulty,  ///< one explanation has more than half of the probability
    /// Several explanations, none with more than half of it; or a limit cut the search before one was found.
    ambiguous,
    inconsistent ///< nothing explains the observations within the fault bound
};

/// What the monitor makes of a step.
struct StepAnswer {
    StepStatus status = StepStatus::inconsistent;
    bool complete = true; ///< the candidates are all the minimal explanations within the bound
    SearchLimit limit = SearchLimit::none; ///< what cut the search, if it is not complete for that
    std::vector<Candidate> candidates; ///< most probable first, ties by the identifiers of the modes
    /// Observed values that the prediction rules out; none where the prediction contradicts itself.
    std::vector<AtomIndex> discrepancies;
    SearchWork work; ///< summed over the searches of the step
};

class StepSolver {
public:
    /// Searches with an engine that is set up over the plant. Both outlive the solver. After so many records a search by the
    /// engine is taken apart, and what it found until then stands (FaultSearch.h). The answer is the same with any number; 0 takes
    /// every search apart at once; none is the usual one.
    StepSolver(itms& engine, const Plant& plant,
               std::optional<std::uint64_t> recordsBeforeSplit = {});
    /// Searches in a way of the caller's. The plant outlives the solver.
    StepSolver(std::shared_ptr<ExplanationSearch> search, const Plant& plant)
        : search_(std::move(search)), plant_(plant)
    {
    }

    /// Explains the observations of a step. Requires: `before`, the labels before the step, has a value for every mode
    /// variable, and conditions as far as they are known. Commands come from `input` alone; one that is not given is
    /// unknown. Explanations that contain another one are left out. A reading that no mode explains, or laws that
    /// contradict one another, are not an error: the answer has no candidates then.
    StepAnswer solve(const Prediction& before, const StepInput& input, const StepSettings& settings);

private:
    std::shared_ptr<ExplanationSearch> search_;
    const Plant& plant_;
};

/// The labels before the first step: every mode variable has its initial value, or its first; conditions with an initial value have
/// that, and others what follows; the rest is unknown. Where these contradict the laws, nothing follows.
Prediction initialLabels(const Plant& plant);

/// The status of a step that these explain, the most probable first, as far as a limit let them be found.
StepStatus statusOf(const std::vector<Candidate>& candidates, SearchLimit limit);
/// The name of a status: "nominal", "faulty", "ambiguous", "inconsistent".
const char* name(StepStatus status);
/// What a limit bounds: "records", "candidates", "seconds", "interrupted", "work", "memory", or "" for none.
const char* name(SearchLimit limit);

} // namespace monitor
