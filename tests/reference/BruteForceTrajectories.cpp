#include "tests/reference/BruteForceTrajectories.h"

#include "model/Comp.h"
#include "model/StateFormula.h"
#include "model/Transition.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numeric>

namespace {

constexpr std::uint32_t unit = 1024; // of probabilities

std::uint32_t inUnits(double probability)
{
    const double scaled = probability * unit;
    if (scaled != std::floor(scaled)) {
        std::abort();
    }
    return static_cast<std::uint32_t>(scaled);
}

struct Chance {
    std::uint32_t units = 0;
    bool fault = false;
};

struct ModeChances {
    const Atom* predicted;
    std::map<const Atom*, Chance> values;
};

// Nothing where that is open.
std::optional<bool> enabled(const Transition* transition, const AtomLabels& labels)
{
    const SignedAtoms& guard = *transition->guard->atoms;
    const bool one = transition->guard->op == "or"; // is enough, or too much
    bool open = false;
    for (const auto& [mustHold, atom] : guard) {
        const auto label = labels.find(atom);
        open = open || label == labels.end();
        if (label != labels.end() && (label->second == mustHold) == one) {
            return one;
        }
    }
    return open ? std::nullopt : std::optional(!one);
}

ModeChances chancesOf(const StateVar* mode, const Atom* from, const AtomLabels& labels,
                      bool& metOpenGuard)
{
    ModeChances chances{from, {}};
    std::uint32_t ofNominal = 0;
    const Atom* nominal = nullptr;
    std::uint32_t leaving = 0;
    for (const Transition* transition : *mode->comp->transitions) {
        if (transition->stateVar != mode || transition->atom == from || transition->proba == 0.0) {
            continue;
        }
        const std::optional<bool> holds = enabled(transition, labels);
        metOpenGuard = metOpenGuard || !holds;
        if (!holds || !*holds) {
            continue;
        }
        Chance& chance = chances.values[transition->atom];
        chance.units += inUnits(transition->proba);
        chance.fault = transition->atom->fail;
        leaving += inUnits(transition->proba);
        if (transition->name == "Nominal" && inUnits(transition->proba) > ofNominal) {
            nominal = transition->atom;
            ofNominal = inUnits(transition->proba);
        }
    }
    if (leaving > unit) {
        std::abort();
    }
    if (leaving < unit) {
        chances.values[from] = {unit - leaving, false};
    } else if (!nominal) {
        // By their order among the variable's values, of equal ones the one whose transition comes first: models of this
        // kind have no equal ones.
        nominal = std::max_element(
                      chances.values.begin(), chances.values.end(),
                      [](const auto& a, const auto& b) { return a.second.units < b.second.units; })
                      ->first;
    }
    const bool rather =
        nominal && leaving < unit && unit - leaving > chances.values.at(nominal).units;
    chances.predicted = nominal && !rather ? nominal : from;
    return chances;
}

} // namespace

// One way in which a step goes on.
struct BruteForceTrajectories::Extension {
    std::vector<const Atom*> commands;
    std::set<const Atom*> lost;
    Modes modes;
    std::set<const Atom*> deviations;
    int faults;
    WholeNumber weight; ///< without the likelihood of the observations
    std::uint32_t combinations = 1;
    std::shared_ptr<const std::vector<ModeChances>> chances;
};

BruteForceTrajectories::BruteForceTrajectories(Which which, int maxFaults)
    : which_(which), maxFaults_(maxFaults), variables_(allVariables("Mode"))
{
    State initial{{}, 0, {}, WholeNumber(1)};
    std::vector<const Atom*> values;
    for (const StateVar* variable : allVariables()) {
        const bool isMode = variable->type == "Mode";
        const Atom* value = variable->initial ? variable->initial
                            : isMode          ? variable->atomLinks->front()
                                              : nullptr;
        if (value) {
            values.push_back(value);
        }
        if (isMode) {
            initial.modes.push_back(value);
        }
    }
    for (const Atom* value : values) {
        for (const Atom* atom : *value->stateVar->atomLinks) {
            initial.labels[atom] = atom == value;
        }
    }
    if (auto labels = BruteForceDiagnosis::consequences(values)) {
        initial.labels = std::move(*labels);
    }
    weights_[initial.modes] = initial.weight;
    states_.push_back(std::move(initial));
}

const std::optional<BruteForceTrajectories::Outcome>& BruteForceTrajectories::outcome(
    const std::vector<const Atom*>& given, const TrajectoryStep& step)
{
    const auto [entry, isNew] = outcomes_.emplace(given, std::nullopt);
    if (!isNew) {
        return entry->second;
    }
    std::vector<const Atom*> known = given;
    std::vector<const StateVar*> observed;
    for (const Atom* value : step.observations) {
        observed.push_back(value->stateVar);
        known.push_back(value);
    }
    auto labels = BruteForceDiagnosis::consequences(known);
    if (labels && BruteForceDiagnosis::world(known)) {
        entry->second =
            Outcome{std::move(*labels), BruteForceDiagnosis::combinations(given, observed)};
    }
    return entry->second;
}

void BruteForceTrajectories::assign(std::size_t variable, Extension& extension, const State& from,
                                    const TrajectoryStep& step, std::vector<Extension>& all)
{
    if (extension.faults > maxFaults_) {
        return;
    }
    if (variable == variables_.size()) {
        std::vector<const Atom*> given = extension.modes;
        given.insert(given.end(), extension.commands.begin(), extension.commands.end());
        if (const auto& result = outcome(given, step)) {
            all.push_back(extension);
            all.back().combinations = result->combinations;
        }
        return;
    }
    const ModeChances& chances = (*extension.chances)[variable];
    for (const auto& [value, chance] : chances.values) {
        Extension next = extension;
        next.modes.push_back(value);
        next.weight *= chance.units;
        if (value != chances.predicted) {
            next.deviations.insert(value);
            next.faults += chance.fault ? 1 : 0;
        }
        assign(variable + 1, next, from, step, all);
    }
}

std::vector<BruteForceTrajectories::Extension> BruteForceTrajectories::extensions(
    const State& from, const TrajectoryStep& step)
{
    std::vector<Extension> all;
    for (std::size_t set = 0; set < std::size_t{1} << step.lossy.size(); ++set) {
        Extension extension{step.commands, {}, {}, {}, from.faults, from.weight, 1, {}};
        for (std::size_t i = 0; i < step.lossy.size(); ++i) {
            const LossyAtom& lossy = step.lossy[i];
            const bool isLost = ((set >> i) & 1) != 0;
            const std::uint32_t units = inUnits(lossy.probability);
            extension.weight *= isLost ? units : unit - units;
            if (isLost) {
                std::replace(extension.commands.begin(), extension.commands.end(), lossy.given,
                             lossy.fallback);
                extension.lost.insert(lossy.given);
                ++extension.faults;
            }
        }
        AtomLabels labels = from.labels;
        for (const StateVar* variable : allVariables("Command")) {
            for (const Atom* atom : *variable->atomLinks) {
                labels.erase(atom);
            }
        }
        for (const Atom* command : extension.commands) {
            for (const Atom* atom : *command->stateVar->atomLinks) {
                labels[atom] = atom == command;
            }
        }
        std::vector<ModeChances> chances;
        for (std::size_t i = 0; i < variables_.size(); ++i) {
            chances.push_back(chancesOf(variables_[i], from.modes[i], labels, metOpenGuard_));
        }
        extension.chances = std::make_shared<const std::vector<ModeChances>>(std::move(chances));
        if (!extension.weight.isZero()) {
            assign(0, extension, from, step, all);
        }
    }
    return all;
}

void BruteForceTrajectories::advance(const TrajectoryStep& step)
{
    outcomes_.clear();
    std::map<std::tuple<Modes, std::vector<const Atom*>, int>, State> reached;
    std::vector<std::vector<Extension>> extended;
    std::uint64_t parts = 1; // of the likelihood of the observations
    for (const State& from : states_) {
        for (const Extension& one : extended.emplace_back(extensions(from, step))) {
            parts = std::lcm(parts, std::uint64_t{one.combinations});
        }
    }
    if (parts > std::numeric_limits<std::uint32_t>::max()) {
        std::abort();
    }
    for (std::vector<Extension>& all : extended) {
        for (Extension& one : all) {
            one.weight *= static_cast<std::uint32_t>(parts / one.combinations);
            const bool calledFor = std::none_of(all.begin(), all.end(), [&](const Extension& other) {
                return &other != &one &&
                       std::includes(one.lost.begin(), one.lost.end(), other.lost.begin(),
                                     other.lost.end()) &&
                       std::includes(one.deviations.begin(), one.deviations.end(),
                                     other.deviations.begin(), other.deviations.end());
            });
            if (which_ == Which::calledFor && !calledFor) {
                continue;
            }
            std::vector<const Atom*> given = one.modes;
            given.insert(given.end(), one.commands.begin(), one.commands.end());
            State& state = reached[{one.modes, one.commands, one.faults}];
            state.modes = one.modes;
            state.faults = one.faults;
            state.labels = outcome(given, step)->labels;
            state.weight += one.weight;
        }
    }
    states_.clear();
    weights_.clear();
    for (auto& [key, state] : reached) {
        weights_[state.modes] += state.weight;
        states_.push_back(std::move(state));
    }
    logDenominator_ += static_cast<double>(variables_.size() + step.lossy.size()) * std::log(unit) +
                       std::log(static_cast<double>(parts));
}

WholeNumber BruteForceTrajectories::total() const
{
    WholeNumber sum;
    for (const auto& [modes, weight] : weights_) {
        sum += weight;
    }
    return sum;
}
