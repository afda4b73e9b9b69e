// Which variables have to do with one another at all.
#pragma once

#include "monitor/labels/Numbering.h"

#include <vector>

namespace monitor {

/// Two variables of one law are connected, and so is what is connected with them. Commands are given, and connect nothing.
class ConnectedVariables {
public:
    /// Costs the plant's laws.
    explicit ConnectedVariables(const Plant& plant);

    /// The same number for all that are connected, below the number of variables. Nearly constant time.
    VariableIndex groupOf(VariableIndex variable);

private:
    VariableIndex& at(VariableIndex variable) { return first_[static_cast<std::size_t>(variable)]; }

    std::vector<VariableIndex> first_; ///< towards the first of its group
};

} // namespace monitor
