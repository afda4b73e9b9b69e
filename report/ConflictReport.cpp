#include "report/ConflictReport.h"

#include "model/StateFormula.h"
#include "model/Transition.h"
#include "plant/Names.h"

#include <algorithm>

namespace report {

namespace {

using plant::Plant;

std::string clauseText(const Clause& clause)
{
    std::string text;
    for (const auto& [negated, atom] : *clause.literals) {
        text += (text.empty() ? "" : " | ") + std::string(negated ? "!" : "") + atom->id;
    }
    return text;
}

ExplainedMode modeReport(const Plant& plant, const monitor::Hypothesis& believed,
                         const monitor::AssumedMode& mode)
{
    const Atom& value = *plant.atom(mode.value);
    ExplainedMode result{
        plant::nameOf(*value.stateVar), value.value, plant.atom(mode.before)->value, {}, {}};
    for (const plant::AtomIndex command : commandsFor(plant, mode)) {
        result.commands.push_back(plant.atom(command)->id);
    }
    const auto since = believed.since.find(plant.variableOf(mode.value));
    if (since != believed.since.end() && since->second.value == mode.value) {
        result.since = since->second.step;
    }
    return result;
}

AppliedLaw lawReport(const Plant& plant, const ModelNames& names,
                     const monitor::Inference& inference)
{
    AppliedLaw law = names.law(plant.modelClause(inference.clause));
    if (inference.gives) {
        const Atom& atom = *plant.atom(inference.gives->atom);
        const std::vector<Atom*>& values = *atom.stateVar->atomLinks;
        law.variable = plant::nameOf(*atom.stateVar);
        law.value = atom.value;
        law.excluded = inference.gives->negated;
        if (law.excluded && values.size() == 2) {
            law.value = values[values.front() == &atom ? 1 : 0]->value;
            law.excluded = false;
        }
    }
    return law;
}

} // namespace

ModelNames::ModelNames(const language::ReadResult& model) : model_(model)
{
    const std::vector<Clause*>& laws = model.model->laws();
    for (std::size_t i = 0; i < std::min(laws.size(), model.lawPlaces.size()); ++i) {
        lawNumbers_.emplace(laws[i], i);
    }
}

AppliedLaw ModelNames::law(const Clause* clause) const
{
    AppliedLaw law;
    law.clause = clauseText(*clause);
    law.text = law.clause;
    const auto number = lawNumbers_.find(clause);
    if (number != lawNumbers_.end()) {
        const language::LawPlace& place = model_.lawPlaces[number->second];
        if (place.line > 0) {
            law.file = model_.files[place.file];
            law.line = place.line;
            law.column = place.column;
        }
        if (place.text < model_.lawTexts.size()) law.text = model_.lawTexts[place.text];
    }
    return law;
}

GivenValue ModelNames::given(const Atom& value, plant::ChannelBinding::Kind kind) const
{
    GivenValue result{plant::nameOf(*value.stateVar), value.value, {}};
    for (const plant::ChannelBinding& binding : model_.bindings.channels) {
        if (binding.variable == value.stateVar && binding.kind == kind &&
            binding.channel != result.variable) {
            result.channel = binding.channel;
        }
    }
    return result;
}

GivenValue ModelNames::observation(const Atom& value) const
{
    return given(value, plant::ChannelBinding::Kind::observation);
}

GivenValue ModelNames::command(const Atom& value) const
{
    return given(value, plant::ChannelBinding::Kind::command);
}

std::vector<plant::AtomIndex> commandsFor(const Plant& plant, const monitor::AssumedMode& mode)
{
    std::vector<plant::AtomIndex> commands;
    if (mode.followed && mode.followed->guard && mode.followed->guard->atoms) {
        for (const auto& [holds, atom] : *mode.followed->guard->atoms) {
            const plant::AtomIndex index = plant.indexOf(atom);
            if (holds && plant.variable(plant.variableOf(index)).isCommand) {
                commands.push_back(index);
            }
        }
    }
    std::sort(commands.begin(), commands.end());
    return commands;
}

ExplainedConflict conflictReport(const Plant& plant, const ModelNames& names,
                                 const monitor::Contradiction& contradiction,
                                 const monitor::CheckedConflict& conflict)
{
    const monitor::DerivedConflict& derived = conflict.conflict;
    ExplainedConflict result;
    result.step = contradiction.input.step;
    result.t = contradiction.input.t;
    result.rank = contradiction.rank;
    result.believed = deviatingModes(plant, *contradiction.believed);
    if (derived.observed) {
        result.observed = names.observation(*plant.atom(*derived.observed));
    }
    if (derived.expected) {
        result.expected = plant.atom(*derived.expected)->value;
    }
    for (const monitor::AssumedMode& mode : derived.modes) {
        result.modes.push_back(modeReport(plant, *contradiction.believed, mode));
    }
    for (const plant::AtomIndex command : derived.commands) {
        result.commands.push_back(names.command(*plant.atom(command)));
    }
    for (const plant::AtomIndex reading : derived.readings) {
        result.readings.push_back(names.observation(*plant.atom(reading)));
    }
    for (const monitor::Inference& inference : derived.inferences) {
        if (plant.isLaw(inference.clause)) {
            result.laws.push_back(lawReport(plant, names, inference));
        }
    }
    result.byCases = derived.byCases;
    result.check = conflict.check;
    result.everyValueCounts = conflict.everyValueCounts;
    return result;
}

} // namespace report
