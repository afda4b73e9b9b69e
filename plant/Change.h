// A change of a mode as a model states it: one statement, from one value.
#pragma once

#include "model/Atom.h"
#include "plant/Model.h"
#include "plant/PlaceHandle.h"

#include <optional>
#include <vector>

namespace plant {

enum class ChangeKind { nominal, fault, repair, idle };

/// Literals that hold together: atoms with key true must hold, those with key false must not.
using Conjunction = std::vector<GuardLiteral>;

/// From a mode value to another, or to itself, when one of the alternatives of its guard holds. It becomes a transition for each
/// alternative, and its probability counts once.
struct Change {
    ChangeKind kind = ChangeKind::nominal;
    Atom* from = nullptr;
    Atom* to = nullptr;
    std::vector<Conjunction> alternatives; ///< an empty one always holds
    std::optional<double> probability;     ///< per step; nothing: what faults and repairs leave
    PlaceHandle at;

    /// No guard stands in its way.
    bool always() const { return alternatives.size() == 1 && alternatives.front().empty(); }
};

/// The word for it in models: "fault".
const char* word(ChangeKind kind);

} // namespace plant
