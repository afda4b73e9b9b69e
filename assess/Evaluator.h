// Counts, step by step, what a monitor says while something is known to be wrong, and while nothing is.
//
//     assess::Evaluator evaluator(plant, labels, {});
//     while (...) evaluator.take(step, session.advance(step));
//     assess::Evaluation evaluation = evaluator.evaluation();
#pragma once

#include "assess/Evaluation.h"
#include "monitor/track/Tracker.h"
#include "plant/Plant.h"
#include "telemetry/Step.h"

#include <map>

namespace assess {

struct EvaluationSettings {
    double threshold = 0.5; ///< an alarm: a fault is at least so probable, above 0, at most 1
    double grace = 0;       ///< seconds after the end of a label that count neither way, >= 0
    double stepSeconds = 1; ///< the length of a step
    std::size_t shown = 5;  ///< explanations that are shown; 0: all
    double mass = 0.99;     ///< no more than those that have so much of the probability together
};

class Evaluator {
public:
    /// Requires: the plant outlives this.
    Evaluator(const plant::Plant& plant, std::vector<Label> labels, EvaluationSettings settings);

    /// Takes the next step and what is believed after it. Linear in the labels and the hypotheses.
    void take(const telemetry::Step& step, const monitor::TrackAnswer& answer);
    /// Of the steps taken so far.
    Evaluation evaluation() const;

private:
    struct Belief {
        double fault = 0.0;
        std::map<plant::AtomIndex, double> values; // of modes that deviate, with their probabilities
        std::vector<plant::AtomIndex> shown;       // those that a shown explanation has
    };

    Belief belief(const monitor::TrackAnswer& answer) const;
    bool names(const Label& label, plant::AtomIndex value) const;
    bool isIsolated(const Label& label, const std::vector<const Label*>& now,
                    const monitor::TrackAnswer& answer) const;
    bool isNamed(const Label& label, const Belief& belief) const;
    std::string mostProbable(const Belief& belief) const;
    void score(EventScore& event, double t, const Belief& belief, bool isIsolated) const;
    void takeFree(bool alarm);
    void passTime(const telemetry::Step& step);

    const plant::Plant& plant_;
    EvaluationSettings settings_;
    Evaluation total_;
    bool alarmBefore_ = false;
    bool freeBefore_ = false; ///< the step before was a fault-free one
    double lastTime_ = 0;
};

} // namespace assess
