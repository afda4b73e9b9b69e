#include "monitor/Completion.h"

#include <algorithm>

namespace monitor {

namespace {

// A variable that was open, and how many of its values were tried.
struct Choice {
    VariableIndex variable;
    std::size_t mark;
    std::size_t tried = 0;
};

// Takes back the value that the choice has, if any, and gives it its next one. False when there is none.
bool tryNext(Choice& choice, const Plant& plant, Prediction& labels)
{
    const std::vector<AtomIndex>& values = plant.variable(choice.variable).values;
    while (choice.tried < values.size()) {
        labels.undo(choice.mark);
        const AtomIndex value = values[choice.tried++];
        if (labels.assume(value) && labels.propagate()) {
            return true;
        }
    }
    labels.undo(choice.mark);
    return false;
}

} // namespace

Completion completionOf(const Plant& plant, Prediction labels, std::uint64_t mostRetreats)
{
    const auto variables = static_cast<VariableIndex>(plant.variables().size());
    const auto isOpen = [&](VariableIndex variable) {
        const std::vector<AtomIndex>& values = plant.variable(variable).values;
        return std::any_of(values.begin(), values.end(),
                           [&](AtomIndex value) { return !labels.isKnown(value); });
    };
    std::vector<Choice> choices;
    std::uint64_t retreats = 0;
    for (VariableIndex next = 0; next < variables; ++next) {
        if (!isOpen(next)) {
            continue;
        }
        choices.push_back({next, labels.mark()});
        while (!tryNext(choices.back(), plant, labels)) {
            choices.pop_back();
            if (choices.empty()) {
                return Completion::impossible;
            }
            if (++retreats > mostRetreats) {
                return Completion::unsettled;
            }
        }
        next = choices.back().variable;
    }
    return Completion::possible;
}

} // namespace monitor
