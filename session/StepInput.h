// Steps of telemetry as the tracker takes them.
#pragma once

#include "monitor/track/Hypothesis.h"
#include "plant/Bindings.h"
#include "session/ReadingChanges.h"

#include <unordered_map>

namespace session {

class StepInputs {
public:
    /// Both outlive it, and are not changed. Linear in the channels.
    StepInputs(const plant::Plant& plant, const plant::Bindings& bindings);

    /// Requires that the step's atoms are the plant's; `changes` are those before the step. Ensures: declared inputs come first, and
    /// each part is in the order of the plant's numbers, whatever order the step has them in. Costs the commands that are not those of
    /// the step before, and n log n in the observations.
    monitor::TrackInput of(const ReadingChanges& changes, const telemetry::Step& step);

private:
    const plant::SharedArray<plant::AtomIndex>& commandsOf(const telemetry::Step& step);

    const plant::Plant& plant_;
    const plant::Bindings& bindings_;
    std::unordered_map<const StateVar*, const plant::ChannelBinding*> channels_;
    std::unordered_map<const StateVar*, double> misread_; ///< of several channels of a variable, the most
    plant::SharedArray<Atom*> commands_;                  ///< of the step before
    plant::SharedArray<plant::AtomIndex> commandNumbers_;
};

} // namespace session
