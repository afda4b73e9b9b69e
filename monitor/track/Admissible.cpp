#include "monitor/track/Admissible.h"

#include <algorithm>

namespace monitor {

namespace {

bool mayDeviate(const ModeStep& mode, const Requirements& required)
{
    return std::any_of(mode.options.begin(), mode.options.end(), [&](const ModeOption& option) {
        return option.value != mode.predicted && required.allow(option.value);
    });
}

} // namespace

const Admissible::Modes& Admissible::at(const StepFrame& frame)
{
    const auto found = std::find_if(known_.begin(), known_.end(), [&](const Known& known) {
        return known.observations == frame.observations && known.commands == frame.commands &&
               known.steps == frame.modes;
    });
    if (found != known_.end()) {
        return found->modes;
    }
    Known made{frame.commands, frame.observations, frame.modes, {places_, nullptr}};
    if (places_.size() > fewToSearch) {
        made.modes.required = std::make_shared<const Requirements>(frame);
        std::erase_if(made.modes.places, [&](std::size_t place) {
            return !mayDeviate(frame.modes[place], *made.modes.required);
        });
    }
    known_.push_front(std::move(made));
    if (known_.size() > mostKnown) {
        known_.pop_back();
    }
    return known_.front().modes;
}

} // namespace monitor
