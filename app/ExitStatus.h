// The program's exit status, for scripts.
#pragma once

namespace app {

enum class ExitStatus {
    done = 0,
    faultFound = 1,    ///< with --fail-on fault only
    error = 2,         ///< of usage, in a model or in data; or the answer could not be written
    unexplained = 3,   ///< nothing explains the observations, or a limit cut a search short
    interrupted = 130, ///< by SIGINT, SIGTERM or SIGHUP
};

} // namespace app
