// One set of input and output values of a circuit, gathered value by value and checked against the circuit.
#pragma once

#include "netlist/Circuit.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace app {

/// A signal and its value.
using Reading = std::pair<netlist::SignalIndex, bool>;

/// What was given, what was seen. Both in the order of the circuit's declarations, whatever order they came in.
struct Problem {
    std::optional<std::string> id;
    std::vector<Reading> inputs;  ///< of every input
    std::vector<Reading> outputs; ///< of one output at least
};

/// What is wrong with a value, in the parts of a text::Diagnostic.
struct Complaint {
    std::string message;
    std::string expected;
    std::string hint;
};

enum class Side { input, output };

/// Gathers a problem. The circuit outlives the builder.
class ProblemBuilder {
public:
    explicit ProblemBuilder(const netlist::Circuit& circuit);

    /// Takes a value in, or tells why it is wrong: the signal is unknown or on the other side, or was given before.
    std::optional<Complaint> add(Side side, std::string_view signal, bool value);
    /// What is missing on a side, once everything was added.
    std::optional<Complaint> missing(Side side) const;
    /// The problem, of which nothing is missing.
    Problem finish() const;

private:
    const netlist::Circuit& circuit_;
    std::vector<std::optional<bool>> values_[2]; // by side and signal
};

} // namespace app
