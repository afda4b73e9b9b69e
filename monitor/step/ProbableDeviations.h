// What may well happen at a step beside what is predicted: a guard that is as open as not, one of two ways that are as probable,
// a command that is often lost. Nothing needs to contradict the prediction for these to be followed.
#pragma once

#include "monitor/step/Scenario.h"

namespace monitor {

/// Other modes than predicted.
struct ProbableDeviation {
    Deviations deviations; ///< never empty
    double logRatio; ///< natural logarithm of how probable that is, compared with what is predicted
    int faults;      ///< among them
};

struct ProbableDeviations {
    std::vector<ProbableDeviation> found; ///< most probable first, of equal ones in the order of the variables
    bool complete = true; ///< all that are probable enough; false: there are more than that
};

/// The combinations of deviations that are at least so probable, compared with what is most probable, and have at most so many
/// faults; `most` of them. 0 asks for all that are possible. Linear in the variables with a probable one times what is found;
/// with less than ModeSteps::notableRatio, in the options of all variables.
ProbableDeviations probableDeviations(const ModeSteps& steps, double leastRatio, int mostFaults,
                                      std::size_t most);

/// The ways in which faults may end, each by itself: other values than predicted, without a fault, of variables that had one. However
/// improbable, they are not found by searching, since many a fault explains whatever is read.
std::vector<Deviations> recoveries(const Plant& plant, const ModeSteps& steps);

} // namespace monitor
