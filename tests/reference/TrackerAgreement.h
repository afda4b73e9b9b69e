// How often the tracker's probabilities are those of the exact filter, on random plants.
#pragma once

#include "tests/reference/ExactFilter.h"
#include "tests/reference/WatchedPlant.h"

#include <string>

/// What comparing them gave.
struct Agreement {
    int plants = 0;
    int steps = 0;     ///< that were compared
    int differing = 0; ///< steps at which the probability of some modes differs by more than 1e-9
    int differingPlants = 0;
    int several = 0;      ///< steps at which several modes are possible
    int inconsistent = 0; ///< steps that both find inconsistent
    double largest = 0.0; ///< difference of the probability of some modes
    /// Of the first differences of the plants the one with the fewest parts, laws and transitions: seed, plant, steps until then, and what
    /// both say. Empty where there is none.
    std::string example;
};

/// What comparing the most probable modes gave.
struct BestAgreement {
    int steps = 0;       ///< that were compared
    int faulty = 0;      ///< of these, those of which the most probable modes have a fault
    int differing = 0;   ///< steps at which others are the most probable ones
    std::string example; ///< the first one; empty where there is none
};

/// The same with the tracker as it is when nothing is asked for.
BestAgreement compareBest(const WatchedOptions& options, std::uint64_t firstSeed, int seeds,
                          int steps);

/// Plants of these seeds, each watched for so many steps, or until one that the filter finds inconsistent. The tracker keeps and
/// follows everything.
Agreement compareTracker(const WatchedOptions& options, std::uint64_t firstSeed, int seeds,
                         int steps);
