// Random plants that are watched over several steps, for comparing two ways of calculating what is known about their modes.
//
// A plant is a chain of parts. Each has a mode with the values off, on and one or two faults; a command that asks for off or on; an
// output `out` that tells the mode, though not one fault from another; and `flow`, which is 1 where all parts up to this one are
// on. Without options every condition follows from modes and commands by propagation, everything is observed, and whatever a mode
// does other than expected changes its output. Each option widens that.
#pragma once

#include "tests/reference/ExactTransitions.h"
#include "tests/reference/Random.h"

#include <memory>
#include <optional>
#include <string>

struct WatchedOptions {
    int fewestParts = 1;
    int mostParts = 3;
    int observedPercent = 100;  ///< how many of the conditions are observed at a step
    int gaugesPercent = 100;    ///< how many of the gauges and sums are, of those
    int unreadPercent = 0;      ///< how many steps have no observation
    int givenPercent = 100;     ///< how many of the commands are given at a step
    int lostPercent = 0;        ///< how many of the commands may be lost
    int misreadPercent = 0;     ///< how many of what is observed may be misread
    bool echoes = false;        ///< a condition, always observed, tells which command arrived
    bool initialValues = false; ///< outputs and flows have those that go with the initial modes
    bool shuffled = false;      ///< observations come in any order
    bool unseenChanges =
        false; ///< outputs of faults may be those of off and on, and one fault may follow another
    bool openConditions = false;  ///< faults leave two gauges open, partly
    bool conditionGuards = false; ///< guards read outputs, and gauges and sums where there are any
    bool disjunctiveGuards = false; ///< guards have several alternatives
    bool lawsByCases = false;       ///< a condition that follows in some modes by cases only
    bool readingsInTime = false;    ///< readings are expected to stay what they are
    bool rareFaults = false; ///< faults and losses are rare, and in runs modes deviate rarely
    bool supply = false; ///< an open condition on which the flow depends; its reading is an input
};

/// What is given for a step.
struct WatchedStep {
    std::vector<const Atom*> commands;
    std::vector<const Atom*> observations;
};

struct WatchedPlant {
    std::unique_ptr<plant::Model> model;
    std::vector<const StateVar*> observed;    ///< the conditions that may be
    std::set<const StateVar*> alwaysObserved; ///< among these
    std::set<const StateVar*> gauges;         ///< among these; and sums
    std::set<const StateVar*> inputs;         ///< among these
    std::unordered_map<const StateVar*, double> lost;
    std::unordered_map<const StateVar*, double> misread;

    /// In words, for a failure.
    std::string described() const;
};

WatchedPlant makeWatchedPlant(Random& random, const WatchedOptions& options);

/// What happens to it, drawn at random. Modes and conditions are always possible together.
class WatchedRun {
public:
    /// Plant and random numbers outlive it.
    WatchedRun(Random& random, const WatchedPlant& plant, const WatchedOptions& options);

    /// Nothing where the laws leave no values for what was drawn.
    std::optional<WatchedStep> next();

private:
    Random& random_;
    const WatchedPlant& plant_;
    WatchedOptions options_;
    ExactWorlds worlds_;
    ExactTransitions transitions_;
    World world_; ///< the truth; empty before the first step
};

std::string described(const WatchedStep& step);
