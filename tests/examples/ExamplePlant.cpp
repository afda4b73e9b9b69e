#include "tests/examples/ExamplePlant.h"

#include <cstdlib>
#include <iostream>

using plant::AtomIndex;

namespace {

language::ReadResult readOrEnd(const std::string& file)
{
    language::ReadResult read = language::readModel(examplePath(file));
    for (const text::Diagnostic& error : read.errors) {
        std::cerr << error.format();
    }
    if (!read.model) {
        std::abort();
    }
    return read;
}

} // namespace

std::string examplePath(const std::string& file)
{
    return std::string(ITMS_ROOT) + "/examples/" + file;
}

ExamplePlant::ExamplePlant(const std::string& file, Names ambient)
    : ExamplePlant(readOrEnd(file), std::move(ambient))
{
}

ExamplePlant::ExamplePlant(language::ReadResult read, Names ambient)
    : read_(std::move(read)), active_(std::move(read_.model)), ambient_(std::move(ambient))
{
}

std::vector<AtomIndex> ExamplePlant::commands(const Names& given) const
{
    monitor::Prediction named(*active_.plant);
    for (const std::string& id : given) {
        named.assume(active_.index(id));
    }
    std::vector<AtomIndex> result;
    for (const plant::PlantVariable& variable : active_.plant->variables()) {
        if (variable.isCommand) {
            result.push_back(named.valueOf(variable).value_or(variable.values.front()));
        }
    }
    return result;
}

monitor::StepFrame ExamplePlant::frame(const Labels& before, const Names& given,
                                       const std::vector<AtomIndex>& observed) const
{
    return monitor::makeFrame(*active_.plant, prediction(before), {commands(given), observed});
}

Labels ExamplePlant::labels(const monitor::Prediction& prediction) const
{
    Labels result;
    for (const plant::PlantVariable& variable : active_.plant->variables()) {
        if (const auto value = prediction.valueOf(variable)) {
            result.insert(*value);
        }
    }
    return result;
}

monitor::Prediction ExamplePlant::prediction(const Labels& labels) const
{
    monitor::Prediction result(*active_.plant);
    for (const AtomIndex value : labels) {
        result.assume(value);
    }
    return result;
}

Labels ExamplePlant::after(const Labels& before, const Names& given, const Names& changed,
                           const Names& ambient) const
{
    const plant::Plant& plant = *active_.plant;
    const monitor::StepFrame step = frame(before, given);
    monitor::Deviations deviations;
    for (const std::string& id : changed) {
        deviations.push_back(active_.index(id));
    }
    monitor::Prediction now(plant);
    bool possible = monitor::assumeStep(now, step, deviations);
    for (const Names* values : {&ambient, &ambient_}) {
        for (const std::string& id : *values) {
            const AtomIndex value = active_.index(id);
            if (!now.valueOf(plant.variable(plant.variableOf(value)))) {
                possible = possible && now.assume(value) && now.propagate();
            }
        }
    }
    if (!possible) {
        std::abort();
    }
    return labels(now);
}

std::vector<AtomIndex> ExamplePlant::readings(const Labels& labels) const
{
    std::vector<AtomIndex> result;
    for (const plant::ChannelBinding& binding : read_.bindings.channels) {
        if (binding.kind != plant::ChannelBinding::Kind::observation) continue;
        for (const Atom* value : *binding.variable->atomLinks) {
            if (labels.count(active_.plant->indexOf(value)) != 0) {
                result.push_back(active_.plant->indexOf(value));
            }
        }
    }
    return result;
}

monitor::StepAnswer ExamplePlant::solve(const Labels& before, const Names& given,
                                        const std::vector<AtomIndex>& observed, int maxFaults)
{
    monitor::StepSettings settings;
    settings.maxFaults = maxFaults;
    return monitor::StepSolver(active_.engine, *active_.plant)
        .solve(prediction(before), {commands(given), observed}, settings);
}
