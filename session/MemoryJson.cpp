// A hypothesis is written as what its labels were drawn from (assumptions and observations), and drawn again when it is read.
// Only labels that come from elsewhere are written value by value.
#include "session/MemoryJson.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_map>

namespace session {

namespace {

using Json = nlohmann::json;
using Field = CheckpointField;
using monitor::Hypothesis;
using monitor::HypothesisPointer;
using plant::AtomIndex;
using plant::Plant;
using plant::VariableIndex;

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
        json["assumptions"] = labels.assumptions().all();
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
    Json json{{"modes", hypothesis.modes.toVector()},
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
        json["twin"] = {{"modes", hypothesis.twin->modes.toVector()}};
        addLabels(json["twin"], hypothesis.twin->labels, plant);
    }
    return json;
}

/// Reads numbers of atoms and variables of a plant.
class Numbers {
public:
    explicit Numbers(const Plant& plant) : plant_(plant) {}

    AtomIndex atom(const Field& field) const
    {
        return static_cast<AtomIndex>(checked(field, plant_.atomCount(), "values"));
    }
    VariableIndex variable(const Field& field) const
    {
        return static_cast<VariableIndex>(checked(field, plant_.variables().size(), "variables"));
    }
    std::vector<AtomIndex> atoms(const Field& list) const
    {
        std::vector<AtomIndex> atoms;
        for (const Field& one : list.items()) {
            atoms.push_back(atom(one));
        }
        return atoms;
    }
    /// Of which no variable has two.
    std::vector<AtomIndex> values(const Field& list) const
    {
        std::vector<AtomIndex> found = atoms(list);
        std::set<VariableIndex> seen;
        for (const AtomIndex value : found) {
            if (!seen.insert(plant_.variableOf(value)).second)
                list.refuse("has two values of one variable");
        }
        return found;
    }
    /// Of each mode variable one, in the plant's order.
    std::vector<AtomIndex> modes(const Field& list) const
    {
        std::vector<AtomIndex> found = atoms(list);
        std::vector<VariableIndex> variables;
        for (const AtomIndex value : found) {
            variables.push_back(plant_.variableOf(value));
        }
        std::vector<VariableIndex> wanted;
        for (std::size_t i = 0; i < plant_.variables().size(); ++i) {
            const auto& variable = plant_.variables()[i];
            if (variable.isMode && !variable.values.empty())
                wanted.push_back(static_cast<VariableIndex>(i));
        }
        if (variables != wanted) list.refuse("is not one value of every mode");
        return found;
    }

private:
    static std::uint64_t checked(const Field& field, std::size_t count, const char* what)
    {
        const std::uint64_t number = field.whole();
        if (number >= count)
            field.refuse("is " + std::to_string(number) + ", and the model has " +
                         std::to_string(count) + " " + what);
        return number;
    }

    const Plant& plant_;
};

// A logarithm of a probability. JSON has no minus infinity, which stands as null.
double logFrom(const Field& field)
{
    return field.isNull() ? -std::numeric_limits<double>::infinity() : field.number();
}

double secondsFrom(const Field& field)
{
    return field.number();
}

// Modes that the labels do not have would be asked for in vain.
monitor::StepLabels labelsFromJson(const Field& field, const std::vector<AtomIndex>& modes,
                                   const Plant& plant)
{
    const Numbers numbers(plant);
    const auto made = [&]() -> monitor::StepLabels {
        if (field.has("values")) {
            monitor::Prediction values(plant);
            for (const AtomIndex value : numbers.values(field["values"])) {
                values.assume(value);
            }
            return {plant, concluded(values)};
        }
        monitor::StepLabels labels(plant);
        // Commands, then modes; as a step has them, so that the next one finds them.
        const std::vector<AtomIndex> all = numbers.values(field["assumptions"]);
        const std::size_t commands = all.size() - std::min(all.size(), modes.size());
        const auto middle = all.begin() + static_cast<std::ptrdiff_t>(commands);
        labels.take({std::vector<AtomIndex>(all.begin(), middle),
                     std::vector<AtomIndex>(middle, all.end())},
                    numbers.values(field["observations"]));
        return labels;
    }();
    // Labels that come from elsewhere are those of the beginning, or of modes that contradict the laws.
    const bool agree = (made.consistent() || field.has("values")) &&
                       std::all_of(modes.begin(), modes.end(),
                                   [&](AtomIndex mode) { return made.prediction().isTrue(mode); });
    if (!agree) field.refuse("has labels that do not agree with its modes");
    return made;
}

HypothesisPointer hypothesisFromJson(const Field& field, const Plant& plant)
{
    const Numbers numbers(plant);
    const std::vector<AtomIndex> modes = numbers.modes(field["modes"]);
    Hypothesis made{labelsFromJson(field, modes, plant),
                    modes,
                    field["weight"].number(),
                    logFrom(field["step"]),
                    {},
                    nullptr,
                    {},
                    numbers.values(field["lost"]),
                    numbers.values(field["unexplained"]),
                    {}};
    made.labels.share();
    for (const AtomIndex value : numbers.values(field["readings"])) {
        made.readings.last.emplace(plant.variableOf(value), value);
    }
    for (const Field& entry : field["since"].items()) {
        const std::vector<Field> parts = entry.items(4);
        made.since[numbers.variable(parts[0])] = {numbers.atom(parts[1]), parts[2].whole(),
                                                  secondsFrom(parts[3])};
    }
    for (const Field& fault : field["faults"].items()) {
        const std::vector<Field> parts = fault.items(2);
        made.faults.push_back({numbers.variable(parts[0]), parts[1].whole()});
    }
    if (field.has("twin")) {
        const Field twin = field["twin"];
        const std::vector<AtomIndex> twinModes = numbers.modes(twin["modes"]);
        made.twin = std::make_shared<const monitor::Twin>(
            monitor::Twin{twinModes, labelsFromJson(twin, twinModes, plant)});
    }
    return std::make_shared<const Hypothesis>(std::move(made));
}

Json inputJson(const monitor::TrackInput& input)
{
    Json lossy = Json::array();
    Json misread = Json::array();
    for (const monitor::Loss& one : input.lossy) {
        if (one.isReading()) {
            misread.push_back({one.given, one.probability, one.share});
        } else {
            lossy.push_back({one.given, one.fallback, one.probability});
        }
    }
    Json json{{"step", input.step},
              {"t", input.t},
              {"commands", input.values.commands.toVector()},
              {"observations", input.values.observations},
              {"inputs", input.values.inputs},
              {"changing", input.values.changing},
              {"lossy", std::move(lossy)}};
    if (!misread.empty()) json["misread"] = std::move(misread);
    if (!input.held.empty()) json["held"] = input.held;
    return json;
}

// A command that may be lost is one that was given, and falls back to another value of its variable.
monitor::Loss lossyFromJson(const Field& field, const plant::SharedArray<AtomIndex>& commands,
                            const Plant& plant)
{
    const Numbers numbers(plant);
    const std::vector<Field> parts = field.items(3);
    const monitor::Loss made{numbers.atom(parts[0]), numbers.atom(parts[1]),
                             parts[2].number(0.0, 1.0)};
    const bool given = std::find(commands.begin(), commands.end(), made.given) != commands.end();
    if (!given || plant.variableOf(made.given) != plant.variableOf(made.fallback))
        field.refuse("is no command of the step and what takes its place");
    return made;
}

// A reading that may be wrong is one of the step's observations.
monitor::Loss misreadFromJson(const Field& field, const std::vector<AtomIndex>& observations,
                              const Plant& plant)
{
    const Numbers numbers(plant);
    const std::vector<Field> parts = field.items(3);
    const monitor::Loss made{numbers.atom(parts[0]), monitor::Loss::nothing,
                             parts[1].number(0.0, 1.0), parts[2].number(0.0, 1.0)};
    if (std::find(observations.begin(), observations.end(), made.given) == observations.end())
        field.refuse("is no reading of the step");
    return made;
}

monitor::TrackInput inputFromJson(const Field& field, const Plant& plant)
{
    const Numbers numbers(plant);
    monitor::TrackInput input;
    input.step = field["step"].whole();
    input.t = secondsFrom(field["t"]);
    input.values.commands = numbers.values(field["commands"]);
    for (const AtomIndex command : input.values.commands) {
        if (!plant.variable(plant.variableOf(command)).isCommand)
            field["commands"].refuse("has a value of what is no command");
    }
    input.values.observations = numbers.values(field["observations"]);
    input.values.inputs = field["inputs"].whole(input.values.observations.size());
    for (const Field& one : field["changing"].items(input.values.observations.size())) {
        input.values.changing.push_back(one.number(0.0, 1.0));
    }
    for (const Field& command : field["lossy"].items()) {
        input.lossy.push_back(lossyFromJson(command, input.values.commands, plant));
    }
    if (field.has("misread")) {
        for (const Field& one : field["misread"].items()) {
            input.lossy.push_back(misreadFromJson(one, input.values.observations, plant));
        }
    }
    if (field.has("held")) {
        input.held = numbers.values(field["held"]);
        std::sort(input.held.begin(), input.held.end());
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

std::set<monitor::Passage> passagesFromJson(const Field& field, const Plant& plant)
{
    const Numbers numbers(plant);
    std::set<monitor::Passage> passages;
    for (const Field& one : field.items()) {
        const std::vector<Field> parts = one.items(3);
        passages.insert({parts[0].whole(), parts[1].whole(), numbers.values(parts[2])});
    }
    return passages;
}

// Passages lead from one of the hypotheses before a step to one of those after it.
void checkPassages(const std::deque<monitor::PastStep>& past, std::size_t now, const Field& steps)
{
    for (std::size_t i = 0; i < past.size(); ++i) {
        const std::size_t after = i + 1 < past.size() ? past[i + 1].before.size() : now;
        for (const monitor::Passage& passage : past[i].passages) {
            if (passage.from >= past[i].before.size() || passage.to >= after)
                steps.items()[i]["passages"].refuse(
                    "leads from or to a hypothesis that is not there");
        }
    }
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
        Json& made = past.emplace_back();
        made = {{"input", inputJson(step.input)},
                {"before", refer(step.before)},
                {"scale", step.logScale},
                {"passages", passagesJson(step.passages)},
                {"calm", step.logCalm}};
        if (step.unexplained) made["unexplained"] = true;
    }
    Json now = refer(memory.hypotheses);
    Json json = {{"hypotheses", std::move(pool)}, {"past", std::move(past)}, {"now", std::move(now)}};
    if (std::isfinite(memory.logMissing)) json["missing"] = memory.logMissing;
    return json;
}

monitor::TrackMemory memoryFromJson(const CheckpointField& field, const Plant& plant)
{
    std::vector<HypothesisPointer> pool;
    for (const Field& one : field["hypotheses"].items()) {
        pool.push_back(hypothesisFromJson(one, plant));
    }
    const auto named = [&](const Field& list) {
        std::vector<HypothesisPointer> hypotheses;
        for (const Field& place : list.items()) {
            const std::uint64_t number = place.whole();
            if (number >= pool.size())
                place.refuse("is " + std::to_string(number) + ", and there are " +
                             std::to_string(pool.size()) + " hypotheses");
            hypotheses.push_back(pool[number]);
        }
        if (hypotheses.empty()) list.refuse("has no hypothesis");
        return hypotheses;
    };
    monitor::TrackMemory memory;
    const Field past = field["past"];
    for (const Field& step : past.items()) {
        memory.past.push_back({inputFromJson(step["input"], plant), named(step["before"]),
                               step["scale"].number(), passagesFromJson(step["passages"], plant),
                               step.has("calm") ? logFrom(step["calm"]) : 0.0,
                               step.has("unexplained") && step["unexplained"].flag()});
    }
    if (field.has("missing")) memory.logMissing = field["missing"].number();
    memory.hypotheses = named(field["now"]);
    checkPassages(memory.past, memory.hypotheses.size(), past);
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

std::map<plant::VariableIndex, ReadingCount> readingsFromJson(const CheckpointField& field,
                                                              const Plant& plant)
{
    const Numbers numbers(plant);
    std::map<plant::VariableIndex, ReadingCount> counts;
    for (const Field& one : field.items()) {
        const std::vector<Field> parts = one.items(4);
        const std::uint64_t readings = parts[1].whole();
        counts[numbers.variable(parts[0])] = {readings, parts[2].whole(readings),
                                              numbers.atom(parts[3])};
    }
    return counts;
}

namespace {

// What only readers have that compute something; one that does not writes what it always wrote.
void addLateJson(const telemetry::ReaderState& state, Json& reader)
{
    if (state.begin) reader["begin"] = *state.begin;
    for (const auto& window : state.windows) {
        Json samples = Json::array();
        for (const auto& sample : window.samples) {
            samples.push_back({sample.t, sample.value});
        }
        reader["windows"].push_back({{"older", window.older}, {"samples", std::move(samples)}});
    }
    for (const auto& one : state.pending) {
        reader["pending"].push_back({one.variable, one.binding, one.value, one.since, one.t});
    }
    for (const auto& one : state.settling) {
        reader["settling"].push_back({one.channel, one.reading, one.since});
    }
}

void readLate(const CheckpointField& field, telemetry::ReaderState& state)
{
    const auto itemsOf = [&field](const char* key) {
        return field.has(key) ? field[key].items() : std::vector<Field>();
    };
    if (field.has("begin")) state.begin = secondsFrom(field["begin"]);
    for (const Field& one : itemsOf("windows")) {
        telemetry::ReaderState::Window& window = state.windows.emplace_back();
        window.older = one["older"].whole();
        for (const Field& sample : one["samples"].items()) {
            const std::vector<Field> parts = sample.items(2);
            window.samples.push_back({secondsFrom(parts[0]), parts[1].number()});
        }
    }
    for (const Field& one : itemsOf("pending")) {
        const std::vector<Field> parts = one.items(5);
        state.pending.push_back({parts[0].text(), parts[1].whole(), parts[2].text(),
                                 secondsFrom(parts[3]), secondsFrom(parts[4])});
    }
    for (const Field& one : itemsOf("settling")) {
        const std::vector<Field> parts = one.items(3);
        state.settling.push_back({parts[0].text(), parts[1].text(), secondsFrom(parts[2])});
    }
}

} // namespace

Json readerJson(const telemetry::ReaderState& state)
{
    Json last = Json::array();
    Json others = Json::array(); // of the second and further channels of a variable
    for (const telemetry::ReaderState::Last& one : state.last) {
        if (one.binding == 0) {
            last.push_back({one.variable, one.value, one.t});
        } else {
            others.push_back({one.variable, one.value, one.t, one.binding});
        }
    }
    Json reader{{"lines", state.lines},
                {"steps", state.steps},
                {"t", state.t ? Json(*state.t) : Json(nullptr)},
                {"last", std::move(last)}};
    if (state.files > 0) reader["files"] = state.files;
    if (!others.empty()) reader["others"] = std::move(others);
    addLateJson(state, reader);
    return reader;
}

telemetry::ReaderState readerFromJson(const CheckpointField& field)
{
    telemetry::ReaderState state;
    if (field.has("files")) state.files = field["files"].whole();
    state.lines = field["lines"].whole();
    state.steps = field["steps"].whole();
    if (!field["t"].isNull()) state.t = secondsFrom(field["t"]);
    for (const Field& one : field["last"].items()) {
        const std::vector<Field> parts = one.items(3);
        state.last.push_back({parts[0].text(), parts[1].text(), secondsFrom(parts[2])});
    }
    if (field.has("others")) {
        for (const Field& one : field["others"].items()) {
            const std::vector<Field> parts = one.items(4);
            state.last.push_back(
                {parts[0].text(), parts[1].text(), secondsFrom(parts[2]), parts[3].whole()});
        }
    }
    readLate(field, state);
    return state;
}

} // namespace session
