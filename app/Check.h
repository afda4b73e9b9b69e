// The verb `check`: whether model files are in order, and all that is wrong with them if not.
#pragma once

#include "app/ExitStatus.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace app {

/// What the command line asks for.
struct CheckOptions {
    std::vector<std::string> models;
    std::vector<std::string> importFolders;
    std::string format = "text";
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addCheck(CLI::App& program, CheckOptions& options);

/// Does it. Throws Failure.
ExitStatus check(const CheckOptions& options);

} // namespace app
