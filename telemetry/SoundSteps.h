// The steps of a source without its mistakes: each is reported and passed over, or ends the reading.
//
//     telemetry::SoundSteps steps(source, [](const text::Diagnostic& error) { std::cerr << error.format(); });
//     while (const auto step = steps.next()) ...
#pragma once

#include "telemetry/LineSource.h"
#include "telemetry/StepSource.h"
#include "text/Diagnostic.h"

#include <cstddef>
#include <functional>
#include <optional>

namespace telemetry {

/// A mistake in the input ended the reading. The message is the formatted error.
class BadInput : public ReadFailure {
public:
    explicit BadInput(text::Diagnostic error);

    const text::Diagnostic& error() const { return error_; }

private:
    text::Diagnostic error_;
};

/// Reads steps from a source, sees to its mistakes, and stops when asked to.
class SoundSteps {
public:
    using PassOver = std::function<void(const text::Diagnostic&)>;
    using Interrupted = std::function<bool()>;

    /// `passOver` is called for every mistake after which reading goes on; without it, every mistake ends the reading.
    /// `interrupted` is asked before each look at the source; without it, nothing interrupts.
    /// Requires: the source outlives this.
    explicit SoundSteps(StepSource& source, PassOver passOver = {}, Interrupted interrupted = {});

    /// The next step; none at the end of the source, and when reading was interrupted.
    /// Throws BadInput for a mistake that ends the reading, and what the source throws.
    std::optional<Step> next();

    /// How many mistakes were passed over.
    std::size_t leftOut() const { return leftOut_; }
    /// Counts on from there, for a source that goes on from the middle.
    void setLeftOut(std::size_t count) { leftOut_ = count; }

    StepSource& source() { return source_; }
    const StepSource& source() const { return source_; }

private:
    StepSource& source_;
    PassOver passOver_;
    Interrupted interrupted_;
    std::size_t leftOut_ = 0;
};

} // namespace telemetry
