// What a number was over the last seconds: its mean, least and greatest value, spread and rate, and what it was at their beginning.
//
// Time counts, not readings: a reading stands for the time since the one before it. So the mean of the window from t - W to t is
// that of the readings in it, each with its share of the time, and the first one with the share that lies in the window. A window has
// a value once it is covered from its beginning on. A hole, a time between two readings that is longer than a gap and than a quarter of
// the window, is not covered: the window begins anew behind it.
//
// A step costs constant time, amortised. The readings are in two stacks, as a queue has them: those that came since the last turn with
// one sum for all of them, and the older ones each with the sum of those behind it. Nothing is ever subtracted from a sum, so that no
// error grows with time, and minimum and maximum are kept in the same way.
#pragma once

#include "plant/ChannelExpression.h"
#include "telemetry/ReaderState.h"

#include <optional>
#include <vector>

namespace telemetry {

/// The seconds beyond which two neighbouring readings have a hole between them, for what looks back over so many seconds.
double holeSeconds(double gapSeconds, double seconds);
/// By how much a difference between `t` and another time may be wrong: it is as inexact as the times are.
double timeSlack(double t, double seconds);

class Window {
public:
    /// Requires: plant::isWindow(kind), and more than 0 seconds.
    Window(plant::ChannelExpression::Kind kind, double seconds, double gapSeconds);

    /// Takes the reading of a step, none where there is none, and gives the value of the window; none where it is not covered, and, but
    /// for `ago`, where there is no reading now.
    /// Requires: `t` is later than that of the last call.
    std::optional<double> next(double t, std::optional<double> reading);

    ReaderState::Window state() const;
    /// Requires: next() was not called. Throws std::invalid_argument when the times do not rise.
    void restore(const ReaderState::Window& state);

private:
    using Sample = ReaderState::Window::Sample;

    // Of some neighbouring readings.
    struct Aggregate {
        double area = 0; // the sum of values, each times the time that it stands for
        double least = 0;
        double greatest = 0;
    };
    struct Entry {
        Sample sample;
        double seconds = 0;  // that it stands for
        Aggregate aggregate; // with those behind it
    };

    static Aggregate alone(const Entry& entry);
    static Aggregate joined(const Aggregate& a, const Aggregate& b);
    void push(const Sample& sample);
    void turn();
    void popOldest();
    void slide(double begin, double slack);
    void clear();
    bool insideIsEmpty() const { return older_.empty() && newer_.empty(); }
    std::optional<double> value(double t, double begin) const;

    plant::ChannelExpression::Kind kind_;
    double seconds_;
    double hole_;
    std::optional<Sample>
        before_; // the last one at or before the beginning of the window, or the first one of all
    std::optional<Sample> first_; // in the window
    std::vector<Entry> older_;    // of the rest: the first one is the last of the vector
    std::vector<Entry> newer_;
    std::optional<Aggregate> newerAggregate_;
    std::optional<double> lastTime_; // of all readings
};

} // namespace telemetry
