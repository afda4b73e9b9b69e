// What a page keeps of the steps of a run, in memory that does not grow with their number.
//
// Each point stands for so many neighbouring steps, at first one. When there are as many points as there may be, neighbours
// become one point, and from then on twice as many steps become a point. A point shows one of its steps, the last of those
// with the worst status, so that no fault is lost however short it was; of the numbers that were read it has the smallest
// and the largest.
#pragma once

#include "report/Tracking.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace report {

/// What a channel says at a step.
struct ChannelState {
    static constexpr std::int16_t none = -1;

    std::int16_t read =
        none; ///< value that was observed or commanded, by its number; none: not at this step
    std::int16_t believed = none; ///< value in the most probable explanation; none: left open
    bool held = false;            ///< what was read stands in for a missing reading
    double low =
        std::numeric_limits<double>::quiet_NaN(); ///< of the numbers that were read; NaN: none was
    double high = std::numeric_limits<double>::quiet_NaN();
};

/// An explanation, and how probable it was.
struct Believed {
    std::shared_ptr<const TrackedExplanation> explanation; ///< its own probability is that of another step
    double probability = 0.0;
};

/// A step.
struct TimelineRow {
    std::size_t step = 0;
    double t = 0.0; ///< seconds
    std::optional<double> gap;
    monitor::TrackStatus status = monitor::TrackStatus::nominal;
    bool complete = true;
    bool approximate = false;
    SearchLimit limit = SearchLimit::none;
    double fault = 0.0;
    double missing = 0.0;
    double silent = 0.0;
    std::size_t kept = 0;
    std::size_t dropped = 0;
    std::vector<Believed> candidates; ///< those that are shown, group by group (report/Alike.h)
    std::vector<std::size_t> groups;  ///< how many of them are in each group
    std::vector<std::pair<std::uint32_t, double>> components; ///< that deviate, by number, and how probably
    std::vector<std::int16_t> modes; ///< value of each mode in the most probable explanation, by number
    std::vector<ChannelState> channels; ///< may be shorter than that of a later row
};

struct TimelinePoint {
    TimelineRow shown;
    std::size_t first = 0; ///< steps
    std::size_t last = 0;
    double from = 0.0; ///< their times, in seconds
    double to = 0.0;
};

class Timeline {
public:
    /// Requires: an even number of points, 2 or more.
    explicit Timeline(std::size_t mostPoints) : mostPoints_(mostPoints) {}

    /// Constant time for each value of the row, on average.
    void add(TimelineRow row);

    /// The points so far; the last one shows the last step, whatever the others show. At most one more than may be kept.
    std::vector<const TimelinePoint*> points() const;
    std::size_t stepsPerPoint() const { return stepsPerPoint_; }

private:
    void halve();

    std::size_t mostPoints_;
    std::size_t stepsPerPoint_ = 1;
    std::vector<TimelinePoint> points_;
    TimelinePoint last_; ///< of the last step alone
};

} // namespace report
