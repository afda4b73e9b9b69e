// How often each reading changes from one step to the next, learned from the stream: the same for all that is believed of it.
#pragma once

#include "plant/Plant.h"
#include "telemetry/Step.h"

#include <map>

namespace session {

/// The readings of one variable until now.
struct ReadingCount {
    std::size_t readings = 0;
    std::size_t changes = 0; ///< how many of them differed from the one before
    plant::AtomIndex last = 0;
};

class ReadingChanges {
public:
    /// The probability that the next reading is not what the last one was: (changes + 1/2) / (readings + 1), with
    /// which a signal that never changes loses less and less from step to step ("The performance of universal encoding", IEEE
    /// Transactions on Information Theory 27, 1981). 1/2 for a variable that was never read.
    double probability(plant::VariableIndex variable) const;
    /// Counts the readings of a step. Those that are held are not read, and do not count.
    void add(const plant::Plant& plant, const telemetry::Step& step);

    const std::map<plant::VariableIndex, ReadingCount>& counts() const { return counts_; }
    void restore(std::map<plant::VariableIndex, ReadingCount> counts)
    {
        counts_ = std::move(counts);
    }

private:
    std::map<plant::VariableIndex, ReadingCount> counts_;
};

} // namespace session
