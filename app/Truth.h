// What really happened in a simulated plant: a JSON record a step, for judging a diagnosis by it.
#pragma once

#include "app/AnswerFile.h"
#include "plant/Model.h"
#include "simulate/Simulator.h"

#include <string>

namespace app {

/// Writes `{"v": 1, "step": 3, "t": 3.0, "modes": {VARIABLE: VALUE, ...}, "changes": [{"variable": ..., "before": ..., "after": ...,
/// "cause": "injected"}], "lost": [COMMAND, ...]}`. All modes are there, in the model's order.
class TruthFile {
public:
    /// Throws FileFailure when the file cannot be opened. Plant and model outlive this.
    TruthFile(const std::string& path, const plant::Plant& plant, const plant::Model& model);

    /// Empties the file, in which everything stays until then. Throws FileFailure.
    void begin() { file_.begin(); }
    /// Throws FileFailure when it cannot be written. Linear in the modes. Requires: begin() was called.
    void write(std::size_t step, double t, const simulate::SimulatedStep& simulated);
    /// Closes the file. Throws FileFailure when something of it could not be written.
    void end() { file_.end(); }

private:
    const plant::Plant& plant_;
    std::vector<plant::VariableIndex> modes_;
    AnswerFile file_;
};

} // namespace app
