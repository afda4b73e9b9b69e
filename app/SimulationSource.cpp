#include "app/SimulationSource.h"

#include "app/Interruption.h"
#include "app/Output.h"

#include <cstdlib>
#include <fmt/format.h>

namespace app {

DrawnSteps::DrawnSteps(const ModelFile& model, std::size_t steps, std::optional<std::uint64_t> seed)
    : stepSeconds_(model.bindings().stepSeconds), steps_(steps)
{
    if (seed) commands_.emplace(model.plant(), *seed);
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

TelemetrySteps::TelemetrySteps(const ModelFile& model, const std::string& path, bool skipBad)
    : plant_(model.plant()), reader_(path, *model.read().model, model.bindings(), {skipBad}),
      steps_(
          reader_, [](const text::Diagnostic& error) { complain(error.format()); },
          [] { return interruption().load(); })
{
}

std::optional<SourceStep> TelemetrySteps::next()
{
    const std::optional<telemetry::Step> read = steps_.next();
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
