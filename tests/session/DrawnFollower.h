// A plant whose runs are drawn, and followed; what is said of it is compared with what is true.
#pragma once

#include "report/Tracking.h"
#include "session/Session.h"
#include "tests/session/DrawnRun.h"
#include "tests/session/Reliability.h"

#include "monitor/track/Successors.h"

/// What was said in some runs, and how it turned out.
struct Outcome {
    Reliability fault;      ///< that something is wrong
    Reliability components; ///< that a component is
    Reliability values;     ///< that a mode has a deviating value
    int runs = 0;
    int steps = 0;
    int impossible = 0; ///< runs that came to where the monitor takes what happened to be impossible
    int inconsistent = 0; ///< steps
    /// How often it was said that something is wrong with no more probability than there are faults that do not show, and how often of
    /// these something was. Faults are looked for when something contradicts what is believed: as long as one does not show, nothing
    /// is said of it, so statements that are no more probable than that are counted here only.
    int sound = 0;
    int silent = 0;
};

class DrawnFollower {
public:
    /// The outcome outlives it.
    DrawnFollower(language::ReadResult read, Outcome& outcome);

    /// A run. What is said is compared with the truth at the first step that leaves a doubt about some component, and at a step
    /// that is drawn before the run. Each is a step that could be told from the others without knowing what comes later; so what is
    /// said at it should hold as often as is said.
    void run(std::uint64_t seed, std::size_t steps);

private:
    report::StepReport advance(const DrawnStep& happened, std::size_t number);
    bool followTruth(const DrawnStep& happened);
    void compare(const report::StepReport& report);

    session::Session session_;
    session::Checkpoint beginning_;
    monitor::Successors successors_;
    std::optional<monitor::Hypothesis> truth_; ///< as a hypothesis that has it right
    Outcome& outcome_;
};
