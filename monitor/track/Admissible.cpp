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
    return known_.to({frame.observations, frame.commands, frame.modes}, [&](const Step&) {
        Modes modes{places_, nullptr};
        if (places_.size() > fewToSearch) {
            modes.required = std::make_shared<const Requirements>(frame);
            std::erase_if(modes.places, [&](std::size_t place) {
                return !mayDeviate(frame.modes[place], *modes.required);
            });
        }
        return modes;
    });
}

} // namespace monitor
