// One set of input and output values of a circuit, gathered value by value and checked against the circuit.
#pragma once

#include "netlist/Circuit.h"
#include "text/Diagnostic.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace session {

/// A signal and its value.
using Reading = std::pair<netlist::SignalIndex, bool>;

/// The values that were given and those that were seen, both in the order of the circuit's declarations, whatever order they came in.
struct CircuitProblem {
    std::optional<std::string> id;
    std::vector<Reading> inputs;  ///< of every input
    std::vector<Reading> outputs; ///< of one output at least
};

enum class Side { input, output };

/// Gathers a problem.
class CircuitProblemBuilder {
public:
    /// Requires: the circuit outlives the builder.
    explicit CircuitProblemBuilder(const netlist::Circuit& circuit);

    /// Takes a value in, or gives the reason why it is wrong: the signal is unknown or on the other side, or was given before.
    std::optional<text::Message> add(Side side, std::string_view signal, bool value);
    /// What is missing on a side, once everything was added.
    std::optional<text::Message> missing(Side side) const;
    /// The problem.
    /// Requires: nothing is missing on either side.
    CircuitProblem finish() const;

private:
    const netlist::Circuit& circuit_;
    std::vector<std::optional<bool>> values_[2]; // by side and signal
};

} // namespace session
