// A plant given as text, followed: what is said of it at every step, in a form in which two ways of writing it can be compared.
#pragma once

#include "session/Session.h"
#include "tests/support/Rewriting.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace written {

/// What is seen at a step, by the names of the first way of writing: "p0.out", "low".
struct SeenStep {
    std::map<std::string, std::string> commands;
    std::map<std::string, std::string> observations;
};

/// What is said after a step.
struct Said {
    /// What differs, since when, lost commands, unexplained readings, and the rank: "p0.state=bad1 since 3".
    using Hypothesis = std::set<std::string>;

    std::string status;
    bool complete = false;
    bool approximate = false;
    std::size_t dropped = 0;
    double fault = 0.0;
    std::map<Hypothesis, double> hypotheses; ///< those that are kept, and their probabilities
    std::map<std::string, double> components;
    std::map<std::string, double> marginals; ///< by mode value
};

/// What is seen in a simulated run, with commands, inputs and faults drawn at random. It ends early where the modes contradict
/// one another.
std::vector<SeenStep> simulatedSteps(const language::ReadResult& read, int steps, Random& random);

/// What is said after each step, which is given in these names. Throws std::runtime_error where the model or a step has an error.
std::vector<Said> followed(language::ReadResult read, const std::vector<SeenStep>& steps,
                           const session::Settings& settings, const Names& names = {});

/// The steps as telemetry, a line each.
std::vector<std::string> telemetryLines(const std::vector<SeenStep>& steps, const Names& names);

/// The same in the new names.
Said renamed(const Said& said, const Names& names);
/// What of it is not the same, in words; empty where they agree, probabilities to 1e-9.
std::string difference(const Said& expected, const Said& said);

} // namespace written
