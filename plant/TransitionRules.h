// What every transition has to keep to, whatever it was written in.
#pragma once

#include "plant/Change.h"

#include <string>
#include <vector>

namespace plant {

/// How far probabilities may be above 1 together.
constexpr double probabilityTolerance = 1e-9;

/// Whether a number can be a probability: from 0 to 1.
constexpr bool isProbability(double number)
{
    return number >= 0 && number <= 1;
}

/// Whether changes of this kind happen by themselves, with a probability that the model has to give: faults and repairs.
constexpr bool isUnbidden(ChangeKind kind)
{
    return kind == ChangeKind::fault || kind == ChangeKind::repair;
}

/// Whether some assignment makes all of these literals hold. Costs n log n.
bool canHold(Conjunction guard);

/// The most probable of the sets of changes that can happen at once, as far as their guards tell. The search has a budget; what it
/// has found by then is returned.
/// Requires: every change has a probability.
std::vector<const Change*> likeliestSet(const std::vector<const Change*>& changes);

/// Reports changes from one value that can happen at once and are more probable than 1 together. Idle changes are what happens
/// when no nominal one does, so these two kinds never add up.
/// Requires: all of them leave the same value, and have probabilities.
void checkSum(const std::vector<const Change*>& leaving);

/// Gives the changes without a probability what the faults and repairs that can always happen leave.
/// Requires: all of them leave the same value, and the faults and repairs have probabilities.
void completeProbabilities(const std::vector<Change*>& leaving);

/// Reports, at `target`, a fault or repair that leads to the value that it leaves. `from` and `to` are names of values, `elsewhere`
/// says what was expected.
bool checkLeaves(ChangeKind kind, const std::string& from, const std::string& to,
                 const std::string& elsewhere, const PlaceHandle& target);

/// Reports, at `target`, a repair that leads to a fault. `to` is the name of the value.
bool checkMends(ChangeKind kind, const std::string& to, bool isFault, const PlaceHandle& target);

/// Reports a guard of which no alternative can hold.
bool checkGuard(const std::vector<Conjunction>& alternatives, const PlaceHandle& at);

} // namespace plant
