// How probable the readings of a step are where the laws leave them open, in exact fractions.
//
// Within one step each combination of values that the laws allow is as probable as any other. With readings in time, what
// was left open is expected to read the same again:
//
//   - A variable is open where the worlds of the step (modes, commands and inputs given, nothing else) have several values of
//     it. The open variables that are observed fall into groups: the finest ones for which the set of allowed combinations is a
//     product.
//   - A mode bears on an open variable when a law mentions the mode and the variable, or the mode and an open variable (observed
//     or not) that laws connect with it through open variables.
//   - The last reading of a variable is remembered while at every step since the variable was open and no mode that bears on
//     it changed. Whether it was observed at these steps does not matter.
//   - A group of which every variable has a remembered reading, these being one of its N allowed combinations, shows the same with
//     probability 1 - v, and each other combination with v / (N - 1). Any other group has 1 / N: among them one with a
//     variable that was not read yet, and one whose remembered readings have become impossible together.
#pragma once

#include "tests/reference/ExactFraction.h"
#include "tests/reference/ExactWorlds.h"

using Observations = std::vector<const Atom*>;

/// The last readings that are expected again.
using Remembered = std::map<const StateVar*, const Atom*>;

struct ReadingsInTime {
    Remembered remembered; ///< after the step
    ExactFraction likelihood;
};

class ExactReadings {
public:
    /// `changing` is v by variable: that a reading differs from the last one; 0 where there is none. Model and worlds
    /// outlive it.
    ExactReadings(const plant::Model& model, const ExactWorlds& worlds,
                  std::map<const StateVar*, ExactFraction> changing)
        : model_(model), worlds_(worlds), changing_(std::move(changing))
    {
    }

    /// 1/N where the worlds allow the observations, N being the number of combinations of values that they have of these
    /// variables; else 0.
    ExactFraction likelihood(const std::vector<World>& worlds,
                             const Observations& observations) const;

    /// The same with readings in time, after a step in which these modes changed.
    ReadingsInTime inTime(const std::vector<World>& worlds, const Observations& observations,
                          const Remembered& before,
                          const std::set<const StateVar*>& changedModes) const;

    /// The finest groups of the variables for which the combinations in the worlds are a product.
    std::vector<std::vector<const StateVar*>> groups(const std::vector<World>& worlds,
                                                     std::vector<const StateVar*> variables) const;
    bool open(const std::vector<World>& worlds, const StateVar* variable) const;
    /// The modes that bear on an open variable.
    std::set<const StateVar*> bearing(const std::vector<World>& worlds,
                                      const StateVar* variable) const;

private:
    ExactFraction likelihood(const std::vector<const StateVar*>& group,
                             const std::vector<World>& worlds, const Observations& observations,
                             const Remembered& remembered) const;

    const plant::Model& model_;
    const ExactWorlds& worlds_;
    std::map<const StateVar*, ExactFraction> changing_;
};
