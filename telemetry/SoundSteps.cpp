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
        auto* mistake = std::get_if<Mistake>(&next);
        if (!mistake) break;
        if (mistake->endsReading || !passOver_) throw BadInput(std::move(mistake->error));
        passOver_(mistake->error);
        ++leftOut_;
    }
    return std::nullopt;
}

} // namespace telemetry
