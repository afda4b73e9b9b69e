// A circuit while it is read: what is known of each signal so far, and from which line.
#pragma once

#include "netlist/BenchLine.h"
#include "netlist/BenchText.h"
#include "netlist/Circuit.h"
#include "netlist/Cycles.h"
#include "text/Diagnostics.h"

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace netlist {

/// What the lines read so far say of a signal.
struct DraftSignal {
    std::string_view name;
    std::optional<text::Place> input;  ///< its INPUT declaration, the first
    std::optional<text::Place> output; ///< its OUTPUT declaration, the first
    std::optional<text::Place> driver; ///< the gate that drives it, the first
    std::size_t gate = noGate;         ///< that gate, when its kind is known
    std::optional<text::Place> use;    ///< its first use, as an OUTPUT or by a gate
    std::size_t uses = 0;              ///< by gates
    bool excused = false;              ///< a line that could not be read seems to define it

    bool isDefined() const { return input || driver || excused; }
};

/// Takes in the statements of a file and reports what is wrong with each by itself or against an earlier one.
/// The names are views into the text.
class Draft {
public:
    /// Requires: `text` and `errors` outlive the draft.
    Draft(const BenchText& text, text::Diagnostics& errors) : text_(text), errors_(errors) {}

    /// Takes in the statement of line `line`.
    /// Requires: the line has a statement.
    void add(const Statement& statement, std::size_t line);
    /// Takes in what line `line`, which could not be read, may have said.
    void salvage(const LineError& error, std::size_t line);

    const std::vector<DraftSignal>& signals() const { return signals_; }
    /// Inputs, outputs and gates; signals are numbered as in `signals()`.
    const Circuit& circuit() const { return circuit_; }
    /// By signal, its gate: `noGate` when none drives it, or when it is an INPUT all the same.
    std::vector<std::size_t> drivers() const;
    /// A line that could not be read or understood may have been an OUTPUT.
    bool mayLackOutputs() const { return mayLackOutputs_; }
    bool sawStatement() const { return sawStatement_; }
    /// The circuit with its signals' names.
    /// Requires: no error was found; nothing else of the draft is used afterwards.
    Circuit finish();

private:
    void report(text::Place place, std::size_t length, text::Message message);
    SignalIndex signal(std::string_view name);
    void use(const Token& token, std::size_t line, bool byGate);
    void declare(const Statement& statement, std::size_t line);
    void unknownDeclaration(const Statement& statement, std::size_t line);
    void declareInput(const Token& name, text::Place place);
    void declareOutput(const Token& name, text::Place place);
    void addGate(const Statement& statement, std::size_t line);
    void checkArity(GateKind kind, const Statement& statement, std::size_t line);
    void unknownKind(const Token& kind, std::size_t line);
    void drive(SignalIndex driven, const Token& name, text::Place place);

    const BenchText& text_;
    text::Diagnostics& errors_;
    Circuit circuit_;
    std::vector<DraftSignal> signals_;
    std::unordered_map<std::string_view, SignalIndex> byName_;
    bool mayLackOutputs_ = false;
    bool sawStatement_ = false;
};

} // namespace netlist
