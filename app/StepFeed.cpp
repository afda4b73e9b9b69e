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

void tell(const std::vector<text::Diagnostic>& notes)
{
    for (const text::Diagnostic& note : notes) {
        complain(note.format());
    }
}

} // namespace

StepFeed::StepFeed(const std::vector<std::string>& paths, const plant::Model& model,
                   const plant::Bindings& bindings, const telemetry::ReadSettings& settings,
                   bool tells)
    : reader_(paths, model, bindings, settings),
      steps_(reader_, passOver(settings.skipBad), [] { return interruption().load(); }),
      tells_(tells)
{
}

std::optional<telemetry::Step> StepFeed::next()
{
    auto step = steps_.next();
    if (tells_) tell(reader_.takeNotes());
    return step;
}

void StepFeed::reportPassedOver(const std::string& verb) const
{
    tell(reader_.noteSummary());
    if (linesLeftOut() == 0) return;
    complain(fmt::format("itms {}: {} left out\n", verb, text::counted(linesLeftOut(), "bad line")));
}

} // namespace app
