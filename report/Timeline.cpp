#include "report/Timeline.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

int badness(monitor::TrackStatus status)
{
    switch (status) {
    case monitor::TrackStatus::nominal: return 0;
    case monitor::TrackStatus::stale: return 1;
    case monitor::TrackStatus::ambiguous: return 2;
    case monitor::TrackStatus::faulty: return 3;
    case monitor::TrackStatus::inconsistent: return 4;
    }
    return 0;
}

void widen(ChannelState& state, const ChannelState& other)
{
    state.low = std::fmin(state.low, other.low); // of a number and NaN: the number
    state.high = std::fmax(state.high, other.high);
}

// Requires: `later` begins where `point` ends.
void join(TimelinePoint& point, TimelinePoint&& later)
{
    TimelineRow other = std::move(later.shown);
    if (badness(other.status) >= badness(point.shown.status)) std::swap(point.shown, other);
    std::vector<ChannelState>& channels = point.shown.channels;
    channels.resize(std::max(channels.size(), other.channels.size()));
    for (std::size_t i = 0; i < other.channels.size(); ++i) {
        widen(channels[i], other.channels[i]);
    }
    if (!point.shown.gap) point.shown.gap = other.gap;
    point.last = later.last;
    point.to = later.to;
}

} // namespace

void Timeline::add(TimelineRow row)
{
    last_ = {std::move(row), 0, 0, 0.0, 0.0};
    last_.first = last_.last = last_.shown.step;
    last_.from = last_.to = last_.shown.t;
    if (!points_.empty() && points_.back().last - points_.back().first + 1 < stepsPerPoint_) {
        join(points_.back(), TimelinePoint(last_));
        return;
    }
    if (points_.size() == mostPoints_) halve();
    points_.push_back(last_);
}

void Timeline::halve()
{
    for (std::size_t i = 0; i < points_.size() / 2; ++i) {
        TimelinePoint joined = std::move(points_[2 * i]);
        join(joined, std::move(points_[2 * i + 1]));
        points_[i] = std::move(joined);
    }
    points_.resize(points_.size() / 2);
    stepsPerPoint_ *= 2;
}

std::vector<const TimelinePoint*> Timeline::points() const
{
    std::vector<const TimelinePoint*> points;
    for (const TimelinePoint& point : points_) {
        points.push_back(&point);
    }
    if (!points_.empty() && points_.back().shown.step != last_.shown.step) points.push_back(&last_);
    return points;
}

} // namespace report
