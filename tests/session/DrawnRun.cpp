#include "tests/session/DrawnRun.h"

#include "language/json/ModelJson.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

using plant::AtomIndex;
using plant::VariableIndex;

namespace {

// Of what leaves each value without a guard; alternatives of one change, which follow one another, count once.
std::map<std::string, double> leaving(const nlohmann::ordered_json& transitions)
{
    std::map<std::string, double> sums;
    const nlohmann::ordered_json* last = nullptr;
    for (const auto& one : transitions) {
        const bool same = last && last->at("kind") == one.at("kind") &&
                          last->at("from") == one.at("from") && last->at("to") == one.at("to") &&
                          last->at("probability") == one.at("probability");
        last = &one;
        if (!same && (one.at("kind") == "fault" || one.at("kind") == "repair")) {
            sums[one.at("from")] += one.at("probability").get<double>();
        }
    }
    return sums;
}

} // namespace

language::ReadResult withRates(const language::ReadResult& read, double factor, double varies)
{
    auto model = nlohmann::ordered_json::parse(language::modelJson(read));
    auto& transitions = model.at("transitions");
    for (auto& one : transitions) {
        if (one.at("kind") == "fault") {
            one["probability"] = one.at("probability").get<double>() * factor;
        }
    }
    const std::map<std::string, double> sums = leaving(transitions);
    for (auto& one : transitions) {
        const auto sum = sums.find(one.at("from"));
        if (sum != sums.end() && (one.at("kind") == "nominal" || one.at("kind") == "idle")) {
            one["probability"] = std::min(one.at("probability").get<double>(), 1.0 - sum->second);
        }
    }
    for (auto& channel : model.at("channels")) {
        if (channel.at("kind") == "observe" && !channel.value("input", false) &&
            !channel.contains("varies")) {
            channel["varies"] = varies;
        }
    }
    language::ReadResult result = language::readModelJson("raised.json", model.dump());
    if (!result.model) {
        throw std::runtime_error(result.errors.front().format());
    }
    return result;
}

DrawnRun::DrawnRun(const plant::Plant& plant, const plant::Bindings& bindings, std::uint64_t seed,
                   double inputsChange)
    : plant_(plant), inputsChange_(inputsChange), chance_(seed), commands_(plant, seed + 1),
      simulator_(plant, bindings, {seed + 2, {}})
{
    for (const plant::ChannelBinding& channel : bindings.channels) {
        if (channel.kind != plant::ChannelBinding::Kind::observation) continue;
        const VariableIndex variable =
            plant.variableOf(plant.indexOf(channel.variable->atomLinks->front()));
        (channel.input ? inputs_ : read_).push_back(variable);
        if (!channel.input) varies_[variable] = channel.varies.value();
    }
}

std::optional<DrawnStep> DrawnRun::next()
{
    simulate::SimulationInput input{commands_.next(), drawnInputs(), {}};
    const std::size_t inputs = input.observations.size();
    // The modes are drawn first, so they are the same when the readings are given.
    simulate::Simulator ahead = simulator_;
    const auto tried = ahead.step(input);
    const auto* happened = std::get_if<simulate::SimulatedStep>(&tried);
    if (!happened) return std::nullopt;
    const auto readings = drawnReadings(*happened, input.observations);
    if (!readings) return std::nullopt;
    input.observations.insert(input.observations.end(), readings->begin(), readings->end());
    const auto result = simulator_.step(input);
    const auto* step = std::get_if<simulate::SimulatedStep>(&result);
    if (!step || modesOf(*step) != modesOf(*happened) ||
        std::any_of(step->ignored.begin(), step->ignored.end(), [&](AtomIndex one) {
            const auto end = input.observations.begin() + static_cast<std::ptrdiff_t>(inputs);
            return std::find(input.observations.begin(), end, one) == end;
        })) {
        throw std::logic_error("the readings that were drawn are not possible");
    }
    for (const VariableIndex variable : inputs_) {
        lastInputs_[variable] = step->values[static_cast<std::size_t>(variable)];
    }
    modes_ = modesOf(*step);
    return DrawnStep{input.commands, step->lost, modes_, step->observations};
}

std::vector<AtomIndex> DrawnRun::drawnInputs()
{
    std::vector<AtomIndex> values;
    for (const VariableIndex variable : inputs_) {
        const plant::ValueRange all = plant_.variable(variable).values;
        const auto last = lastInputs_.find(variable);
        const bool stays = last != lastInputs_.end() && !chance_.happens(inputsChange_);
        values.push_back(stays ? last->second : all[chance_.below(all.size())]);
    }
    return values;
}

std::optional<std::vector<AtomIndex>> DrawnRun::drawnReadings(const simulate::SimulatedStep& happened,
                                                              const std::vector<AtomIndex>& inputs)
{
    monitor::Prediction labels(plant_);
    for (std::size_t i = 0; i < happened.values.size(); ++i) {
        const plant::PlantVariable& variable = plant_.variables()[i];
        if (variable.isMode || variable.isCommand) labels.assume(happened.values[i]);
    }
    labels.propagate();
    for (const AtomIndex input : inputs) {
        const std::size_t mark = labels.mark();
        if (!labels.assume(input) || !labels.propagate()) labels.undo(mark);
    }
    monitor::OpenVariables open(plant_, labels);
    forget(open, modesOf(happened));
    const monitor::OpenGroups groups = open.groups(read_);
    if (!groups.undecided.empty()) return std::nullopt;
    std::vector<AtomIndex> readings;
    for (const monitor::OpenGroup& group : groups.groups) {
        for (const AtomIndex reading : draw(group)) {
            readings.push_back(reading);
            last_[plant_.variableOf(reading)] = reading;
        }
    }
    return readings;
}

// What is not open any more, and what a mode bears on that changed.
void DrawnRun::forget(monitor::OpenVariables& open, const std::vector<AtomIndex>& modes)
{
    std::set<VariableIndex> changed;
    for (std::size_t i = 0; i < modes_.size(); ++i) {
        if (modes[i] != modes_[i]) changed.insert(plant_.variableOf(modes[i]));
    }
    std::erase_if(last_, [&](const auto& one) {
        if (!open.isOpen(one.first)) return true;
        const std::set<VariableIndex>& bearing = open.bearing(one.first);
        return std::any_of(bearing.begin(), bearing.end(),
                           [&](VariableIndex mode) { return changed.contains(mode); });
    });
}

monitor::Combination DrawnRun::draw(const monitor::OpenGroup& group)
{
    std::vector<monitor::Combination> all(group.combinations.begin(), group.combinations.end());
    monitor::Combination before;
    double stays = 1.0;
    for (const VariableIndex variable : group.variables) {
        stays *= 1.0 - varies_.at(variable);
        const auto last = last_.find(variable);
        if (last != last_.end()) before.push_back(last->second);
    }
    if (group.combinations.contains(before)) {
        if (chance_.happens(stays)) return before;
        std::erase(all, before);
    }
    return all[chance_.below(all.size())];
}

std::vector<AtomIndex> DrawnRun::modesOf(const simulate::SimulatedStep& step) const
{
    std::vector<AtomIndex> modes;
    for (std::size_t i = 0; i < step.values.size(); ++i) {
        if (plant_.variables()[i].isMode) modes.push_back(step.values[i]);
    }
    return modes;
}
