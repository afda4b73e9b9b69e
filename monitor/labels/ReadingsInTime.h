// How probable readings are that the plant leaves open, given what they were before.
//
// A reading that nothing in the plant determines is expected to stay what it is: the second time that a sensor with a dead input
// shows the same is no new evidence. So the last readings are remembered, as long as they stay open and no mode that bears on them
// changes. A group of readings that hang together, N combinations of which are possible, shows the last one again with the
// probability 1 - v, and each other one with v / (N - 1); v is 1 less the product of (1 - v) of its channels, where v of a
// channel is how often it changes from one step to the next. A group of which not all is remembered shows each combination with
// 1/N.
#pragma once

#include "monitor/labels/LastAnswers.h"
#include "monitor/labels/OpenGroups.h"
#include "monitor/labels/StepAssumptions.h"

#include <functional>
#include <map>
#include <memory>
#include <set>

namespace monitor {

/// What is open under some modes, commands and inputs, as far as it was asked.
struct OpenReadings {
    GivenValues given;
    std::vector<VariableIndex> read;
    OpenGroups groups; ///< of the variables that were read
    std::map<VariableIndex, bool> isOpen;
    bool exact = true; ///< what is open, and in which groups, was decided
};

/// What is open, and which of the readings that are remembered are not expected again.
struct OpenAnswer {
    std::shared_ptr<const OpenReadings> open;
    std::set<VariableIndex> unexpected;
};
struct OpenQuestion {
    std::set<VariableIndex> changedModes;
    std::vector<VariableIndex> remembered; ///< rising
    std::vector<VariableIndex> read;
    GivenValues given;

    friend bool operator==(const OpenQuestion&, const OpenQuestion&) = default;
};
/// What each of several hypotheses may become is asked at every step: together they have more than one memory can hold.
using LastOpenAnswers = LastAnswers<OpenQuestion, OpenAnswer>;

struct ReadingMemory {
    std::map<VariableIndex, AtomIndex> last; ///< readings that are expected again
    /// From the step before: most of the time the next one is like it. Null: not known.
    std::shared_ptr<const OpenReadings> open;
};

/// A reading of a step.
struct Reading {
    AtomIndex value;
    double changing;    ///< probability that it is not what it was at the step before
    double logEstimate; ///< what it counts where there are too many combinations; 0: it follows
};

struct ReadingsInTime {
    double log = 0.0;     ///< natural logarithm of the likelihood
    bool exact = true;    ///< false where estimates had to do
    ReadingMemory memory; ///< after the step
};

/// `given` are modes, commands and inputs, and `labels` gives what follows from them; the readings agree with it, and no variable
/// has two. `changedModes` are those that were not as they are before the step. Linear in the readings where what is given is
/// what was given at the step before, or among what was asked last; else `labels` is called, and OpenVariables asked.
ReadingsInTime readingsInTime(const Plant& plant, GivenValues given,
                              const std::function<Prediction()>& labels,
                              const std::vector<Reading>& readings, const ReadingMemory& before,
                              const std::set<VariableIndex>& changedModes, LastOpenAnswers& asked);

} // namespace monitor
