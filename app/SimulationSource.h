// Where the steps of a simulated run come from: telemetry, or commands drawn at random.
#pragma once

#include "app/StepFeed.h"
#include "session/Session.h"
#include "simulate/CommandSource.h"
#include "simulate/Simulator.h"

#include <optional>
#include <string>

namespace app {

/// What is given for a step before any fault.
struct SourceStep {
    double t = 0; ///< seconds
    simulate::SimulationInput input;
};

class SimulationSource {
public:
    SimulationSource() = default;
    virtual ~SimulationSource() = default;
    SimulationSource(const SimulationSource&) = delete;
    SimulationSource& operator=(const SimulationSource&) = delete;

    /// The next step; none at the end, or after an interruption. Throws telemetry::BadInput for a
    /// mistake in the input, and telemetry::ReadFailure.
    virtual std::optional<SourceStep> next() = 0;
    /// How many steps there are, where that is known before.
    virtual std::optional<std::size_t> length() const { return std::nullopt; }
    /// Says on standard error how many lines in error were left out, if any.
    virtual void reportLeftOut() const {}
};

/// Steps one step length apart. Without a seed all commands are silent.
class DrawnSteps : public SimulationSource {
public:
    /// The session outlives this.
    DrawnSteps(const session::Session& session, std::size_t steps,
               std::optional<std::uint64_t> seed);

    std::optional<SourceStep> next() override;
    std::optional<std::size_t> length() const override { return steps_; }

private:
    double stepSeconds_;
    std::size_t steps_;
    std::size_t done_ = 0;
    std::optional<simulate::CommandSource> commands_;
};

/// Commands and observations of a file, or of standard input as they come.
class TelemetrySteps : public SimulationSource {
public:
    /// The session outlives this. With `skipBad`, lines in error are reported on standard error and left out. What the reader passes
    /// over is told there where `tells`. Throws
    /// telemetry::ReadFailure when the file cannot be opened.
    TelemetrySteps(const session::Session& session, const std::string& path, bool skipBad,
                   bool tells);

    std::optional<SourceStep> next() override;
    void reportLeftOut() const override { feed_.reportPassedOver("simulate"); }

private:
    const plant::Plant& plant_;
    StepFeed feed_;
};

} // namespace app
