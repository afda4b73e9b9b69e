// The verb `fmt`: lays model files out in the one way.
#pragma once

#include "app/ExitStatus.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace app {

/// What the command line asks for.
struct FmtOptions {
    std::vector<std::string> models; ///< `-`: standard input, laid out on standard output
    bool check = false;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addFmt(CLI::App& program, FmtOptions& options);

/// Does it. Throws Failure.
ExitStatus fmt(const FmtOptions& options);

} // namespace app
