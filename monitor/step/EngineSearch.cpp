// A scenario becomes the engine's trajectory: every atom is predicted with its label, and locked according to what may change in
// an explanation. What the engine returns is read back as the labels that differ, checked against the laws around
// them, and reduced to the mode values among them.
#include "monitor/step/EngineSearch.h"

#include "monitor/labels/Meter.h"

#include <algorithm>
#include <memory>
#include <set>

namespace monitor {

namespace {

const char* text(Label label)
{
    switch (label) {
    case Label::isTrue: return "true";
    case Label::isFalse: return "false";
    case Label::unknown: break;
    }
    return "unknown";
}

// The numbers that TrajEl::lock documents.
constexpr int lockFree = 2;
constexpr int lockObserved(bool holds)
{
    return holds ? 0 : 1;
}
constexpr int lockAssumed(bool holds)
{
    return holds ? 3 : 4;
}

// The locks of all atoms of a scenario.
std::vector<int> makeLocks(const Scenario& scenario, const std::vector<bool>& suspect)
{
    const StepFrame& frame = scenario.frame();
    const Plant& plant = frame.plant;
    const Prediction& prediction = scenario.prediction();
    const std::vector<bool> dependent = prediction.dependents(suspect);
    std::vector<int> locks(plant.atomCount(), lockFree);
    for (std::size_t i = 0; i < locks.size(); ++i) {
        const auto atom = static_cast<AtomIndex>(i);
        if (prediction.isKnown(atom) && !dependent[i]) {
            locks[i] = lockAssumed(prediction.isTrue(atom));
        }
    }
    for (const ModeStep& step : frame.modes) {
        for (const AtomIndex value : plant.variable(step.variable).values) {
            const bool possible = step.option(value) || prediction.isTrue(value);
            if (!possible) {
                locks[static_cast<std::size_t>(value)] = lockAssumed(false);
            }
        }
    }
    const auto lockValues = [&](const auto& values, auto lock) {
        for (const AtomIndex value : values) {
            for (const AtomIndex atom : plant.variable(plant.variableOf(value)).values) {
                locks[static_cast<std::size_t>(atom)] = lock(atom == value);
            }
        }
    };
    lockValues(frame.commands, lockAssumed);
    lockValues(frame.observations, lockObserved);
    return locks;
}

// Whether a command's label is the engine's to change.
bool commandOpen(const Plant& plant, const std::vector<int>& locks)
{
    return std::any_of(
        plant.variables().begin(), plant.variables().end(), [&](const PlantVariable& variable) {
            return variable.isCommand &&
                   std::any_of(variable.values.begin(), variable.values.end(), [&](AtomIndex atom) {
                       return locks[static_cast<std::size_t>(atom)] == lockFree;
                   });
        });
}

// The bound for the engine. It counts every fault value whose label it flips, also one that is given up or that the
// variable had before the step: so much more it must be allowed, and what is too much is dropped afterwards.
int engineBudget(const StepFrame& frame, const std::vector<bool>& suspect, int faultBudget)
{
    int budget = faultBudget;
    for (const ModeStep& step : frame.modes) {
        if (!suspect[static_cast<std::size_t>(step.variable)]) {
            continue;
        }
        int uncounted = 0;
        for (const ModeOption& option : step.options) {
            if (option.value != step.predicted) {
                const int flipped = (frame.plant.atom(step.predicted)->fail ? 1 : 0) +
                                    (frame.plant.atom(option.value)->fail ? 1 : 0);
                uncounted = std::max(uncounted, flipped - (option.fault ? 1 : 0));
            }
        }
        budget += uncounted;
    }
    return budget;
}

// Whether the deviations are possible at this step, with at most so many faults.
bool withinBudget(const StepFrame& frame, const Deviations& deviations, int faultBudget)
{
    int faults = 0;
    for (const AtomIndex value : deviations) {
        const ModeOption* option = frame.stepOf(frame.plant.variableOf(value)).option(value);
        if (!option) {
            return false;
        }
        faults += option->fault ? 1 : 0;
    }
    return faults <= faultBudget;
}

void predictAll(Trajectory& trajectory, const Scenario& scenario, const std::vector<int>& locks)
{
    const Plant& plant = scenario.frame().plant;
    for (std::size_t i = 0; i < locks.size(); ++i) {
        const auto atom = static_cast<AtomIndex>(i);
        trajectory.predict(0, plant.atom(atom), text(scenario.prediction().label(atom)), locks[i]);
    }
}

// The propositions: every value of the variables in question, the observed one true and the others false.
SignedEls makePropositions(const Plant& plant, const std::vector<AtomIndex>& observed,
                           Trajectory& trajectory, State& state)
{
    for (const AtomIndex value : observed) {
        trajectory.addComp(plant.atom(value)->getVarComp(), &state, 0, true, false);
    }
    SignedEls propositions;
    for (const AtomIndex value : observed) {
        for (const AtomIndex atom : plant.variable(plant.variableOf(value)).values) {
            propositions.insert({atom == value, (*state.elements)[plant.atom(atom)->getId()]});
        }
    }
    return propositions;
}

// Reads a candidate's labels over those of the scenario.
class CandidateView {
public:
    CandidateView(const Scenario& scenario, const State& state) : scenario_(scenario)
    {
        const Plant& plant = scenario.frame().plant;
        for (const auto& [id, el] : *state.elements) {
            if (!el) {
                continue;
            }
            const AtomIndex atom = plant.indexOf(el->atom);
            const Label label = el->label == "true"    ? Label::isTrue
                                : el->label == "false" ? Label::isFalse
                                                       : Label::unknown;
            if (label != scenario.prediction().label(atom)) {
                changed_.emplace(atom, label);
            }
        }
    }

    /// No clause around a changed label is violated.
    bool lawful() const
    {
        const Plant& plant = scenario_.frame().plant;
        return std::all_of(changed_.begin(), changed_.end(), [&](const auto& change) {
            const std::span<const ClauseIndex> clauses = plant.clausesOf(change.first);
            return std::none_of(clauses.begin(), clauses.end(),
                                [&](ClauseIndex clause) { return violated(plant.clause(clause)); });
        });
    }

    Deviations deviations() const
    {
        const Plant& plant = scenario_.frame().plant;
        Deviations modes;
        for (const auto& [atom, label] : changed_) {
            if (label == Label::isTrue && plant.variable(plant.variableOf(atom)).isMode) {
                modes.push_back(atom);
            }
        }
        std::sort(modes.begin(), modes.end());
        return modes;
    }

private:
    Label label(AtomIndex atom) const
    {
        const auto change = changed_.find(atom);
        return change == changed_.end() ? scenario_.prediction().label(atom) : change->second;
    }

    bool violated(std::span<const PlantLiteral> literals) const
    {
        return std::all_of(literals.begin(), literals.end(), [&](const PlantLiteral& literal) {
            return label(literal.atom) == (literal.negated ? Label::isTrue : Label::isFalse);
        });
    }

    const Scenario& scenario_;
    std::unordered_map<AtomIndex, Label> changed_;
};

// Of what is left to the step, the engine may take a part: a search of a large model may go on for long before its next record.
class Portion final : public SearchWatch {
public:
    SearchLimit take(std::uint64_t work) override
    {
        Meter* meter = Meter::current();
        if (!meter) {
            return SearchLimit::none;
        }
        const SearchLimit met = meter->take(work);
        if (met != SearchLimit::none) {
            return met;
        }
        return meter->spent() - begun_ < meter->portion() ? SearchLimit::none : SearchLimit::work;
    }

private:
    std::uint64_t begun_ = Meter::current() ? Meter::current()->spent() : 0;
};

} // namespace

SearchOutcome searchWithEngine(itms& engine, const Scenario& scenario,
                               const std::vector<bool>& fixed, int faultBudget,
                               const SearchLimits& limits)
{
    const StepFrame& frame = scenario.frame();
    const std::vector<bool> suspect = suspectsOf(scenario, scenario.conflicts(), fixed, faultBudget);
    const std::vector<int> locks = makeLocks(scenario, suspect);
    Trajectory trajectory;
    predictAll(trajectory, scenario, locks);
    auto state = std::make_unique<State>();
    const std::vector<AtomIndex>& named =
        scenario.discrepancies().empty() ? frame.observations : scenario.discrepancies();
    SignedEls propositions = makePropositions(frame.plant, named, trajectory, *state);

    const SearchLimits before = DataManager::searchLimits;
    DataManager::searchLimits = limits;
    Portion portion;
    DataManager::searchLimits.watch = Meter::current() ? &portion : nullptr;
    std::vector<ItmsRes*> records;
    engine.addPropositions(&propositions, nullptr, state.get(), &records, false,
                           engineBudget(frame, suspect, faultBudget), 0.0, &trajectory, 0, false);
    DataManager::searchLimits = before;
    if (DataManager::searchWork.begun) {
        static_cast<void>(state.release());
    }

    SearchOutcome outcome;
    outcome.work = DataManager::searchWork;
    outcome.exhaustive = outcome.work.begun && !outcome.work.partial && scenario.complete() &&
                         !commandOpen(frame.plant, locks) && !engine.piTable;
    std::set<Deviations> seen;
    for (ItmsRes* record : records) {
        const CandidateView view(scenario, *record->state);
        Deviations deviations = view.deviations();
        if (view.lawful() && withinBudget(frame, deviations, faultBudget) &&
            seen.insert(deviations).second) {
            outcome.candidates.push_back(std::move(deviations));
        }
        record->clear();
        delete record;
    }
    // The registry's entries are for callers who read them; a monitor steps for ever.
    DataManager::itmsBmkEntries.clear();
    return outcome;
}

} // namespace monitor
