#include "telemetry/StepSource.h"

#include <stdexcept>
#include <utility>

namespace telemetry {

void StepSource::restore(const ReaderState& /*state*/, Input /*input*/)
{
    throw std::invalid_argument(name() + " can only be read from its beginning");
}

StepVector::StepVector(std::vector<Step> steps, std::string name)
    : steps_(std::move(steps)), name_(std::move(name))
{
}

std::variant<Step, Mistake, End> StepVector::next()
{
    if (done_ == steps_.size()) return End{};
    return steps_[done_++];
}

ReaderState StepVector::state() const
{
    ReaderState state = restored_;
    state.lines = done_;
    if (done_ > 0) {
        state.steps = steps_[done_ - 1].number;
        state.t = steps_[done_ - 1].t;
    }
    return state;
}

void StepVector::restore(const ReaderState& state, Input input)
{
    if (input == Input::same && state.lines > steps_.size())
        throw std::invalid_argument(name_ + " has fewer steps than were taken before");
    done_ = input == Input::same ? state.lines : 0;
    restored_ = state;
}

double StepVector::doneShare() const
{
    return steps_.empty() ? 1.0 : static_cast<double>(done_) / static_cast<double>(steps_.size());
}

} // namespace telemetry
