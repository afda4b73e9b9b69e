// SIGINT, SIGTERM and SIGHUP as a wish to end soon, with everything before printed.
#pragma once

#include <atomic>

namespace app {

/// From here on the first SIGINT or SIGTERM only sets the flag, and a read that waits for input ends; a second one ends the
/// program at once. SIGHUP sets the flag however often it comes, unless it is ignored.
void catchInterruptions();
/// The flag.
const std::atomic<bool>& interruption();

} // namespace app
