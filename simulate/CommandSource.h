// Commands drawn at random, for a plant that nobody operates.
#pragma once

#include "plant/Plant.h"
#include "simulate/Chance.h"

namespace simulate {

constexpr double usualCommandProbability = 0.2;

/// Commands drawn one after the other.
class CommandSource {
public:
    /// `probability` that a command variable is not silent at a step, 0..1.
    /// Requires: the plant outlives this.
    CommandSource(const plant::Plant& plant, std::uint64_t seed,
                  double probability = usualCommandProbability);

    /// The commands of the next step: those that are not silent, each of whose values is as probable as the other ones.
    std::vector<plant::AtomIndex> next();

private:
    const plant::Plant& plant_;
    Chance chance_;
    double probability_;
};

} // namespace simulate
