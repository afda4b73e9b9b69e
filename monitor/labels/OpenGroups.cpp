// Variables that no open clause connects are independent. Among those that are connected all combinations are collected, and
// taken apart where the set of them is a product: so it makes no difference how the laws that leave them open are written.
#include "monitor/labels/OpenGroups.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

namespace {

constexpr std::size_t mostCombinedValues = 1000;
constexpr std::size_t mostPartsTried = 10;

std::set<Combination> projected(const std::set<Combination>& combinations,
                                const std::vector<std::size_t>& places)
{
    std::set<Combination> result;
    Meter::spend(10 * combinations.size());
    for (const Combination& combination : combinations) {
        Combination part;
        for (const std::size_t place : places) {
            part.push_back(combination[place]);
        }
        result.insert(std::move(part));
    }
    return result;
}

using Places = std::vector<std::size_t>;

Places joined(const std::vector<Places>& parts)
{
    Places all;
    for (const Places& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

bool areIndependent(const std::set<Combination>& combinations, const std::vector<Places>& parts)
{
    double product = 1.0;
    for (const Places& part : parts) {
        product *= static_cast<double>(projected(combinations, part).size());
    }
    return product == static_cast<double>(projected(combinations, joined(parts)).size());
}

// Parts of which any two that depend on one another are one.
std::vector<Places> pairwiseParts(const std::set<Combination>& combinations, std::size_t count)
{
    std::vector<Places> parts;
    for (std::size_t place = 0; place < count; ++place) {
        Places together{place};
        std::erase_if(parts, [&](const Places& part) {
            const bool depends = std::any_of(part.begin(), part.end(), [&](std::size_t other) {
                const std::set<Combination> both = projected(combinations, {other, place});
                return both.size() != projected(both, {0}).size() * projected(both, {1}).size();
            });
            if (depends) {
                together.insert(together.end(), part.begin(), part.end());
            }
            return depends;
        });
        parts.push_back(std::move(together));
    }
    return parts;
}

// The finest parts of which any combination of one goes with any of the others. Three may depend on one another though no two do,
// as a parity does: then the smallest set of parts with the first one that is independent of the others is split off. Not
// exact where these are too many to be tried.
std::vector<Places> independentParts(const std::set<Combination>& combinations,
                                     std::vector<Places> parts, bool& exact)
{
    if (parts.size() < 2 || areIndependent(combinations, parts)) {
        return parts;
    }
    if (parts.size() > mostPartsTried) {
        exact = false;
        return {joined(parts)};
    }
    std::vector<Places> best = parts;
    std::vector<Places> bestOthers;
    for (std::size_t set = 0; set < std::size_t{1} << (parts.size() - 1); ++set) {
        std::vector<Places> own{parts.front()};
        std::vector<Places> others;
        for (std::size_t i = 1; i < parts.size(); ++i) {
            (((set >> (i - 1)) & 1) != 0 ? own : others).push_back(parts[i]);
        }
        if (own.size() < best.size() && areIndependent(combinations, {joined(own), joined(others)})) {
            best = own;
            bestOthers = others;
        }
    }
    std::vector<Places> result = independentParts(combinations, std::move(bestOthers), exact);
    result.push_back(joined(best));
    return result;
}

void addGroups(const std::vector<VariableIndex>& variables,
               const std::set<Combination>& combinations, std::vector<OpenGroup>& groups,
               bool& exact)
{
    for (Places& part :
         independentParts(combinations, pairwiseParts(combinations, variables.size()), exact)) {
        std::sort(part.begin(), part.end());
        std::set<Combination> own = projected(combinations, part);
        if (own.size() > 1) {
            std::vector<VariableIndex> named;
            for (const std::size_t place : part) {
                named.push_back(variables[place]);
            }
            groups.push_back({std::move(named), std::move(own)});
        }
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

const std::vector<VariableIndex>& OpenVariables::connected(VariableIndex variable)
{
    const auto [place, isNew] = connectedOf_.emplace(variable, connected_.size());
    if (!isNew) {
        return connected_[place->second];
    }
    std::vector<VariableIndex> reached{variable};
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (const AtomIndex value : openValues(reached[next])) {
            for (const ClauseIndex clause : plant_.clausesOf(value)) {
                if (labels_.satisfies(clause)) {
                    continue;
                }
                for (const PlantLiteral& literal : plant_.clause(clause)) {
                    const VariableIndex other = plant_.variableOf(literal.atom);
                    if (!labels_.isKnown(literal.atom) &&
                        connectedOf_.emplace(other, connected_.size()).second) {
                        reached.push_back(other);
                    }
                }
            }
        }
    }
    std::sort(reached.begin(), reached.end());
    connected_.push_back(std::move(reached));
    return connected_.back();
}

bool OpenVariables::canBeCompleted(const std::vector<VariableIndex>& variables)
{
    const std::size_t mark = labels_.mark();
    const Completion found = complete(plant_, labels_, variables, [this](VariableIndex variable) {
        return plant_.variable(variable).values.toVector();
    });
    if (found == Completion::possible) {
        noteValues(variables);
    }
    labels_.undo(mark);
    exact_ = exact_ && found != Completion::unsettled;
    return found != Completion::impossible;
}

// Two values that were seen show that a variable is open.
void OpenVariables::noteValues(const std::vector<VariableIndex>& variables)
{
    for (const VariableIndex variable : variables) {
        const auto value = labels_.valueOf(plant_.variable(variable));
        if (value && seen_.emplace(variable, *value).first->second != *value) {
            known_.insert_or_assign(variable, true);
        }
    }
}

bool OpenVariables::isOpen(VariableIndex variable)
{
    const std::vector<AtomIndex> values = openValues(variable);
    if (values.empty()) {
        return false;
    }
    const auto known = known_.find(variable);
    if (known != known_.end()) {
        return known->second;
    }
    const std::vector<VariableIndex>& others = connected(variable);
    const std::size_t mark = labels_.mark();
    int possible = 0;
    for (const AtomIndex value : values) {
        possible += labels_.assume(value) && labels_.propagate() && canBeCompleted(others) ? 1 : 0;
        labels_.undo(mark);
        if (possible > 1) {
            break;
        }
    }
    return known_.insert_or_assign(variable, possible > 1).first->second;
}

const std::set<VariableIndex>& OpenVariables::bearing(VariableIndex variable)
{
    const auto [place, isNew] = bearingOf_.emplace(variable, bearing_.size());
    if (!isNew) {
        return bearing_[place->second];
    }
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
                    } else if (!bearingOf_.contains(other) && isOpen(other)) {
                        bearingOf_.emplace(other, bearing_.size());
                        next.push_back(other);
                    }
                }
            }
        }
    }
    bearing_.push_back(std::move(modes));
    return bearing_.back();
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

std::multimap<double, std::vector<VariableIndex>> OpenVariables::parts(
    const std::vector<VariableIndex>& variables)
{
    std::set<VariableIndex> left;
    for (const VariableIndex variable : variables) {
        if (!openValues(variable).empty()) {
            left.insert(variable);
        }
    }
    std::multimap<double, std::vector<VariableIndex>> result;
    while (!left.empty()) {
        std::vector<VariableIndex> part;
        double most = 1.0;
        for (const VariableIndex variable : connected(*left.begin())) {
            if (left.erase(variable) > 0) {
                part.push_back(variable);
                most *= static_cast<double>(openValues(variable).size());
            }
        }
        result.emplace(most, std::move(part));
    }
    return result;
}

OpenGroups OpenVariables::groups(const std::vector<VariableIndex>& variables)
{
    OpenGroups result;
    // The bound is for all parts together, so that a large one comes after the small ones.
    for (const auto& [most, wanted] : parts(variables)) {
        Combination chosen;
        std::set<Combination> combinations;
        if (collect(wanted, connected(wanted.front()), chosen, combinations)) {
            addGroups(wanted, combinations, result.groups, exact_);
        } else {
            result.undecided.push_back(wanted);
        }
    }
    for (const VariableIndex variable : variables) {
        known_.insert_or_assign(variable, false);
    }
    for (const OpenGroup& group : result.groups) {
        for (std::size_t place = 0; place < group.variables.size(); ++place) {
            known_[group.variables[place]] = projected(group.combinations, {place}).size() > 1;
        }
    }
    for (const std::vector<VariableIndex>& group : result.undecided) {
        for (const VariableIndex variable : group) {
            known_[variable] = true;
        }
    }
    return result;
}

} // namespace monitor
