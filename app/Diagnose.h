// The verb `diagnose`: which gates of a circuit are faulty, given its inputs and what its outputs show.
#pragma once

#include "app/ExitStatus.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace app {

/// What the command line asks for.
struct DiagnoseOptions {
    std::string circuit;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
    std::optional<std::string> problems;
    bool skipBad = false;

    std::optional<int> maxRank;
    std::optional<int> upTo;
    std::uint64_t maxRecords = 0; ///< 0: no limit
    double maxSeconds = 60.0;     ///< 0: no limit
    double faultProbability = 0.01;

    std::size_t shown = 5; ///< 0: all
    std::optional<std::string> format;
    std::string colour = "auto";
    std::optional<std::string> failOn;
    bool trace = false;
    bool quiet = false;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addDiagnose(CLI::App& program, DiagnoseOptions& options);

/// Does it. Throws Failure.
ExitStatus diagnose(const DiagnoseOptions& options);

} // namespace app
