// The verb `simulate`: commands and faults in, telemetry of the modelled plant out.
#pragma once

#include "app/ExitStatus.h"
#include "app/ModelFile.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace app {

/// What the command line asks for.
struct SimulateOptions {
    ModelOptions model;
    std::optional<std::string> telemetry; ///< none: drawn commands
    bool skipBad = false;

    std::optional<std::size_t> steps;    ///< 20
    std::optional<std::string> commands; ///< random
    std::optional<std::uint64_t> seed;   ///< of the commands; 1

    std::vector<std::string> faults;
    std::vector<std::string> inputs;
    std::optional<std::uint64_t> random; ///< seed of all that the model leaves to chance

    std::vector<std::string> observed;
    std::optional<std::string> truth; ///< file for what really happened
    bool quiet = false;
};

/// Enters the verb's options, which are read into `options`.
CLI::App* addSimulate(CLI::App& program, SimulateOptions& options);

/// Does it. Throws Failure.
ExitStatus simulate(const SimulateOptions& options);

} // namespace app
