// Reports of steps for the tests, made by hand.
#pragma once

#include "report/Tracking.h"

/// A hypothesis with deviating modes.
inline report::TrackedExplanation deviating(double probability,
                                            std::vector<report::DeviatingMode> modes)
{
    report::TrackedExplanation explanation;
    explanation.probability = probability;
    explanation.faults = static_cast<int>(modes.size());
    explanation.modes = std::move(modes);
    return explanation;
}

inline report::StepReport stepReport(std::size_t step, monitor::TrackStatus status,
                                     std::vector<report::TrackedExplanation> explanations)
{
    report::StepReport made;
    made.step = step;
    made.t = 10.0 * static_cast<double>(step);
    made.status = status;
    made.explanations = std::move(explanations);
    return made;
}
