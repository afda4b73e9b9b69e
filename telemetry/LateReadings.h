// Variables whose value is known only when all of a step was read: those that are computed, those with computed limits, and those
// that wait, for their own value to last (`for`) or for other channels to settle (`settled`).
//
//     late.read(operand, reading);  late.give(variable, reading);     // as they come
//     late.finish(t, last, take);                                     // gives each its value
#pragma once

#include "telemetry/ComputedChannels.h"
#include "telemetry/Names.h"
#include "telemetry/Reading.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace telemetry {

class LateReadings {
public:
    /// What a late variable was read as: a number, or a value where a text said it.
    using Given = std::variant<double, Atom*>;

    /// Requires: the names and the bindings outlive this.
    LateReadings(const Names& names, double gapSeconds);

    bool isLate(std::uint32_t variable) const { return places_.contains(variable); }
    /// Whether a number is computed from the operand, and not only waited for.
    bool isComputedFrom(std::uint32_t operand) const { return operands_[operand].isComputedFrom; }

    /// The reading of an operand in the step that comes next.
    void read(std::uint32_t operand, const Reading& reading);
    /// The reading of a late variable itself, in place of what is computed.
    void give(std::uint32_t variable, const Given& given);
    /// What it was given in this step.
    const std::optional<Given>& given(std::uint32_t variable) const
    {
        return late_[places_.at(variable)].given;
    }
    /// Forgets what was read of that step.
    void forget();

    /// What became of a late variable.
    struct Outcome {
        Atom* value = nullptr;        ///< null: it is not observed
        std::optional<double> number; ///< that was read or computed, once everything has settled
        bool waits = false; ///< it was read, and does not count yet: nothing stands in for it
    };
    /// Takes the step. `last` gives the last value of a variable, null if none; `take` is called for each late variable, in
    /// order. Linear in the operations and limits, amortised.
    /// Requires: `t` is later than before.
    void finish(double t, const std::function<const Atom*(std::uint32_t)>& last,
                const std::function<void(std::uint32_t, const Outcome&)>& take);

    /// Writes what is remembered.
    void save(ReaderState& state) const;
    /// Requires: finish() was not called. Throws std::invalid_argument when the state is not one of these variables.
    void restore(const ReaderState& state);

private:
    struct Pending {
        Atom* value = nullptr;
        double since = 0;
        double t = 0;
    };
    struct Late {
        std::uint32_t variable = 0;
        const plant::ChannelBinding* binding = nullptr;
        std::optional<ComputedChannels::Handle> computed;
        std::optional<plant::ThresholdTable> table; // a copy, whose limits are those of the step
        std::vector<std::optional<ComputedChannels::Handle>> limits; // of the table
        std::vector<std::uint32_t> settling;                         // operands
        std::optional<Given> given;
        Pending pending;
    };
    struct Operand {
        bool isComputedFrom = false;
        bool isWaitedFor = false;
        std::optional<std::string> draft; // of one that is waited for: what was read
        std::string reading;
        std::optional<double> since; // when it last changed
    };

    Late made(std::uint32_t variable, const plant::ChannelBinding& binding);
    void settle(double t);
    bool isSettled(const Late& late, double t) const;
    bool findLimits(Late& late) const;
    Outcome outcome(Late& late, double t, const Atom* last);
    bool lasts(Late& late, Atom* value, double t, const Atom* last) const;

    const Names& names_;
    double gapSeconds_;
    ComputedChannels computed_;
    std::vector<Operand> operands_;
    std::vector<Late> late_;
    std::map<std::uint32_t, std::size_t> places_; // in late_, by variable
    std::optional<double> begin_;
};

} // namespace telemetry
