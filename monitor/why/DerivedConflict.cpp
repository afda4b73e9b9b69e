// The reasons of a prediction, walked back from the contradicted atom, are the inferences of its conflict. Where nothing is
// contradicted by propagation alone, a refutation by cases supplies the clauses.
#include "monitor/why/DerivedConflict.h"

#include <algorithm>
#include <map>

namespace monitor {

namespace {

std::size_t modeCount(const Prediction& labels, const std::vector<AtomIndex>& atoms)
{
    return labels.environment(atoms).size();
}

std::vector<AtomIndex> atomsOf(const Plant& plant, ClauseIndex clause)
{
    std::vector<AtomIndex> atoms;
    for (const PlantLiteral& literal : plant.clause(clause)) {
        atoms.push_back(literal.atom);
    }
    return atoms;
}

// Sorts what was assumed into modes, commands and readings.
class Assumptions {
public:
    explicit Assumptions(const StepFrame& frame) : frame_(frame) {}

    void add(const Prediction& labels, AtomIndex atom)
    {
        const VariableIndex variable = frame_.plant.variableOf(atom);
        values_[variable] = *labels.valueOf(frame_.plant.variable(variable));
    }
    void remove(VariableIndex variable) { values_.erase(variable); }

    void giveTo(DerivedConflict& conflict) const
    {
        const SharedArray<AtomIndex>& commands = frame_.commands;
        for (const auto& [variable, value] : values_) {
            if (frame_.plant.variable(variable).isMode) {
                const ModeStep& step = frame_.stepOf(variable);
                conflict.modes.push_back(
                    {value, step.before, value == step.predicted ? step.followed : nullptr});
            } else if (std::find(commands.begin(), commands.end(), value) != commands.end()) {
                conflict.commands.push_back(value);
            } else {
                conflict.readings.push_back(value);
            }
        }
    }

private:
    const StepFrame& frame_;
    std::map<VariableIndex, AtomIndex> values_;
};

// One conflict in the making.
class Derivation {
public:
    explicit Derivation(const StepFrame& frame) : plant_(frame.plant), assumptions_(frame) {}

    // All that the labels of the atoms rest on.
    void add(const Prediction& labels, const std::vector<AtomIndex>& atoms)
    {
        for (const AtomIndex atom : labels.derivation(atoms)) {
            const ClauseIndex reason = labels.reason(atom);
            if (reason == Prediction::assumed) {
                assumptions_.add(labels, atom);
            } else {
                made_.inferences.push_back({reason, PlantLiteral{atom, !labels.isTrue(atom)}});
            }
        }
    }
    void addViolated(const Prediction& labels)
    {
        if (labels.violated() >= 0) {
            add(labels, atomsOf(plant_, labels.violated()));
            made_.inferences.push_back({labels.violated(), std::nullopt});
        }
    }
    Assumptions& assumptions() { return assumptions_; }
    DerivedConflict& conflict() { return made_; }

    DerivedConflict finish()
    {
        assumptions_.giveTo(made_);
        return std::move(made_);
    }

private:
    const Plant& plant_;
    Assumptions assumptions_;
    DerivedConflict made_;
};

// The observation's variable has another value, or not this one: whichever rests on fewer modes.
DerivedConflict ofPredicted(const StepFrame& frame, const Prediction& labels, AtomIndex observed)
{
    const auto expected = labels.valueOf(frame.plant.variable(frame.plant.variableOf(observed)));
    std::vector<AtomIndex> contradicting{expected.value_or(observed)};
    if (labels.isKnown(observed) &&
        modeCount(labels, {observed}) < modeCount(labels, contradicting)) {
        contradicting = {observed};
    }
    Derivation derivation(frame);
    derivation.conflict().observed = observed;
    if (contradicting.front() != observed) {
        derivation.conflict().expected = expected;
    }
    derivation.add(labels, contradicting);
    return derivation.finish();
}

// Nothing is known of the observation's variable, but with the value a law would be violated.
DerivedConflict ofRuledOut(const StepFrame& frame, Prediction labels, AtomIndex observed)
{
    Derivation derivation(frame);
    derivation.conflict().observed = observed;
    labels.assume(observed);
    labels.propagate();
    labels.preferSmallEnvironments();
    derivation.addViolated(labels);
    derivation.assumptions().remove(frame.plant.variableOf(observed));
    return derivation.finish();
}

bool isPredicted(const Plant& plant, const Prediction& labels, AtomIndex observed)
{
    return labels.isKnown(observed) || labels.valueOf(plant.variable(plant.variableOf(observed)));
}

std::optional<DerivedConflict> ofOpenVariables(const StepFrame& frame, const Prediction& labels,
                                               std::size_t mostCases)
{
    const auto refutation = refuteByCases(frame.plant, labels, mostCases);
    if (!refutation) {
        return std::nullopt;
    }
    Derivation derivation(frame);
    derivation.conflict().byCases = true;
    for (const AtomIndex atom : refutation->assumed) {
        derivation.assumptions().add(labels, atom);
    }
    for (const ClauseIndex clause : refutation->clauses) {
        derivation.conflict().inferences.push_back({clause, std::nullopt});
    }
    return derivation.finish();
}

// Modes and commands contradict the laws.
DerivedConflict ofInconsistent(const StepFrame& frame, Prediction labels)
{
    Derivation derivation(frame);
    labels.preferSmallEnvironments();
    derivation.addViolated(labels);
    return derivation.finish();
}

} // namespace

std::vector<DerivedConflict> deriveConflicts(const Scenario& scenario, std::size_t mostCases)
{
    const StepFrame& frame = scenario.frame();
    const Prediction& labels = scenario.prediction();
    std::vector<DerivedConflict> conflicts;
    if (!scenario.consistent()) {
        return {ofInconsistent(frame, labels)};
    }
    for (const AtomIndex observed : scenario.discrepancies()) {
        conflicts.push_back(isPredicted(frame.plant, labels, observed)
                                ? ofPredicted(frame, labels, observed)
                                : ofRuledOut(frame, labels, observed));
    }
    if (conflicts.empty() && !labels.complete()) {
        if (auto conflict = ofOpenVariables(frame, labels, mostCases)) {
            conflicts.push_back(std::move(*conflict));
        }
    }
    return conflicts;
}

} // namespace monitor
