#include "telemetry/LateReadings.h"

#include "plant/Names.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

namespace telemetry {

LateReadings::LateReadings(const Names& names, double gapSeconds)
    : names_(names), gapSeconds_(gapSeconds), operands_(names.operands().size())
{
    for (std::uint32_t i = 0; i < names.variables().size(); ++i) {
        const plant::ChannelBinding* binding = names.variables()[i].binding;
        if (!binding || !binding->isLate()) continue;
        places_[i] = late_.size();
        late_.push_back(made(i, *binding));
    }
}

LateReadings::Late LateReadings::made(std::uint32_t variable, const plant::ChannelBinding& binding)
{
    Late late;
    late.variable = variable;
    late.binding = &binding;
    const auto add = [this](const plant::ChannelExpression& expression) {
        return computed_.add(expression, gapSeconds_, [this](const std::string& channel) {
            const std::uint32_t operand = names_.operandNumber(channel);
            operands_[operand].isComputedFrom = true;
            return operand;
        });
    };
    if (binding.computed) late.computed = add(*binding.computed);
    const auto* table = std::get_if<plant::ThresholdTable>(&binding.translation);
    if (table && table->isComputed()) {
        late.table = *table;
        for (const plant::ThresholdTable::Limit& limit : table->limits) {
            late.limits.emplace_back();
            if (limit.computed) late.limits.back() = add(*limit.computed);
        }
    }
    if (binding.settling) {
        for (const std::string& channel : binding.settling->channels) {
            late.settling.push_back(names_.operandNumber(channel));
            operands_[late.settling.back()].isWaitedFor = true;
        }
    }
    return late;
}

void LateReadings::read(std::uint32_t operand, const Reading& reading)
{
    std::optional<double> number = numberOf(reading);
    if (number && !std::isfinite(*number)) number.reset();
    Operand& known = operands_[operand];
    if (known.isComputedFrom && number) computed_.read(operand, *number);
    if (known.isWaitedFor)
        known.draft = number ? fmt::format("{}", *number) : std::string(reading.text);
}

void LateReadings::give(std::uint32_t variable, const Given& given)
{
    late_[places_.at(variable)].given = given;
}

void LateReadings::forget()
{
    computed_.forget();
    for (Operand& operand : operands_) {
        operand.draft.reset();
    }
    for (Late& late : late_) {
        late.given.reset();
    }
}

void LateReadings::settle(double t)
{
    if (!begin_) begin_ = t;
    for (Operand& operand : operands_) {
        if (!operand.draft) continue;
        if (!operand.since || *operand.draft != operand.reading) operand.since = t;
        operand.reading = std::move(*operand.draft);
        operand.draft.reset();
    }
}

bool LateReadings::isSettled(const Late& late, double t) const
{
    if (!late.binding->settling) return true;
    const double wanted = late.binding->settling->seconds;
    double since = *begin_;
    for (const std::uint32_t operand : late.settling) {
        since = std::max(since, operands_[operand].since.value_or(since));
    }
    return t - since >= wanted - timeSlack(t, wanted);
}

// False where one is missing, or where they do not rise.
bool LateReadings::findLimits(Late& late) const
{
    std::vector<plant::ThresholdTable::Limit>& limits = late.table->limits;
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (late.limits[i]) {
            const auto number = computed_.value(*late.limits[i]);
            if (!number) return false;
            limits[i].number = *number;
        }
        if (i > 0 && !(limits[i].number > limits[i - 1].number)) return false;
    }
    return true;
}

// Whether a value that was read counts. One that does not has to be read again, without a hole in between.
bool LateReadings::lasts(Late& late, Atom* value, double t, const Atom* last) const
{
    if (!late.binding->persistSeconds) return true;
    Pending& pending = late.pending;
    if (value == last) {
        pending = {};
        return true;
    }
    const double wanted = *late.binding->persistSeconds;
    const double hole = holeSeconds(gapSeconds_, wanted);
    if (pending.value != value || t - pending.t > hole + timeSlack(t, hole))
        pending = {value, t, t};
    pending.t = t;
    if (t - pending.since < wanted - timeSlack(t, wanted)) return false;
    pending = {};
    return true;
}

LateReadings::Outcome LateReadings::outcome(Late& late, double t, const Atom* last)
{
    Outcome made;
    std::optional<Given> given = late.given;
    if (!given && late.computed) {
        if (const auto number = computed_.value(*late.computed)) given = *number;
    }
    if (!given) return made;
    if (const double* number = std::get_if<double>(&*given)) made.number = *number;
    if (!isSettled(late, t)) {
        late.pending = {};
        made.number.reset();
        made.waits = true;
        return made;
    }
    Atom* value = nullptr;
    if (!made.number) {
        value = std::get<Atom*>(*given);
    } else if (!late.table) {
        value = late.binding->read(*made.number, last);
    } else if (findLimits(late)) {
        value = late.table->read(*made.number, last);
    }
    if (!value) return made;
    made.waits = !lasts(late, value, t, last);
    if (!made.waits) made.value = value;
    return made;
}

void LateReadings::finish(double t, const std::function<const Atom*(std::uint32_t)>& last,
                          const std::function<void(std::uint32_t, const Outcome&)>& take)
{
    if (late_.empty()) return;
    computed_.advance(t);
    settle(t);
    for (Late& late : late_) {
        take(late.variable, outcome(late, t, last(late.variable)));
    }
    forget();
}

void LateReadings::save(ReaderState& state) const
{
    state.windows = computed_.state();
    for (const Late& late : late_) {
        const Variable& variable = names_.variables()[late.variable];
        if (late.pending.value) {
            state.pending.push_back({variable.name(), variable.bindingNumber,
                                     late.pending.value->value, late.pending.since, late.pending.t});
        }
    }
    for (std::size_t i = 0; i < operands_.size(); ++i) {
        if (!operands_[i].isWaitedFor) continue;
        state.begin = begin_;
        if (operands_[i].since)
            state.settling.push_back(
                {names_.operands()[i], operands_[i].reading, *operands_[i].since});
    }
}

void LateReadings::restore(const ReaderState& state)
{
    computed_.restore(state.windows);
    begin_ = state.begin;
    for (const ReaderState::Pending& one : state.pending) {
        const auto late = std::find_if(late_.begin(), late_.end(), [&](const Late& known) {
            const Variable& variable = names_.variables()[known.variable];
            return variable.name() == one.variable && variable.bindingNumber == one.binding;
        });
        Atom* value = late == late_.end()
                          ? nullptr
                          : plant::value(names_.variables()[late->variable].variable, one.value);
        if (!value || !late->binding->persistSeconds)
            throw std::invalid_argument("'" + one.value + "' of '" + one.variable +
                                        "' does not wait");
        late->pending = {value, one.since, one.t};
    }
    for (const ReaderState::Settling& one : state.settling) {
        const auto& known = names_.operands();
        const auto at = std::find(known.begin(), known.end(), one.channel);
        if (at == known.end())
            throw std::invalid_argument("nothing waits for '" + one.channel + "'");
        Operand& operand = operands_[static_cast<std::size_t>(at - known.begin())];
        operand.reading = one.reading;
        operand.since = one.since;
    }
    forget();
}

} // namespace telemetry
