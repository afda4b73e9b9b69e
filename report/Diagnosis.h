// What was found out about one problem of a circuit, and how programs and people read it.
#pragma once

#include "monitor/step/Step.h"
#include "report/Text.h"
#include "session/CircuitSession.h"

#include <map>
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

/// The diagnosis of a problem that was solved.
/// Requires: the session gave this answer to this problem. Linear in the observed outputs times those that differ, and in what was
/// found.
Diagnosis diagnosis(const session::CircuitSession& session, const session::CircuitProblem& problem,
                    const session::CircuitAnswer& answer);

/// One line of JSON, ended by a newline, with up to `shown` explanations; 0 shows all. Probabilities have six significant
/// digits, so that the last bits of a sum do not show. docs/output.md describes the fields.
std::string diagnosisJson(const Diagnosis& diagnosis, std::size_t shown);

enum class Layout { single, many };

/// Renders diagnoses of one circuit, and counts them for the summary.
class DiagnosisTable {
public:
    /// Of each diagnosis, up to `shown` explanations are listed; 0 lists all.
    /// Requires: the circuit outlives this.
    DiagnosisTable(const netlist::Circuit& circuit, Layout layout, Colours colours,
                   std::size_t shown);

    /// The circuit, before its diagnoses.
    std::string heading() const;
    /// One diagnosis, a block of lines that begins with an empty one.
    std::string rows(const Diagnosis& diagnosis);
    /// How many diagnoses there were of which kind, and how many lines of the file were left out. Of a single problem, nothing.
    std::string summary(std::size_t linesLeftOut) const;

private:
    std::string status(monitor::StepStatus status) const;
    std::string singleBlock(const Diagnosis& diagnosis) const;
    std::string shortBlock(const Diagnosis& diagnosis) const;
    std::string explanations(const Diagnosis& diagnosis, std::string_view margin) const;

    const netlist::Circuit& circuit_;
    Layout layout_;
    Colours colours_;
    std::size_t shown_;
    std::map<monitor::StepStatus, std::size_t> counts_;
    SearchWork work_;
    std::size_t total_ = 0;
    std::size_t incomplete_ = 0;
};

} // namespace report
