// Small plants drawn at random, as somebody would write them: machines with and without commands, one feeding the next, gauges
// over some of them, laws of several forms, readings and inputs.
#pragma once

#include "tests/reference/Random.h"
#include "tests/support/PlantText.h"

namespace written {

struct PlantTextOptions {
    int fewestMachines = 2;
    int mostMachines = 4;
    bool guardsReadConditions = true; ///< otherwise commands only, which are always known
    int observedPercent = 70;         ///< how many of the conditions are observed
    int inputPercent = 45;            ///< how many of what nothing feeds are declared inputs
    int variesPercent = 20;           ///< how many of what is observed says how often it varies
    int misreadPercent = 0;           ///< how many of what is observed may be misread
    int lostPercent = 30;             ///< how many of the commands may be lost
    int repairPercent = 30;           ///< how many of the machines may be repaired
    /// The probabilities of faults, in units of 1/10000 per step.
    int rarestFault = 20;
    int commonestFault = 600;
};

/// The laws may contradict one another, of which reading the text tells.
PlantText randomPlantText(Random& random, const PlantTextOptions& options = {});

} // namespace written
