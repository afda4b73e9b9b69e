#include "telemetry/StepBuilder.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <stdexcept>

namespace telemetry {

namespace {

// Without a translation a number is but the name of a value.
std::optional<double> numberOf(const Variable& variable, const Reading& reading)
{
    if (!variable.binding || variable.binding->translation.index() == 0) return {};
    if (reading.kind == Reading::Kind::number) return reading.number;
    return reading.kind == Reading::Kind::cell ? parseNumber(reading.text) : std::nullopt;
}

} // namespace

StepBuilder::StepBuilder(const plant::Model& model, const plant::Bindings& bindings,
                         const ReadSettings& settings)
    : names_(model, bindings), readableOnly_(settings.readableOnly),
      stepSeconds_(bindings.stepSeconds), gapSeconds_(settings.gapSteps * bindings.stepSeconds),
      last_(names_.variables().size()), draft_(names_.variables().size()),
      numbers_(names_.variables().size())
{
    const std::vector<Variable>& variables = names_.variables();
    for (std::uint32_t i = 0; i < variables.size(); ++i) {
        if (i >= names_.observedCount())
            defaults_.push_back(variables[i].variable->atomLinks->front());
        if (variables[i].binding && variables[i].binding->holdSeconds) held_.push_back(i);
    }
}

text::Message gapTooLong(double t, double before)
{
    return {fmt::format("the time is {}, and what has passed since {} is too long for a number", t,
                        before),
            "a time nearer to that of the step before", ""};
}

void StepBuilder::begin()
{
    for (const std::uint32_t variable : drafted_) {
        draft_[variable] = nullptr;
    }
    drafted_.clear();
}

// Has no value, and need not have one.
bool StepBuilder::isUnreadable(const Variable& variable, const Reading& reading) const
{
    return !readableOnly_ && wantsNumber(variable) && !isNumber(reading);
}

std::optional<text::Message> StepBuilder::add(std::uint32_t name, std::string_view text, Side side,
                                              const Reading& reading)
{
    const std::vector<std::uint32_t>& meant = names_[name].on(side);
    values_.clear();
    bool unreadable = false;
    for (const std::uint32_t index : meant) {
        const Variable& variable = names_.variables()[index];
        Atom* value = valueOf(variable, names_[name].isChannel, reading, last_[index].value);
        if (!value && !isUnreadable(variable, reading)) return notAValue(variable, text, reading);
        if (value && draft_[index] && draft_[index] != value) {
            return text::Message{fmt::format("'{}' is both {} and {} in this step", variable.name,
                                             draft_[index]->value, value->value),
                                 "readings that say the same", ""};
        }
        unreadable = unreadable || !value;
        values_.push_back(value);
    }
    if (unreadable) notes_.passOverReading(name, text, reading.text);
    for (std::size_t i = 0; i < meant.size(); ++i) {
        if (!values_[i]) continue;
        if (!draft_[meant[i]]) drafted_.push_back(meant[i]);
        draft_[meant[i]] = values_[i];
        numbers_[meant[i]] = numberOf(names_.variables()[meant[i]], reading);
    }
    return std::nullopt;
}

// Which value a reading stands for may depend on the last value; whether it stands for one does not.
std::optional<text::Message> StepBuilder::check(std::uint32_t name, std::string_view text,
                                                Side side, const Reading& reading) const
{
    for (const std::uint32_t index : names_[name].on(side)) {
        const Variable& variable = names_.variables()[index];
        if (!valueOf(variable, names_[name].isChannel, reading, nullptr) &&
            !isUnreadable(variable, reading)) {
            return notAValue(variable, text, reading);
        }
    }
    return std::nullopt;
}

// The difference of two times is as inexact as the times are: readings that come every 0.2 s must be held by `hold 0.2 s`.
bool StepBuilder::stillHolds(std::uint32_t variable, double t) const
{
    const Last& last = last_[variable];
    if (!last.value) return false;
    const double most = *names_.variables()[variable].binding->holdSeconds;
    const double slack = 4 * std::numeric_limits<double>::epsilon() *
                         std::max({std::abs(t), std::abs(last.t), most});
    return t - last.t <= most + slack;
}

Step StepBuilder::finish(double t)
{
    Step step;
    step.number = ++steps_;
    step.t = t;
    if (time_ && t - *time_ > gapSeconds_) step.gap = t - *time_;
    step.commands = defaults_;
    std::vector<std::pair<std::uint32_t, Observation>> observed;
    std::sort(drafted_.begin(), drafted_.end());
    const std::size_t firstCommand = names_.observedCount();
    for (const std::uint32_t variable : drafted_) {
        Atom* value = draft_[variable];
        if (variable < firstCommand) {
            observed.emplace_back(variable, Observation{value, false, numbers_[variable]});
        } else {
            step.commands[variable - firstCommand] = value;
            step.givenCommands.push_back(value);
        }
        if (names_.variables()[variable].binding) last_[variable] = {value, t};
    }
    const auto read = static_cast<std::ptrdiff_t>(observed.size());
    for (const std::uint32_t variable : held_) {
        if (draft_[variable] || !stillHolds(variable, t)) continue;
        Atom* value = last_[variable].value;
        if (variable < firstCommand) {
            observed.emplace_back(variable, Observation{value, true});
        } else {
            step.commands[variable - firstCommand] = value;
        }
    }
    const auto earlier = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::inplace_merge(observed.begin(), observed.begin() + read, observed.end(), earlier);
    for (const auto& entry : observed) {
        step.observations.push_back(entry.second);
    }
    time_ = t;
    begin();
    return step;
}

ReaderState StepBuilder::state() const
{
    ReaderState state;
    state.steps = steps_;
    state.t = time_;
    for (std::size_t i = 0; i < last_.size(); ++i) {
        if (last_[i].value)
            state.last.push_back({names_.variables()[i].name, last_[i].value->value, last_[i].t});
    }
    return state;
}

void StepBuilder::restore(const ReaderState& state)
{
    std::unordered_map<std::string_view, std::uint32_t> bound;
    for (std::uint32_t i = 0; i < names_.variables().size(); ++i) {
        if (names_.variables()[i].binding) bound.emplace(names_.variables()[i].name, i);
    }
    std::vector<Last> restored(last_.size());
    for (const ReaderState::Last& last : state.last) {
        const auto found = bound.find(last.variable);
        if (found == bound.end())
            throw std::invalid_argument(fmt::format("'{}' is not bound", last.variable));
        const std::vector<Atom*>& values = *names_.variables()[found->second].variable->atomLinks;
        const auto value = std::find_if(values.begin(), values.end(),
                                        [&](const Atom* atom) { return atom->value == last.value; });
        if (value == values.end()) {
            throw std::invalid_argument(
                fmt::format("'{}' is not a value of '{}'", last.value, last.variable));
        }
        restored[found->second] = {*value, last.t};
    }
    last_ = std::move(restored);
    time_ = state.t;
    steps_ = state.steps;
    begin();
}

} // namespace telemetry
