#include "report/ConflictReport.h"

#include "plant/Names.h"

#include <algorithm>

namespace report {

namespace {

using plant::Plant;

// The literals are in the order in which the engine meets them.
std::string clauseText(const plant::Model& model, std::size_t law)
{
    const auto given = model.signedLiteralsOf(law);
    std::vector<plant::SignedNumber> literals(given.begin(), given.end());
    plant::sortAsListed(literals);
    std::string text;
    for (const plant::SignedNumber literal : literals) {
        text += (text.empty() ? "" : " | ") + std::string((literal & 1U) != 0 ? "!" : "") +
                model.atoms()[literal / 2]->id;
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
    AppliedLaw law = names.law(plant.lawOf(inference.clause));
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

AppliedLaw ModelNames::law(std::size_t number) const
{
    AppliedLaw law;
    law.clause = clauseText(*model_.model, number);
    law.text = law.clause;
    if (number < model_.lawPlaces.size()) {
        const language::LawPlace& place = model_.lawPlaces[number];
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
    if (mode.followed) {
        for (const plant::PlantLiteral& literal : mode.followed->literals) {
            if (!literal.negated && plant.variable(plant.variableOf(literal.atom)).isCommand) {
                commands.push_back(literal.atom);
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
