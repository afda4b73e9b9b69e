// The values that commands give their variables, by variable, and where these stand among the commands. Copied in constant time.
#pragma once

#include "monitor/labels/Numbering.h"

#include <algorithm>
#include <utility>

namespace monitor {

class CommandValues {
public:
    /// Those of these commands, one of a variable.
    CommandValues(const Plant& plant, const SharedArray<AtomIndex>& commands)
        : values_(plant.variables().size(), none), places_(plant.variables().size(), none)
    {
        std::int32_t place = 0;
        for (const AtomIndex value : commands) {
            give(plant, value);
            places_.set(static_cast<std::size_t>(plant.variableOf(value)), place++);
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

    /// The values of the part's variables in the order of the commands, as it numbers them. Costs the part.
    std::vector<AtomIndex> within(const PlantPart& part) const
    {
        std::vector<std::pair<std::int32_t, AtomIndex>> found;
        for (const VariableIndex variable : part.variables()) {
            if (of(variable) != none) {
                found.emplace_back(places_[static_cast<std::size_t>(variable)],
                                   *part.here(of(variable)));
            }
        }
        std::sort(found.begin(), found.end());
        std::vector<AtomIndex> values;
        for (const auto& [place, value] : found) {
            values.push_back(value);
        }
        return values;
    }

    static constexpr AtomIndex none = -1;

private:
    SharedArray<AtomIndex> values_;
    SharedArray<std::int32_t> places_; ///< at the beginning: given values change, and none comes or goes
};

} // namespace monitor
