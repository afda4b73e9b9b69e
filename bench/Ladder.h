// A plant of any size for the benchmarks: a chain of buffers, each of which can fail.
#pragma once

#include "engine/itms.h"
#include "plant/ModelBuilder.h"

#include <memory>

namespace bench {

/// `rungs` components in a row. Rung i passes on the output of rung i-1 unless it is faulty; rung 0 is the input.
/// The model is active while the ladder lives; whoever works on it sets an engine up over it.
class Ladder {
public:
    explicit Ladder(int rungs);

    Trajectory& trajectory() { return trajectory_; }
    /// A state in which every rung is instantiated: all outputs 1, all modes ok.
    /// Requires: an engine was set up.
    std::unique_ptr<State> state();
    StateVar* output(int rung) const { return outputs_[static_cast<std::size_t>(rung)]; }
    StateVar* mode(int rung) const { return modes_[static_cast<std::size_t>(rung)]; }
    /// The law that rung `rung` violates when its output is 0 while its input is 1.
    Clause* law(int rung) const
    {
        return rung > 0 ? model_->laws()[2 * static_cast<std::size_t>(rung) - 1] : nullptr;
    }
    int last() const { return static_cast<int>(outputs_.size()) - 1; }

    /// The element of the output's value "0" or "1" in the state.
    TrajEl* outputIs(int rung, const char* bit, State& state) const
    {
        return (*state.elements)[plant::value(output(rung), bit)->getId()];
    }
    /// The output is 1, and no search may say otherwise.
    void hold(int rung, State& state) const
    {
        outputIs(rung, "1", state)->lock = 3;
        outputIs(rung, "0", state)->lock = 4;
    }

private:
    std::unique_ptr<plant::Model> model_;
    std::vector<StateVar*> outputs_;
    std::vector<StateVar*> modes_;
    Trajectory trajectory_;
};

} // namespace bench
