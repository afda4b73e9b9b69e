#include "app/SimulationSource.h"

#include <cstdlib>
#include <fmt/format.h>

namespace app {

DrawnSteps::DrawnSteps(const session::Session& session, std::size_t steps,
                       std::optional<std::uint64_t> seed)
    : stepSeconds_(session.bindings().stepSeconds), steps_(steps)
{
    if (seed) commands_.emplace(session.plant(), *seed);
}

std::optional<SourceStep> DrawnSteps::next()
{
    if (done_ == steps_) return std::nullopt;
    ++done_;
    SourceStep step;
    // Twelve digits: the third step of 0.1 s is at 0.3 s, not at 0.30000000000000004 s.
    const std::string t = fmt::format("{:.12g}", static_cast<double>(done_) * stepSeconds_);
    step.t = std::strtod(t.c_str(), nullptr);
    if (commands_) step.input.commands = commands_->next();
    return step;
}

TelemetrySteps::TelemetrySteps(const session::Session& session, const std::string& path,
                               bool skipBad, bool tells)
    : plant_(session.plant()),
      feed_({path}, session.model(), session.bindings(), {.skipBad = skipBad}, tells)
{
}

std::optional<SourceStep> TelemetrySteps::next()
{
    const auto read = feed_.next();
    if (!read) return std::nullopt;
    SourceStep step;
    step.t = read->t;
    for (const Atom* command : read->commands) {
        step.input.commands.push_back(plant_.indexOf(command));
    }
    for (const telemetry::Observation& observation : read->observations) {
        step.input.observations.push_back(plant_.indexOf(observation.value));
    }
    return step;
}

} // namespace app
