#include "app/Pace.h"

#include <fmt/format.h>

namespace app {

void Pace::step(double doneShare)
{
    ++steps_;
    const auto now = std::chrono::steady_clock::now();
    if (now < nextShow_) return;
    nextShow_ = now + std::chrono::milliseconds(500);
    const double seconds = std::chrono::duration<double>(now - start_).count();
    if (seconds < 1.0) return;
    std::string text =
        fmt::format("{} steps, {:.0f} a second", steps_, static_cast<double>(steps_) / seconds);
    if (doneShare > 0.0)
        text += fmt::format(", {:.0f} s left", seconds * (1.0 - doneShare) / doneShare);
    progress_.show(text);
}

} // namespace app
