// Formulas: every comparison is one of a variable with a value, a set of values, or a variable of the same values.
#include "language/meaning/TypeChecks.h"

#include "language/meaning/NameMistakes.h"

#include <algorithm>

namespace language {

using namespace syntax;

bool TypeChecks::checkFormula(const Formula& formula)
{
    switch (formula.kind) {
    case Formula::Kind::equal:
    case Formula::Kind::notEqual: return checkComparison(formula);
    case Formula::Kind::member: return checkMember(formula);
    default: break;
    }
    bool sound = true;
    for (const Formula& operand : formula.operands) {
        sound = checkFormula(operand) && sound;
    }
    return sound;
}

bool TypeChecks::checkComparison(const Formula& formula)
{
    const Resolved left = resolve(*type_, formula.left);
    const Segment& first = formula.right.segments.front();
    const bool word = formula.right.segments.size() == 1 && !first.index;
    if (word && (!left || left.variable->indexOf(first.name.text))) return bool(left);
    const auto entry = type_->names.find(first.name.text);
    if (word && entry == type_->names.end()) return checkValue(*left.variable, first.name, true);
    const Resolved right = resolve(*type_, formula.right);
    return left && right && checkSameValues(formula, *left.variable, *right.variable);
}

bool TypeChecks::checkSameValues(const Formula& formula, const VariableType& left,
                                 const VariableType& right)
{
    const auto operand = [](const VariableType& variable) {
        return Operand{variable.syntax->name.text, variable.syntax->name.text, variable.values};
    };
    auto what = differentValues(operand(left), operand(right));
    if (!what) return true;
    report_.at(formula.range).report(std::move(*what));
    return false;
}

bool TypeChecks::checkMember(const Formula& formula)
{
    const Resolved left = resolve(*type_, formula.left);
    if (!left) return false;
    bool sound = true;
    for (std::size_t i = 0; i < formula.values.size(); ++i) {
        const Name& value = formula.values[i];
        sound = checkValue(*left.variable, value) && sound;
        const bool again = std::any_of(formula.values.begin(),
                                       formula.values.begin() + static_cast<std::ptrdiff_t>(i),
                                       [&](const Name& other) { return other.text == value.text; });
        if (!again) continue;
        report_.error(value.range, text::quoted(value.text) + " is in the set twice");
        sound = false;
    }
    return sound;
}

} // namespace language
