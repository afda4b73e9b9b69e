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

} // namespace

GuardShares::GuardShares(const Plant& plant, const Prediction& before, CommandValues commands)
    : plant_(plant), known_(before), commands_(std::move(commands))
{
}

Label GuardShares::label(AtomIndex atom) const
{
    if (const auto tried = tryingLabels_.find(atom); tried != tryingLabels_.end()) {
        return tried->second;
    }
    const auto whether = [](bool holds) { return holds ? Label::isTrue : Label::isFalse; };
    const VariableIndex index = plant_.variableOf(atom);
    if (const AtomIndex given = commands_.of(index); given != CommandValues::none) {
        return whether(given == atom);
    }
    const PlantVariable& variable = plant_.variable(index);
    if (variable.isCommand) {
        return Label::unknown;
    }
    return variable.isMode ? whether(before(variable) == atom) : known_.label(atom);
}

std::vector<VariableIndex> GuardShares::openVariables(const Alternatives& alternatives) const
{
    std::vector<VariableIndex> variables;
    for (const PlantChange::Alternative* alternative : alternatives) {
        for (const PlantLiteral& literal : alternative->literals) {
            if (label(literal.atom) == Label::unknown) {
                variables.push_back(plant_.variableOf(literal.atom));
            }
        }
    }
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

AtomIndex GuardShares::before(const PlantVariable& mode) const
{
    return known_.valueOf(mode).value_or(mode.values.front());
}

GuardShares::Holds GuardShares::holds(const PlantChange::Alternative& alternative) const
{
    Holds result = Holds::yes;
    for (const PlantLiteral& literal : alternative.literals) {
        const Label known = label(literal.atom);
        if (known == Label::unknown) {
            result = Holds::perhaps;
        } else if ((known == Label::isTrue) == literal.negated) {
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
    ++counted_;
    const std::vector<VariableIndex> variables = openVariables(open);
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
        before.push_back(label(value));
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
                tryingLabels_[atom] = atom == value ? Label::isTrue : Label::isFalse;
            }
            within = count(variables, next + 1, open, connected, counts);
        }
        trying_->undo(mark);
    }
    for (const AtomIndex value : variable.values) {
        tryingLabels_.erase(value);
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
            if (label(literal.atom) == Label::unknown) {
                const auto& values = plant_.variable(plant_.variableOf(literal.atom)).values;
                const auto possible =
                    std::count_if(values.begin(), values.end(), [this](AtomIndex value) {
                        return label(value) != Label::isFalse;
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
