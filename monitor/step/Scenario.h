// A scenario: the prediction of a step under some assumed deviations, and how the observations compare with it.
//
// The observations are taken in their order. One of a variable that nothing predicts is adopted: it becomes the
// variable's label and is propagated before the next one is looked at. Any other is compared, and where another
// value follows from the modes it is a discrepancy. What is adopted differs from scenario to scenario: a valve in an
// unknown mode predicts no outflow, and the one that is measured is adopted.
#pragma once

#include "monitor/labels/StepLabels.h"
#include "monitor/step/Suspects.h"

namespace monitor {

/// What is given for a step. Values are atoms of the plant, at most one of each variable.
struct StepInput {
    SharedArray<AtomIndex> commands;
    std::vector<AtomIndex> observations; ///< inputs first: they are adopted in this order
    std::size_t inputs =
        0; ///< so many at the beginning of these are inputs: not scored, whatever they are
    /// Along time, for each observation: how probable it is that it is not what it was at the step before, where the plant leaves
    /// it open. Empty: readings are taken without what they were before.
    std::vector<double> changing = {};
};

/// Mode values other than predicted, sorted.
using Deviations = std::vector<AtomIndex>;

/// A step as far as it is known before anything is searched: what every scenario of it has in common.
struct StepFrame {
    const Plant& plant;
    SharedArray<AtomIndex> commands;
    std::vector<AtomIndex> observations;
    std::size_t inputs; ///< so many at the beginning of the observations
    ModeSteps modes;    ///< by rising index of the variable
    /// From what the modes follow; null: not known.
    KnownModeStepsPointer known = {};
    std::vector<double> changing = {}; ///< of the observations, as in StepInput
    /// The labels before the step, from which those of the step are drawn at the cost of what changes; null: not kept. They outlive it.
    const StepLabels* carried = nullptr;
    bool carriedFills = false; ///< it is known of these that what they leave open has values in turn
    bool restIsKnown =
        true; ///< in what is left out of a step of a part of the plant (LocalStep.h), everything has a label

    /// Requires: a mode variable. Constant time.
    const ModeStep& stepOf(VariableIndex variable) const
    {
        return modes[plant.modePlace(variable)];
    }
};

/// Leaves readings out of a StepInput or a StepFrame. Linear in the readings.
template <class Step, class IsLeftOut> void leaveOutReadings(Step& step, IsLeftOut isLeftOut)
{
    std::size_t kept = 0;
    std::size_t inputs = 0;
    for (std::size_t i = 0; i < step.observations.size(); ++i) {
        if (isLeftOut(step.observations[i])) continue;
        step.observations[kept] = step.observations[i];
        if (!step.changing.empty()) step.changing[kept] = step.changing[i];
        inputs += i < step.inputs ? 1 : 0;
        ++kept;
    }
    step.observations.resize(kept);
    step.changing.resize(step.changing.empty() ? 0 : kept);
    step.inputs = inputs;
}

/// What a step can do, from the labels before it. With `last`, what another step could do, it costs what is different there.
StepFrame makeFrame(const Plant& plant, const Prediction& before, StepInput input,
                    const KnownModeStepsPointer& last = {});

/// Assumes the step's commands, the deviations, and what is predicted of every other mode, and draws all
/// conclusions. Requires: no label is known yet. Returns false when they contradict one another.
bool assumeStep(Prediction& labels, const StepFrame& frame, const Deviations& deviations);

/// The labels under some deviations, and the observations that contradict them. The frame outlives it.
class Scenario {
public:
    /// Requires: at most one deviation of each variable. Their order does not matter. Linear in the plant.
    Scenario(const StepFrame& frame, Deviations deviations);

    /// False when modes and commands contradict the laws. The observations are not looked at then.
    bool consistent() const { return consistent_; }
    /// True when every atom of the plant has a label.
    bool complete() const { return prediction_.complete() && frame_.restIsKnown; }
    const Prediction& prediction() const { return prediction_; }
    const Deviations& deviations() const { return deviations_; }
    const StepFrame& frame() const { return frame_; }
    /// Observed values whose atom is labelled "false", or, labelled "true", would violate a law.
    const std::vector<AtomIndex>& discrepancies() const { return discrepancies_; }
    /// For each discrepancy, the modes on which the contradicted label rests: not all of them are as assumed. For an
    /// inconsistent scenario, the modes on which the contradiction rests.
    std::vector<Conflict> conflicts() const;
    /// The modes that are in one of the conflicts; nothing where there is none. Linear in what they rest on.
    std::optional<Conflict> modesInConflict() const;

private:
    void takeObservations();
    bool adopt(AtomIndex observed);
    Conflict modesOfViolated() const;
    AtomIndex ruledOutBy(AtomIndex value) const;

    const StepFrame& frame_;
    Deviations deviations_;
    Prediction prediction_;
    bool consistent_;
    std::vector<AtomIndex> discrepancies_;
    /// For discrepancies that were tried as labels, and taken back: the modes on which the violation rests.
    std::unordered_map<AtomIndex, Conflict> ruledOut_;
};

/// Of a scenario that nothing contradicts, but that leaves no values for what is open: the modes on which that rests, as trying
/// values shows. Nothing where there are values, or trying meets its bound.
std::optional<Conflict> conflictByCases(const Scenario& scenario);

/// For each variable, whether it may deviate from the scenario in an explanation of these conflicts with at most `faultBudget`
/// further faults, the `fixed` variables keeping the scenario's values.
std::vector<bool> suspectsOf(const Scenario& scenario, const std::vector<Conflict>& conflicts,
                             const std::vector<bool>& fixed, int faultBudget);

} // namespace monitor
