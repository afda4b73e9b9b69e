// Conflicts with the names of everything that they rest on, ready to be rendered.
#pragma once

#include "language/Reader.h"
#include "monitor/why/ConflictHistory.h"
#include "report/Tracking.h"

#include <optional>
#include <string>
#include <vector>

namespace report {

/// A value that was read or commanded.
struct GivenValue {
    std::string variable; ///< `COMPONENT.VARIABLE`
    std::string value;
    std::string channel; ///< that the variable is bound to; empty when it is none of another name
};

/// A mode that is assumed after the step.
struct ExplainedMode {
    std::string variable;
    std::string value;
    std::string before;                ///< the value before the step
    std::vector<std::string> commands; ///< VARIABLE=VALUE, on which the transition to the value depends
    std::optional<std::size_t> since; ///< where the value is a deviation itself: the step at which it began
};

/// A law that was applied.
struct AppliedLaw {
    std::string file; ///< empty when the law's place is not known
    std::size_t line = 0;
    std::size_t column = 0;
    std::string text;   ///< as it was written; the clause when that is not known
    std::string clause; ///< the one of its clauses that was applied: `!a.x=1 | b.y=0`
    /// What followed: a variable has the value, or, when `excluded`, has it not. Empty: every way is ruled out.
    std::string variable;
    std::string value;
    bool excluded = false;
};

/// Why an observation contradicts what was believed before its step.
struct ExplainedConflict {
    std::size_t number = 0; ///< from 1
    std::size_t step = 0;
    double t = 0.0;       ///< seconds
    std::size_t rank = 1; ///< of the hypothesis before the step; 1: the most probable
    std::vector<DeviatingMode> believed; ///< what was wrong with the plant in that hypothesis
    std::optional<GivenValue> observed;  ///< none: what is believed contradicts itself
    std::string expected;                ///< value; empty: any other one
    std::vector<ExplainedMode> modes;
    std::vector<GivenValue> commands;
    std::vector<GivenValue> readings;
    std::vector<AppliedLaw> laws; ///< in the order of their use
    bool byCases = false;         ///< found by trying the values of open variables
    monitor::ConflictCheck check = monitor::ConflictCheck::unsettled;
    std::optional<bool> everyValueCounts;
};

/// Where laws and channels were declared.
class ModelNames {
public:
    /// Requires: the model was read without errors, and outlives this.
    explicit ModelNames(const language::ReadResult& model) : model_(model) {}

    /// Text and place of a law by its number in the model; what followed is left to the caller.
    AppliedLaw law(std::size_t number) const;
    GivenValue observation(const Atom& value) const;
    GivenValue command(const Atom& value) const;

private:
    GivenValue given(const Atom& value, plant::ChannelBinding::Kind kind) const;

    const language::ReadResult& model_;
};

/// The conflict of a contradiction; its number is left to the caller.
ExplainedConflict conflictReport(const plant::Plant& plant, const ModelNames& names,
                                 const monitor::Contradiction& contradiction,
                                 const monitor::CheckedConflict& conflict);

/// The given commands on which a predicted mode depends: those that the guard of its transition names.
std::vector<plant::AtomIndex> commandsFor(const plant::Plant& plant,
                                          const monitor::AssumedMode& mode);

} // namespace report
