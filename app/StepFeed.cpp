#include "app/StepFeed.h"

#include "app/Interruption.h"
#include "app/Output.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

namespace {

// Mistakes are reported and passed over, or end the reading.
telemetry::SoundSteps::PassOver passOver(bool skipBad)
{
    if (!skipBad) return {};
    return [](const text::Diagnostic& error) { complain(error.format()); };
}

} // namespace

StepFeed::StepFeed(const std::string& path, const plant::Model& model,
                   const plant::Bindings& bindings, const telemetry::ReadSettings& settings)
    : reader_(path, model, bindings, settings),
      steps_(reader_, passOver(settings.skipBad), [] { return interruption().load(); })
{
}

void StepFeed::reportLinesLeftOut(const std::string& verb) const
{
    if (linesLeftOut() == 0) return;
    complain(fmt::format("itms {}: {} left out\n", verb, text::counted(linesLeftOut(), "bad line")));
}

} // namespace app
