// Which deviations at a step its readings allow, asked for many hypotheses and steps that are alike.
#pragma once

#include "monitor/labels/LastAnswers.h"
#include "monitor/step/Requirements.h"

#include <memory>

namespace monitor {

class Admissible {
public:
    /// Of one step.
    struct Modes {
        /// Of the modes in question, by rising place, those that may be in another way than predicted.
        std::vector<std::size_t> places;
        /// Null: few modes are in question, of which nothing is known.
        std::shared_ptr<const Requirements> required;

        /// Whether a deviation may be part of what explains the step.
        bool allow(AtomIndex value) const { return !required || required->allow(value); }
    };

    /// For these places among the plant's modes, by rising place.
    explicit Admissible(std::vector<std::size_t> places) : places_(std::move(places)) {}

    /// Costs what differs from the last steps asked for, where these had the same commands, readings and modes; else Requirements. The
    /// reference is valid until the next call.
    const Modes& at(const StepFrame& frame);

private:
    struct Step {
        std::vector<AtomIndex> observations;
        SharedArray<AtomIndex> commands;
        ModeSteps modes;

        friend bool operator==(const Step&, const Step&) = default;
    };

    std::vector<std::size_t> places_;
    LastAnswers<Step, Modes> known_{16};
};

} // namespace monitor
