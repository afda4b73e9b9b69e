// What really happened in a simulated plant: a JSON record a step, for judging a diagnosis by it.
#pragma once

#include "plant/Model.h"
#include "simulate/Simulator.h"

#include <fstream>
#include <string>

namespace app {

/// Writes `{"v": 1, "step": 3, "t": 3.0, "modes": {VARIABLE: VALUE, ...}, "changes": [{"variable": ..., "before": ..., "after": ...,
/// "cause": "injected"}], "lost": [COMMAND, ...]}`. All modes are there, in the model's order.
class TruthFile {
public:
    /// Throws Failure when the file cannot be opened. Plant and model outlive this.
    TruthFile(std::string path, const plant::Plant& plant, const plant::Model& model);

    /// Throws Failure when it cannot be written. Linear in the modes.
    void write(std::size_t step, double t, const simulate::SimulatedStep& simulated);

private:
    std::string path_;
    const plant::Plant& plant_;
    std::vector<plant::VariableIndex> modes_;
    std::ofstream file_;
};

} // namespace app
