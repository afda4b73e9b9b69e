// What was found out about one problem, ready to be rendered.
#pragma once

#include "monitor/step/Step.h"

#include <optional>
#include <string>
#include <vector>

namespace report {

/// A mode that is not as it is in a plant without faults: `G16gat`, `mode`, `faulty`.
struct ModeValue {
    std::string component;
    std::string variable;
    std::string value;
};

/// A set of modes that together explain the observations.
struct Explanation {
    double probability = 0.0; ///< normalised over the explanations found, 0..1
    int faults = 0;
    std::vector<ModeValue> modes; ///< by name; empty when nothing is wrong
};

/// An observed output.
struct OutputReading {
    std::string signal;
    bool predicted = false; ///< what the circuit gives when every gate works
    bool observed = false;

    bool differs() const { return predicted != observed; }
};

/// The diagnosis of a circuit from one set of input and output values.
struct Diagnosis {
    std::optional<std::string> id; ///< of the problem, when it came from a file of problems
    monitor::StepStatus status = monitor::StepStatus::inconsistent;
    bool complete = true; ///< every explanation within the bound contains one of `explanations`
    SearchLimit limit = SearchLimit::none; ///< what cut the search short
    int faultBound = 1; ///< the number of faults up to which the last search looked
    std::vector<Explanation> explanations; ///< most probable first
    std::vector<OutputReading> outputs;    ///< in the circuit's order
    std::size_t outputCount = 0;           ///< outputs of the circuit, observed or not
    SearchWork work;                       ///< summed over the searches
};

} // namespace report
