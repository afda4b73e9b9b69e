// A plant of any size for the benchmarks: a chain of buffers, each of which can fail.
#pragma once

#include "engine/itms.h"
#include "plant/ModelBuilder.h"

#include <memory>

namespace bench {

/// `rungs` components in a row. Rung i passes on the output of rung i-1 unless it is faulty; rung 0 is the input.
/// The model is active, and set up, while the ladder lives.
class Ladder {
public:
    explicit Ladder(int rungs);

    itms& engine() { return engine_; }
    Trajectory& trajectory() { return trajectory_; }
    /// A state in which every rung is instantiated: all outputs 1, all modes ok.
    std::unique_ptr<State> state();
    StateVar* output(int rung) const { return outputs_[static_cast<std::size_t>(rung)]; }
    StateVar* mode(int rung) const { return modes_[static_cast<std::size_t>(rung)]; }
    /// The law that rung `rung` violates when its output is 0 while its input is 1.
    Clause* law(int rung) const
    {
        return rung > 0 ? model_->laws()[2 * static_cast<std::size_t>(rung) - 1] : nullptr;
    }
    int last() const { return static_cast<int>(outputs_.size()) - 1; }

private:
    std::unique_ptr<plant::Model> model_;
    std::vector<StateVar*> outputs_;
    std::vector<StateVar*> modes_;
    Trajectory trajectory_;
    itms engine_;
};

} // namespace bench
