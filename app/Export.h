// The verb `export`: a model as data for other programs.
#pragma once

#include "app/ExitStatus.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace app {

/// What the command line asks for.
struct ExportOptions {
    std::string model;
    std::vector<std::string> importFolders;
    std::string output; ///< empty: standard output
    bool json = true;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addExport(CLI::App& program, ExportOptions& options);

/// Does it. Throws Failure.
ExitStatus exportModel(const ExportOptions& options);

} // namespace app
