#include "telemetry/StepBuilder.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <stdexcept>

namespace telemetry {

namespace {

// Without a translation a number is but the name of a value.
std::optional<double> translatedNumber(const Variable& variable, const Reading& reading)
{
    if (!variable.binding || variable.binding->translation.index() == 0) return {};
    return numberOf(reading);
}

// The number itself is what a late variable is read as, where its limits may be computed.
std::optional<double> lateNumber(const Variable& variable, const Reading& reading)
{
    if (!isNumber(reading) ||
        !std::holds_alternative<plant::ThresholdTable>(variable.binding->translation))
        return std::nullopt;
    return numberOf(reading);
}

} // namespace

StepBuilder::StepBuilder(const plant::Model& model, const plant::Bindings& bindings,
                         const ReadSettings& settings)
    : names_(model, bindings, settings.renamed),
      late_(names_, settings.gapSteps * bindings.stepSeconds), readableOnly_(settings.readableOnly),
      stepSeconds_(bindings.stepSeconds), gapSeconds_(settings.gapSteps * bindings.stepSeconds),
      last_(names_.variables().size()), draft_(names_.variables().size()),
      numbers_(names_.variables().size()), waits_(names_.variables().size())
{
    const std::vector<Variable>& variables = names_.variables();
    for (std::uint32_t i = 0; i < variables.size(); ++i) {
        if (i >= names_.observedCount())
            defaults_.push_back(variables[i].variable->atomLinks->front());
        if (variables[i].binding && variables[i].binding->holdSeconds) held_.push_back(i);
        hasSeveral_ = hasSeveral_ || variables[i].bindingNumber > 0;
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
    late_.forget();
}

// Has no value, and need not have one.
bool StepBuilder::isUnreadable(const Variable& variable, const Reading& reading) const
{
    return !readableOnly_ && wantsNumber(variable) && !isNumber(reading);
}

// What something is computed from has to be a number, unless it stands for other things, too.
std::optional<text::Message> StepBuilder::addOperand(const Name& meant, std::uint32_t name,
                                                     std::string_view text, Side side,
                                                     const Reading& reading)
{
    if (late_.isComputedFrom(*meant.operand) && meant.on(side).empty() && !isNumber(reading)) {
        if (readableOnly_) {
            return text::Message{fmt::format("the value of {} is {}", text::quoted(text),
                                             reading.kind == Reading::Kind::number
                                                 ? std::string(reading.text)
                                                 : text::quoted(reading.text)),
                                 "a finite number", "leave out what was not observed"};
        }
        notes_.passOverReading(name, text, reading.text);
    }
    late_.read(*meant.operand, reading);
    return std::nullopt;
}

std::optional<text::Message> StepBuilder::add(std::uint32_t name, std::string_view text, Side side,
                                              const Reading& reading)
{
    const std::span<const std::uint32_t> meant = names_[name].on(side);
    values_.clear();
    given_.clear();
    bool unreadable = false;
    const auto contradicts = [](const Variable& variable, const std::string& before,
                                const std::string& now) {
        return text::Message{
            fmt::format("'{}' is both {} and {} in this step", variable.name(), before, now),
            "readings that say the same", ""};
    };
    for (const std::uint32_t index : meant) {
        const Variable& variable = names_.variables()[index];
        const bool isLate = late_.isLate(index);
        const auto number = isLate ? lateNumber(variable, reading) : std::nullopt;
        Atom* value = number
                          ? nullptr
                          : valueOf(variable, names_[name].isChannel, reading, last_[index].value);
        if (!value && !number && !isUnreadable(variable, reading))
            return notAValue(variable, text, reading);
        if (value && draft_[index] && draft_[index] != value)
            return contradicts(variable, draft_[index]->value, value->value);
        if (isLate && late_.given(index) && (value || number)) {
            const LateReadings::Given now = number ? LateReadings::Given(*number) : value;
            if (*late_.given(index) != now) return contradicts(variable, "one thing", "another");
        }
        unreadable = unreadable || (!value && !number);
        values_.push_back(value);
        given_.push_back(number);
    }
    if (names_[name].operand) {
        if (auto mistake = addOperand(names_[name], name, text, side, reading)) return mistake;
    }
    if (unreadable) notes_.passOverReading(name, text, reading.text);
    for (std::size_t i = 0; i < meant.size(); ++i) {
        if (!values_[i] && !given_[i]) continue;
        if (late_.isLate(meant[i])) {
            late_.give(meant[i], given_[i] ? LateReadings::Given(*given_[i]) : values_[i]);
            continue;
        }
        if (!draft_[meant[i]]) drafted_.push_back(meant[i]);
        draft_[meant[i]] = values_[i];
        numbers_[meant[i]] = translatedNumber(names_.variables()[meant[i]], reading);
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

void StepBuilder::finishLate(double t, Step& step)
{
    const auto last = [this](std::uint32_t variable) { return last_[variable].value; };
    late_.finish(t, last, [&](std::uint32_t variable, const LateReadings::Outcome& outcome) {
        waits_[variable] = outcome.waits;
        if (outcome.number)
            step.numbers.push_back({names_.variables()[variable].binding, *outcome.number});
        if (!outcome.value) return;
        drafted_.push_back(variable);
        draft_[variable] = outcome.value;
        numbers_[variable] = outcome.number;
    });
}

// What was read and what is held, in the order of the variables; those of commands go into the step.
StepBuilder::Observed StepBuilder::observed(double t, Step& step)
{
    Observed all;
    std::sort(drafted_.begin(), drafted_.end());
    const std::size_t firstCommand = names_.observedCount();
    for (const std::uint32_t variable : drafted_) {
        Atom* value = draft_[variable];
        if (variable < firstCommand) {
            all.emplace_back(variable, Observation{value, false, numbers_[variable]});
        } else {
            step.commands.set(variable - firstCommand, value);
            step.givenCommands.push_back(value);
        }
        if (names_.variables()[variable].binding) last_[variable] = {value, t};
    }
    const auto read = static_cast<std::ptrdiff_t>(all.size());
    for (const std::uint32_t variable : held_) {
        if (draft_[variable] || waits_[variable] || !stillHolds(variable, t)) continue;
        Atom* value = last_[variable].value;
        if (variable < firstCommand) {
            all.emplace_back(variable, Observation{value, true});
        } else {
            step.commands.set(variable - firstCommand, value);
        }
    }
    const auto earlier = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::inplace_merge(all.begin(), all.begin() + read, all.end(), earlier);
    return all;
}

// One observation of each variable. A held reading gives way to one of another channel; where two channels say different things, nothing
// is known.
void StepBuilder::join(Observed& observed)
{
    std::unordered_map<const StateVar*, std::size_t> first;
    std::vector<std::size_t> contradicted;
    Observed joined;
    for (auto& [variable, observation] : observed) {
        const auto [entry, isNew] =
            first.try_emplace(names_.variables()[variable].variable, joined.size());
        if (isNew) {
            joined.emplace_back(variable, observation);
            continue;
        }
        Observation& before = joined[entry->second].second;
        if (before.held != observation.held) {
            if (before.held) before = observation;
        } else if (before.value != observation.value) {
            contradicted.push_back(entry->second);
            notes_.contradict(names_.variables()[variable].name(), before.value->value,
                              observation.value->value);
        }
    }
    observed.clear();
    for (std::size_t i = 0; i < joined.size(); ++i) {
        if (std::find(contradicted.begin(), contradicted.end(), i) == contradicted.end())
            observed.push_back(joined[i]);
    }
}

Step StepBuilder::finish(double t)
{
    Step step;
    step.number = ++steps_;
    step.t = t;
    if (time_ && t - *time_ > gapSeconds_) step.gap = t - *time_;
    step.commands = defaults_;
    for (const std::uint32_t variable : drafted_) {
        if (variable < names_.observedCount() && numbers_[variable])
            step.numbers.push_back({names_.variables()[variable].binding, *numbers_[variable]});
    }
    finishLate(t, step);
    Observed all = observed(t, step);
    if (hasSeveral_) join(all);
    for (const auto& entry : all) {
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
            state.last.push_back({names_.variables()[i].name(), last_[i].value->value, last_[i].t,
                                  names_.variables()[i].bindingNumber});
    }
    late_.save(state);
    return state;
}

void StepBuilder::restore(const ReaderState& state)
{
    std::map<std::pair<std::string, std::size_t>, std::uint32_t> bound;
    for (std::uint32_t i = 0; i < names_.variables().size(); ++i) {
        const Variable& variable = names_.variables()[i];
        if (variable.binding) bound.emplace(std::pair(variable.name(), variable.bindingNumber), i);
    }
    std::vector<Last> restored(last_.size());
    for (const ReaderState::Last& last : state.last) {
        const auto found = bound.find({last.variable, last.binding});
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
    late_.restore(state);
    last_ = std::move(restored);
    time_ = state.t;
    steps_ = state.steps;
    begin();
}

} // namespace telemetry
