// A hypothesis is written as what its labels were drawn from (assumptions and observations), and drawn again when it is read.
// Only labels that come from elsewhere are written value by value.
#include "session/MemoryJson.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <unordered_map>

namespace session {

namespace {

using Json = nlohmann::json;
using monitor::Hypothesis;
using monitor::HypothesisPointer;
using plant::AtomIndex;
using plant::Plant;

// The value of every variable that has one.
std::vector<AtomIndex> valuesOf(const Plant& plant, const monitor::Prediction& labels)
{
    std::vector<AtomIndex> values;
    for (const plant::PlantVariable& variable : plant.variables()) {
        if (const auto value = labels.valueOf(variable)) values.push_back(*value);
    }
    return values;
}

void addLabels(Json& json, const monitor::StepLabels& labels, const Plant& plant)
{
    if (labels.consistent()) {
        json["assumptions"] = labels.assumptions();
        json["observations"] = labels.observations();
    } else {
        json["values"] = valuesOf(plant, labels.prediction());
    }
}

Json hypothesisJson(const Hypothesis& hypothesis, const Plant& plant)
{
    Json since = Json::array();
    for (const auto& [variable, entry] : hypothesis.since) {
        since.push_back({variable, entry.value, entry.step, entry.t});
    }
    Json faults = Json::array();
    for (const monitor::FaultBegun& fault : hypothesis.faults) {
        faults.push_back({fault.variable, fault.step});
    }
    Json json{{"modes", hypothesis.modes},
              {"weight", hypothesis.logWeight},
              {"step", hypothesis.logStep},
              {"faults", std::move(faults)},
              {"since", std::move(since)},
              {"lost", hypothesis.lost},
              {"unexplained", hypothesis.unexplained}};
    json["readings"] = Json::array();
    for (const auto& [variable, value] : hypothesis.readings.last) {
        json["readings"].push_back(value);
    }
    addLabels(json, hypothesis.labels, plant);
    if (hypothesis.twin) {
        json["twin"] = {{"modes", hypothesis.twin->modes}};
        addLabels(json["twin"], hypothesis.twin->labels, plant);
    }
    return json;
}

/// Reads numbers of atoms and variables of a plant.
class Numbers {
public:
    explicit Numbers(const Plant& plant) : plant_(plant) {}

    AtomIndex atom(const Json& json) const { return checked(json, plant_.atomCount()); }
    plant::VariableIndex variable(const Json& json) const
    {
        return checked(json, plant_.variables().size());
    }
    std::vector<AtomIndex> atoms(const Json& json) const
    {
        std::vector<AtomIndex> atoms;
        for (const Json& one : json) {
            atoms.push_back(atom(one));
        }
        return atoms;
    }

private:
    static std::int32_t checked(const Json& json, std::size_t count)
    {
        const auto number = json.get<std::int64_t>();
        if (number < 0 || static_cast<std::size_t>(number) >= count)
            throw std::out_of_range("number " + std::to_string(number));
        return static_cast<std::int32_t>(number);
    }

    const Plant& plant_;
};

monitor::StepLabels labelsFromJson(const Json& json, const Plant& plant)
{
    const Numbers numbers(plant);
    if (json.contains("values")) {
        monitor::Prediction values(plant);
        for (const AtomIndex value : numbers.atoms(json.at("values"))) {
            values.assume(value);
        }
        return {plant, concluded(values)};
    }
    monitor::StepLabels labels(plant);
    labels.take(numbers.atoms(json.at("assumptions")), numbers.atoms(json.at("observations")));
    return labels;
}

HypothesisPointer hypothesisFromJson(const Json& json, const Plant& plant)
{
    const Numbers numbers(plant);
    Hypothesis made{labelsFromJson(json, plant),
                    numbers.atoms(json.at("modes")),
                    json.at("weight").get<double>(),
                    json.at("step").get<double>(),
                    {},
                    nullptr,
                    {},
                    numbers.atoms(json.at("lost")),
                    numbers.atoms(json.at("unexplained")),
                    {}};
    for (const AtomIndex value : numbers.atoms(json.at("readings"))) {
        made.readings.last.emplace(plant.variableOf(value), value);
    }
    for (const Json& entry : json.at("since")) {
        made.since[numbers.variable(entry.at(0))] = {
            numbers.atom(entry.at(1)), entry.at(2).get<std::size_t>(), entry.at(3).get<double>()};
    }
    for (const Json& fault : json.at("faults")) {
        made.faults.push_back({numbers.variable(fault.at(0)), fault.at(1).get<std::size_t>()});
    }
    if (json.contains("twin")) {
        const Json& twin = json.at("twin");
        made.twin = std::make_shared<const monitor::Twin>(
            monitor::Twin{numbers.atoms(twin.at("modes")), labelsFromJson(twin, plant)});
    }
    return std::make_shared<const Hypothesis>(std::move(made));
}

Json inputJson(const monitor::TrackInput& input)
{
    Json lossy = Json::array();
    for (const monitor::LossyCommand& command : input.lossy) {
        lossy.push_back({command.given, command.fallback, command.probability});
    }
    return {{"step", input.step},
            {"t", input.t},
            {"commands", input.values.commands},
            {"observations", input.values.observations},
            {"inputs", input.values.inputs},
            {"changing", input.values.changing},
            {"lossy", std::move(lossy)}};
}

monitor::TrackInput inputFromJson(const Json& json, const Plant& plant)
{
    const Numbers numbers(plant);
    monitor::TrackInput input;
    input.step = json.at("step").get<std::size_t>();
    input.t = json.at("t").get<double>();
    input.values.commands = numbers.atoms(json.at("commands"));
    input.values.observations = numbers.atoms(json.at("observations"));
    input.values.inputs = json.at("inputs").get<std::size_t>();
    input.values.changing = json.at("changing").get<std::vector<double>>();
    if (input.values.inputs > input.values.observations.size() ||
        input.values.changing.size() != input.values.observations.size()) {
        throw std::out_of_range("number of inputs");
    }
    for (const Json& command : json.at("lossy")) {
        input.lossy.push_back({numbers.atom(command.at(0)), numbers.atom(command.at(1)),
                               command.at(2).get<double>()});
    }
    return input;
}

Json passagesJson(const std::set<monitor::Passage>& passages)
{
    Json list = Json::array();
    for (const monitor::Passage& passage : passages) {
        list.push_back({passage.from, passage.to, passage.lost});
    }
    return list;
}

std::set<monitor::Passage> passagesFromJson(const Json& json, const Plant& plant)
{
    const Numbers numbers(plant);
    std::set<monitor::Passage> passages;
    for (const Json& one : json) {
        passages.insert(
            {one.at(0).get<std::size_t>(), one.at(1).get<std::size_t>(), numbers.atoms(one.at(2))});
    }
    return passages;
}

} // namespace

// Hypotheses are shared between steps: each stands once, and is named by its place in the list.
Json memoryJson(const monitor::TrackMemory& memory, const Plant& plant)
{
    Json pool = Json::array();
    std::unordered_map<const Hypothesis*, std::size_t> places;
    const auto refer = [&](const std::vector<HypothesisPointer>& hypotheses) {
        Json list = Json::array();
        for (const HypothesisPointer& hypothesis : hypotheses) {
            const auto [place, isNew] = places.emplace(hypothesis.get(), pool.size());
            if (isNew) pool.push_back(hypothesisJson(*hypothesis, plant));
            list.push_back(place->second);
        }
        return list;
    };
    Json past = Json::array();
    for (const monitor::PastStep& step : memory.past) {
        past.push_back({{"input", inputJson(step.input)},
                        {"before", refer(step.before)},
                        {"scale", step.logScale},
                        {"passages", passagesJson(step.passages)},
                        {"calm", step.logCalm}});
    }
    Json now = refer(memory.hypotheses);
    Json json = {{"hypotheses", std::move(pool)}, {"past", std::move(past)}, {"now", std::move(now)}};
    if (std::isfinite(memory.logMissing)) json["missing"] = memory.logMissing;
    return json;
}

monitor::TrackMemory memoryFromJson(const Json& json, const Plant& plant)
{
    std::vector<HypothesisPointer> pool;
    for (const Json& one : json.at("hypotheses")) {
        pool.push_back(hypothesisFromJson(one, plant));
    }
    const auto named = [&](const Json& list) {
        std::vector<HypothesisPointer> hypotheses;
        for (const Json& place : list) {
            hypotheses.push_back(pool.at(place.get<std::size_t>()));
        }
        return hypotheses;
    };
    monitor::TrackMemory memory;
    for (const Json& step : json.at("past")) {
        memory.past.push_back({inputFromJson(step.at("input"), plant), named(step.at("before")),
                               step.at("scale").get<double>(),
                               passagesFromJson(step.at("passages"), plant),
                               step.value("calm", 0.0)});
    }
    memory.logMissing = json.value("missing", memory.logMissing);
    memory.hypotheses = named(json.at("now"));
    if (memory.hypotheses.empty()) throw std::out_of_range("no hypothesis");
    return memory;
}

Json readingsJson(const ReadingChanges& changes)
{
    Json list = Json::array();
    for (const auto& [variable, count] : changes.counts()) {
        list.push_back({variable, count.readings, count.changes, count.last});
    }
    return list;
}

std::map<plant::VariableIndex, ReadingCount> readingsFromJson(const Json& json, const Plant& plant)
{
    const Numbers numbers(plant);
    std::map<plant::VariableIndex, ReadingCount> counts;
    for (const Json& one : json) {
        counts[numbers.variable(one.at(0))] = {
            one.at(1).get<std::size_t>(), one.at(2).get<std::size_t>(), numbers.atom(one.at(3))};
    }
    return counts;
}

Json readerJson(const telemetry::ReaderState& state)
{
    Json last = Json::array();
    for (const telemetry::ReaderState::Last& one : state.last) {
        last.push_back({one.variable, one.value, one.t});
    }
    return {{"lines", state.lines},
            {"steps", state.steps},
            {"t", state.t ? Json(*state.t) : Json(nullptr)},
            {"last", std::move(last)}};
}

telemetry::ReaderState readerFromJson(const Json& json)
{
    telemetry::ReaderState state;
    state.lines = json.at("lines").get<std::size_t>();
    state.steps = json.at("steps").get<std::size_t>();
    if (!json.at("t").is_null()) state.t = json.at("t").get<double>();
    for (const Json& one : json.at("last")) {
        state.last.push_back(
            {one.at(0).get<std::string>(), one.at(1).get<std::string>(), one.at(2).get<double>()});
    }
    return state;
}

} // namespace session
