#include "app/StepFeed.h"

#include "app/Interruption.h"
#include "app/Output.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

StepFeed::StepFeed(const std::string& path, const plant::Model& model,
                   const plant::Bindings& bindings, bool skipBad)
    : reader_(path, model, bindings, {.skipBad = skipBad}), skipBad_(skipBad)
{
}

std::optional<telemetry::Step> StepFeed::next()
{
    while (!interruption()) {
        auto next = reader_.next();
        if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            if (!skipBad_ || mistake->endsReading) throw FileFailure(mistake->error.format());
            complain(mistake->error.format());
            ++linesLeftOut_;
            continue;
        }
        auto* step = std::get_if<telemetry::Step>(&next);
        if (!step) return std::nullopt;
        return std::move(*step);
    }
    return std::nullopt;
}

void StepFeed::reportLinesLeftOut(const std::string& verb) const
{
    if (linesLeftOut_ == 0) return;
    complain(fmt::format("itms {}: {} left out\n", verb, text::counted(linesLeftOut_, "bad line")));
}

} // namespace app
