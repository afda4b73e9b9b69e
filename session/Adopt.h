// From which checkpoints a session goes on.
#pragma once

namespace session {

/// Those of its model, or also those of a model that had other probabilities and rates, and is the same otherwise.
enum class Adopt { sameModel, otherProbabilities };

} // namespace session
