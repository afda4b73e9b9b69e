#include "telemetry/Window.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace telemetry {

using Kind = plant::ChannelExpression::Kind;

double holeSeconds(double gapSeconds, double seconds)
{
    return std::max(gapSeconds, seconds / 4);
}

double timeSlack(double t, double seconds)
{
    return 4 * std::numeric_limits<double>::epsilon() * std::max(std::abs(t), seconds);
}

Window::Window(Kind kind, double seconds, double gapSeconds)
    : kind_(kind), seconds_(seconds), hole_(holeSeconds(gapSeconds, seconds))
{
}

Window::Aggregate Window::alone(const Entry& entry)
{
    return {entry.sample.value * entry.seconds, entry.sample.value, entry.sample.value};
}

Window::Aggregate Window::joined(const Aggregate& a, const Aggregate& b)
{
    return {a.area + b.area, std::min(a.least, b.least), std::max(a.greatest, b.greatest)};
}

void Window::clear()
{
    before_.reset();
    first_.reset();
    older_.clear();
    newer_.clear();
    newerAggregate_.reset();
}

// The newest reading. The first one of all stands for no time.
void Window::push(const Sample& sample)
{
    if (!before_) {
        before_ = sample;
    } else if (!first_) {
        first_ = sample;
    } else {
        Entry entry{sample, sample.t - *lastTime_, {}};
        newerAggregate_ = newerAggregate_ ? joined(*newerAggregate_, alone(entry)) : alone(entry);
        newer_.push_back(entry);
    }
    lastTime_ = sample.t;
}

// The newer ones become the older ones, each with the aggregate of those behind it.
void Window::turn()
{
    for (; !newer_.empty(); newer_.pop_back()) {
        Entry entry = newer_.back();
        entry.aggregate =
            older_.empty() ? alone(entry) : joined(alone(entry), older_.back().aggregate);
        older_.push_back(entry);
    }
    newerAggregate_.reset();
}

// The oldest one in the window is before it now.
void Window::popOldest()
{
    before_ = first_;
    first_.reset();
    if (older_.empty()) turn();
    if (older_.empty()) return;
    first_ = older_.back().sample;
    older_.pop_back();
}

void Window::slide(double begin, double slack)
{
    while (first_ && first_->t <= begin + slack) {
        popOldest();
    }
}

std::optional<double> Window::next(double t, std::optional<double> reading)
{
    const double slack = timeSlack(t, seconds_);
    if (reading) {
        if (kind_ != Kind::ago && lastTime_ && t - *lastTime_ > hole_ + slack) clear();
        push({t, *reading});
    }
    const double begin = t - seconds_;
    slide(begin, slack);
    if (!before_ || before_->t > begin + slack) return std::nullopt;
    if (kind_ == Kind::ago) {
        return begin - before_->t <= hole_ + slack ? std::optional(before_->value) : std::nullopt;
    }
    return reading && first_ ? value(t, begin) : std::nullopt;
}

std::optional<double> Window::value(double t, double begin) const
{
    if (kind_ == Kind::rate) {
        const double now = !newer_.empty()   ? newer_.back().sample.value
                           : !older_.empty() ? older_.front().sample.value
                                             : first_->value;
        return (now - before_->value) / (t - before_->t);
    }
    Aggregate all = alone({*first_, first_->t - std::max(before_->t, begin), {}});
    if (!older_.empty()) all = joined(all, older_.back().aggregate);
    if (newerAggregate_) all = joined(all, *newerAggregate_);
    switch (kind_) {
    case Kind::mean: return all.area / std::min(seconds_, t - before_->t);
    case Kind::minimum: return all.least;
    case Kind::maximum: return all.greatest;
    default: return all.greatest - all.least;
    }
}

ReaderState::Window Window::state() const
{
    ReaderState::Window state;
    if (before_) state.samples.push_back(*before_);
    if (first_) state.samples.push_back(*first_);
    for (auto entry = older_.rbegin(); entry != older_.rend(); ++entry) {
        state.samples.push_back(entry->sample);
    }
    for (const Entry& entry : newer_) {
        state.samples.push_back(entry.sample);
    }
    state.older = older_.size();
    return state;
}

// The sums are what they were, to the bit: the split between the two stacks is restored with the readings.
void Window::restore(const ReaderState::Window& state)
{
    constexpr std::size_t others = 2; // before_ and first_
    const std::size_t count = state.samples.size();
    if (state.older > (count > others ? count - others : 0))
        throw std::invalid_argument("a window has fewer readings than it should");
    for (std::size_t i = 0; i < count; ++i) {
        const Sample& sample = state.samples[i];
        if (!std::isfinite(sample.t) || !std::isfinite(sample.value) ||
            (lastTime_ && sample.t <= *lastTime_))
            throw std::invalid_argument("a window has readings that are not in order");
        push(sample);
        if (state.older > 0 && i + 1 == others + state.older) turn();
    }
}

} // namespace telemetry
