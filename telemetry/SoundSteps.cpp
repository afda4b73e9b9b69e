#include "telemetry/SoundSteps.h"

#include <utility>
#include <variant>

namespace telemetry {

BadInput::BadInput(text::Diagnostic error) : ReadFailure(error.format()), error_(std::move(error))
{
}

SoundSteps::SoundSteps(StepSource& source, PassOver passOver, Interrupted interrupted)
    : source_(source), passOver_(std::move(passOver)), interrupted_(std::move(interrupted))
{
}

std::optional<Step> SoundSteps::next()
{
    while (!interrupted_ || !interrupted_()) {
        auto next = source_.next();
        if (auto* step = std::get_if<Step>(&next)) return std::move(*step);
        // What interrupted the waiting need not be what this is to end for.
        const auto* end = std::get_if<End>(&next);
        if (end && end->interrupted && interrupted_) continue;
        auto* mistake = std::get_if<Mistake>(&next);
        if (!mistake) break;
        if (mistake->endsReading || !passOver_) throw BadInput(std::move(mistake->error));
        passOver_(mistake->error);
        ++leftOut_;
    }
    return std::nullopt;
}

} // namespace telemetry
