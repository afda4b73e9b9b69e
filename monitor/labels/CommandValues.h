// The values that commands give their variables, by variable. Copied in constant time.
#pragma once

#include "monitor/labels/Numbering.h"

namespace monitor {

class CommandValues {
public:
    /// Those of these commands, one of a variable.
    CommandValues(const Plant& plant, const SharedArray<AtomIndex>& commands)
        : values_(plant.variables().size(), none)
    {
        for (const AtomIndex value : commands) {
            give(plant, value);
        }
    }
    /// In place of what the variable had.
    void give(const Plant& plant, AtomIndex value)
    {
        values_.set(static_cast<std::size_t>(plant.variableOf(value)), value);
    }
    /// What the variable is given; `none` where it is nothing.
    AtomIndex of(VariableIndex variable) const
    {
        return values_[static_cast<std::size_t>(variable)];
    }

    static constexpr AtomIndex none = -1;

private:
    SharedArray<AtomIndex> values_;
};

} // namespace monitor
