// Which variables have to do with one another at all.
#pragma once

#include "monitor/labels/Numbering.h"

#include <vector>

namespace monitor {

/// Two variables of one law are connected, and so is what is connected with them. Commands are given, and connect nothing.
class ConnectedVariables {
public:
    /// Costs the plant's laws and guards.
    explicit ConnectedVariables(const Plant& plant);

    /// The same number for all that are connected, below the number of variables. Constant time.
    VariableIndex groupOf(VariableIndex variable) const
    {
        return groups_[static_cast<std::size_t>(variable)];
    }

    /// By variable: those that can bear on later steps at all. Modes, and what is connected with a condition that a guard reads.
    const std::vector<bool>& matterLater() const { return matterLater_; }

private:
    std::vector<VariableIndex> groups_;
    std::vector<bool> matterLater_;
};

/// The atoms, other than commands and values of the variable itself, on which transitions of a mode variable depend.
std::vector<AtomIndex> guardAtoms(const Plant& plant, VariableIndex mode);

} // namespace monitor
