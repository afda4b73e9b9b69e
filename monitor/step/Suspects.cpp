// Conflicts that a free variable can hit bind nothing. Of the others, within one fault a suspect hits all; within two, the
// conflicts that it leaves share a variable.
#include "monitor/step/Suspects.h"

#include <algorithm>
#include <iterator>

namespace monitor {

namespace {

bool at(const std::vector<bool>& flags, VariableIndex index)
{
    return flags[static_cast<std::size_t>(index)];
}

// The conflicts that only a fault can hit, without the variables that are fixed.
std::vector<Conflict> bindingConflicts(const std::vector<Conflict>& conflicts,
                                       const ModeFreedom& freedom)
{
    std::vector<Conflict> binding;
    for (const Conflict& conflict : conflicts) {
        Conflict open;
        std::copy_if(conflict.begin(), conflict.end(), std::back_inserter(open),
                     [&](VariableIndex variable) { return !at(freedom.fixed, variable); });
        if (std::none_of(open.begin(), open.end(),
                         [&](VariableIndex v) { return at(freedom.free, v); })) {
            binding.push_back(std::move(open));
        }
    }
    return binding;
}

bool hits(const Conflict& conflict, VariableIndex variable)
{
    return std::binary_search(conflict.begin(), conflict.end(), variable);
}

// Whether one variable hits all the conflicts that `first` does not.
bool oneOtherSuffices(const std::vector<Conflict>& conflicts, VariableIndex first)
{
    bool any = false;
    Conflict common;
    for (const Conflict& conflict : conflicts) {
        if (hits(conflict, first)) {
            continue;
        }
        if (!any) {
            common = conflict;
            any = true;
            continue;
        }
        Conflict both;
        std::set_intersection(common.begin(), common.end(), conflict.begin(), conflict.end(),
                              std::back_inserter(both));
        common = std::move(both);
    }
    return !any || !common.empty();
}

bool mayTakePart(const std::vector<Conflict>& conflicts, VariableIndex variable, int faultBudget)
{
    switch (faultBudget) {
    case 0: return false;
    case 1:
        return std::all_of(conflicts.begin(), conflicts.end(),
                           [&](const Conflict& conflict) { return hits(conflict, variable); });
    case 2: return oneOtherSuffices(conflicts, variable);
    default: return true;
    }
}

} // namespace

std::vector<bool> suspects(const Plant& plant, const std::vector<Conflict>& conflicts,
                           const ModeFreedom& freedom, int faultBudget)
{
    std::vector<bool> result(plant.variables().size(), false);
    const std::vector<Conflict> binding = bindingConflicts(conflicts, freedom);
    if (std::any_of(binding.begin(), binding.end(), [](const Conflict& c) { return c.empty(); }) ||
        (faultBudget <= 0 && !binding.empty())) {
        return result;
    }
    bool hit = binding.empty();
    for (std::size_t i = 0; i < result.size(); ++i) {
        const auto variable = static_cast<VariableIndex>(i);
        if (!plant.variable(variable).isMode || freedom.fixed[i]) {
            continue;
        }
        result[i] = freedom.free[i] || mayTakePart(binding, variable, faultBudget);
        hit = hit || (result[i] && !freedom.free[i]);
    }
    if (!hit) {
        result.assign(result.size(), false);
    }
    return result;
}

} // namespace monitor
