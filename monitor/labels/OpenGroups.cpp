// Variables that no open clause connects are independent. Among those that are connected all combinations are collected, and taken apart
// where the set of them is a product: so it makes no difference how the laws that leave them open are written.
#include "monitor/labels/OpenGroups.h"

#include "monitor/labels/Completion.h"

#include <algorithm>

namespace monitor {

namespace {

constexpr std::size_t mostCombinedValues = 1000;
constexpr std::size_t mostVariablesTogether = 10;

bool isSatisfied(const Plant& plant, const Prediction& labels, ClauseIndex clause)
{
    const std::vector<PlantLiteral>& literals = plant.clause(clause);
    return std::any_of(literals.begin(), literals.end(), [&](const PlantLiteral& literal) {
        return labels.label(literal.atom) == (literal.negated ? Label::isFalse : Label::isTrue);
    });
}

std::set<Combination> projected(const std::set<Combination>& combinations,
                                const std::vector<std::size_t>& places)
{
    std::set<Combination> result;
    for (const Combination& combination : combinations) {
        Combination part;
        for (const std::size_t place : places) {
            part.push_back(combination[place]);
        }
        result.insert(std::move(part));
    }
    return result;
}

// The smallest part with the first variable whose combinations go with all those of the others is split off, until nothing is left.
void addFactors(const std::vector<VariableIndex>& variables,
                const std::set<Combination>& combinations, std::vector<OpenGroup>& groups)
{
    std::vector<std::size_t> best;
    std::vector<std::size_t> bestOthers;
    for (std::size_t set = 0; set < std::size_t{1} << (variables.size() - 1); ++set) {
        std::vector<std::size_t> part{0};
        std::vector<std::size_t> others;
        for (std::size_t i = 1; i < variables.size(); ++i) {
            (((set >> (i - 1)) & 1) != 0 ? part : others).push_back(i);
        }
        if ((best.empty() || part.size() < best.size()) &&
            projected(combinations, part).size() * projected(combinations, others).size() ==
                combinations.size()) {
            best = part;
            bestOthers = others;
        }
    }
    const auto named = [&](const std::vector<std::size_t>& places) {
        std::vector<VariableIndex> result;
        for (const std::size_t place : places) {
            result.push_back(variables[place]);
        }
        return result;
    };
    std::set<Combination> own = projected(combinations, best);
    if (own.size() > 1) {
        groups.push_back({named(best), std::move(own)});
    }
    if (!bestOthers.empty()) {
        addFactors(named(bestOthers), projected(combinations, bestOthers), groups);
    }
}

} // namespace

OpenVariables::OpenVariables(const Plant& plant, Prediction labels)
    : plant_(plant), labels_(std::move(labels))
{
}

std::vector<AtomIndex> OpenVariables::openValues(VariableIndex variable) const
{
    std::vector<AtomIndex> values;
    for (const AtomIndex value : plant_.variable(variable).values) {
        if (!labels_.isKnown(value)) {
            values.push_back(value);
        }
    }
    return values;
}

std::vector<VariableIndex> OpenVariables::connected(VariableIndex variable) const
{
    std::set<VariableIndex> reached{variable};
    std::vector<VariableIndex> next{variable};
    while (!next.empty()) {
        const std::vector<AtomIndex> values = openValues(next.back());
        next.pop_back();
        for (const AtomIndex value : values) {
            for (const ClauseIndex clause : plant_.clausesOf(value)) {
                if (isSatisfied(plant_, labels_, clause)) {
                    continue;
                }
                for (const PlantLiteral& literal : plant_.clause(clause)) {
                    const VariableIndex other = plant_.variableOf(literal.atom);
                    if (!labels_.isKnown(literal.atom) && reached.insert(other).second) {
                        next.push_back(other);
                    }
                }
            }
        }
    }
    return {reached.begin(), reached.end()};
}

bool OpenVariables::canBeCompleted(const std::vector<VariableIndex>& variables)
{
    const std::size_t mark = labels_.mark();
    const Completion found = complete(plant_, labels_, variables, [this](VariableIndex variable) {
        return plant_.variable(variable).values;
    });
    labels_.undo(mark);
    return found != Completion::impossible;
}

bool OpenVariables::isOpen(VariableIndex variable)
{
    const std::vector<AtomIndex> values = openValues(variable);
    if (values.empty()) {
        return false;
    }
    const auto [known, isNew] = known_.emplace(variable, true);
    if (!isNew) {
        return known->second;
    }
    const std::vector<VariableIndex> others = connected(variable);
    const std::size_t mark = labels_.mark();
    int possible = 0;
    for (const AtomIndex value : values) {
        possible += labels_.assume(value) && labels_.propagate() && canBeCompleted(others) ? 1 : 0;
        labels_.undo(mark);
        if (possible > 1) {
            return true;
        }
    }
    known->second = false;
    return false;
}

std::set<VariableIndex> OpenVariables::bearing(VariableIndex variable)
{
    std::set<VariableIndex> region{variable};
    std::vector<VariableIndex> next{variable};
    std::set<VariableIndex> modes;
    while (!next.empty()) {
        const VariableIndex reached = next.back();
        next.pop_back();
        for (const AtomIndex value : plant_.variable(reached).values) {
            for (const ClauseIndex clause : plant_.clausesOf(value)) {
                for (const PlantLiteral& literal : plant_.clause(clause)) {
                    const VariableIndex other = plant_.variableOf(literal.atom);
                    if (plant_.variable(other).isMode) {
                        modes.insert(other);
                    } else if (!region.contains(other) && isOpen(other)) {
                        region.insert(other);
                        next.push_back(other);
                    }
                }
            }
        }
    }
    return modes;
}

// False where there are too many.
bool OpenVariables::collect(const std::vector<VariableIndex>& wanted,
                            const std::vector<VariableIndex>& all, Combination& chosen,
                            std::set<Combination>& found)
{
    if (chosen.size() == wanted.size()) {
        if (canBeCompleted(all)) {
            found.insert(chosen);
        }
        return true;
    }
    const PlantVariable& variable = plant_.variable(wanted[chosen.size()]);
    const std::size_t mark = labels_.mark();
    for (const AtomIndex value : variable.values) {
        if (labels_.label(value) == Label::isFalse) {
            continue;
        }
        if (++tried_ > mostCombinedValues) {
            return false;
        }
        const bool possible =
            labels_.isTrue(value) || (labels_.assume(value) && labels_.propagate());
        chosen.push_back(value);
        const bool within = !possible || collect(wanted, all, chosen, found);
        chosen.pop_back();
        labels_.undo(mark);
        if (!within) {
            return false;
        }
    }
    return true;
}

OpenVariables::Groups OpenVariables::groups(const std::vector<VariableIndex>& variables)
{
    Groups result;
    std::set<VariableIndex> left;
    for (const VariableIndex variable : variables) {
        if (!openValues(variable).empty()) {
            left.insert(variable);
        }
    }
    while (!left.empty()) {
        const std::vector<VariableIndex> all = connected(*left.begin());
        std::vector<VariableIndex> wanted;
        std::copy_if(all.begin(), all.end(), std::back_inserter(wanted),
                     [&](VariableIndex variable) { return left.erase(variable) > 0; });
        Combination chosen;
        std::set<Combination> combinations;
        if (wanted.size() <= mostVariablesTogether && collect(wanted, all, chosen, combinations)) {
            addFactors(wanted, combinations, result.groups);
        } else {
            result.undecided.push_back(std::move(wanted));
        }
    }
    return result;
}

} // namespace monitor
