#include "app/Interruption.h"

#include <csignal>

namespace app {

namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may set it");

void note(int /*signal*/)
{
    interrupted = true;
}

} // namespace

void catchInterruptions()
{
    struct sigaction action = {};
    action.sa_handler = note;
    // Without SA_RESTART, so that a read ends; reset, so that the second signal does what it does by itself.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // A terminal that goes away is told of twice, by the system and by the shell; under nohup it is not to be heard.
    struct sigaction before = {};
    action.sa_flags = 0;
    if (sigaction(SIGHUP, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
        sigaction(SIGHUP, &action, nullptr);
}

const std::atomic<bool>& interruption()
{
    return interrupted;
}

} // namespace app
