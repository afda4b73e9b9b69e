// Model counting by branching and decomposition: variables that no unsatisfied clause connects are counted by themselves, and the
// numbers multiply ("Counting models using connected components", AAAI 2000). Within a component one of the variables that count is
// given each of its values in turn. Where only other variables are left, one completion is enough.
#include "monitor/labels/Counting.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"

#include <algorithm>

namespace monitor {

namespace {

using Component = std::vector<VariableIndex>;

class Counter {
public:
    Counter(const Plant& plant, Prediction labels, const std::vector<VariableIndex>& variables)
        : plant_(plant), labels_(std::move(labels)), counts_(plant.variables().size(), false),
          reached_(plant.variables().size(), 0)
    {
        for (const VariableIndex variable : variables) {
            counts_[static_cast<std::size_t>(variable)] = true;
        }
    }

    std::optional<double> count(const Component& variables)
    {
        const double product = countAll(variables);
        return exact_ ? std::optional(product) : std::nullopt;
    }

private:
    bool isOpen(VariableIndex variable) const
    {
        const plant::ValueRange values = plant_.variable(variable).values;
        return std::any_of(values.begin(), values.end(),
                           [this](AtomIndex value) { return !labels_.isKnown(value); });
    }

    // The variables that open clauses connect with the first, this included. Marks them.
    Component componentOf(VariableIndex first)
    {
        Component component{first};
        reached_[static_cast<std::size_t>(first)] = round_;
        for (std::size_t next = 0; next < component.size(); ++next) {
            for (const AtomIndex atom : plant_.variable(component[next]).values) {
                if (labels_.isKnown(atom)) {
                    continue;
                }
                for (const ClauseIndex clause : plant_.clausesOf(atom)) {
                    if (!labels_.satisfies(clause)) {
                        reachThrough(clause, component);
                    }
                }
            }
        }
        Meter::spend(10 * component.size());
        reachedInAll_ += component.size();
        std::sort(component.begin(), component.end());
        return component;
    }

    void reachThrough(ClauseIndex clause, Component& component)
    {
        for (const PlantLiteral& literal : plant_.clause(clause)) {
            const VariableIndex other = plant_.variableOf(literal.atom);
            std::size_t& round = reached_[static_cast<std::size_t>(other)];
            if (!labels_.isKnown(literal.atom) && round != round_) {
                round = round_;
                component.push_back(other);
            }
        }
    }

    double countAll(const Component& variables)
    {
        ++round_;
        std::vector<Component> components;
        for (const VariableIndex variable : variables) {
            if (isOpen(variable) && reached_[static_cast<std::size_t>(variable)] != round_) {
                components.push_back(componentOf(variable));
            }
        }
        double product = 1.0;
        for (const Component& component : components) {
            product *= countOne(component);
            if (product == 0.0 || !exact_) {
                break;
            }
        }
        return product;
    }

    double countOne(const Component& component)
    {
        const VariableIndex* chosen = nullptr;
        std::size_t fewest = 0;
        for (const VariableIndex& variable : component) {
            const std::size_t values = openValues(variable).size();
            if (counts_[static_cast<std::size_t>(variable)] && (!chosen || values < fewest)) {
                chosen = &variable;
                fewest = values;
            }
        }
        if (!chosen) {
            return canBeCompleted(component) ? 1.0 : 0.0;
        }
        double sum = 0.0;
        const std::size_t mark = labels_.mark();
        for (const AtomIndex value : openValues(*chosen)) {
            if (++tried_ > mostTriedValues || reachedInAll_ > mostReachedVariables) {
                exact_ = false;
                break;
            }
            if (labels_.assume(value) && labels_.propagate()) {
                sum += countAll(component);
            }
            labels_.undo(mark);
        }
        return sum;
    }

    bool canBeCompleted(const Component& component)
    {
        const std::size_t mark = labels_.mark();
        const Completion found =
            complete(plant_, labels_, component, [this](VariableIndex variable) {
                return plant_.variable(variable).values.toVector();
            });
        labels_.undo(mark);
        exact_ = exact_ && found != Completion::unsettled;
        return found == Completion::possible;
    }

    std::vector<AtomIndex> openValues(VariableIndex variable) const
    {
        std::vector<AtomIndex> values;
        for (const AtomIndex value : plant_.variable(variable).values) {
            if (!labels_.isKnown(value)) {
                values.push_back(value);
            }
        }
        return values;
    }

    const Plant& plant_;
    Prediction labels_;
    std::vector<bool> counts_;         ///< by variable: whether its values tell combinations apart
    std::vector<std::size_t> reached_; ///< by variable: the round in which it was last found
    std::size_t round_ = 0;
    std::size_t tried_ = 0;
    std::size_t reachedInAll_ = 0; ///< variables, each as often as it was found
    bool exact_ = true;
};

} // namespace

std::optional<double> countCombinations(const Plant& plant, Prediction labels,
                                        const std::vector<VariableIndex>& variables)
{
    return Counter(plant, std::move(labels), variables).count(variables);
}

} // namespace monitor
