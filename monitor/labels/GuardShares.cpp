// Guards are read in labels that mix what was before the step (modes, conditions) with the commands of the step. The variables of an
// open guard are given all combinations of values, and what goes with each is counted.
#include "monitor/labels/GuardShares.h"

#include "monitor/labels/Counting.h"

#include <algorithm>

namespace monitor {

namespace {

using Alternatives = std::vector<const PlantChange::Alternative*>;

// Combinations of the variables of the guards of a step, at most, before the rest are estimated.
constexpr std::size_t mostTriedCombinations = 1000;

std::vector<VariableIndex> openVariables(const Plant& plant, const Alternatives& alternatives,
                                         const std::vector<Label>& labels)
{
    std::vector<VariableIndex> variables;
    for (const PlantChange::Alternative* alternative : alternatives) {
        for (const PlantLiteral& literal : alternative->literals) {
            if (labels[static_cast<std::size_t>(literal.atom)] == Label::unknown) {
                variables.push_back(plant.variableOf(literal.atom));
            }
        }
    }
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

} // namespace

GuardShares::GuardShares(const Plant& plant, const Prediction& before,
                         const std::vector<AtomIndex>& commands)
    : plant_(plant), known_(before), labels_(plant.atomCount(), Label::unknown)
{
    const auto give = [&](AtomIndex value) {
        for (const AtomIndex atom : plant.variable(plant.variableOf(value)).values) {
            labels_[static_cast<std::size_t>(atom)] = atom == value ? Label::isTrue : Label::isFalse;
        }
    };
    for (const PlantVariable& variable : plant.variables()) {
        if (variable.isMode && !variable.values.empty()) {
            give(this->before(variable));
        } else if (!variable.isCommand) {
            for (const AtomIndex atom : variable.values) {
                labels_[static_cast<std::size_t>(atom)] = before.label(atom);
            }
        }
    }
    std::for_each(commands.begin(), commands.end(), give);
}

AtomIndex GuardShares::before(const PlantVariable& mode) const
{
    return known_.valueOf(mode).value_or(mode.values.front());
}

GuardShares::Holds GuardShares::holds(const PlantChange::Alternative& alternative) const
{
    Holds result = Holds::yes;
    for (const PlantLiteral& literal : alternative.literals) {
        const Label label = labels_[static_cast<std::size_t>(literal.atom)];
        if (label == Label::unknown) {
            result = Holds::perhaps;
        } else if ((label == Label::isTrue) == literal.negated) {
            return Holds::no;
        }
    }
    return result;
}

GuardShare GuardShares::of(const PlantChange& change)
{
    Alternatives open;
    for (const PlantChange::Alternative& alternative : change.alternatives) {
        switch (holds(alternative)) {
        case Holds::yes: return {1.0, &alternative};
        case Holds::perhaps: open.push_back(&alternative); break;
        case Holds::no: break;
        }
    }
    if (open.empty()) {
        return {};
    }
    GuardShare result{0.0, open.front()};
    result.share = shareOf(open, result.exact);
    return result;
}

double GuardShares::shareOf(const Alternatives& open, bool& exact)
{
    const std::vector<VariableIndex> variables = openVariables(plant_, open, labels_);
    if (!trying_) {
        trying_.emplace(known_);
    }
    Counts counts;
    const std::size_t mark = trying_->mark();
    exact = count(variables, 0, open, connectedConditions(variables), counts) && counts.all > 0.0;
    trying_->undo(mark);
    return exact ? counts.holding / counts.all : shareWithoutLaws(open);
}

std::vector<VariableIndex> GuardShares::connectedConditions(const std::vector<VariableIndex>& variables)
{
    if (!open_) {
        open_.emplace(plant_, known_);
    }
    std::vector<VariableIndex> conditions;
    for (const VariableIndex variable : variables) {
        if (plant_.variable(variable).isCommand) {
            continue;
        }
        for (const VariableIndex other : open_->connected(variable)) {
            if (!plant_.variable(other).isCommand) {
                conditions.push_back(other);
            }
        }
    }
    return conditions;
}

bool GuardShares::count(const std::vector<VariableIndex>& variables, std::size_t next,
                        const Alternatives& open, const std::vector<VariableIndex>& connected,
                        Counts& counts)
{
    if (next == variables.size()) {
        const std::optional<double> combinations = countCombinations(plant_, *trying_, connected);
        if (combinations) {
            const bool held = std::any_of(open.begin(), open.end(), [&](const auto* alternative) {
                return holds(*alternative) == Holds::yes;
            });
            counts.all += *combinations;
            counts.holding += held ? *combinations : 0.0;
        }
        return combinations.has_value();
    }
    const PlantVariable& variable = plant_.variable(variables[next]);
    std::vector<Label> before;
    for (const AtomIndex value : variable.values) {
        before.push_back(labels_[static_cast<std::size_t>(value)]);
    }
    const std::size_t mark = trying_->mark();
    bool within = true;
    for (std::size_t chosen = 0; within && chosen < variable.values.size(); ++chosen) {
        if (before[chosen] == Label::isFalse) {
            continue;
        }
        within = ++tried_ <= mostTriedCombinations;
        const AtomIndex value = variable.values[chosen];
        if (within && (variable.isCommand || (trying_->assume(value) && trying_->propagate()))) {
            for (const AtomIndex atom : variable.values) {
                labels_[static_cast<std::size_t>(atom)] =
                    atom == value ? Label::isTrue : Label::isFalse;
            }
            within = count(variables, next + 1, open, connected, counts);
        }
        trying_->undo(mark);
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
        labels_[static_cast<std::size_t>(variable.values[i])] = before[i];
    }
    return within;
}

// As if every value that is not excluded were as probable as any other, and alternatives had nothing to do with one another.
double GuardShares::shareWithoutLaws(const Alternatives& open) const
{
    double none = 1.0;
    for (const PlantChange::Alternative* alternative : open) {
        double all = 1.0;
        for (const PlantLiteral& literal : alternative->literals) {
            if (labels_[static_cast<std::size_t>(literal.atom)] == Label::unknown) {
                const auto& values = plant_.variable(plant_.variableOf(literal.atom)).values;
                const auto possible =
                    std::count_if(values.begin(), values.end(), [this](AtomIndex value) {
                        return labels_[static_cast<std::size_t>(value)] != Label::isFalse;
                    });
                const double one = 1.0 / static_cast<double>(possible);
                all *= literal.negated ? 1.0 - one : one;
            }
        }
        none *= 1.0 - all;
    }
    return 1.0 - none;
}

} // namespace monitor
