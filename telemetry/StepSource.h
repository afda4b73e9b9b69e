// Where steps come from: an interface, and steps that a program has in memory. StepReader.h reads them from lines.
#pragma once

#include "telemetry/ReaderState.h"
#include "telemetry/Step.h"
#include "text/Diagnostic.h"

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace telemetry {

/// Something is wrong in the input.
struct Mistake {
    text::Diagnostic error;
    bool endsReading = false; ///< nothing comes after it
};

/// There is no further step.
struct End {
    /// Waiting for a step was interrupted; a further call of next() goes on.
    bool interrupted = false;
};

/// Gives the steps of a plant one by one. SoundSteps.h is the loop over them.
class StepSource {
public:
    StepSource() = default;
    virtual ~StepSource() = default;
    StepSource(const StepSource&) = delete;
    StepSource& operator=(const StepSource&) = delete;

    /// The next step, or what is wrong in the input, or its end.
    /// Ensures: steps are numbered from 1, without gaps and with rising times; after a mistake the next step is what it would be
    /// without the piece of input that is in error. Throws ReadFailure when the input cannot be read.
    virtual std::variant<Step, Mistake, End> next() = 0;

    /// What is remembered after the last step that next() returned. A source that cannot go on from the middle gives an empty
    /// state, as this does.
    virtual ReaderState state() const { return {}; }

    /// Where reading goes on after restore().
    enum class Input {
        same, ///< this is the input that the state was taken of, from its beginning: what was done with is passed over
        continuation ///< this begins where that input ended (a table has its header again)
    };
    /// Goes on from a state. This one takes none, and throws std::invalid_argument.
    /// Requires: next() was not called. Throws std::invalid_argument when the state is not one of this model and input.
    virtual void restore(const ReaderState& state, Input input = Input::same);

    /// How much of the input was read, 0 to 1; 0 where that is not known.
    virtual double doneShare() const { return 0.0; }
    /// The input's name for messages.
    virtual const std::string& name() const = 0;
};

/// Steps in memory.
class StepVector : public StepSource {
public:
    /// Requires: the steps are numbered from 1 and have rising times.
    explicit StepVector(std::vector<Step> steps, std::string name = "steps");

    std::variant<Step, Mistake, End> next() override;
    /// A step counts as a line.
    ReaderState state() const override;
    void restore(const ReaderState& state, Input input = Input::same) override;
    double doneShare() const override;
    const std::string& name() const override { return name_; }

private:
    std::vector<Step> steps_;
    std::string name_;
    std::size_t done_ = 0; // of the steps here
    ReaderState restored_;
};

} // namespace telemetry
